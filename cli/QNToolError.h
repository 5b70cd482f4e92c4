#pragma once

#include <filesystem>
#include <string_view>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// What the process ends with. Scripts rely on the numbers; they never change.
enum class QNExit : int {
  done = 0,
  failed = 1,
  wrongUsage = 2,
  wrongPassword = 3,
  notFound = 4,   // no such item, folder, tag or vault, or the item has no such field
  ambiguous = 5,  // several items or folders have that title
  damaged = 6,    // the store is damaged, of another program, or too new
  fileError = 7,  // a file can't be read or written
};

/// What a command ends with; an error stands for the exit code that exitFor() gives.
using QNCommandResult = QNResult<QNExit>;

inline constexpr std::string_view QNToolErrorDomain = "QNToolErrorDomain";

QNError toolError(QNExit exit, std::string_view message);
/// "FILE: REASON" for an errno of the system, exit code 7.
QNError fileError(const std::filesystem::path& file, int errorNumber);
[[nodiscard]] QNExit exitFor(const QNError& error);

}  // namespace quillon
