// What leaves the records.
#include <doctest/doctest.h>
#include <numeric>

#include "import/histogram.h"
#include "import/pairs_of_values.h"
#include "import/prepared.h"
#include "import/read_fit.h"
#include "tests/import/fit_documents.h"

namespace {

using namespace hierfit;
using namespace hierfit::test;
using Numbers = std::vector<double>;

/// The summaries of a fit, given or made.
fit::Summaries summaries_of(const std::string& text) {
  fit::Problems problems;
  const fit::Prepared prepared(fit::read_fit(text, problems), problems);
  REQUIRE_FALSE(problems.has_errors());
  return prepared.fit.summaries;
}

/// The records of an example, as far as its pairs tell them.
nlohmann::ordered_json with_records(const std::string& name) {
  nlohmann::ordered_json fit = nlohmann::ordered_json::parse(example_fit(name));
  const nlohmann::ordered_json pairs = fit["summaries"]["predicted"];
  Numbers observed;
  Numbers predicted;
  for (size_t at = pairs["observed"].size(); at-- > 0;) {
    const size_t count = pairs.contains("counts") ? pairs["counts"][at].get<size_t>() : 1;
    observed.insert(observed.end(), count, pairs["observed"][at].get<double>());
    predicted.insert(predicted.end(), count, pairs["predicted"][at].get<double>());
  }
  fit["data"] = {{"columns", {{fit["target"]["variable"], observed}}}, {"predicted", predicted}};
  fit.erase("summaries");
  return fit;
}

}  // namespace

TEST_CASE("the records of the examples come to their published summaries") {
  for (const char* name : {"sleepstudy", "cbpp", "salamanders"}) {
    CAPTURE(name);
    const fit::Summaries published = summaries_of(example_fit(name));
    const fit::Summaries own = summaries_of(with_records(name).dump());
    CHECK(own.records == published.records);
    CHECK(own.target->bins == published.target->bins);
    CHECK(own.target->counts == published.target->counts);
    CHECK(own.target->mean == doctest::Approx(published.target->mean).epsilon(1e-14));
    CHECK(own.target->deviation == doctest::Approx(published.target->deviation).epsilon(1e-14));
    CHECK(own.predicted->observed == published.predicted->observed);
    CHECK(own.predicted->predicted == published.predicted->predicted);
    Numbers counts = published.predicted->counts;
    if (counts.empty()) counts.assign(own.predicted->observed.size(), 1);
    CHECK(own.predicted->counts == counts);
  }
  const fit::Summaries counts = summaries_of(with_records("salamanders").dump());
  CHECK(counts.target->r == doctest::Approx(0.31122383406523213).epsilon(1e-12));
  CHECK(counts.target->p == doctest::Approx(0.19044354648074552).epsilon(1e-12));
}

TEST_CASE("categories and events are classified") {
  const fit::Summaries nominal = summaries_of(nominal_fit().dump());
  CHECK(nominal.classification == fit::Matrix{{2, 0, 0}, {1, 1, 0}, {0, 1, 1}});
  CHECK(nominal.target->bins == Numbers{1, 2, 3});
  CHECK(nominal.target->counts == Numbers{2, 2, 2});
  // Predicted 1.5, 1.5, 3, 4, 5, 5.5 of 8: the last two are events.
  const fit::Summaries events = summaries_of(events_fit().dump());
  CHECK(events.classification == fit::Matrix{{22, 5}, {10, 11}});
}

TEST_CASE("the first subject is that of the first whole record") {
  nlohmann::ordered_json fit = events_fit();
  fit["data"]["columns"]["s"] = {nullptr, 2, 2, 1, 2, 1};
  const fit::FirstSubject first = *summaries_of(fit.dump()).first_subject;
  CHECK(first.subject == fit::Levels{{"s", {"2"}}});
  CHECK(first.records == 3);
  CHECK(first.target == std::vector<fit::Value>{{"2"}, {"3"}, {"5"}});
  CHECK(first.trials == std::vector<fit::Value>{{"8"}, {"8"}, {"8"}});
  CHECK(first.repeated[0].second == std::vector<fit::Value>{{"0"}, {"0"}, {"1"}});
  CHECK(import_json(fit).run().table("DataStructure") != nullptr);
}

TEST_CASE("raw data go no further than into summaries") {
  nlohmann::ordered_json fit = small_fit();
  fit["variables"].push_back({{"name", "secret"}});
  fit["data"]["columns"]["secret"] = {70001, 70002, 70003, 70004, 70005, 70006};
  const auto imported = import_json(fit);
  REQUIRE(imported.documents);
  for (const std::string& text : {imported.documents->model, imported.documents->result})
    CHECK(text.find("7000") == std::string::npos);
}

TEST_CASE("bins") {
  SUBCASE("counts have a bin each") {
    CHECK(fit::count_bins({0, 3, 1, 1}).counts == Numbers{1, 2, 0, 1});
    CHECK(fit::count_bins({0.5}).counts.empty());
    CHECK(fit::count_bins({-1}).counts.empty());
    CHECK(fit::count_bins({1e9}).counts.empty());
  }
  SUBCASE("others have a round width") {
    Numbers numbers(100);
    std::iota(numbers.begin(), numbers.end(), 1.0);
    // hist(1:100) in R: breaks at 0, 10, ..., 100.
    const fit::Bins bins = fit::round_bins(numbers);
    CHECK(bins.middles == Numbers{5, 15, 25, 35, 45, 55, 65, 75, 85, 95});
    CHECK(bins.counts == Numbers(10, 10));
  }
  SUBCASE("numbers beyond all use end") {
    CHECK(fit::round_bins({}).middles.empty());
    CHECK(fit::round_bins({4, 4, 4}).counts == Numbers{3});
    CHECK(fit::round_bins({-1.7e308, 1.7e308}).middles.size() == 1);
    CHECK(fit::round_bins({0, 5e-324}).counts.size() < 100);
    CHECK(fit::round_bins({1e300, 1.0000001e300}).counts.size() < 100);
  }
}

TEST_CASE("many pairs are laid on a grid that keeps their number and means") {
  Numbers observed;
  Numbers predicted;
  for (int at = 0; at < 5000; ++at) {
    observed.push_back(at % 97 * 0.25);
    predicted.push_back(at * 0.001);
  }
  const fit::Pairs pairs = fit::pairs_of(observed, predicted);
  CHECK(pairs.counts.size() <= 1600);
  CHECK(std::accumulate(pairs.counts.begin(), pairs.counts.end(), 0.0) == 5000);
  double sum = 0;
  for (size_t at = 0; at < pairs.counts.size(); ++at)
    sum += pairs.counts[at] * pairs.predicted[at];
  CHECK(sum == doctest::Approx(std::accumulate(predicted.begin(), predicted.end(), 0.0)));
}
