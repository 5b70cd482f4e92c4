#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

/// What `list` and `find` print of an item: its row and overview, no details.
JsonObject listedJson(QNItem& item);

/// How much of an item's secrets `show` prints.
enum class QNRevealed { nothing, password, everything };
/// What `show` prints: the above, all addresses, user name, notes and form fields.
JsonObject shownJson(QNItem& item, QNRevealed revealed);

}  // namespace quillon
