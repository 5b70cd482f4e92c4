#pragma once

#include <memory>

#include "quillon/organisation/QNFolder.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {

/// What an export holds of a folder, in clear: its row dictionary, and its place beside it.
JsonObject exportedJson(QNFolder& folder);

/// The folder that such an object tells of, for that vault and not saved yet; in whichever place
/// it says. MRErrorDomain: the object is none.
QNResult<std::shared_ptr<QNFolder>> folderFromExported(const Json& exported,
                                                       const std::shared_ptr<QNProfile>& vault);

}  // namespace quillon
