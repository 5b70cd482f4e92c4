#include <algorithm>
#include <map>

#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"

// Addresses are told apart by their text, those that have a label alone by that. One whose overview
// doesn't open has neither: it is neither taken over nor removed.

namespace quillon {
namespace {

using URLs = std::vector<std::shared_ptr<QNItemURL>>;

/// Is the text an address? Otherwise it is a label.
using Key = std::pair<bool, std::string>;

struct Placed {
  std::shared_ptr<QNItemURL> url;
  std::size_t place = 0;
};

std::optional<Key> keyOf(QNItemURL& url) {
  if (auto address = url.URLString()) return Key(true, *std::move(address));
  if (auto label = url.label()) return Key(false, *std::move(label));
  return std::nullopt;
}

/// Of equal ones the first.
std::map<Key, Placed> byKey(const URLs& urls) {
  std::map<Key, Placed> found;
  for (std::size_t i = 0; i < urls.size(); ++i) {
    if (auto key = keyOf(*urls[i])) found.try_emplace(*std::move(key), Placed{urls[i], i});
  }
  return found;
}

std::shared_ptr<QNItemURL> newURLLike(QNItemURL& theirs,
                                      const std::shared_ptr<QNGenericProfile>& profile) {
  auto url = std::make_shared<QNItemURL>(initNew);
  url->setProfile(profile);
  url->setURLString(theirs.URLString());
  url->setLabel(theirs.label());
  return url;
}

}  // namespace

void QNItem::mergeURLsWithConflict(const std::vector<std::shared_ptr<QNItemURL>>& theirs) {
  auto mine = byKey(URLs());
  for (const auto& url : theirs) {
    const auto key = keyOf(*url);
    if (!key) continue;
    const auto [known, isNew] = mine.try_emplace(*key);
    std::shared_ptr<QNItemURL>& here = known->second.url;
    if (isNew) {
      here = newURLLike(*url, profile());
      addURL(here);
    } else if (!here->hasOid()) {
      here->_setOid(url->oid());
    }
  }
  keepRowsOfURLs();
}

// Afterwards there are the winner's addresses in the winner's order: in objects that this item
// had, where it had them, so that their rows stay.
void QNItem::replaceURLsWithThoseOf(QNItem& other) {
  removeDuplicateURLs();
  other.removeDuplicateURLs();
  const auto theirs = byKey(other.URLs());
  for (const auto& url : URLs()) {
    const auto key = keyOf(*url);
    if (key && !theirs.contains(*key)) removeURL(url);
  }
  const auto mine = byKey(URLs());
  for (const auto& [key, their] : theirs) {
    const auto found = mine.find(key);
    if (found == mine.end()) {
      addURL(their.url);
    } else {
      found->second.url->replaceWith(*their.url);
    }
  }
  const auto placeOf = [&theirs](const std::shared_ptr<QNItemURL>& url) {
    const auto key = keyOf(*url);
    const auto found = key ? theirs.find(*key) : theirs.end();
    return found == theirs.end() ? theirs.size() : found->second.place;
  };
  if (auto& urls = openState().URLs) {
    std::stable_sort(urls->begin(), urls->end(),
                     [&placeOf](const auto& a, const auto& b) { return placeOf(a) < placeOf(b); });
  }
  dropURLCaches();
  keepRowsOfURLs();
}

// A row that an address took over must not be deleted for the one that left it.
void QNItem::keepRowsOfURLs() {
  const auto& urls = openState().URLs;
  if (!urls) return;
  std::erase_if(openState().deletedURLs, [&urls](const auto& removed) {
    return std::any_of(urls->begin(), urls->end(),
                       [&removed](const auto& url) { return url->oid() == removed->oid(); });
  });
}

}  // namespace quillon
