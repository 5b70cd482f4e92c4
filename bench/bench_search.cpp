#include <fmt/format.h>

#include <array>
#include <cstring>

#include "bench/bench.h"
#include "quillon/platform/text/QNText.h"

namespace quillon::bench {
namespace {

using Items = std::vector<std::shared_ptr<QNItem>>;

// What nothing has; what one in a thousand titles has; what every user name has. The longest of
// the three counts.
const std::array<QNItem::SearchStrings, 3> kQueries = {{{"zurich"}, {"example 97"}, {"person"}}};

Items listed(BenchStore& bench) {
  Items items;
  orFail(
      bench.store().list(bench.vault(), QNStore::Which::normal,
                         [&items](const std::shared_ptr<QNItem>& item) { items.push_back(item); }));
  return items;
}

double secondsOfList(BenchStore& bench) {
  return bestSecondsOf(3, [&bench] {
    for (const auto& item : listed(bench)) use(item->title().data());
  });
}

double secondsOfColdSearch(BenchStore& bench) {
  return bestSecondsOf(3, [&bench] {
    use(QNItem::itemsMatchingLowercaseStrings(listed(bench), {"zurich"}, QNSearchLevel::overview)
            .data());
  });
}

double secondsOfWarmSearch(const Items& items) {
  double slowest = 0;
  for (const auto& query : kQueries) {
    slowest = std::max(
        slowest, bestSecondsOf(7, [&] {
          use(QNItem::itemsMatchingLowercaseStrings(items, query, QNSearchLevel::overview).data());
        }));
  }
  return slowest;
}

// The C library's search over the same texts, all in one block.
double secondsOfFloor(const Items& items) {
  std::string block;
  for (const auto& item : items)
    block.append(foldedForSearch(item->lowercaseOverviewStringForSearch())).append("\n");
  const std::string_view absent = "zurich";
  return bestSecondsOf(
      7, [&] { use(memmem(block.data(), block.size(), absent.data(), absent.size())); });
}

template <class Look>
double secondsOfOpening(BenchStore& bench, const Look& look) {
  return bestSecondsOf(3, [&] {
    // Listed anew each time: an item keeps what it has opened.
    for (const auto& item : listed(bench)) {
      orFail(bench.store().loadDetails(item));
      look(*item);
    }
  });
}

}  // namespace

void benchSearch(std::size_t count) {
  BenchStore bench;
  bench.import(count);
  const double list = secondsOfList(bench);
  const double cold = secondsOfColdSearch(bench);
  const Items items = listed(bench);
  use(QNItem::itemsMatchingLowercaseStrings(items, {"x"}, QNSearchLevel::overview).data());
  const double warm = secondsOfWarmSearch(items);
  fmt::print(
      "search   {:>9} items  {:8.3f} ms a query, warm, {:.0f} ns an item  (wanted: 50); memmem "
      "over "
      "one block {:.3f} ms; cold {:.3f} s, the list {:.3f} s  ratio {:4.2f}  (wanted: 1.3)\n",
      count, warm * 1e3, warm * 1e9 / double(count), secondsOfFloor(items) * 1e3, cold, list,
      cold / list);
}

void benchSearchContents(std::size_t count) {
  BenchStore bench;
  bench.import(count);
  const double open = secondsOfOpening(bench, [](QNItem& item) { use(item.details()); });
  std::size_t found = 0;
  const double search = secondsOfOpening(bench, [&found](QNItem& item) {
    found += item.contentsMatchesLowercaseString("zurich") ? 1 : 0;
  });
  if (found != 0) std::abort();
  fmt::print(
      "search_contents {:>2} items  {:8.3f} s cold; opening their details {:.3f} s  ratio {:4.2f}  "
      "(wanted: 1.5)\n",
      count, search, open, search / open);
}

}  // namespace quillon::bench
