#pragma once

#include <string_view>

#include "cli/QNToolError.h"
#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// Standard output, in memory that wipes itself: what is printed may be a secret. A failure is
/// kept until finish(), and what follows it is dropped.
class QNOutput final {
 public:
  explicit QNOutput(int descriptor = 1) : _descriptor(descriptor) {}
  /// finish() must have been called.
  ~QNOutput() = default;
  QNOutput(const QNOutput&) = delete;
  QNOutput& operator=(const QNOutput&) = delete;

  void text(std::string_view text);
  void line(std::string_view text);
  /// A JSON text, with escapes for what a terminal would obey.
  void jsonText(std::string_view json);
  /// Compact, without a newline.
  void json(const Json& value);
  void json(const JsonObject& object);

  /// Writes what is left. `exit` if all went well; an error with exit code 7, silent if the
  /// reader of a pipe has gone.
  QNCommandResult finish(QNExit exit = QNExit::done);

  [[nodiscard]] bool isTerminal() const;

 private:
  void write();
  int _descriptor;
  int _errorNumber = 0;
  Bytes _waiting;
};

/// Prints the one value of a command with --json, with a newline behind it.
QNCommandResult printJson(const JsonObject& value, QNExit exit = QNExit::done);
/// Prints what a command made, by its uuid: that alone, or as JSON.
QNCommandResult printUUID(bool json, std::string_view uuid, QNExit exit = QNExit::done);

/// Prints one value: itself to a pipe or file; a terminal never gets what it would obey.
QNCommandResult printValue(std::string_view text);

}  // namespace quillon
