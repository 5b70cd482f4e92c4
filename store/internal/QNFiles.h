#pragma once
// Files and folders that nobody else may read, from their creation on, whatever the umask.

#include <filesystem>

#include "quillon/platform/errors/QNError.h"
#include "store/QNStoreError.h"

namespace quillon {

/// What an errno says of a file.
[[nodiscard]] QNStoreErrorCode codeForSystemError(int systemError);
/// The folder that holds the file; "." for a bare name.
std::filesystem::path folderOf(const std::filesystem::path& file);
/// An empty file, 0600, in folders that are made, 0700, where they are missing. Errors: exists,
/// notWritable, diskFull, inputOutput.
QNResult<QNDone> createPrivateFile(const std::filesystem::path& file);
/// Takes the file away with what SQLite puts beside it.
void removeDatabaseFiles(const std::filesystem::path& file);
/// Waits until the file and its name are on the medium. Not for a file that is open elsewhere in
/// this process: closing it would end the locks that are held on it.
QNResult<QNDone> makeDurable(const std::filesystem::path& file);

}  // namespace quillon
