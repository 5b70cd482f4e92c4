#include <fmt/format.h>

#include "bench/bench.h"
#include "quillon/organisation/predicates/QNItemKeyPaths.h"
#include "quillon/organisation/predicates/QNPredicate.h"

namespace quillon::bench {
namespace {

using Items = std::vector<std::shared_ptr<QNItem>>;

// Every part holds for every item, so that none is spared.
constexpr std::string_view kQuestion =
    R"(title CONTAINS[cd] "example" AND passwordStrength >= 20 AND categoryUUID == "001" AND )"
    R"(ANY tagsForSearch ==[cd] "money" AND updatedAtAsDate > DATE "2020-01-01")";

// As a store lists them, their overviews open.
Items listedItems(const std::shared_ptr<QNProfile>& vault, std::size_t count) {
  Items items;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string overview = fmt::format(
        R"({{"title":"Account {} at Example {}","ainfo":"person{}@example.org",)"
        R"("url":"https://login.example-{}.com/signin","ps":{},"tags":["home","Money"]}})",
        i, i % 977, i, i % 9973, 20 + i % 80);
    auto item = vault->existingItemWithID(i + 1, "001");
    item->setProfile(vault);
    item->setCategoryUUID("001");
    item->setUpdatedAt(1'700'000'000 + i);
    item->setOverviewData(vault->encryptOverview(bytesOf(overview)));
    use(item->title().data());
    items.push_back(std::move(item));
  }
  return items;
}

std::size_t matching(const Items& items, const QNPredicate& question) {
  QNPredicateBudget budget(items.size());
  std::size_t found = 0;
  for (const auto& item : items) {
    QNItemKeyPathSource source(*item);
    const auto truth = question.evaluateWithoutDetails(source, budget);
    found += truth.ok() && truth.value() == QNTruth::yes ? 1 : 0;
  }
  return found;
}

// What no answer can do without: the five values themselves.
std::size_t readFields(const Items& items) {
  std::size_t seen = 0;
  for (const auto& item : items) {
    const std::lock_guard lock(item->monitor());
    seen += item->overviewTextForKey(kOverviewTitle)->size();
    seen += static_cast<std::size_t>(item->passwordStrength());
    seen += item->overviewObjectForKey(kTags)->get_array().size();
    seen += item->categoryUUID()->size() + item->updatedAt();
  }
  return seen;
}

}  // namespace

void benchSmart(std::size_t count) {
  BenchStore store;
  const Items items = listedItems(store.vault(), count);
  const auto question = QNPredicate::predicateWithFormat(kQuestion).value();
  const double whole = bestSecondsOf(5, [&] {
    if (matching(items, *question) != items.size()) std::abort();
  });
  const double floor = bestSecondsOf(5, [&] {
    if (readFields(items) == 0) std::abort();
  });
  fmt::print(
      "smart    {:>9} items  five comparisons in {:.1f} ms, {:.0f} ns each; reading the fields "
      "alone {:.1f} ms (x{:.2f}); wanted for 100,000: 30 ms\n",
      items.size(), whole * 1e3, whole * 1e9 / double(items.size()) / 5, floor * 1e3,
      whole / floor);
}

}  // namespace quillon::bench
