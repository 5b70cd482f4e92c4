#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// A payment card, category "002".
class QNCreditCard final : public QNItem {
 public:
  explicit QNCreditCard(QNNew);
  explicit QNCreditCard(QNExisting existing);
  [[nodiscard]] std::string_view className() const override { return "QNCreditCard"; }
};

}  // namespace quillon
