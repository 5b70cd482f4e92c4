#pragma once

#include <string_view>

#include "quillon/fields/QNFieldValue.h"

namespace quillon {

/// The start of the identifier of a title that lost, in the section of conflicts.
inline constexpr std::string_view kTitleConflictPrefix = "overview.title_conflict_";

class QNItem;

/// Can both be read, overview and loaded details? False, with an error log of `into`, if not: what
/// can't be read would pass for merged, and be lost where it is stored. An item always opens to
/// itself.
[[nodiscard]] bool openToMerge(QNItem& theirs, QNItem& into);

/// Has a field of the item that value already, so that a merge needn't add it? A title that lost
/// doesn't count: it goes when somebody settles it, and a user name of the same text would go
/// along.
[[nodiscard]] bool hasFieldToKeepValue(QNItem& item, const QNFieldValue& value);

}  // namespace quillon
