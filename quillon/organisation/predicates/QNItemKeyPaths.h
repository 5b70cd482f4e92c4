#pragma once

#include <span>

#include "quillon/organisation/predicates/QNKeyPathSource.h"

namespace quillon {

class QNItem;

/// A key path of items. The names are stored in predicates: they never change.
struct QNItemKeyPath {
  std::string_view name;
  /// False if overview and row columns alone answer it.
  bool needsDetails = false;
  QNKeyPathValue (*value)(QNItem& item) = nullptr;
};

/// All of them.
std::span<const QNItemKeyPath> itemKeyPaths();
/// Null for another name.
const QNItemKeyPath* itemKeyPathNamed(std::string_view name);

/// An item as predicates ask it. `item` must outlive it.
class QNItemKeyPathSource final : public QNKeyPathSource {
 public:
  explicit QNItemKeyPathSource(QNItem& item) : _item(item) {}
  [[nodiscard]] std::optional<QNKeyPathValue> valueForKeyPath(const QNKeyPath& keyPath) override;
  [[nodiscard]] bool needsDetails(const QNKeyPath& keyPath) const override;

 private:
  QNItem& _item;
};

}  // namespace quillon
