#include "cli/output/QNOutput.h"

#include <unistd.h>

#include <cerrno>

#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

constexpr std::size_t kWriteSize = 64 * 1024;

// The errno of the first failure, 0 if everything was written.
int writeAll(int descriptor, ByteView bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return errno;
    if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return 0;
}

}  // namespace

void QNOutput::text(std::string_view text) {
  const ByteView bytes = bytesOf(text);
  _waiting.insert(_waiting.end(), bytes.begin(), bytes.end());
  if (_waiting.size() >= kWriteSize) write();
}

void QNOutput::line(std::string_view line) {
  text(line);
  text("\n");
}

void QNOutput::jsonText(std::string_view json) {
  writeShownJson(json, [this](std::string_view piece) { text(piece); });
}

void QNOutput::json(const Json& value) {
  if (const auto bytes = mr_JSONDataWithError(value)) jsonText(textOf(*bytes));
}

void QNOutput::json(const JsonObject& object) {
  if (const auto bytes = mr_JSONDataWithError(object)) jsonText(textOf(*bytes));
}

void QNOutput::write() {
  if (_errorNumber == 0) _errorNumber = writeAll(_descriptor, _waiting);
  wipe(_waiting.data(), _waiting.size());
  _waiting.clear();
}

QNCommandResult QNOutput::finish(QNExit exit) {
  write();
  if (_errorNumber == 0) return exit;
  if (_errorNumber == EPIPE) return toolError(QNExit::fileError, "");
  return fileError("standard output", _errorNumber);
}

bool QNOutput::isTerminal() const {
  return isatty(_descriptor) == 1;
}

QNCommandResult printJson(const JsonObject& value, QNExit exit) {
  QNOutput out;
  out.json(value);
  out.line("");
  return out.finish(exit);
}

QNCommandResult printUUID(bool json, std::string_view uuid, QNExit exit) {
  if (json) return printJson({{"uuid", uuid}}, exit);
  QNOutput out;
  out.line(uuid);
  return out.finish(exit);
}

QNCommandResult printValue(std::string_view text) {
  QNOutput out;
  if (out.isTerminal()) {
    out.line(shownLines(text));
  } else {
    out.line(text);
  }
  return out.finish();
}

}  // namespace quillon
