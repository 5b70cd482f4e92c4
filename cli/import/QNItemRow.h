#pragma once

#include <memory>

#include "quillon/items/QNItem.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {

/// What an export holds of a loaded item, in clear: its row dictionary, and beside it what that
/// leaves out. Without the keys that opened it once, which would open older copies of a store. The
/// item must not be saved afterwards.
JsonObject exportedJson(QNItem& item);

/// That, of an item or a folder, as JSON text. Error, MRErrorDomain: an import wouldn't read it
/// back, since its containers stand too deeply inside one another.
QNResult<Bytes> exportedText(JsonObject exported);

/// The item that such an object tells of, for that vault and not saved yet. MRErrorDomain: the
/// object is none, or the vault takes no such item.
QNResult<std::shared_ptr<QNItem>> itemFromExported(const Json& exported,
                                                   const std::shared_ptr<QNProfile>& vault);

}  // namespace quillon
