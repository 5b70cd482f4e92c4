#pragma once

#include <string_view>
#include <vector>

#include "cli/arguments/QNArguments.h"
#include "cli/output/QNOutput.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// How a line of a listing looks.
enum class QNListForm { table, tableWithUUIDs, json };
QNListForm listForm(bool json, bool withUUIDs);

/// Items to be printed in order. Of each it keeps the line and what it sorts by, not the item, so
/// that a hundred thousand weigh little.
class QNListing final {
 public:
  explicit QNListing(QNListForm form, QNListOrder order = QNListOrder::title)
      : _form(form), _order(order) {}

  /// Lower ranks come first, whatever the order within one rank.
  void add(QNItem& item, std::uint32_t rank = 0);
  /// Prints all of them, sorted: one JSON array, or a line each.
  void print(QNOutput& out);

 private:
  struct Line {
    Bytes keyAndText;
    std::size_t keySize = 0;
    [[nodiscard]] std::string_view key() const { return textOf(keyAndText).substr(0, keySize); }
    [[nodiscard]] std::string_view text() const { return textOf(keyAndText).substr(keySize); }
  };
  [[nodiscard]] std::string keyOf(QNItem& item, std::uint32_t rank) const;
  [[nodiscard]] Bytes textOfItem(QNItem& item) const;

  QNListForm _form;
  QNListOrder _order;
  std::vector<Line> _lines;
};

}  // namespace quillon
