#pragma once

#include <memory>
#include <optional>
#include <string>

namespace quillon {

class QNItemSpecifier;

/// What a list sorts, groups and finds again. QNItem is one.
class QNSortableItem {
 public:
  virtual ~QNSortableItem() = default;
  [[nodiscard]] virtual std::string title() = 0;
  [[nodiscard]] virtual std::optional<std::string> additionalInformation() = 0;
  /// Names the section of a list that it falls into.
  [[nodiscard]] virtual std::string sectionName() = 0;
  /// Null if it has no identity: it can't be found again then.
  [[nodiscard]] virtual std::shared_ptr<const QNItemSpecifier> itemSpecifier() = 0;
};

}  // namespace quillon
