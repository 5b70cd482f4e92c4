#pragma once
// Secrets read from open files. Nothing is read ahead: what follows a line stays for the next
// reader of the descriptor.

#include <filesystem>
#include <optional>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// Longest password, and longest secret of an item, in bytes.
inline constexpr std::size_t kMaxPasswordBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMaxSecretBytes = std::size_t{16} << 20;

/// The next line, without its newline; it may be the file's last and have none. Error with exit
/// code 2 at the end of the file, or if the line is longer than kMaxPasswordBytes.
QNResult<QNSecret> readLine(int descriptor);
/// The same, and nothing at the end of the file. Errors tell of `what`: "the password".
QNResult<std::optional<QNSecret>> readLineIfAny(int descriptor, std::string_view what);
/// All that is left, without one newline at the end. Error with exit code 2 if there is nothing: an
/// empty secret is an empty line.
QNResult<QNSecret> readSecret(int descriptor);

/// Whole content of a file or pipe, in memory that wipes itself. Errors have exit code 7.
QNResult<Bytes> readFile(const std::filesystem::path& file, std::size_t limit);
/// The same of one that is open; `file` is its name in errors.
QNResult<Bytes> readOpenFile(int descriptor, const std::filesystem::path& file, std::size_t limit);

}  // namespace quillon
