#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

/// Reads comma-separated values (RFC 4180), record by record. It owns the text, which is a
/// secret: quoted fields are put together inside it, so that no copy is made, and it is wiped
/// in the end. More than the standard asks is forgiven: lines may end in CRLF, LF or CR, blank
/// lines are skipped, a quote inside an unquoted field is a character like any other, and text
/// behind a closing quote belongs to the field.
class QNCSVReader final {
 public:
  using Fields = std::span<const std::string_view>;
  /// Longest field, in bytes.
  static constexpr std::size_t kMaxFieldBytes = std::size_t{16} << 20;
  /// Most fields of a record.
  static constexpr std::size_t kMaxFields = 10'000;

  /// UTF-8 without a byte order mark, from UTF-8 or from UTF-16 with one. Error 114, with the
  /// number of the line, for anything else.
  static QNResult<Bytes> utf8FromFile(Bytes content);
  /// The one of comma, semicolon and tab that the first line has most of.
  static char delimiterOf(std::string_view text);

  explicit QNCSVReader(Bytes text, char delimiter = ',')
      : _text(std::move(text)), _delimiter(delimiter) {}

  /// Reads the next record. False at the end of the text, or if error() says why not.
  bool next();
  /// The record's fields: one at least. Valid as long as the reader.
  [[nodiscard]] Fields fields() const { return _fields; }
  /// The line that the record begins in, from 1.
  [[nodiscard]] std::size_t line() const { return _recordLine; }
  [[nodiscard]] const std::optional<QNError>& error() const { return _error; }
  /// Bytes of the text that were read so far, and all of them.
  [[nodiscard]] std::size_t position() const { return _next; }
  [[nodiscard]] std::size_t size() const { return _text.size(); }

 private:
  bool readField();
  bool readQuoted();
  std::size_t readUnquoted(std::size_t end);
  bool readDelimiter();
  bool readLineEnd();
  bool finishField(std::size_t start, std::size_t end);
  bool fail(std::string_view what);
  [[nodiscard]] bool atEnd() const { return _next == _text.size(); }

  Bytes _text;
  char _delimiter;
  std::size_t _next = 0;
  std::size_t _line = 1;
  std::size_t _recordLine = 0;
  std::vector<std::string_view> _fields;
  std::optional<QNError> _error;
};

}  // namespace quillon
