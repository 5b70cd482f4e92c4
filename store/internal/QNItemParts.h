#pragma once
// An item taken apart by its keys, to compare two of them and to say what a merge did.

#include <map>
#include <optional>
#include <span>
#include <string>

#include "quillon/items/QNItem.h"
#include "store/QNMergeReport.h"

namespace quillon {

/// Part by name, in clear, in the wiping resource. What an item's fingerprint leaves out isn't
/// there, but tags and folder are.
using QNItemParts = std::map<std::string, Json>;

/// Nothing if the item doesn't open.
std::optional<QNItemParts> partsOf(QNItem& item);
bool equalParts(const QNItemParts& a, const QNItemParts& b);

/// What became of each part in which `mine` and `theirs` differ.
std::vector<QNMergedField> outcomes(const QNItemParts& mine, const QNItemParts& theirs,
                                    const QNItemParts& result);

}  // namespace quillon
