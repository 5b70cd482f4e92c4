#include <algorithm>

#include "quillon/items/QNItem.h"
#include "quillon/platform/environment/QNUserSettings.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Items = std::vector<std::shared_ptr<QNItem>>;

// Each title is looked at once: to read it takes the item's lock, and to make its key costs more
// than all the comparisons with it.
struct Sortable {
  bool isLast;  // behind all that are not
  std::string key;
  std::shared_ptr<QNItem> item;

  friend bool operator<(const Sortable& a, const Sortable& b) {
    return a.isLast != b.isLast ? b.isLast : a.key < b.key;
  }
};

Sortable sortable(std::shared_ptr<QNItem> item, bool hashSectionIsFirst) {
  const std::string title = item->title();
  const bool isLast = !hashSectionIsFirst && (title.empty() || beginsWithDigitOrSymbol(title));
  return {isLast, caseInsensitiveCollationKey(title), std::move(item)};
}

}  // namespace

Items QNItem::sortAlphabetically(Items items, bool favoritesOnTop) {
  const bool hashSectionIsFirst =
      QNUserSettings::sharedSettings().boolForKey(QNPrefAdvancedHashSectionIsSortedFirst);
  std::vector<Sortable> sortables;
  sortables.reserve(items.size());
  for (auto& item : items) {
    if (item != nullptr) sortables.push_back(sortable(std::move(item), hashSectionIsFirst));
  }
  std::stable_sort(sortables.begin(), sortables.end());
  items.clear();
  for (Sortable& each : sortables) items.push_back(std::move(each.item));
  if (favoritesOnTop) {
    std::stable_partition(items.begin(), items.end(),
                          [](const auto& item) { return item->isFavorite(); });
  }
  return items;
}

}  // namespace quillon
