#include "store/QNStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "store/internal/QNFiles.h"
#include "store/internal/QNSchema.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

/// SQLite would take a folder for a file that doesn't open, and an empty file for a new database.
QNResult<QNDone> requireStoreFile(const std::filesystem::path& file) {
  struct stat info {};
  if (stat(file.c_str(), &info) != 0) {
    return errno == ENOENT || errno == ENOTDIR
               ? storeError(QNStoreErrorCode::notFound, "there is no such file")
               : storeError(QNStoreErrorCode::inputOutput, "the file can't be reached");
  }
  if (!S_ISREG(info.st_mode)) return storeError(QNStoreErrorCode::notAStore, "not a file");
  if (info.st_size == 0) return storeError(QNStoreErrorCode::notAStore, "the file is empty");
  return QNDone{};
}

bool hasLog(const std::filesystem::path& file) {
  std::error_code ignored;
  return std::filesystem::exists(file.string() + "-wal", ignored);
}

/// Where no log file can be made and none lies there, nobody else can be writing.
QNDatabase::Mode modeFor(const std::filesystem::path& file, QNStore::Access access) {
  if (access == QNStore::Access::readWrite) return QNDatabase::Mode::readWrite;
  const bool canMakeLog = ::access(folderOf(file).c_str(), W_OK) == 0;
  return hasLog(file) || canMakeLog ? QNDatabase::Mode::readOnly : QNDatabase::Mode::immutable;
}

/// SQLite fills a cut last page up with zeros. With a log beside it a file may end so: the page
/// lies in the log.
bool endsInsideAPage(const std::filesystem::path& file, QNDatabase& database) {
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(file, unknown);
  const std::uint64_t pageSize = database.number("PRAGMA page_size");
  return !unknown && pageSize != 0 && size % pageSize != 0;
}

bool isOlder(QNDatabase& database) {
  const std::uint64_t version = database.number("PRAGMA user_version");
  return version != 0 && version < static_cast<std::uint64_t>(QNStore::kSchemaVersion);
}

QNResult<std::unique_ptr<QNDatabase>> makeDatabase(const std::filesystem::path& file) {
  auto opened = QNDatabase::open(file, QNDatabase::Mode::readWrite);
  if (!opened.ok()) return opened.error();
  const auto made = makeSchema(*opened.value(), storeMigrations());
  if (!made.ok()) return made.error();
  // From here on readers and a writer don't keep each other out. The file remembers it.
  opened.value()->run("PRAGMA journal_mode = WAL");
  if (auto error = opened.value()->takeError()) return *error;
  return opened;
}

}  // namespace

QNStore::QNStore(std::unique_ptr<Database> database) : _database(std::move(database)) {}
QNStore::~QNStore() = default;

QNResult<std::unique_ptr<QNStore>> QNStore::create(const std::filesystem::path& file) {
  const auto created = createPrivateFile(file);
  if (!created.ok()) return created.error();
  auto made = makeDatabase(file);
  if (!made.ok()) {
    removeDatabaseFiles(file);
    return made.error();
  }
  return std::unique_ptr<QNStore>(new QNStore(std::make_unique<Database>(std::move(made).value())));
}

QNResult<std::unique_ptr<QNStore>> QNStore::open(const std::filesystem::path& file, Access access) {
  const auto usable = requireStoreFile(file);
  if (!usable.ok()) return usable.error();
  const bool mayBeCut = !hasLog(file);
  auto opened = QNDatabase::open(file, modeFor(file, access));
  if (!opened.ok()) return opened.error();
  QNDatabase& database = *opened.value();
  if (mayBeCut && endsInsideAPage(file, database)) {
    return storeError(QNStoreErrorCode::damaged, "the file was cut");
  }
  const auto forward = bringSchemaForward(database, storeMigrations());
  if (!forward.ok() && isOlder(database) && access == Access::readOnly) {
    opened.value().reset();
    const auto written = open(file, Access::readWrite);
    return written.ok() ? open(file, access) : written.error();
  }
  if (!forward.ok()) return forward.error();
  if (access == Access::readWrite) {
    // A backup copy comes without it. Where the file system can't, the file works without it too.
    database.run("PRAGMA journal_mode = WAL");
    static_cast<void>(database.takeError());
  }
  return std::unique_ptr<QNStore>(
      new QNStore(std::make_unique<Database>(std::move(opened).value())));
}

int QNStore::schemaVersion() const {
  return kSchemaVersion;
}

std::uint64_t QNStore::detailsRead() const {
  return _database->detailsRead;
}

}  // namespace quillon
