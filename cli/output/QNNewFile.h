#pragma once

#include <filesystem>

#include "cli/QNToolError.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

/// Writes a file that isn't there yet, 0600. Errors: exit code 1 if it is, 7 if it can't be
/// written; nothing is left then.
QNResult<QNDone> writeNewFile(const std::filesystem::path& file, ByteView content);

}  // namespace quillon
