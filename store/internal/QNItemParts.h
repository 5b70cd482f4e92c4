#pragma once
// An item taken apart by its keys, to compare two of them and to say what a merge did.

#include <map>
#include <optional>
#include <span>
#include <string>

#include "quillon/items/QNItem.h"
#include "store/QNMergeReport.h"

namespace quillon {

/// All that two versions can differ in: the document of the fingerprint, with the members "tags"
/// and "folder" if there are any. Orders count. Nothing if the item doesn't open.
std::optional<JsonObject> contentOf(QNItem& item);

/// Part by name, in clear, in the wiping resource; for a report. Two contents of the same parts may
/// differ still, for instance in an order: only the contents tell whether items are equal.
using QNItemParts = std::map<std::string, Json>;
QNItemParts partsOf(const JsonObject& content);

/// What became of each part in which `mine` and `theirs` differ.
std::vector<QNMergedField> outcomes(const QNItemParts& mine, const QNItemParts& theirs,
                                    const QNItemParts& result);

}  // namespace quillon
