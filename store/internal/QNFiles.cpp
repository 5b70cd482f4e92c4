#include "store/internal/QNFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace quillon {

namespace {

class Descriptor final {
 public:
  explicit Descriptor(int descriptor) : _descriptor(descriptor) {}
  ~Descriptor() {
    if (_descriptor >= 0) close(_descriptor);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int get() const { return _descriptor; }

 private:
  int _descriptor;
};

bool makeFolders(const std::filesystem::path& folder) {
  std::error_code ignored;
  if (folder.empty() || std::filesystem::is_directory(folder, ignored)) return true;
  if (!makeFolders(folder.parent_path())) return false;
  if (mkdir(folder.c_str(), 0700) != 0) return errno == EEXIST;
  return chmod(folder.c_str(), 0700) == 0;
}

bool synchronise(const std::filesystem::path& path) {
  const Descriptor opened(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return opened.get() >= 0 && fsync(opened.get()) == 0;
}

}  // namespace

QNStoreErrorCode codeForSystemError(int systemError) {
  switch (systemError) {
    case EEXIST:
      return QNStoreErrorCode::exists;
    case EACCES:
    case EPERM:
    case EROFS:
      return QNStoreErrorCode::notWritable;
    case ENOSPC:
    case EFBIG:
    case EDQUOT:
      return QNStoreErrorCode::diskFull;
    default:
      return QNStoreErrorCode::inputOutput;
  }
}

std::filesystem::path folderOf(const std::filesystem::path& file) {
  const auto folder = file.parent_path();
  return folder.empty() ? std::filesystem::path(".") : folder;
}

QNResult<QNDone> createPrivateFile(const std::filesystem::path& file) {
  if (!makeFolders(file.parent_path())) {
    return storeError(codeForSystemError(errno), "the folder can't be made");
  }
  const Descriptor created(open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600));
  if (created.get() < 0 || fchmod(created.get(), 0600) != 0) {
    return storeError(codeForSystemError(errno), "the file can't be made");
  }
  return QNDone{};
}

void removeDatabaseFiles(const std::filesystem::path& file) {
  for (const std::string_view suffix : {"", "-wal", "-shm", "-journal"}) {
    std::error_code ignored;
    std::filesystem::remove(file.string().append(suffix), ignored);
  }
}

QNResult<QNDone> makeDurable(const std::filesystem::path& file) {
  if (synchronise(file) && synchronise(folderOf(file))) return QNDone{};
  return storeError(codeForSystemError(errno), "the file can't be written out");
}

}  // namespace quillon
