#pragma once

#include "cli/arguments/QNArguments.h"
#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// "quillon 0.1.0".
std::string_view versionText();

/// Reads the command line. What it doesn't give of the global arguments comes from `defaults`, and
/// then from the environment variables QUILLON_STORE, XDG_DATA_HOME, HOME and QUILLON_VAULT. Wrong
/// usage is an error with exit code 2, whose message never repeats a value that could be a
/// secret. `arguments` are those behind the program's name.
QNResult<QNArguments> parseArguments(const std::vector<std::string>& arguments,
                                     const QNGlobalArguments& defaults = {});

}  // namespace quillon
