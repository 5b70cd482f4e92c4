#pragma once

#include <optional>
#include <string_view>

#include "cli/arguments/QNArguments.h"
#include "cli/fields/QNFieldTexts.h"
#include "quillon/items/QNItem.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// What an item has outside its fields; nothing, or empty, if it has none.
std::optional<QNSecret> ownValueOf(QNItem& item, QNFieldName field);

/// The place outside the fields that the name means: it goes before a field of that name, unless
/// the item lacks it.
std::optional<QNFieldName> ownFieldNamed(QNItem& item, const QNFieldTexts& texts,
                                         std::string_view name);

/// The value of the field that the user names, for a program. Errors: exit code 4 for a field that
/// isn't there or is empty, 5 for several of that name.
QNResult<QNSecret> valueNamed(QNItem& item, std::string_view name);

/// The code of now that the item's first one-time password gives. Error with exit code 4 if it has
/// none, 1 if its seed can't be used.
QNResult<QNSecret> codeOf(QNItem& item);

}  // namespace quillon
