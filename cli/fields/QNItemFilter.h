#pragma once

#include <optional>
#include <set>
#include <string>

#include "cli/QNToolError.h"
#include "cli/arguments/QNArguments.h"
#include "cli/fields/QNTagName.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// The items that a listing shows: those that all of it holds for.
struct QNItemFilter {
  std::optional<std::string> categoryUUID;
  /// Case and accents apart.
  std::optional<QNTagName> tag;
  bool nested = true;  // also what has a tag below it
  std::optional<std::set<std::string>> folderUUIDs;
  bool favorites = false;
  [[nodiscard]] bool admits(QNItem& item) const;
};

/// The filter for what the user named, but for the folder, which QNVaultFolders knows. Error with
/// exit code 2 for a category that isn't known.
QNResult<QNItemFilter> itemFilter(const QNFilterArguments& arguments);

}  // namespace quillon
