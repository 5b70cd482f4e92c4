#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// A medical record, category "113".
class QNMedicalRecord final : public QNItem {
 public:
  explicit QNMedicalRecord(QNNew);
  explicit QNMedicalRecord(QNExisting existing);
  [[nodiscard]] std::string_view className() const override { return "QNMedicalRecord"; }
};

}  // namespace quillon
