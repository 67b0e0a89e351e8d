#include "report/typeset/columns.h"

#include <cmath>
#include <span>

namespace hierfit::report {

namespace {

std::span<Need> under(const Head& head, Needs& needs) {
  return std::span(needs.columns).subspan(head.first, head.span);
}

/// Columns under a common head share what it lacks. Of whole units the first columns take what is
/// left over.
void share(std::span<Need> columns, double Need::*member, double width, bool whole_units) {
  double has = 0;
  for (const Need& need : columns)
    has += need.*member;
  if (has >= width) return;
  const auto count = static_cast<double>(columns.size());
  const double each = (width - has) / count;
  double left_over = whole_units ? width - has - std::floor(each) * count : 0;
  for (Need& need : columns) {
    need.*member += whole_units ? std::floor(each) + (left_over > 0 ? 1 : 0) : each;
    left_over -= 1;
  }
}

/// By column: whether it stays with the one ahead of it, under a head that fits into a part.
std::vector<bool> staying(const TableView& view, const Needs& needs, double room) {
  std::vector<bool> stays(view.layout.columns, false);
  for (const Head& head : view.layout.column_heads) {
    const uint32_t end = head.first + head.span;
    if (head.span == 1 || needs.of({head.first, end}).least > room) continue;
    std::fill(stays.begin() + head.first + 1, stays.begin() + end, true);
  }
  return stays;
}

}  // namespace

Need Needs::of(const Part& part) const {
  Need sum;
  const auto add = [&sum](const Need& need) {
    sum.least += need.least;
    sum.wanted += need.wanted;
  };
  std::ranges::for_each(stubs, add);
  std::ranges::for_each(std::span(columns).subspan(part.first, part.columns()), add);
  return sum;
}

Needs body_needs(const TableView& view, const Ruler& ruler) {
  Needs needs = {std::vector<Need>(view.stubs(), ruler.narrowest()),
                 std::vector<Need>(view.layout.columns, ruler.narrowest())};
  size_t measured = 0;
  for (const Head& head : view.layout.row_heads) {
    if (head.kind == HeadKind::Group) continue;
    if (++measured > ruler.most_row_heads()) break;
    needs.stubs[head.level].cover(ruler.row_head(head));
  }
  for (size_t i = 0; i < view.cells.cells.size(); ++i) {
    const AlignedCell& cell = view.cells.cells[i];
    if (cell.kind != CellKind::Text) continue;
    const PlacedCell& placed = view.layout.placed[i];
    needs.columns[placed.column].cover(ruler.text_cell(placed, view.table.texts[cell.begin]));
  }
  for (uint32_t column = 0; column < view.layout.columns; ++column)
    needs.columns[column].cover(ruler.numbers(column));
  return needs;
}

void cover_heads(const TableView& view, const Ruler& ruler, Needs& needs) {
  for (uint32_t stub = 0; stub < view.stubs(); ++stub) {
    if (const output::Text* title = view.stub_title(stub)) {
      needs.stubs[stub].cover(ruler.stub_title(*title));
    }
  }
  const std::vector<Head>& heads = view.layout.column_heads;
  for (auto head = heads.rbegin(); head != heads.rend(); ++head) {
    const Need need = ruler.column_head(*head);
    if (head->span == 1) {
      needs.columns[head->first].cover(need);
    } else {
      share(under(*head, needs), &Need::least, need.least, ruler.in_whole_units());
      share(under(*head, needs), &Need::wanted, need.wanted, ruler.in_whole_units());
    }
  }
  for (Need& need : needs.columns)
    need.cover({});
}

Needs measure(const TableView& view, const Ruler& ruler) {
  Needs needs = body_needs(view, ruler);
  cover_heads(view, ruler, needs);
  return needs;
}

std::vector<Part> divide(const TableView& view, const Needs& needs, double room) {
  const uint32_t all = view.layout.columns;
  const std::vector<bool> stays = staying(view, needs, room);
  std::vector<Part> parts;
  Part part;
  for (uint32_t begin = 0; begin < all; begin = part.end) {
    uint32_t end = begin + 1;
    while (end < all && stays[end])
      ++end;
    if (begin > part.first && needs.of({part.first, end}).least > room) {
      parts.push_back(part);
      part.first = begin;
    }
    part.end = end;
  }
  parts.push_back(part);
  return parts;
}

}  // namespace hierfit::report
