#include <algorithm>
#include <set>

#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/urls/QNURLTools.h"

namespace quillon {
namespace {

// Room between two neighbours, so that one can be put between them without renumbering.
constexpr std::uint64_t kDisplayOrderStep = 100;

}  // namespace

bool QNItem::URLsAreAvailable() const {
  if (loadingDetails() || detailsLoaded()) return true;
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                     "Item URLs must be loaded");
  return false;
}

// One that doesn't open reads as empty, and must not be told as empty.
bool QNItem::allOpen(const std::vector<std::shared_ptr<QNItemURL>>& urls) {
  return std::all_of(urls.begin(), urls.end(),
                     [](const auto& url) { return url->mutableOverview() != nullptr; });
}

void QNItem::reportUnsharedItem() const {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                     "An item with URLs is made with std::make_shared");
}

std::vector<std::shared_ptr<QNItemURL>>& QNItem::mutableURLs() {
  auto& urls = openState().URLs;
  return urls ? *urls : urls.emplace();
}

std::vector<std::shared_ptr<QNItemURL>> QNItem::URLs() {
  if (!URLsAreAvailable()) return {};
  const auto& urls = openState().URLs;
  return urls ? *urls : std::vector<std::shared_ptr<QNItemURL>>();
}

std::vector<std::shared_ptr<QNItemURL>> QNItem::deletedURLs() {
  if (!URLsAreAvailable()) return {};
  return openState().deletedURLs;
}

std::size_t QNItem::numberOfURLs() {
  return URLs().size();
}

std::shared_ptr<QNItemURL> QNItem::URLAtIndex(std::size_t index) {
  const auto urls = URLs();
  return index < urls.size() ? urls[index] : nullptr;
}

std::shared_ptr<QNItemURL> QNItem::URLWithLabel(std::string_view label) {
  for (const auto& url : URLs()) {
    if (url->label() == label) return url;
  }
  return nullptr;
}

std::shared_ptr<QNItemURL> QNItem::URLWithURLString(std::string_view url) {
  for (const auto& candidate : URLs()) {
    if (candidate->URLString() == url) return candidate;
  }
  return nullptr;
}

std::optional<std::string> QNItem::URLString() {
  const std::lock_guard lock(monitor());
  if (detailsLoaded()) {
    const auto first = URLAtIndex(0);
    return first == nullptr ? std::nullopt : first->URLString();
  }
  const auto url = overviewTextForKey(kOverviewURLString);
  return url ? std::optional<std::string>(*url) : std::nullopt;
}

void QNItem::setURLString(std::optional<std::string_view> url) {
  if (!URLsAreAvailable()) return;
  if (url) markRowDirty();
  if (!url) {
    removeURLAtIndex(0);
  } else if (const auto first = URLAtIndex(0)) {
    first->setURLString(url);
  } else {
    addURLString(*url);
  }
  dropURLCaches();  // last: before, another thread would fill them with the former address
  dropOverviewForSearch();
}

void QNItem::addURL(const std::shared_ptr<QNItemURL>& url) {
  if (url == nullptr || !URLsAreAvailable()) return;
  auto& urls = mutableURLs();
  const auto self = weak_from_this().lock();
  if (std::find(urls.begin(), urls.end(), url) != urls.end()) {
    url->setItem(self);
    url->setProfile(profile());
    return;
  }
  if (self == nullptr) reportUnsharedItem();
  markRowDirty();
  std::erase(openState().deletedURLs, url);  // a removal that is undone keeps its row
  url->setItem(self);
  url->setProfile(profile());
  if (url->displayOrder() == 0) {
    url->setDisplayOrder((urls.empty() ? 0 : urls.back()->displayOrder()) + kDisplayOrderStep);
  }
  urls.push_back(url);
  dropURLCaches();
  dropSearchWords();
}

void QNItem::addURLString(std::string_view url, std::optional<std::string_view> withLabel) {
  if (!URLsAreAvailable()) return;
  if (profile() == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Profile is not set");
    return;
  }
  if (url.empty()) return;
  const auto added = std::make_shared<QNItemURL>(initNew);
  added->setProfile(profile());
  added->setItem(weak_from_this().lock());
  added->setURLString(url);
  if (withLabel) added->setLabel(withLabel);
  addURL(added);
}

void QNItem::removeURL(const std::shared_ptr<QNItemURL>& url) {
  const auto urls = URLs();
  const auto found = std::find(urls.begin(), urls.end(), url);
  if (found != urls.end()) removeURLAtIndex(static_cast<std::size_t>(found - urls.begin()));
}

void QNItem::removeURLAtIndex(std::size_t index) {
  const auto removed = URLAtIndex(index);
  if (removed == nullptr) return;
  markRowDirty();
  auto& urls = mutableURLs();
  urls.erase(urls.begin() + static_cast<std::ptrdiff_t>(index));
  if (removed->hasOid()) openState().deletedURLs.push_back(removed);
  dropURLCaches();
  dropSearchWords();
}

void QNItem::moveURL(const std::shared_ptr<QNItemURL>& url, std::size_t toIndex) {
  if (toIndex >= numberOfURLs() || URLAtIndex(toIndex) == url) return;
  auto& urls = mutableURLs();
  const auto found = std::find(urls.begin(), urls.end(), url);
  if (found == urls.end()) return;
  markRowDirty();
  urls.erase(found);
  urls.insert(urls.begin() + static_cast<std::ptrdiff_t>(toIndex), url);
  std::uint64_t order = 0;
  for (const auto& each : urls) each->setDisplayOrder(++order);
  dropURLCaches();
}

void QNItem::removeDuplicateURLs() {
  std::set<std::string> kept;
  for (const auto& url : URLs()) {
    const auto address = url->URLString();  // nothing where it can't be read: that is no duplicate
    if (address && !kept.insert(*address).second) removeURL(url);
  }
}

std::optional<std::string> QNItem::nakedDomain() {
  const std::lock_guard lock(monitor());
  auto& cached = openState().cachedNakedDomain;
  if (cached) return cached;
  if (const auto url = URLString()) cached = QNURLTools::shared().nakedDomainForURLString(*url);
  return cached;
}

std::optional<std::string> QNItem::derivedDomain() {
  const std::lock_guard lock(monitor());  // every save drops the cache
  auto& cached = openState().cachedDerivedDomain;
  if (cached) return cached;
  if (const auto url = URLString()) cached = QNURLTools::shared().extractHostFromURLString(*url);
  return cached;
}

void QNItem::dropURLCaches() {
  const std::lock_guard lock(monitor());
  if (_open == nullptr) return;
  _open->cachedNakedDomain.reset();
  _open->cachedDerivedDomain.reset();
}

std::optional<std::string> QNItem::goAndFillURLString() {
  const auto url = URLString();
  const auto vault = profile();
  if (!url || _uuid == nullptr || vault == nullptr || vault->uuid() == nullptr) {
    return std::nullopt;
  }
  return QNURLTools::shared().generateGoAndFillURLStringForString(*url, *_uuid, *vault->uuid());
}

std::string QNItem::defaultLabelForNewURL() {
  const std::size_t count = numberOfURLs();
  if (count == 0) return QNLocalizedString("website");
  return localizedFormat("website %jd", std::to_string(count + 1));
}

}  // namespace quillon
