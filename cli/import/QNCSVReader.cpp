#include "cli/import/QNCSVReader.h"

#include <fmt/format.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr char kQuote = '"';

QNError errorInLine(std::size_t line, std::string_view what) {
  return QNError::unreadable(fmt::format("line {}: {}", line, what));
}

// CRLF counts once.
std::size_t lineAt(std::string_view text, std::size_t offset) {
  std::size_t line = 1;
  for (std::size_t i = 0; i < offset; ++i) {
    if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) ++line;
    if (text[i] == '\r') ++line;
  }
  return line;
}

std::size_t firstOffsetThatIsNotUTF8(std::string_view text) {
  const ByteView bytes = bytesOf(text);
  for (std::size_t next = 0; next < bytes.size();) {
    const std::size_t start = next;
    UChar32 c = 0;
    U8_NEXT(bytes.data(), next, bytes.size(), c);
    if (c < 0) return start;
  }
  return bytes.size();
}

bool beginsWith(ByteView bytes, std::initializer_list<std::uint8_t> mark) {
  return bytes.size() >= mark.size() && std::equal(mark.begin(), mark.end(), bytes.begin());
}

// `content` begins with a byte order mark.
QNResult<Bytes> utf8FromUTF16(ByteView content, bool bigEndian) {
  const std::size_t size = content.size() / 2;
  const auto unit = [&](std::size_t i) {
    const auto first = static_cast<char16_t>(content[2 * i]);
    const auto second = static_cast<char16_t>(content[2 * i + 1]);
    return static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  Bytes text;
  text.reserve(content.size() / 2 * 3);  // the most that a unit can take: it is never moved
  for (std::size_t i = 1; i < size; ++i) {
    UChar32 c = unit(i);
    if (U16_IS_LEAD(c) && i + 1 < size && U16_IS_TRAIL(unit(i + 1))) {
      c = U16_GET_SUPPLEMENTARY(c, unit(++i));
    }
    if (U_IS_SURROGATE(c)) {
      return errorInLine(lineAt(textOf(text), text.size()), "this isn't UTF-16 text");
    }
    std::array<std::uint8_t, U8_MAX_LENGTH> encoded;
    std::size_t length = 0;
    U8_APPEND_UNSAFE(encoded.data(), length, c);
    text.insert(text.end(), encoded.begin(), encoded.begin() + static_cast<std::ptrdiff_t>(length));
  }
  if (content.size() % 2 != 0) return QNError::unreadable("half a character at the end");
  return text;
}

}  // namespace

QNResult<Bytes> QNCSVReader::utf8FromFile(Bytes content) {
  if (beginsWith(content, {0xFE, 0xFF})) return utf8FromUTF16(content, true);
  if (beginsWith(content, {0xFF, 0xFE})) return utf8FromUTF16(content, false);
  if (beginsWith(content, {0xEF, 0xBB, 0xBF})) content.erase(content.begin(), content.begin() + 3);
  const std::string_view text = textOf(content);
  if (isUTF8(text)) return content;
  return errorInLine(lineAt(text, firstOffsetThatIsNotUTF8(text)),
                     "this isn't UTF-8 text; export the file as UTF-8");
}

char QNCSVReader::delimiterOf(std::string_view text) {
  char best = ',';
  std::array<std::size_t, 3> counts{};
  constexpr std::string_view kDelimiters = ",;\t";
  bool quoted = false;
  for (const char c : text) {
    if (c == kQuote) quoted = !quoted;
    if (quoted) continue;
    if (c == '\n' || c == '\r') break;
    const std::size_t which = kDelimiters.find(c);
    if (which == std::string_view::npos) continue;
    ++counts[which];
    if (counts[which] > counts[kDelimiters.find(best)]) best = c;
  }
  return best;
}

bool QNCSVReader::fail(std::string_view what) {
  _error = errorInLine(_recordLine, what);
  _fields.clear();
  return false;
}

bool QNCSVReader::next() {
  if (_error) return false;
  while (readLineEnd()) {
  }
  if (atEnd()) return false;
  _recordLine = _line;
  _fields.clear();
  do {
    if (_fields.size() == kMaxFields) return fail("too many fields");
    if (!readField()) return false;
  } while (readDelimiter());
  readLineEnd();
  return true;
}

bool QNCSVReader::readDelimiter() {
  if (atEnd() || _text[_next] != static_cast<std::uint8_t>(_delimiter)) return false;
  ++_next;
  return true;
}

// Takes one line end, if there is one here.
bool QNCSVReader::readLineEnd() {
  if (atEnd() || (_text[_next] != '\n' && _text[_next] != '\r')) return false;
  const bool pair = _text[_next] == '\r' && _next + 1 < _text.size() && _text[_next + 1] == '\n';
  _next += pair ? 2 : 1;
  ++_line;
  return true;
}

bool QNCSVReader::finishField(std::size_t start, std::size_t end) {
  if (end - start > kMaxFieldBytes) return fail("a field is longer than 16 MiB");
  _fields.push_back(textOf(ByteView(_text).subspan(start, end - start)));
  return true;
}

// Stops before the delimiter or line end that ends the field, or at the end of the text.
bool QNCSVReader::readField() {
  if (!atEnd() && _text[_next] == kQuote) return readQuoted();
  const std::size_t start = _next;
  return finishField(start, readUnquoted(start));
}

// Moves unquoted characters to `end`, which is the place of the first of them or before it.
// Gives the end of the moved ones.
std::size_t QNCSVReader::readUnquoted(std::size_t end) {
  const std::size_t start = _next;
  while (!atEnd() && _text[_next] != '\n' && _text[_next] != '\r' &&
         _text[_next] != static_cast<std::uint8_t>(_delimiter)) {
    ++_next;
  }
  const std::size_t count = _next - start;
  if (end != start) std::memmove(_text.data() + end, _text.data() + start, count);
  return end + count;
}

// A doubled quote becomes one, so what follows it moves up by one place.
bool QNCSVReader::readQuoted() {
  const std::size_t start = ++_next;
  std::size_t end = start;
  for (;;) {
    const auto rest = std::span(_text).subspan(_next);
    const auto* const quote =
        rest.empty()
            ? nullptr
            : static_cast<const std::uint8_t*>(std::memchr(rest.data(), kQuote, rest.size()));
    if (quote == nullptr) return fail("a quoted field has no end");
    const auto count = static_cast<std::size_t>(quote - rest.data());
    if (end != _next) std::memmove(_text.data() + end, rest.data(), count);
    end += count;
    _next += count + 1;
    if (atEnd() || _text[_next] != kQuote) break;
    _text[end++] = _text[_next++];
  }
  _line += lineAt(textOf(ByteView(_text).subspan(start, end - start)), end - start) - 1;
  return finishField(start, readUnquoted(end));
}

}  // namespace quillon
