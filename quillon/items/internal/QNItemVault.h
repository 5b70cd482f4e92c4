#pragma once
// The two classes of vault that an item's encryption tells apart.

#include <memory>

#include "quillon/vaults/QNProfile.h"

namespace quillon {

/// Null if the object has no profile or one of another kind.
inline std::shared_ptr<QNProfile> localVaultOf(const QNDatabaseObject& object) {
  return std::dynamic_pointer_cast<QNProfile>(object.profile());
}
inline std::shared_ptr<QNServerProfile> accountVaultOf(const QNDatabaseObject& object) {
  return std::dynamic_pointer_cast<QNServerProfile>(object.profile());
}

}  // namespace quillon
