#include <cstring>
#include <mutex>
#include <utility>

#include "quillon/items/internal/QNItemSearchTexts.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNSecretText.h"
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

// What title() gives, in small letters and never in memory that isn't wiped. The monitor is held.
QNSecret lowercaseTitleOf(QNItem& item) {
  const auto title = item.overviewTextForKey(kOverviewTitle);
  return secretLowercaseIdentifier(title ? *title : QNLocalizedString("Unnamed"));
}

// The host of what URLString() gives, which is copied nowhere. The monitor is held.
std::string hostOf(QNItem& item) {
  if (item.detailsLoaded()) {
    const auto first = item.URLAtIndex(0);
    return first == nullptr ? std::string() : first->searchString();
  }
  const auto address = item.overviewTextForKey(kOverviewURLString);
  return QNItemURL::extractSearchStringFromURLString(address.value_or(""));
}

std::atomic<std::size_t> numberOfDropped{0};

}  // namespace

std::size_t numberOfDroppedSearchTexts() noexcept {
  return numberOfDropped;
}

// Searches that take no monitor, and what was dropped while there was one.
struct QNItem::SearchTexts::Readings {
  std::atomic<std::size_t> count{0};
  std::mutex mutex;
  SearchTexts* dropped = nullptr;  // the last; each knows the one before it
};

QNItem::SearchTexts::Readings& QNItem::SearchTexts::readings() {
  static Readings all;
  return all;
}

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

QNItem::SearchTexts* QNItem::SearchTexts::copy() const {
  if (!holdsOverview) return copyOfTitle();
  SearchTexts* const made = make(lowercaseTitle(), lowercase().substr(_titleSize));
  made->holdsTitle = holdsTitle;
  return made;
}

QNItem::SearchTexts* QNItem::SearchTexts::copyOfTitle() const {
  SearchTexts* const made = make(lowercaseTitle(), std::nullopt);
  made->holdsTitle = holdsTitle;
  return made;
}

// Whoever counts from now on finds the item's next block: this one was taken out before. The last
// one that reads looks for what was dropped once its count is given back: so look at the count
// with the mutex held, or it has gone by.
void QNItem::SearchTexts::release(SearchTexts* texts) noexcept {
  if (texts == nullptr) return;
  Readings& all = readings();
  if (all.count == 0) return free(texts);
  const std::lock_guard lock(all.mutex);
  if (all.count == 0) return free(texts);
  texts->_nextDropped = std::exchange(all.dropped, texts);
  ++numberOfDropped;
}

void QNItem::SearchTexts::releaseDropped() noexcept {
  Readings& all = readings();
  const std::lock_guard lock(all.mutex);
  if (all.count != 0) return;  // one that began since may read what was dropped since
  while (all.dropped != nullptr) {
    free(std::exchange(all.dropped, all.dropped->_nextDropped));
    --numberOfDropped;
  }
}

void QNItem::SearchTexts::free(SearchTexts* texts) noexcept {
  const std::size_t size = texts->blockSize();
  texts->~SearchTexts();
  Block().deallocate(reinterpret_cast<char*>(texts), size);
}

QNItem::SearchTexts::Reading::Reading() noexcept {
  ++readings().count;
}

QNItem::SearchTexts::Reading::~Reading() {
  if (--readings().count == 0) releaseDropped();
}

const QNItem::SearchTexts* QNItem::SearchTexts::Reading::textsOf(
    const QNItem& item) const noexcept {
  return item._search.load();
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
  SearchTexts* const made = SearchTexts::make(lowercaseTitleOf(*this).reveal(), std::nullopt);
  made->holdsTitle = overviewIsParsed();
  return keepSearchTexts(made);
}

QNItem::SearchTexts& QNItem::searchTextsWithOverview(bool withBlanksOfEmptyParts) {
  SearchTexts* const kept = _search.load(std::memory_order_relaxed);
  const bool keptTitle = kept != nullptr && kept->holdsTitle;
  if (keptTitle && kept->holdsOverview) return *kept;
  const QNSecret title = keptTitle ? QNSecret(kept->lowercaseTitle()) : lowercaseTitleOf(*this);
  const std::string host = hostOf(*this);
  QNSecret rest;
  if (withBlanksOfEmptyParts || !title.empty()) rest.append(" ");
  rest.append(host);
  if (withBlanksOfEmptyParts || !host.empty()) rest.append(" ");
  const auto subtitle = overviewTextForKey(kOverviewAdditionalInformation);
  rest.append(secretLowercaseIdentifier(subtitle.value_or("")).reveal());  // joined, as above
  // Into a block that is wiped.
  SearchTexts* const made = SearchTexts::make(title.reveal(), rest.reveal());
  made->holdsTitle = keptTitle || overviewIsParsed();
  made->holdsOverview = overviewIsParsed();
  return keepSearchTexts(made);
}

QNItem::SearchTexts& QNItem::keepSearchTexts(SearchTexts* texts) {
  texts->uuidSize = _uuid == nullptr ? 0 : sizeOf(*_uuid);
  SearchTexts* const former = _search.exchange(texts);
  if (former != nullptr && former->holdsTitle) texts->words = std::move(former->words);
  SearchTexts::release(former);
  return *texts;
}

void QNItem::dropSearchTexts() {
  const std::lock_guard lock(monitor());
  SearchTexts::release(_search.exchange(nullptr));
}

// The title stays, and so do its words.
void QNItem::dropOverviewForSearch() {
  const std::lock_guard lock(monitor());
  const SearchTexts* const texts = _search.load(std::memory_order_relaxed);
  if (texts == nullptr || !texts->holdsOverview) return;
  keepSearchTexts(texts->copyOfTitle());
}

}  // namespace quillon
