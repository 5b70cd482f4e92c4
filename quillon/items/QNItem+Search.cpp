// What a search looks at, level by level:
//
//   title       the title, folded
//   overview    title, host of the main address and subtitle, folded; the uuid
//   contents    all that, then tags, titles of fields, values, titles of sections
//
// The first two read the block that SearchTexts is, which the first search makes and which stays
// until what it was made of is set. The third opens the details, which then stay open with the
// item until it is released, and makes nothing of them that stays.

#include <algorithm>
#include <optional>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNItem.h"
#include "quillon/items/QNPredicateCache.h"
#include "quillon/items/internal/QNItemSearchTexts.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/text/QNCharacterSet.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// How far ahead of the item that is looked at memory is asked for: the item's own, then the block
// that it points to. Measured: half as far costs a third more, twice as far as much.
constexpr std::size_t kItemsAhead = 32;
constexpr std::size_t kTextsAhead = 16;

constexpr std::size_t kCacheLine = 64;

void appendUnlessEmpty(std::vector<QNSecret>& values, const std::optional<QNSecret>& text) {
  if (text && !text->empty()) values.push_back(text->clone());
}

void append(std::vector<QNSecret>& all, std::vector<QNSecret> more) {
  std::move(more.begin(), more.end(), std::back_inserter(all));
}

bool anyMatches(const std::vector<QNSecret>& texts, const QNSearchPredicate& test) {
  return std::any_of(texts.begin(), texts.end(), [&test](const QNSecret& text) {
    return test.matches(text.reveal());  // compared only
  });
}

// What title() gives, never in memory that isn't wiped. The monitor is held.
QNSecret titleOf(QNItem& item) {
  const auto title = item.overviewTextForKey(kOverviewTitle);
  return QNSecret(title ? *title : QNLocalizedString("Unnamed"));
}

bool hasNoElements(const Json& value) {
  if (const auto* const list = value.if_array()) return list->empty();
  if (const auto* const members = value.if_object()) return members->empty();
  const auto* const text = value.if_string();
  return text != nullptr && text->empty();
}

}  // namespace

// Tests and separators

const QNCharacterSet& QNItem::searchSeparatorSet() {
  return QNCharacterSet::whitespace();
}

QNPredicateCache& QNItem::predicateCache() {
  static QNPredicateCache cache;
  return cache;
}

std::shared_ptr<const QNSearchPredicate> QNItem::cachedPredicateForSearchString(
    std::string_view string) {
  return predicateCache().predicateForString(string);
}

void QNItem::clearCaches() {
  predicateCache().removeAllObjects();
  SearchTexts::releaseDropped();
}

// Levels

bool QNItem::titleMatchesLowercaseString(std::string_view string) {
  return titleMatches(*cachedPredicateForSearchString(string));
}

bool QNItem::overviewMatchesLowercaseString(std::string_view string) {
  return overviewMatches(*cachedPredicateForSearchString(string));
}

bool QNItem::contentsMatchesLowercaseString(std::string_view string) {
  return contentsMatches(*cachedPredicateForSearchString(string));
}

bool QNItem::titleMatchesLowercaseStrings(const SearchStrings& strings) {
  return matchesAll(strings, QNSearchLevel::title);
}

bool QNItem::overviewMatchesLowercaseStrings(const SearchStrings& strings) {
  return matchesAll(strings, QNSearchLevel::overview);
}

bool QNItem::contentsMatchesLowercaseStrings(const SearchStrings& strings) {
  return matchesAll(strings, QNSearchLevel::contents);
}

bool QNItem::titleMatches(const QNSearchPredicate& test) {
  const std::lock_guard lock(monitor());
  return test.matchesFolded(searchTexts().foldedTitle());
}

bool QNItem::overviewMatches(const QNSearchPredicate& test) {
  const std::lock_guard lock(monitor());
  return test.matchesFolded(searchTextsWithOverview(false).folded()) ||
         hasLowercaseUUID(test.searched());
}

bool QNItem::contentsMatches(const QNSearchPredicate& test) {
  const std::lock_guard lock(monitor());
  if (overviewMatches(test)) return true;
  const Json tags = tagsForSearch();
  return objectMatches(&tags, test) || anyMatches(allFieldTitlesForSearch(), test) ||
         anyMatches(allValuesForSearch(), test) || anyMatches(allSectionTitlesForSearch(), test);
}

bool QNItem::matches(const QNSearchPredicate& test, QNSearchLevel level) {
  switch (level) {
    case QNSearchLevel::title:
      return titleMatches(test);
    case QNSearchLevel::overview:
      return overviewMatches(test);
    case QNSearchLevel::contents:
      return contentsMatches(test);
  }
  return false;
}

bool QNItem::matchesAll(const SearchStrings& strings, QNSearchLevel level) {
  return std::all_of(strings.begin(), strings.end(), [&](const std::string& string) {
    return matches(*cachedPredicateForSearchString(string), level);
  });
}

