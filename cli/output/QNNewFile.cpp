#include "cli/output/QNNewFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>

#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

// The errno of the first failure, 0 if everything was written.
int writeAll(int descriptor, ByteView bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return errno;
    if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return 0;
}

// What isn't a file of a disk has nothing to bring there.
int synchronise(int descriptor) {
  return ::fsync(descriptor) == 0 || errno == EINVAL ? 0 : errno;
}

// The file's name is there. A folder that isn't readable can't be asked for it.
int synchroniseFolderOf(const std::filesystem::path& file) {
  const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return errno == EACCES ? 0 : errno;
  const int errorNumber = synchronise(descriptor);
  ::close(descriptor);
  return errorNumber;
}

}  // namespace

QNResult<QNDone> writeNewFile(const std::filesystem::path& file, ByteView content) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0 && errno == EEXIST) {
    return toolError(QNExit::failed, fmt::format("{}: is there already, and stays as it is",
                                                 shownText(file.string())));
  }
  if (descriptor < 0) return fileError(file, errno);
  int errorNumber = writeAll(descriptor, content);
  // The original may be deleted next.
  if (errorNumber == 0) errorNumber = synchronise(descriptor);
  if (::close(descriptor) != 0 && errorNumber == 0) errorNumber = errno;
  if (errorNumber == 0) errorNumber = synchroniseFolderOf(file);
  if (errorNumber == 0) return QNDone{};
  ::unlink(file.c_str());
  return fileError(file, errorNumber);
}

}  // namespace quillon
