#include <cstring>

#include "quillon/items/internal/QNItemSearchTexts.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Block = QNWipingAllocator<char>;

// Writes `text` to `place`, and gives the place behind it.
char* put(char* place, std::string_view text) noexcept {
  if (!text.empty()) std::memcpy(place, text.data(), text.size());
  return place + text.size();
}

std::uint32_t sizeOf(std::string_view text) noexcept {
  return static_cast<std::uint32_t>(text.size());
}

}  // namespace

// A blank, or the beginning, stands between title and rest: folding them apart is folding them
// together.
QNItem::SearchTexts* QNItem::SearchTexts::make(std::string_view lowercaseTitle,
                                               std::optional<std::string_view> rest) {
  QNSecret lowercase(lowercaseTitle);
  lowercase.append(rest.value_or(""));
  const QNSecret foldedTitle = secretFoldedForSearch(lowercaseTitle);
  QNSecret folded = foldedTitle.clone();
  folded.append(secretFoldedForSearch(rest.value_or("")).reveal());  // joined, in the same memory
  const bool same = lowercase.equals(folded);
  const std::size_t size = sizeof(SearchTexts) + folded.size() + (same ? 0 : lowercase.size());
  auto* const made = new (Block().allocate(size)) SearchTexts;
  made->_titleSize = sizeOf(lowercaseTitle);
  made->_lowercaseSize = same ? kSame : sizeOf(lowercase.reveal());
  made->_foldedTitleSize = sizeOf(foldedTitle.reveal());
  made->_foldedSize = sizeOf(folded.reveal());
  char* const end = put(made->behind(), folded.reveal());  // into the block, which is wiped
  if (!same) put(end, lowercase.reveal());
  made->holdsOverview = rest.has_value();
  return made;
}

void QNItem::SearchTexts::release(SearchTexts* texts) noexcept {
  if (texts == nullptr) return;
  const std::size_t size = texts->blockSize();
  texts->~SearchTexts();
  Block().deallocate(reinterpret_cast<char*>(texts), size);
}

std::size_t QNItem::SearchTexts::blockSize() const noexcept {
  return sizeof(SearchTexts) + _foldedSize + (foldingChangesNothing() ? 0 : _lowercaseSize);
}

std::string_view QNItem::SearchTexts::lowercase() const noexcept {
  if (foldingChangesNothing()) return folded();
  return {behind() + _foldedSize, _lowercaseSize};
}

std::string QNItem::lowercaseTitle() {
  const std::lock_guard lock(monitor());
  return std::string(searchTexts().lowercaseTitle());
}

std::string QNItem::lowercaseOverviewStringForSearch() {
  const std::lock_guard lock(monitor());
  return std::string(searchTextsWithOverview(false).lowercase());
}

std::string QNItem::lowercaseOverviewStringForSearch2() {
  const std::lock_guard lock(monitor());
  return std::string(searchTextsWithOverview(true).lowercase());
}

// What didn't open reads as if it were empty: that isn't kept.
QNItem::SearchTexts& QNItem::searchTexts() {
  SearchTexts* const kept = _search.load(std::memory_order_relaxed);
  if (kept != nullptr && kept->holdsTitle) return *kept;
  const std::string lowercase = lowercaseIdentifier(title());
  SearchTexts& made = keepSearchTexts(SearchTexts::make(lowercase, std::nullopt));
  made.holdsTitle = overviewIsParsed();
  return made;
}

QNItem::SearchTexts& QNItem::searchTextsWithOverview(bool withBlanksOfEmptyParts) {
  SearchTexts& texts = searchTexts();
  if (texts.holdsOverview) return texts;
  const bool holdsTitle = texts.holdsTitle;
  const std::string_view title = texts.lowercaseTitle();
  const std::string host = QNItemURL::extractSearchStringFromURLString(URLString().value_or(""));
  QNSecret rest;
  if (withBlanksOfEmptyParts || !title.empty()) rest.append(" ");
  rest.append(host);
  if (withBlanksOfEmptyParts || !host.empty()) rest.append(" ");
  rest.append(lowercaseIdentifier(additionalInformation().value_or("")));
  SearchTexts& made = keepSearchTexts(SearchTexts::make(title, rest.reveal()));
  made.holdsTitle = holdsTitle;
  made.holdsOverview = overviewIsParsed();
  return made;
}

QNItem::SearchTexts& QNItem::keepSearchTexts(SearchTexts* texts) {
  SearchTexts* const former = _search.exchange(texts, std::memory_order_relaxed);
  if (former != nullptr && former->holdsTitle) texts->words = std::move(former->words);
  SearchTexts::release(former);
  return *texts;
}

void QNItem::dropSearchTexts() {
  const std::lock_guard lock(monitor());
  SearchTexts::release(_search.exchange(nullptr, std::memory_order_relaxed));
}

// The title stays, and so do its words.
void QNItem::dropOverviewForSearch() {
  const std::lock_guard lock(monitor());
  const SearchTexts* const texts = _search.load(std::memory_order_relaxed);
  if (texts == nullptr || !texts->holdsOverview) return;
  keepSearchTexts(SearchTexts::make(texts->lowercaseTitle(), std::nullopt));
}

}  // namespace quillon
