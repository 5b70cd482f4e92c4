#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// A note, category "003".
class QNSecureNote final : public QNItem {
 public:
  explicit QNSecureNote(QNNew);
  explicit QNSecureNote(QNExisting existing);
  [[nodiscard]] std::string_view className() const override { return "QNSecureNote"; }
};

}  // namespace quillon
