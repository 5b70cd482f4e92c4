#include <algorithm>
#include <cstdint>

#include "quillon/items/QNItem.h"
#include "quillon/platform/environment/QNUserSettings.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Items = std::vector<std::shared_ptr<QNItem>>;

// In one block, since many small ones cost more to make and to release than to compare.
class Keys final {
 public:
  void add(std::string_view key) {
    _bytes += key;
    _ends.push_back(_bytes.size());
  }
  [[nodiscard]] std::string_view at(std::size_t index) const {
    const std::size_t start = index == 0 ? 0 : _ends[index - 1];
    return std::string_view(_bytes).substr(start, _ends[index] - start);
  }

 private:
  std::string _bytes;
  std::vector<std::size_t> _ends;
};

// What is moved about: small, and mostly enough to tell two titles apart.
struct Place {
  std::uint64_t beginning;  // is it behind those that are not, and the first 63 bits of the key
  std::size_t index;
};

std::uint64_t beginningOf(std::string_view key, bool isLast) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < sizeof bits; ++i) {
    bits = bits << 8 | (i < key.size() ? static_cast<std::uint8_t>(key[i]) : 0u);
  }
  return bits >> 1 | std::uint64_t{isLast} << 63;
}

// Each title is looked at once: to read it takes the item's lock, and to make its key costs more
// than all the comparisons with it.
std::vector<Place> sortedPlaces(const Items& items, bool hashSectionIsFirst) {
  Keys keys;
  std::vector<Place> places;
  places.reserve(items.size());
  for (const auto& item : items) {
    const std::string title = item->title();
    const std::string key = caseInsensitiveCollationKey(title);
    const bool isLast = !hashSectionIsFirst && (title.empty() || beginsWithDigitOrSymbol(title));
    keys.add(key);
    places.push_back({beginningOf(key, isLast), places.size()});
  }
  std::stable_sort(places.begin(), places.end(), [&keys](const Place& a, const Place& b) {
    if (a.beginning != b.beginning) return a.beginning < b.beginning;
    return keys.at(a.index) < keys.at(b.index);
  });
  return places;
}

}  // namespace

Items QNItem::sortAlphabetically(Items items, bool favoritesOnTop) {
  const bool hashSectionIsFirst =
      QNUserSettings::sharedSettings().boolForKey(QNPrefAdvancedHashSectionIsSortedFirst);
  std::erase(items, nullptr);
  Items sorted;
  sorted.reserve(items.size());
  for (const Place& place : sortedPlaces(items, hashSectionIsFirst)) {
    sorted.push_back(std::move(items[place.index]));
  }
  if (favoritesOnTop) {
    std::stable_partition(sorted.begin(), sorted.end(),
                          [](const auto& item) { return item->isFavorite(); });
  }
  return sorted;
}

}  // namespace quillon
