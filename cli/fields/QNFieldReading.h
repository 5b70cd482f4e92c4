#pragma once

#include <string_view>

#include "cli/QNToolError.h"
#include "cli/fields/QNFieldTexts.h"

namespace quillon {

/// Reads a value as the field's kind wants it, and sets it; an empty text takes the value away.
/// What can't be read changes nothing and is an error with exit code 2, which tells what can, and
/// never repeats the text.
QNResult<QNDone> readValue(QNItemField& field, const QNFieldTexts& texts, std::string_view text);
/// The same for one part of an address, by its stored key ("street").
QNResult<QNDone> readAddressPart(QNItemField& field, std::string_view part, std::string_view text);

}  // namespace quillon
