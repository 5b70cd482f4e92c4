#pragma once

#include <cstdint>
#include <string>

#include "cli/arguments/QNArguments.h"
#include "quillon/items/QNItem.h"
#include "quillon/lists/QNItemSorter.h"

namespace quillon {

/// Bytes whose order is that of the items in a list: lower ranks first, then as the order says,
/// then by title as the user's language sorts, then by uuid.
std::string listKeyOf(QNItem& item, QNListOrder order, std::uint32_t rank = 0);

/// The heading that an item stands under: the first letter of its title, its category, a month
/// ("2026-11") of the user's time zone, "—" for none, or how strong its password is ("20–39").
std::string sectionTitleOf(QNItem& item, QNListOrder order);

/// The same order and the same headings, for the list model. Nobody chooses it by its words: the
/// command line has names for the orders.
class QNListSorter final : public QNItemSorter {
 public:
  explicit QNListSorter(QNListOrder order) : _order(order) {}
  [[nodiscard]] std::string identifier() const override { return "quillon list"; }
  [[nodiscard]] std::string persistableIdentifier() const override { return identifier(); }
  [[nodiscard]] std::string title() const override { return identifier(); }
  [[nodiscard]] bool isAscending() const override { return _ascending; }
  void setIsAscending(bool ascending) override { _ascending = ascending; }
  [[nodiscard]] bool showsIndexForSectionTitle() const override { return false; }
  [[nodiscard]] std::string sectionTitleForObject(QNItem& item) const override {
    return sectionTitleOf(item, _order);
  }
  [[nodiscard]] std::string titleForObject(QNItem& item) const override { return item.title(); }
  [[nodiscard]] std::string subtitleForObject(QNItem& item) const override {
    return item.additionalInformation().value_or("");
  }
  [[nodiscard]] Items sortObjects(Items items) const override;
  [[nodiscard]] std::string ascendingDescription() const override { return "First to last"; }
  [[nodiscard]] std::string ascendingShortDescription() const override { return "Down"; }
  [[nodiscard]] std::string descendingDescription() const override { return "Last to first"; }
  [[nodiscard]] std::string descendingShortDescription() const override { return "Up"; }

 private:
  QNListOrder _order;
  bool _ascending = true;
};

}  // namespace quillon
