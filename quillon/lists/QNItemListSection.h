#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

class QNItem;
class QNItemSpecifier;
class QNSpecifierIndex;

/// A named part of a list of items. Specifiers are found through an index that is made at the first
/// question and dropped by every change: a section that is changed and asked in turns costs its
/// whole size each time. Not locked.
class QNItemListSection final {
 public:
  using Items = std::vector<std::shared_ptr<QNItem>>;

  /// Nulls are left out.
  QNItemListSection(Items items, std::string sectionName);
  ~QNItemListSection();
  QNItemListSection(const QNItemListSection&) = delete;
  QNItemListSection& operator=(const QNItemListSection&) = delete;
  /// A section of the same items, name and order.
  [[nodiscard]] std::shared_ptr<QNItemListSection> mutableCopy() const;
  /// "<QNItemListSection ADDRESS (NAME): COUNT items>".
  [[nodiscard]] std::string description() const;

  [[nodiscard]] const std::string& sectionName() const { return _sectionName; }
  [[nodiscard]] Items items() const { return _mutableItems; }
  [[nodiscard]] std::size_t numberOfItems() const { return _mutableItems.size(); }
  /// Null if the index lies beyond the last.
  [[nodiscard]] std::shared_ptr<QNItem> itemAtIndex(std::size_t index) const;
  /// The last item of that specifier. kNotFound if there is none, and for null.
  [[nodiscard]] std::int64_t indexOfItemWithSpecifier(
      const std::shared_ptr<const QNItemSpecifier>& specifier) const;
  /// The same without null, for who asks many sections: `hash` is the specifier's.
  [[nodiscard]] std::int64_t indexOfItemWithSpecifier(const QNItemSpecifier& specifier,
                                                      std::size_t hash) const;

  /// At the end. Null changes nothing.
  void addItem(const std::shared_ptr<QNItem>& item);
  /// The same, unless an item of an equal specifier is there.
  void addUniqueItem(const std::shared_ptr<QNItem>& item);
  /// An index beyond the last ends the process, with an assertion log.
  void removeItemAtIndex(std::size_t index);

 private:
  std::string _sectionName;
  Items _mutableItems;
  /// Absent, or exact but for identities that items have changed since.
  mutable std::unique_ptr<const QNSpecifierIndex> _itemIndexBySpecifier;
};

}  // namespace quillon
