#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "cli/arguments/QNArguments.h"
#include "cli/output/QNOutput.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// How a line of a listing looks.
enum class QNListForm { table, tableWithUUIDs, json };
QNListForm listForm(bool json, bool withUUIDs);

/// Line after line, or under headings.
enum class QNListLayout { plain, sections };

/// Items to be printed in order. Of each it keeps the line and what it sorts by, not the item, so
/// that a hundred thousand weigh little; under headings it keeps the items.
class QNListing final {
 public:
  explicit QNListing(QNListForm form, QNListOrder order = QNListOrder::title,
                     QNListLayout layout = QNListLayout::plain)
      : _form(form), _order(order), _layout(layout) {}

  /// Lower ranks come first, whatever the order within one rank. Under headings there are none.
  void add(const std::shared_ptr<QNItem>& item, std::uint32_t rank = 0);
  /// Prints all of them, sorted: one JSON array, or a line each.
  void print(QNOutput& out);

 private:
  struct Line {
    Bytes keyAndText;
    std::size_t keySize = 0;
    [[nodiscard]] std::string_view key() const { return textOf(keyAndText).substr(0, keySize); }
    [[nodiscard]] std::string_view text() const { return textOf(keyAndText).substr(keySize); }
  };
  [[nodiscard]] Bytes textOfItem(QNItem& item) const;
  void printLines(QNOutput& out);
  void printSections(QNOutput& out) const;

  QNListForm _form;
  QNListOrder _order;
  QNListLayout _layout;
  std::vector<Line> _lines;
  std::vector<std::shared_ptr<QNItem>> _items;  // under headings
};

}  // namespace quillon