// The letters of an identifier are ASCII: another length is another text.
bool QNItem::hasLowercaseUUID(std::string_view string) const {
  return _uuid != nullptr && _uuid->size() == string.size() &&
         lowercaseIdentifier(*_uuid) == string;
}

// Many items

std::vector<std::shared_ptr<QNItem>> QNItem::itemsMatchingLowercaseStrings(
    std::span<const std::shared_ptr<QNItem>> items, const SearchStrings& strings,
    QNSearchLevel level) {
  std::vector<std::shared_ptr<const QNSearchPredicate>> tests;
  for (const std::string& string : strings) tests.push_back(cachedPredicateForSearchString(string));
  const auto itemAhead = [items](std::size_t place, std::size_t by) {
    return place + by < items.size() ? items[place + by].get() : nullptr;
  };
  std::optional<SearchTexts::Reading> reading;
  if (level != QNSearchLevel::contents) reading.emplace();
  const auto matches = [&reading, level](QNItem& item, const QNSearchPredicate& test) {
    const SearchTexts* const texts = reading ? reading->textsOf(item) : nullptr;
    const bool made = texts != nullptr && texts->holdsTitle;
    if (made && level == QNSearchLevel::title) return test.matchesFolded(texts->foldedTitle());
    if (!made || !texts->holdsOverview) return item.matches(test, level);
    if (test.matchesFolded(texts->folded())) return true;
    // The uuid itself is read under the monitor.
    return texts->uuidSize == test.searched().size() && item.overviewMatches(test);
  };
  std::vector<std::shared_ptr<QNItem>> found;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (const QNItem* const item = itemAhead(i, kItemsAhead)) item->fetchForSearch();
    if (const QNItem* const item = itemAhead(i, kTextsAhead)) item->fetchSearchTexts();
    const auto& item = items[i];
    const bool matchesEach =
        item != nullptr && std::all_of(tests.begin(), tests.end(),
                                       [&](const auto& test) { return matches(*item, *test); });
    if (matchesEach) found.push_back(item);
  }
  return found;
}

void QNItem::fetchForSearch() const noexcept {
  __builtin_prefetch(&_search);
}

// What a prefetch points to needs not be there any more.
void QNItem::fetchSearchTexts() const noexcept {
  const SearchTexts* const texts = _search.load(std::memory_order_relaxed);
  if (texts == nullptr) return;
  __builtin_prefetch(texts);
  __builtin_prefetch(reinterpret_cast<const char*>(texts) + kCacheLine);
}

// What is looked at

Json QNItem::tagsForSearch() {
  const std::lock_guard lock(monitor());
  const Json* const stored = overviewObjectForKey(kTags);
  if (stored == nullptr || hasNoElements(*stored)) return Json(JsonArray(jsonStorage()));
  return Json(*stored, jsonStorage());
}

std::vector<std::string> QNItem::URLStringsForSearch() {
  std::vector<std::string> hosts;
  for (const auto& url : URLs()) {
    auto host = url->searchString();
    if (!host.empty()) hosts.push_back(std::move(host));
  }
  return hosts;
}

std::vector<std::string> QNItem::nakedHashesForSearch() {
  std::vector<std::string> hashes;
  for (const auto& url : URLs()) {
    const auto& hash = url->nakedHash();
    if (hash && !hash->empty()) hashes.push_back(*hash);
  }
  return hashes;
}

std::vector<QNSecret> QNItem::allValuesForSearch() {
  const std::lock_guard lock(monitor());
  std::vector<QNSecret> values;
  appendUnlessEmpty(values, titleOf(*this));
  for (const std::string& host : URLStringsForSearch()) values.emplace_back(host);
  appendUnlessEmpty(values, notesSecret());
  for (const auto& section : fieldSections()) append(values, section->allValuesForSearch());
  for (const auto& entry : previouslyUsedPasswords()) appendUnlessEmpty(values, entry.value());
  return values;
}

std::vector<QNSecret> QNItem::allPasswordsForSearch() {
  const std::lock_guard lock(monitor());
  std::vector<QNSecret> values;
  appendUnlessEmpty(values, password());
  for (const auto& section : fieldSections()) append(values, section->allPasswordsForSearch());
  for (const auto& entry : previouslyUsedPasswords()) appendUnlessEmpty(values, entry.value());
  return values;
}

std::vector<QNSecret> QNItem::allFieldTitlesForSearch() {
  const std::lock_guard lock(monitor());
  std::vector<QNSecret> titles;
  for (const auto& section : fieldSections()) append(titles, section->allFieldTitlesForSearch());
  return titles;
}

std::vector<QNSecret> QNItem::allSectionTitlesForSearch() {
  const std::lock_guard lock(monitor());
  std::vector<QNSecret> titles;
  for (const auto& section : fieldSections()) {
    const std::string_view title = section->title().value_or("");
    if (!title.empty()) titles.emplace_back(title);
  }
  return titles;
}

}  // namespace quillon
