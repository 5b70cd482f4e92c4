#pragma once

#include <string_view>

#include "cli/commands/QNVaultSession.h"

namespace quillon {

/// Which of two items with one title is meant, if only one of them is in the trash.
enum class QNTrashPreference { normalFirst, trashedFirst };

/// The item that the user names, with its details: by its uuid, at the cost of one item, or else
/// by its title, at the cost of a list. An equal title wins over one that differs in case and
/// accents. Errors: exit code 4 for none, 5 for several, which are listed on standard error.
QNResult<std::shared_ptr<QNItem>> chooseItem(
    const QNVaultSession& session, std::string_view name,
    QNTrashPreference preference = QNTrashPreference::normalFirst);

}  // namespace quillon
