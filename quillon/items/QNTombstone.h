#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// What stays of a deleted item in a local vault, category "099": trashed from the start.
class QNTombstone final : public QNItem {
 public:
  explicit QNTombstone(QNNew);
  explicit QNTombstone(QNExisting existing);
  explicit QNTombstone(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNTombstone"; }
  [[nodiscard]] bool isTombstone() const override { return true; }
  /// Gives a live item in place of this one, with this one's row.
  std::shared_ptr<QNDatabaseObject> mergeWithConflict(
      const std::shared_ptr<QNDatabaseObject>& other) override;
};

}  // namespace quillon
