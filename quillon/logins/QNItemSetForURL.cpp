#include "quillon/logins/QNItemSetForURL.h"

#include <algorithm>

#include "quillon/items/QNItem.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Items = QNItemSetForURL::Items;
using SortDescriptor = QNItemSetForURL::SortDescriptor;

int compareNumbers(std::uint64_t a, std::uint64_t b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

std::vector<SortDescriptor> defaultSortDescriptors() {
  return {
      [](QNItem& a, QNItem& b) {
        return compareNumbers(a.favoriteSortDescriptorOrder(), b.favoriteSortDescriptorOrder());
      },
      [](QNItem& a, QNItem& b) { return localizedCaseInsensitiveCompare(a.title(), b.title()); },
      [](QNItem& a, QNItem& b) { return compareNumbers(a.createdAt(), b.createdAt()); },
  };
}

Items sorted(Items items, const std::vector<SortDescriptor>& descriptors) {
  std::stable_sort(items.begin(), items.end(), [&descriptors](const auto& a, const auto& b) {
    for (const SortDescriptor& compare : descriptors) {
      if (const int order = compare(*a, *b); order != 0) return order < 0;
    }
    return false;
  });
  return items;
}

void append(const Items& more, Items& items) {
  items.insert(items.end(), more.begin(), more.end());
}

}  // namespace

QNItemSetForURL::QNItemSetForURL() : sortDescriptors(defaultSortDescriptors()) {}

QNItemSetForURL::QNItemSetForURL(std::string initWithURLString) : QNItemSetForURL() {
  URLString = std::move(initWithURLString);
}

Items QNItemSetForURL::filterLogins(Items logins,
                                    const std::vector<SortDescriptor>& sortedUsingDescriptors,
                                    bool limitedToRegularScope) {
  Items kept = sorted(std::move(logins), sortedUsingDescriptors);
  if (limitedToRegularScope) {
    std::erase_if(kept, [](const auto& item) { return !item->hasRegularScope(); });
  }
  return kept;
}

const Items& QNItemSetForURL::matchingItems() {
  matchItems();
  return _matchingItems;
}

std::uint64_t QNItemSetForURL::topLevelToDisplay() {
  matchItems();
  return _topLevelToDisplay;
}

void QNItemSetForURL::matchItems() {
  if (_matched) return;
  _matched = true;
  if (limitMatchesToDerivedDomain) {
    matchLimitedToDerivedDomain();
  } else {
    matchAll();
  }
}

void QNItemSetForURL::matchLimitedToDerivedDomain() {
  _matchingItems = filterLogins(derivedLogins, sortDescriptors, limitMatchesToRegularScope);
  _topLevelToDisplay = _matchingItems.size();
  const bool isQuickFill = quickFillMode && _matchingItems.size() == 1;
  if (!isQuickFill) {
    const Items naked = filterLogins(nakedLogins, sortDescriptors, limitMatchesToRegularScope);
    if (_matchingItems.empty()) _topLevelToDisplay = naked.size();
    append(naked, _matchingItems);
  }
  if (!_matchingItems.empty()) return;
  append(sorted(derivedPasswords, sortDescriptors), _matchingItems);
  _topLevelToDisplay = _matchingItems.size();
  append(sorted(nakedPasswords, sortDescriptors), _matchingItems);
}

void QNItemSetForURL::matchAll() {
  append(filterLogins(derivedLogins, {}, limitMatchesToRegularScope), _matchingItems);
  append(filterLogins(nakedLogins, {}, limitMatchesToRegularScope), _matchingItems);
  if (_matchingItems.empty()) {
    append(derivedPasswords, _matchingItems);
    append(nakedPasswords, _matchingItems);
  }
  _matchingItems = sorted(std::move(_matchingItems), sortDescriptors);
}

}  // namespace quillon
