#include <fmt/format.h>

#include <array>

#include "bench/bench.h"
#include "quillon/lists/QNItemList.h"
#include "quillon/lists/QNItemSorter.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/touchpoints/QNItemSpecifier.h"

namespace quillon::bench {
namespace {

using Items = QNItemList::Items;

/// By title, in sections of first letters.
class TitleSorter final : public QNItemSorter {
 public:
  std::string identifier() const override { return "title"; }
  std::string persistableIdentifier() const override { return "title"; }
  std::string title() const override { return "Title"; }
  bool isAscending() const override { return true; }
  void setIsAscending(bool /*ascending*/) override {}
  bool showsIndexForSectionTitle() const override { return true; }
  std::string sectionTitleForObject(QNItem& item) const override { return item.sectionName(); }
  std::string titleForObject(QNItem& item) const override { return item.title(); }
  std::string subtitleForObject(QNItem& item) const override {
    return item.additionalInformation().value_or("");
  }
  Items sortObjects(Items items) const override {
    return QNItem::sortAlphabetically(std::move(items));
  }
  std::string ascendingDescription() const override { return "A to Z"; }
  std::string ascendingShortDescription() const override { return "A–Z"; }
  std::string descendingDescription() const override { return "Z to A"; }
  std::string descendingShortDescription() const override { return "Z–A"; }
};

std::uint64_t nextRandom(std::uint64_t& state) {
  state = state * 6364136223846793005u + 1442695040888963407u;
  return state >> 33;
}

std::string randomWord(std::uint64_t& state) {
  constexpr std::string_view consonants = "bcdfghjklmnprstvwz";
  constexpr std::array<std::string_view, 7> vowels = {"a", "e", "i", "o", "u", "ö", "é"};
  std::string word;
  for (std::uint64_t pairs = 2 + nextRandom(state) % 3; pairs > 0; --pairs) {
    word += consonants[nextRandom(state) % consonants.size()];
    const std::uint64_t rare = nextRandom(state) % 40;
    word += vowels[rare < 2 ? 5 + rare : rare % 5];
  }
  word.front() = static_cast<char>(word.front() - 'a' + 'A');
  return word;
}

// Two words as a rule; one in thirty begins with a digit.
std::string randomTitle(std::uint64_t& state) {
  const bool digit = nextRandom(state) % 30 == 0;
  const std::string start = digit ? fmt::format("{} ", nextRandom(state) % 100) : "";
  return start + randomWord(state) + " " + randomWord(state);
}

// As a store lists them, their overviews open.
Items listedItems(const std::shared_ptr<QNProfile>& vault, std::size_t count) {
  Items items;
  std::uint64_t state = 1;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string overview =
        fmt::format(R"({{"title":"{}","ainfo":"person{}@example.org"}})", randomTitle(state), i);
    auto item = vault->existingItemWithID(i + 1, "001");
    item->setProfile(vault);
    item->setUuid(QNItem::uuidForProfileType(kProfileTypeLocalVault));
    item->setOverviewData(vault->encryptOverview(bytesOf(overview)));
    use(item->title().data());
    items.push_back(std::move(item));
  }
  return items;
}

void benchSorting(const Items& items) {
  std::vector<std::string> titles;
  for (const auto& item : items) titles.push_back(item->title());
  const TitleSorter sorter;
  const double whole = bestSecondsOf(5, [&] {
    if (QNItemList::initWithItems(items, sorter)->numberOfItems() != items.size()) std::abort();
  });
  const double keys = bestSecondsOf(5, [&titles] {
    for (const std::string& title : titles) use(caseInsensitiveCollationKey(title).data());
  });
  const double perItem = 1e6 / double(items.size());
  fmt::print(
      "lists    {:>9} items  sorted into sections in {:.3f} s, {:.2f} us an item; their collation "
      "keys alone {:.2f} us (x{:.2f}, wanted: 2.5)\n",
      items.size(), whole, whole * perItem, keys * perItem, whole / keys);
}

// Asked in another order than they stand in, by specifiers that aren't the items' own.
void benchFinding(const Items& items) {
  const auto list = QNItemList::initWithItems(items, TitleSorter());
  auto specifiers = QNItemSpecifier::specifiersWithItems(items);
  std::uint64_t state = 2;
  for (std::size_t i = specifiers.size(); i > 1; --i) {
    std::swap(specifiers[i - 1], specifiers[nextRandom(state) % i]);
  }
  use(&*list->indexPathForItemWithSpecifier(specifiers.back()));
  std::size_t found = 0;
  const auto findAll = [&] {
    found = 0;
    for (const auto& specifier : specifiers) {
      found += list->indexPathForItemWithSpecifier(specifier).has_value() ? 1 : 0;
    }
  };
  const double whole = bestSecondsOf(5, findAll);
  if (found != items.size()) std::abort();
  fmt::print(
      "lists    {:>9} items  in {} sections: found by specifier in {:.0f} ns (wanted: 1000)\n",
      items.size(), list->sections().size(), whole * 1e9 / double(items.size()));
}

}  // namespace

void benchLists(std::size_t count) {
  BenchStore store;
  const Items items = listedItems(store.vault(), count);
  benchSorting(items);
  benchFinding(items);
}

}  // namespace quillon::bench
