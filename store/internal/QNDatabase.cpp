#include "store/internal/QNDatabase.h"

#include <fmt/format.h>

#include "store/QNStoreError.h"
#include "store/internal/QNFiles.h"

namespace quillon {

namespace {

QNStoreErrorCode codeForSQLite(int code, int systemError) {
  if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY) {
    return QNStoreErrorCode::exists;
  }
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return QNStoreErrorCode::busy;
    case SQLITE_FULL:
      return QNStoreErrorCode::diskFull;
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return QNStoreErrorCode::notWritable;
    case SQLITE_NOTADB:
      return QNStoreErrorCode::notAStore;
    case SQLITE_CORRUPT:
    case SQLITE_ERROR:  // a table or column isn't there
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
      return QNStoreErrorCode::damaged;
    default:
      return codeForSystemError(systemError);
  }
}

/// The errno of a write that failed. sqlite3_system_errno() may hold a later one already, of the
/// rolling back; then the file or its log still know.
int writeError(sqlite3* connection) {
  int error = sqlite3_system_errno(connection);
  if (codeForSystemError(error) == QNStoreErrorCode::diskFull) return error;
  error = 0;
  sqlite3_file* log = nullptr;
  sqlite3_file_control(connection, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
  if (log != nullptr && log->pMethods != nullptr) {
    log->pMethods->xFileControl(log, SQLITE_FCNTL_LAST_ERRNO, &error);
  }
  if (error == 0) sqlite3_file_control(connection, "main", SQLITE_FCNTL_LAST_ERRNO, &error);
  return error;
}

/// SQLite's message isn't used: it may quote what stands in the file.
QNError errorForSQLite(sqlite3* connection, int code) {
  int systemError = connection != nullptr ? sqlite3_system_errno(connection) : 0;
  if (code == SQLITE_IOERR_WRITE) systemError = writeError(connection);
  return storeError(codeForSQLite(code, systemError),
                    fmt::format("SQLite {}: {}", code, sqlite3_errstr(code)));
}

std::string uriForPath(const std::string& path) {
  std::string uri = "file:";
  for (const char character : path) {
    if (character == '%' || character == '?' || character == '#') {
      uri += fmt::format("%{:02x}", static_cast<unsigned char>(character));
    } else {
      uri += character;
    }
  }
  return uri + "?immutable=1";
}

}  // namespace

// Queries

QNQuery::~QNQuery() {
  if (_statement == nullptr) return;
  sqlite3_reset(_statement);
  sqlite3_clear_bindings(_statement);
}

bool QNQuery::next() {
  if (_statement == nullptr || _database.failed()) return false;
  const int code = sqlite3_step(_statement);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) _database.failWithCode(code);
  return false;
}

std::uint64_t QNQuery::number(int column) const {
  return static_cast<std::uint64_t>(sqlite3_column_int64(_statement, column));
}

std::string_view QNQuery::text(int column) const {
  return textOf(bytes(column));
}

std::optional<std::string_view> QNQuery::optionalText(int column) const {
  if (sqlite3_column_type(_statement, column) == SQLITE_NULL) return std::nullopt;
  return text(column);
}

ByteView QNQuery::bytes(int column) const {
  const void* start = sqlite3_column_blob(_statement, column);
  return {static_cast<const std::uint8_t*>(start),
          static_cast<std::size_t>(sqlite3_column_bytes(_statement, column))};
}

std::optional<ByteView> QNQuery::optionalBytes(int column) const {
  if (sqlite3_column_type(_statement, column) == SQLITE_NULL) return std::nullopt;
  return bytes(column);
}

void QNQuery::bind(int place, std::uint64_t value, Lifetime) {
  if (_statement == nullptr) return;
  const int code = sqlite3_bind_int64(_statement, place, static_cast<sqlite3_int64>(value));
  if (code != SQLITE_OK) _database.failWithCode(code);
}

void QNQuery::bind(int place, std::string_view value, Lifetime lifetime) {
  if (_statement == nullptr) return;
  const char* start = value.empty() ? "" : value.data();  // a null pointer would bind NULL
  const int code =
      sqlite3_bind_text64(_statement, place, start, value.size(), lifetime, SQLITE_UTF8);
  if (code != SQLITE_OK) _database.failWithCode(code);
}

void QNQuery::bind(int place, ByteView value, Lifetime lifetime) {
  if (_statement == nullptr) return;
  const void* start = value.empty() ? static_cast<const void*>("") : value.data();
  const int code = sqlite3_bind_blob64(_statement, place, start, value.size(), lifetime);
  if (code != SQLITE_OK) _database.failWithCode(code);
}

