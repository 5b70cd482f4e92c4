#pragma once

#include "cli/QNToolError.h"
#include "cli/arguments/QNArguments.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// Does an item of this class have a place of its own for this, outside its sections? A title and
/// notes all have; of an address it also counts whether a field has that name.
bool hasOwnPlaceFor(QNItem& item, QNFieldName field);

/// Adds fields, then sets, then removes, as the user asked; asks for secrets only once all names
/// are known. The row is dirty if something changed. An error leaves the item half changed: throw
/// it away. The vault's own password must have been read before.
QNResult<QNDone> editItem(QNItem& item, const QNItemEdits& edits);

}  // namespace quillon
