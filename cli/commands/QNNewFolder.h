#pragma once

#include <functional>
#include <string_view>

#include "cli/commands/QNVaultFolders.h"

namespace quillon {

/// Makes a folder at the end of a path in the vault's tree, and those before it that aren't there;
/// all of them or none. `prepare` gets it before it is saved. Errors: those of `prepare`; exit code
/// 1 if it is there already, or would lie in a smart folder.
QNResult<QNFolderRef> addFolder(const QNVaultSession& session, const QNVaultFolders& tree,
                                std::string_view path,
                                const std::function<QNResult<QNDone>(QNFolder&)>& prepare);

}  // namespace quillon
