#include "report/extra/random_part.h"

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "report/wording.h"

namespace hierfit::report {
namespace {

using output::Dimension;
using output::Document;
using output::Format;
using output::kNone;
using output::Number;
using output::Table;
using output::Text;

/// Larger matrices are no reading matter, and cost their size to the third power.
constexpr Eigen::Index kMostEffects = 50;

/// An eigenvalue that is this small beside the largest one is 0 but for rounding.
constexpr double kSingular = 1e-10;

/// The dimension that lies in a place, when there is just one.
const Dimension* dimension_in(output::Place place, const Table& table) {
  const Dimension* found = nullptr;
  for (const Dimension& dimension : table.dimensions) {
    if (dimension.place != place) continue;
    if (found != nullptr) return nullptr;
    found = &dimension;
  }
  return found;
}

/// The numbers of a square table; nothing when it is none, or a number is missing.
std::optional<Eigen::MatrixXd> matrix_of(const Table& table) {
  const Dimension* rows = dimension_in(output::Place::Rows, table);
  const Dimension* columns = dimension_in(output::Place::Columns, table);
  if (rows == nullptr || columns == nullptr || table.dimensions.size() != 2) return {};
  const auto size = static_cast<Eigen::Index>(rows->leaves.size());
  if (size == 0 || size > kMostEffects || rows->leaves.size() != columns->leaves.size()) return {};
  Eigen::MatrixXd matrix = Eigen::MatrixXd::Constant(size, size, std::nan(""));
  const bool rows_first = rows == &table.dimensions.front();
  for (size_t cell = 0; cell < table.cells.size(); ++cell) {
    const uint32_t* at = table.cells.at(cell);
    const auto* number = std::get_if<Number>(&table.cells.values[cell]);
    if (number == nullptr || number->missing() || at[0] == kNone || at[1] == kNone) return {};
    matrix(at[rows_first ? 0 : 1], at[rows_first ? 1 : 0]) = number->value;
  }
  if (!matrix.allFinite()) return {};
  return matrix;
}

/// A text with a number in the place of "^1".
Text with_number(std::string_view pattern, const Number& number, const Document& document) {
  const size_t hole = std::min(pattern.find("^1"), pattern.size());
  Text text{.shown = std::string(pattern.substr(0, hole)), .numbers = {}};
  const std::string digits = output::shown(number, document.numbers);
  text.numbers.push_back(
      {static_cast<uint32_t>(hole), static_cast<uint32_t>(digits.size()), number});
  text.shown += digits;
  text.shown += pattern.substr(std::min(hole + 2, pattern.size()));
  return text;
}

uint32_t add_node(Dimension& dimension, Text label, uint32_t parent, bool is_group = false) {
  const auto node = static_cast<uint32_t>(dimension.nodes.size());
  dimension.nodes.push_back({.label = std::move(label), .parent = parent, .notes = {}});
  if (is_group) return node;
  dimension.nodes.back().leaf = static_cast<uint32_t>(dimension.leaves.size());
  dimension.leaves.push_back(node);
  return node;
}

Text caption_of(const Eigen::MatrixXd& covariances, const Document& document) {
  const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(covariances, Eigen::EigenvaluesOnly);
  const double least = solver.eigenvalues().minCoeff();
  Text caption = with_number(
      document.word(
          "Worked out by the report from the covariances, whose smallest eigenvalue is ^1."),
      {least, Format::GeneralStat}, document);
  if (least <= kSingular * solver.eigenvalues().cwiseAbs().maxCoeff()) {
    caption.shown += '\n';
    caption.shown +=
        document.word("The estimate lies on its boundary: the covariances are singular.");
  }
  return caption;
}

void add_cell(Table& table, uint32_t row, uint32_t column, double value) {
  table.cells.coordinates.insert(table.cells.coordinates.end(), {row, column});
  table.cells.values.emplace_back(Number{value, Format::GeneralStat});
}

}  // namespace

std::unique_ptr<Table> random_part_of(const Table& covariances, const Document& document) {
  const std::optional<Eigen::MatrixXd> matrix = matrix_of(covariances);
  if (!matrix) return nullptr;
  const Dimension& effects = *dimension_in(output::Place::Rows, covariances);
  const auto size = static_cast<uint32_t>(effects.leaves.size());

  auto table = std::make_unique<Table>();
  table->subtype = "RandomCorrelations";
  table->title.shown =
      filled(document.word("^1: standard deviations and correlations"), covariances.title.shown);
  table->dimensions.push_back(effects);
  Dimension& columns = table->dimensions.emplace_back();
  columns.place = output::Place::Columns;
  columns.title_shown = false;
  add_node(columns, {.shown = std::string(document.word("Standard deviation")), .numbers = {}},
           kNone);
  const uint32_t group =
      size < 2
          ? kNone
          : add_node(columns, {.shown = std::string(document.word("Correlation")), .numbers = {}},
                     kNone, true);
  for (uint32_t at = 0; at + 1 < size; ++at)
    add_node(columns, effects.nodes[effects.leaves[at]].label, group);

  table->cells.dimensions = 2;
  const Eigen::VectorXd deviations = matrix->diagonal().cwiseMax(0).cwiseSqrt();
  for (uint32_t row = 0; row < size; ++row) {
    add_cell(*table, row, 0, deviations[row]);
    for (uint32_t column = 0; column < row; ++column) {
      const double product = deviations[row] * deviations[column];
      if (product > 0) add_cell(*table, row, column + 1, (*matrix)(row, column) / product);
    }
  }
  table->caption = caption_of(*matrix, document);
  return table;
}

}  // namespace hierfit::report
