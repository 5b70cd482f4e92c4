#pragma once

#include <optional>
#include <string>

#include "cli/QNToolError.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// The items that a listing shows: all of them, or those of one category, or with one tag.
struct QNItemFilter {
  std::optional<std::string> categoryUUID;
  std::optional<std::string> foldedTag;
  [[nodiscard]] bool admits(QNItem& item) const;
};

/// The filter for what the user named, if anything; of a tag, case and accents don't count. Error
/// with exit code 2 for a category that isn't known.
QNResult<QNItemFilter> itemFilter(const std::optional<std::string>& category,
                                  const std::optional<std::string>& tag);

}  // namespace quillon
