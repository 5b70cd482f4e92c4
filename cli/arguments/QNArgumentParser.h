#pragma once

#include "cli/arguments/QNArguments.h"
#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// "quillon 0.1.0".
std::string_view versionText();

/// Reads the command line and the environment variables QUILLON_STORE, XDG_DATA_HOME and HOME.
/// Wrong usage is an error with exit code 2, whose message never repeats a value that could be a
/// secret. `arguments` are those behind the program's name.
QNResult<QNArguments> parseArguments(const std::vector<std::string>& arguments);

}  // namespace quillon
