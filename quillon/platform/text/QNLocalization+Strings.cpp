// A table, as its file holds it:
//   /* a comment, over lines if it likes */   // or to the end of the line
//   "key" = "text";
// Inside the quotes: \" \\ \n \t, and \Uxxxx for a UTF-16 code unit in hexadecimal (two of them
// for a character beyond U+FFFF). A new line inside the quotes is \n, never a real one: an
// open quote then spoils its own line and not the rest of the table.

#include <unicode/utf8.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

class StringsReader {
 public:
  explicit StringsReader(std::string_view text) : _text(text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (_text.substr(0, byteOrderMark.size()) == byteOrderMark) _at = byteOrderMark.size();
  }

  // Skips blanks and comments. False for a comment that doesn't end.
  bool skipToEntry() {
    for (;;) {
      _at = std::min(_text.find_first_not_of(" \t\r\n", _at), _text.size());
      const std::string_view start = _text.substr(_at, 2);
      if (start == "//") {
        skipLine();
      } else if (start == "/*") {
        const std::size_t end = _text.find("*/", _at + 2);
        if (end == std::string_view::npos) return false;
        _at = end + 2;
      } else {
        return true;
      }
    }
  }

  bool readEntry(QNLocalization::Table& table) {
    auto key = readQuoted();
    if (!key || !skipSign('=')) return false;
    auto text = readQuoted();
    if (!text || !skipSign(';') || !isUTF8(*key) || !isUTF8(*text)) return false;
    table.insert_or_assign(std::move(*key), std::move(*text));
    return true;
  }

  void skipLine() { _at = std::min(_text.find('\n', _at), _text.size()); }
  void goBackTo(std::size_t place) { _at = place; }
  [[nodiscard]] std::size_t place() const { return _at; }
  [[nodiscard]] bool atEnd() const { return _at == _text.size(); }

 private:
  bool skipSign(char sign) {
    if (!skipToEntry() || atEnd() || _text[_at] != sign) return false;
    ++_at;
    return sign == ';' || skipToEntry();
  }

  std::optional<std::string> readQuoted() {
    if (atEnd() || _text[_at] != '"') return std::nullopt;
    std::string read;
    for (++_at; !atEnd() && _text[_at] != '\n';) {
      const char c = _text[_at++];
      if (c == '"') return read;
      if (c != '\\') {
        read += c;
      } else if (!readEscape(read)) {
        return std::nullopt;
      }
    }
    return std::nullopt;
  }

  bool readEscape(std::string& read) {
    const char c = atEnd() ? '\0' : _text[_at++];
    if (c == 'U') return readCodePoint(read);
    constexpr std::string_view letters = "\"\\nt";
    constexpr std::string_view meanings = "\"\\\n\t";
    const std::size_t which = letters.find(c);
    if (which == std::string_view::npos) return false;
    read += meanings[which];
    return true;
  }

  // The digits of \Uxxxx, and a second one behind them if it takes two.
  bool readCodePoint(std::string& read) {
    const auto unit = readUnit();
    if (!unit) return false;
    std::uint32_t c = *unit;
    if (c >= 0xD800 && c <= 0xDBFF) {
      if (_text.substr(_at, 2) != "\\U") return false;
      _at += 2;
      const auto low = readUnit();
      if (!low || *low < 0xDC00 || *low > 0xDFFF) return false;
      c = 0x10000 + ((c - 0xD800) << 10) + (*low - 0xDC00);
    }
    if (U_IS_SURROGATE(c)) return false;
    char bytes[U8_MAX_LENGTH];
    std::size_t size = 0;
    U8_APPEND_UNSAFE(bytes, size, c);
    read.append(bytes, size);
    return true;
  }

  std::optional<std::uint32_t> readUnit() {
    const std::string_view digits = _text.substr(_at, 4);
    std::uint32_t unit = 0;
    const auto [end, failure] =
        std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
    if (failure != std::errc() || end - digits.data() != 4) return std::nullopt;
    _at += 4;
    return unit;
  }

  std::string_view _text;
  std::size_t _at = 0;
};

}  // namespace

QNLocalization::Table QNLocalization::parseStrings(std::string_view text, std::string_view name) {
  Strings strings = readStrings(text);
  reportBrokenLines(strings, name);
  return std::move(strings.table);
}

void QNLocalization::reportBrokenLines(const Strings& strings, std::string_view name) {
  for (const std::ptrdiff_t line : strings.brokenLines) {
    log_error(DEBUG_APP, "Unable to read localization table {}: line {}", name, line);
  }
}

QNLocalization::Strings QNLocalization::readStrings(std::string_view text) {
  Strings strings;
  StringsReader reader(text);
  std::size_t start = 0;
  std::ptrdiff_t line = 1;
  for (;;) {
    const bool found = reader.skipToEntry();
    if (reader.atEnd()) return strings;
    const auto skipped = text.substr(start, reader.place() - start);
    line += std::count(skipped.begin(), skipped.end(), '\n');
    start = reader.place();
    if (found && reader.readEntry(strings.table)) continue;
    strings.brokenLines.push_back(line);
    reader.goBackTo(start);
    reader.skipLine();
  }
}

}  // namespace quillon
