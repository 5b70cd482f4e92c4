#pragma once

#include <string_view>

#include "quillon/items/QNItem.h"

namespace quillon {

class QNLoginField;

/// What stands in a secret's place; always as many, since the length is a secret, too.
inline constexpr std::string_view kDots = "••••••••••";

/// What `list` and `find` print of an item: its row and overview, no details.
JsonObject listedJson(QNItem& item);

/// Is the value of that form field a secret, which is printed on demand only? A password that
/// isn't concealed in its form is one, too.
bool isHidden(const QNLoginField& field);

/// How much of an item's secrets `show` prints.
enum class QNRevealed { nothing, password, everything };
/// What `show` prints: the above, all addresses, user name, notes, tags, folder, form fields, and
/// the fields of all sections, of which `revealedField` shows its value, too.
JsonObject shownJson(QNItem& item, QNRevealed revealed, const QNItemField* revealedField = nullptr);

}  // namespace quillon