void QNQuery::bind(int place, std::nullopt_t, Lifetime) {
  if (_statement == nullptr) return;
  const int code = sqlite3_bind_null(_statement, place);
  if (code != SQLITE_OK) _database.failWithCode(code);
}

// The connection

QNResult<std::unique_ptr<QNDatabase>> QNDatabase::open(const std::filesystem::path& file, Mode mode,
                                                       std::chrono::milliseconds patience) {
  std::error_code noPath;
  const std::string path = std::filesystem::absolute(file, noPath).string();
  if (noPath) return storeError(QNStoreErrorCode::inputOutput, "the path can't be made absolute");
  const bool immutable = mode == Mode::immutable;
  const std::string name = immutable ? uriForPath(path) : path;
  const int access = mode == Mode::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
  const int flags =
      access | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | (immutable ? SQLITE_OPEN_URI : 0);
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &connection, flags, nullptr);
  std::unique_ptr<QNDatabase> database(new QNDatabase(connection));
  if (code != SQLITE_OK) return errorForSQLite(connection, code);
  if (mode == Mode::readWrite && sqlite3_db_readonly(connection, "main") == 1) {
    return storeError(QNStoreErrorCode::notWritable, "the file is read-only");
  }
  database->configure(patience);
  if (database->failed()) return *database->takeError();
  return database;
}

QNDatabase::~QNDatabase() {
  _statements.clear();
  sqlite3_close_v2(_connection);
}

void QNDatabase::configure(std::chrono::milliseconds patience) {
  sqlite3_busy_timeout(_connection, static_cast<int>(patience.count()));
  // The schema of a foreign file is data, not code.
  sqlite3_db_config(_connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(_connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(_connection, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  run("PRAGMA trusted_schema = OFF;"
      "PRAGMA cell_size_check = ON;"
      "PRAGMA foreign_keys = ON;"
      "PRAGMA secure_delete = ON;"
      "PRAGMA synchronous = FULL;"
      "PRAGMA temp_store = MEMORY;"
      "PRAGMA mmap_size = 0;"
      // 32 MiB: with less, a large import writes the pages of its indexes over and over.
      "PRAGMA cache_size = -32768;");
}

sqlite3_stmt* QNDatabase::statement(std::string_view sql) {
  if (failed()) return nullptr;
  auto& compiled = _statements[sql];
  if (compiled == nullptr) {
    sqlite3_stmt* fresh = nullptr;
    const int code = sqlite3_prepare_v3(_connection, sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &fresh, nullptr);
    compiled.reset(fresh);
    if (code != SQLITE_OK) failWithCode(code);
  } else if (sqlite3_stmt_busy(compiled.get()) != 0) {
    fail(storeError(QNStoreErrorCode::busy, "this reading is going on already"));
  }
  return failed() ? nullptr : compiled.get();
}

void QNDatabase::run(const std::string& sql) {
  if (failed()) return;
  const int code = sqlite3_exec(_connection, sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) failWithCode(code);
}

std::uint64_t QNDatabase::number(std::string_view sql) {
  QNQuery only = query(sql);
  return only.next() ? only.number(0) : 0;
}

std::uint64_t QNDatabase::lastRow() const {
  return static_cast<std::uint64_t>(sqlite3_last_insert_rowid(_connection));
}

std::optional<QNError> QNDatabase::takeError() {
  return std::exchange(_error, std::nullopt);
}

void QNDatabase::fail(QNError error) {
  if (!_error) _error = std::move(error);
}

void QNDatabase::failWithCode(int code) {
  fail(errorForSQLite(_connection, code));
}

bool QNDatabase::inTransaction() const {
  return sqlite3_get_autocommit(_connection) == 0;
}

std::filesystem::path QNDatabase::path() const {
  const char* const name = sqlite3_db_filename(_connection, "main");
  return name == nullptr ? "" : name;
}

// Transactions

QNTransaction::QNTransaction(QNDatabase& database, Kind kind)
    : _database(database), _outermost(!database.inTransaction()) {
  if (_outermost) _database.run(kind == Kind::write ? "BEGIN IMMEDIATE" : "BEGIN");
}

QNTransaction::~QNTransaction() {
  if (_outermost) rollback();
}

QNResult<QNDone> QNTransaction::commit() {
  if (!_outermost) {
    if (_database.failed()) return *_database.error();
    return QNDone{};
  }
  _database.run("COMMIT");
  _outermost = false;
  const std::optional<QNError> error = _database.error();
  if (!error) return QNDone{};
  rollback();
  return *error;
}

void QNTransaction::rollback() {
  // Some errors have ended the transaction already.
  static_cast<void>(_database.takeError());
  if (_database.inTransaction()) _database.run("ROLLBACK");
  static_cast<void>(_database.takeError());
}

}  // namespace quillon
