#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/lists/QNItemListSection.h"

namespace quillon {

class QNItemSorter;

/// The place of an item in a list.
struct QNIndexPath {
  std::size_t row = 0;
  std::size_t section = 0;
  friend bool operator==(const QNIndexPath&, const QNIndexPath&) = default;
};

/// What the screen of an item list shows: items in named sections, found by their specifiers. It
/// knows no database, and groups what it is given. Not locked.
class QNItemList final {
 public:
  using Items = QNItemListSection::Items;
  using Sections = std::vector<std::shared_ptr<QNItemListSection>>;
  /// The name of the section that holds what a search found. No other name is special.
  static constexpr std::string_view kSearchSectionName = "{search}";

  // Making
  /// Sorted, and in the sections that the sorter names, each where its first item stands. None
  /// without items.
  static std::shared_ptr<QNItemList> initWithItems(Items items, const QNItemSorter& sortingWith);
  /// One section of that name, in the order given, empty or not. It isn't shown as a search
  /// section: addItemToSearchSection() refuses.
  static std::shared_ptr<QNItemList> initWithSearchResults(Items items);
  /// The very sections; nulls are left out.
  static std::shared_ptr<QNItemList> initWithSections(Sections sections);
  explicit QNItemList(Sections sections);
  QNItemList(const QNItemList&) = delete;
  QNItemList& operator=(const QNItemList&) = delete;
  /// A list of copies of the sections. It doesn't show a search section, even if it has one, and
  /// its categoryId() is 0.
  [[nodiscard]] std::shared_ptr<QNItemList> mutableCopy() const;
  /// "<QNItemList: ADDRESS, sections: (DESCRIPTION, ...)>".
  [[nodiscard]] std::string description() const;

  // Items
  [[nodiscard]] Items allItems() const;
  [[nodiscard]] std::size_t numberOfItems() const;
  /// Without sections; a list of one empty section isn't empty.
  [[nodiscard]] bool isEmpty() const { return _mutableSections.empty(); }
  /// Null for no path, and for one that leads nowhere.
  [[nodiscard]] std::shared_ptr<QNItem> itemAtIndexPath(
      const std::optional<QNIndexPath>& path) const;
  /// Nothing for null, or if it isn't there. In the first section that has it, the last place.
  [[nodiscard]] std::optional<QNIndexPath> indexPathForItemWithSpecifier(
      const std::shared_ptr<const QNItemSpecifier>& specifier) const;
  void enumerateItemsUsingBlock(
      const std::function<void(const std::shared_ptr<QNItem>& item)>& block) const;
  /// Ends when the block has set `stop`, which starts as false.
  void enumerateItemsUsingCancelableBlock(
      const std::function<void(const std::shared_ptr<QNItem>& item, bool& stop)>& block) const;
  /// To the section of the item's own name, at the end; a new section comes last. Not if an item of
  /// an equal specifier is there. Null changes nothing.
  void addItem(const std::shared_ptr<QNItem>& item);

  // Sections
  [[nodiscard]] Sections sections() const { return _mutableSections; }
  /// Their names, in order.
  [[nodiscard]] std::vector<std::string> sectionIndexTitles() const { return _sectionIndexTitles; }
  /// Of several with one name the last; kNotFound if there is none.
  [[nodiscard]] std::int64_t indexOfSectionWithName(std::string_view name) const;
  /// The index that it is given: each section has a title of its own.
  [[nodiscard]] std::int64_t sectionForSectionIndexTitle(std::string_view title,
                                                         std::int64_t atIndex) const;
  /// An index beyond the last ends the process, with an assertion log.
  void removeSectionAtIndex(std::size_t index);
  /// Run by every operation here that changes the sections.
  void updateCaches();

  // Search section
  [[nodiscard]] bool showsSearchSection() const { return _showsSearchSection; }
  /// A change to true adds an empty section in first place, whatever is there; one to false removes
  /// the first section if it has that name.
  void setShowsSearchSection(bool shows);
  /// Not if an item of an equal specifier is there. Without such a section, or unless it is shown,
  /// an assertion log and nothing changed.
  void addItemToSearchSection(const std::shared_ptr<QNItem>& item);

  /// Free for the caller.
  [[nodiscard]] std::uint64_t categoryId() const { return _categoryId; }
  void setCategoryId(std::uint64_t id) { _categoryId = id; }

 private:
  [[nodiscard]] bool beginsWithSearchSection() const;

  bool _showsSearchSection = false;
  std::uint64_t _categoryId = 0;
  std::vector<std::string> _sectionIndexTitles;
  Sections _mutableSections;
  std::map<std::string, std::size_t, std::less<>> _sectionIndexByName;
};

}  // namespace quillon
