#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// An item whose payload is one file on a server, category "006".
class H9Document final : public QNItem {
 public:
  explicit H9Document(QNNew);
  explicit H9Document(QNExisting existing);
  explicit H9Document(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "H9Document"; }
};

}  // namespace quillon
