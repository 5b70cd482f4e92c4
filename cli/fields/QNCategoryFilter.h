#pragma once

#include <optional>
#include <string>

#include "cli/QNToolError.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// The items that a listing shows: all of them, or those of one category.
struct QNCategoryFilter {
  std::optional<std::string> uuid;
  [[nodiscard]] bool admits(const QNItem& item) const {
    return !uuid || item.categoryUUID() == *uuid;
  }
};

/// The filter for what the user named, if anything. Error with exit code 2 for a category that
/// isn't known.
QNResult<QNCategoryFilter> categoryFilter(const std::optional<std::string>& named);

}  // namespace quillon
