#pragma once
// A thin layer over one SQLite connection: statements, values, errors, transactions.

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

class QNDatabase;

/// One run of a statement. Borrows the connection's compiled form and gives it back when it ends,
/// so two runs of one text can't overlap. Views of a row are valid until the next row.
class QNQuery final {
 public:
  ~QNQuery();
  QNQuery(QNQuery&& other) noexcept
      : _database(other._database), _statement(std::exchange(other._statement, nullptr)) {}
  QNQuery(const QNQuery&) = delete;
  QNQuery& operator=(const QNQuery&) = delete;
  QNQuery& operator=(QNQuery&&) = delete;

  /// Goes to the next row. False at the end and after an error, which the connection keeps.
  bool next();
  [[nodiscard]] std::uint64_t number(int column) const;
  [[nodiscard]] std::string_view text(int column) const;
  [[nodiscard]] std::optional<std::string_view> optionalText(int column) const;
  [[nodiscard]] ByteView bytes(int column) const;
  [[nodiscard]] std::optional<ByteView> optionalBytes(int column) const;

 private:
  friend class QNDatabase;
  QNQuery(QNDatabase& database, sqlite3_stmt* statement)
      : _database(database), _statement(statement) {}
  using Lifetime = sqlite3_destructor_type;
  void bind(int place, std::uint64_t value, Lifetime lifetime);
  void bind(int place, std::string_view value, Lifetime lifetime);
  void bind(int place, ByteView value, Lifetime lifetime);
  void bind(int place, std::nullopt_t, Lifetime lifetime);
  template <class Value>
  void bind(int place, const std::optional<Value>& value, Lifetime lifetime) {
    value ? bind(place, *value, lifetime) : bind(place, std::nullopt, lifetime);
  }
  template <class... Values>
  void bindAll([[maybe_unused]] Lifetime lifetime, const Values&... values) {
    int place = 0;
    (bind(++place, values, lifetime), ...);
  }

  QNDatabase& _database;
  sqlite3_stmt* _statement;  // null after an error
};

/// One connection. The first error stays: whatever is asked after it does nothing and finds
/// nothing, until takeError(). So a transaction is written as if nothing could fail, and asks once
/// at its end.
class QNDatabase final {
 public:
  /// `immutable`: nobody can write the file, so neither locks nor a log file are needed.
  enum class Mode { readWrite, readOnly, immutable };
  static constexpr std::chrono::milliseconds kPatience{5000};

  /// Opens a file that exists. Waits up to `patience` for other writers, here and later.
  static QNResult<std::unique_ptr<QNDatabase>> open(const std::filesystem::path& file, Mode mode,
                                                    std::chrono::milliseconds patience = kPatience);
  ~QNDatabase();
  QNDatabase(const QNDatabase&) = delete;
  QNDatabase& operator=(const QNDatabase&) = delete;

  /// `sql` must be a literal; its compiled form is kept. Values are copied.
  template <class... Values>
  QNQuery query(std::string_view sql, const Values&... values) {
    QNQuery query(*this, statement(sql));
    query.bindAll(SQLITE_TRANSIENT, values...);
    return query;
  }
  /// Runs a statement that changes rows; how many it changed.
  template <class... Values>
  std::uint64_t change(std::string_view sql, const Values&... values) {
    QNQuery query(*this, statement(sql));
    query.bindAll(SQLITE_STATIC, values...);
    query.next();
    return failed() ? 0 : static_cast<std::uint64_t>(sqlite3_changes64(_connection));
  }
  /// Runs statements without values, compiled for this once.
  void run(const std::string& sql);
  /// The first value of the first row; 0 if there is none.
  std::uint64_t number(std::string_view sql);
  [[nodiscard]] std::uint64_t lastRow() const;

  [[nodiscard]] bool failed() const { return _error.has_value(); }
  [[nodiscard]] const std::optional<QNError>& error() const { return _error; }
  [[nodiscard]] std::optional<QNError> takeError();
  /// Keeps `error` unless there is one already.
  void fail(QNError error);
  [[nodiscard]] bool inTransaction() const;
  /// Absolute.
  [[nodiscard]] std::filesystem::path path() const;

 private:
  friend class QNQuery;
  explicit QNDatabase(sqlite3* connection) : _connection(connection) {}
  sqlite3_stmt* statement(std::string_view sql);
  void failWithCode(int code);
  void configure(std::chrono::milliseconds patience);

  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  sqlite3* _connection;
  std::optional<QNError> _error;
  std::map<std::string_view, std::unique_ptr<sqlite3_stmt, Finalizer>> _statements;
};

/// Runs from its construction to commit(); rolled back if it isn't reached. Inside another one it
/// is a part of that: an error then stays and ends the outer one.
class QNTransaction final {
 public:
  enum class Kind { read, write };
  QNTransaction(QNDatabase& database, Kind kind);
  ~QNTransaction();
  QNTransaction(const QNTransaction&) = delete;
  QNTransaction& operator=(const QNTransaction&) = delete;
  /// Ends it: durable if it succeeds, rolled back with the first error otherwise.
  QNResult<QNDone> commit();

 private:
  void rollback();
  QNDatabase& _database;
  bool _outermost;
};

}  // namespace quillon
