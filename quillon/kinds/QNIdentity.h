#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// A person's particulars, category "004".
class QNIdentity final : public QNItem {
 public:
  explicit QNIdentity(QNNew);
  explicit QNIdentity(QNExisting existing);
  [[nodiscard]] std::string_view className() const override { return "QNIdentity"; }
};

}  // namespace quillon
