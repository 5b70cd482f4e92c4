#include <algorithm>

#include "quillon/items/QNPredicateCache.h"
#include "quillon/items/internal/QNItemSearchTexts.h"
#include "quillon/platform/text/QNCharacterSet.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

std::unique_ptr<QNSearchWords> wordsOf(std::string_view title,
                                       const std::vector<std::string>& hosts) {
  std::set<std::string_view> pieces;
  const auto addPiecesOf = [&pieces](std::string_view text) {
    const auto cut = QNItem::helperSearchWordSeparators().piecesOf(text);
    pieces.insert(cut.begin(), cut.end());
  };
  addPiecesOf(title);
  for (const std::string& host : hosts) addPiecesOf(host);
  auto words = std::make_unique<QNSearchWords>();
  for (const std::string_view piece : pieces) {
    words->lowercase.emplace_back(piece);
    words->folded.push_back(secretFoldedForSearch(piece));
  }
  return words;
}

}  // namespace

const QNCharacterSet& QNItem::helperSearchWordSeparators() {
  return QNCharacterSet::nonAlphanumerics();
}

// Hosts of addresses that aren't loaded are none, and stay so.
QNItem::SearchTexts& QNItem::searchTextsWithWords() {
  SearchTexts& texts = searchTexts();
  if (texts.words == nullptr) texts.words = wordsOf(texts.lowercaseTitle(), URLStringsForSearch());
  return texts;
}

void QNItem::dropSearchWords() {
  const std::lock_guard lock(monitor());
  SearchTexts* const texts = _search.load(std::memory_order_relaxed);
  if (texts != nullptr) texts->words.reset();
}

std::set<std::string> QNItem::helperSearchWords() {
  const std::lock_guard lock(monitor());
  std::set<std::string> words;
  for (const QNSecret& word : searchTextsWithWords().words->lowercase) {
    words.emplace(word.reveal());  // of the title, which callers get as well
  }
  return words;
}

bool QNItem::matchesHelperSearchStrings(const SearchStrings& strings, bool prefixMatch) {
  const std::lock_guard lock(monitor());
  for (const std::string& string : strings) {
    if (!helperSearchWordSeparators().containsAnyOf(string)) {
      if (!matchesHelperSearchWord(string, prefixMatch)) return false;
      continue;
    }
    if (searchTexts().lowercaseTitle().find(string) != std::string_view::npos) return true;
    if (!hasHostWith(string)) return false;
  }
  return true;
}

bool QNItem::matchesHelperSearchWord(std::string_view string, bool prefixMatch) {
  const auto test = prefixMatch ? std::make_shared<const QNSearchPredicate>(
                                      string, QNSearchPredicate::Place::beginning)
                                : cachedPredicateForSearchString(string);
  const auto& words = searchTextsWithWords().words->folded;
  return std::any_of(words.begin(), words.end(), [&test](const QNSecret& word) {
    return test->matchesFolded(word.reveal());  // compared only
  });
}

bool QNItem::hasHostWith(std::string_view string) {
  const auto hosts = URLStringsForSearch();
  return std::any_of(hosts.begin(), hosts.end(), [string](const std::string& host) {
    return host.find(string) != std::string::npos;
  });
}

}  // namespace quillon
