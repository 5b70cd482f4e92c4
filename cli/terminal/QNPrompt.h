#pragma once

#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// Asks on the terminal, without echo, for one line. The prompt goes to standard error, the
/// answer comes from /dev/tty. The terminal is as it was before when this returns, and also when
/// a signal ends or stops the process meanwhile. Error with exit code 2 without a terminal, which
/// says what to give `instead`: "the password with --option".
QNResult<QNSecret> promptForSecret(std::string_view prompt, std::string_view instead);

}  // namespace quillon
