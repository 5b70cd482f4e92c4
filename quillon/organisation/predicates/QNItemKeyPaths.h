#pragma once

#include <mutex>
#include <span>

#include "quillon/organisation/predicates/QNKeyPathSource.h"

namespace quillon {

class QNItem;

/// Where an item finds the answer: in its overview or its row, there or in the details of an
/// account vault's item, or in its details.
enum class QNKeyPathHome { overview, detailsInAccounts, details };

/// A key path of items. The names are stored in predicates: they never change.
struct QNItemKeyPath {
  std::string_view name;
  QNKeyPathHome home = QNKeyPathHome::overview;
  /// As a source gives it: made where it stays. Never nothing.
  std::optional<QNKeyPathValue> (*value)(QNItem& item) = nullptr;
};

/// All of them.
std::span<const QNItemKeyPath> itemKeyPaths();
/// Null for another name.
const QNItemKeyPath* itemKeyPathNamed(std::string_view name);

/// An item as predicates ask it. `item` must outlive it; its monitor is held as long as this lives.
class QNItemKeyPathSource final : public QNKeyPathSource {
 public:
  explicit QNItemKeyPathSource(QNItem& item);
  [[nodiscard]] std::optional<QNKeyPathValue> valueForKeyPath(const QNKeyPath& keyPath) override;
  [[nodiscard]] bool needsDetails(const QNKeyPath& keyPath) const override;

 private:
  QNItem& _item;
  std::lock_guard<std::recursive_mutex> _lock;
};

}  // namespace quillon
