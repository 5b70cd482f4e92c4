#pragma once

#include <string_view>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// Why QNTOTPGenerator made no code of `text`, for a person. Nothing of the text is repeated.
std::string_view reasonForNoCode(const QNError& error, std::string_view text);

}  // namespace quillon
