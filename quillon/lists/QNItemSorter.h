#pragma once

#include <memory>
#include <string>
#include <vector>

namespace quillon {

class QNItem;

/// An order of items, and the sections that they fall into by it. Programs implement it: see
/// QNItem::sortAlphabetically() for the order of titles.
class QNItemSorter {
 public:
  using Items = std::vector<std::shared_ptr<QNItem>>;

  virtual ~QNItemSorter() = default;
  /// At run time.
  [[nodiscard]] virtual std::string identifier() const = 0;
  /// In stored preferences.
  [[nodiscard]] virtual std::string persistableIdentifier() const = 0;
  [[nodiscard]] virtual std::string title() const = 0;
  [[nodiscard]] virtual bool isAscending() const = 0;
  virtual void setIsAscending(bool ascending) = 0;
  /// Is the index of section titles shown for this order?
  [[nodiscard]] virtual bool showsIndexForSectionTitle() const = 0;

  // Of one item: its section, and the two lines of its row
  [[nodiscard]] virtual std::string sectionTitleForObject(QNItem& item) const = 0;
  [[nodiscard]] virtual std::string titleForObject(QNItem& item) const = 0;
  [[nodiscard]] virtual std::string subtitleForObject(QNItem& item) const = 0;
  [[nodiscard]] virtual Items sortObjects(Items items) const = 0;

  // Words for the two directions
  [[nodiscard]] virtual std::string ascendingDescription() const = 0;
  [[nodiscard]] virtual std::string ascendingShortDescription() const = 0;
  [[nodiscard]] virtual std::string descendingDescription() const = 0;
  [[nodiscard]] virtual std::string descendingShortDescription() const = 0;
};

}  // namespace quillon
