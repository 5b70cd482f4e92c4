#pragma once
// What searches have made of an item's overview.

#include <limits>
#include <memory>
#include <vector>

#include "quillon/items/QNItem.h"

namespace quillon {

/// Words in small letters, each once, and the folded form of each.
struct QNSearchWords {
  std::vector<QNSecret> lowercase;
  std::vector<QNSecret> folded;
};

/// For tests: how many blocks are dropped and not released yet, in the whole process.
[[nodiscard]] std::size_t numberOfDroppedSearchTexts() noexcept;

/// The title, or the whole overview, which begins with it: in small letters and folded, in one
/// block that is wiped when it is released. The texts stand right behind the object: a search over
/// many items waits for memory, and so it waits once an item.
///
///   [this object] [folded] [in small letters, unless that is the same]
///
/// Under the item's monitor, but for what a Reading lets be read without it.
class QNItem::SearchTexts final {
 public:
  /// `rest` is what follows the title in the overview; without it the title is all there is.
  static SearchTexts* make(std::string_view lowercaseTitle, std::optional<std::string_view> rest);
  /// For keepSearchTexts(), which gives it the words.
  [[nodiscard]] SearchTexts* copy() const;
  [[nodiscard]] SearchTexts* copyOfTitle() const;
  /// When nobody reads without the monitor any more.
  static void release(SearchTexts* texts) noexcept;
  /// What is dropped and nobody reads any more; does nothing while somebody reads.
  static void releaseDropped() noexcept;

  /// Lives as long as a search that takes no monitors: to take one writes to each item's memory.
  /// A block that is dropped meanwhile, as by a save on another thread, stays until its end.
  class Reading final {
   public:
    Reading() noexcept;
    ~Reading();
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    /// What the item has; perhaps null.
    [[nodiscard]] const SearchTexts* textsOf(const QNItem& item) const noexcept;
  };

  [[nodiscard]] std::string_view lowercase() const noexcept;
  [[nodiscard]] std::string_view folded() const noexcept { return {behind(), _foldedSize}; }
  [[nodiscard]] std::string_view lowercaseTitle() const noexcept {
    return lowercase().substr(0, _titleSize);
  }
  [[nodiscard]] std::string_view foldedTitle() const noexcept {
    return folded().substr(0, _foldedTitleSize);
  }

  // Is it what the next search takes too?
  bool holdsTitle = true;
  bool holdsOverview = false;
  std::uint32_t uuidSize = 0;  // so that a search seldom looks at the uuid, which lies elsewhere
  std::unique_ptr<QNSearchWords> words;  // made at the first search for words

 private:
  SearchTexts() = default;
  ~SearchTexts() = default;
  [[nodiscard]] const char* behind() const noexcept {
    return reinterpret_cast<const char*>(this) + sizeof(SearchTexts);
  }
  [[nodiscard]] char* behind() noexcept {
    return reinterpret_cast<char*>(this) + sizeof(SearchTexts);
  }
  [[nodiscard]] bool foldingChangesNothing() const noexcept { return _lowercaseSize == kSame; }
  [[nodiscard]] std::size_t blockSize() const noexcept;
  static void free(SearchTexts* texts) noexcept;
  struct Readings;
  static Readings& readings();

  SearchTexts* _nextDropped = nullptr;  // a list that needs no memory: to drop mustn't fail
  static constexpr std::uint32_t kSame = std::numeric_limits<std::uint32_t>::max();
  std::uint32_t _titleSize = 0;
  std::uint32_t _lowercaseSize = 0;  // kSame: the folded text is it
  std::uint32_t _foldedTitleSize = 0;
  std::uint32_t _foldedSize = 0;
};

}  // namespace quillon
