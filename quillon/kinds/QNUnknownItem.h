#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// An item of a category that no class serves. It keeps the category that it is given, and the
/// base carries its content through untouched.
class QNUnknownItem final : public QNItem {
 public:
  using QNItem::QNItem;
  [[nodiscard]] std::string_view className() const override { return "QNUnknownItem"; }
};

}  // namespace quillon
