#include "cli/output/QNShownText.h"

#include <fmt/format.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>

#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/text/QNASCII.h"

namespace quillon {
namespace {

bool isPlain(char c) {
  return static_cast<signed char>(c) >= ' ' && c != 0x7f;
}

// Characters that only change how what follows is shown: directions, separators, invisible marks
// that aren't needed to write a language. Joiners and variation selectors are, and stay.
bool misleads(UChar32 c) {
  const auto type = u_charType(c);
  if (type == U_CONTROL_CHAR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR) {
    return true;
  }
  return u_hasBinaryProperty(c, UCHAR_BIDI_CONTROL) != 0 || c == 0xFEFF || c == 0x200B;
}

std::string escapeFor(UChar32 c) {
  if (c == '\n') return "\\n";
  if (c == '\t') return "\\t";
  if (c == '\r') return "\\r";
  return c < 0x80 ? fmt::format("\\x{:02x}", c) : fmt::format("\\u{{{:x}}}", c);
}

// Those that stand in dates and texts of some languages. They change the place of a neighbouring
// blank or stop, and never the order of letters or digits.
bool isMark(UChar32 c) {
  return c == 0x200E || c == 0x200F || c == 0x061C;
}

enum class Marks { escaped, kept };

std::string escaped(std::string_view text, std::string_view kept, Marks marks = Marks::escaped) {
  std::string shown;
  shown.reserve(text.size());
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  for (std::size_t next = 0; next < text.size();) {
    const std::size_t start = next;
    UChar32 c = 0;
    U8_NEXT(bytes, next, text.size(), c);
    if (c < 0) {
      for (std::size_t i = start; i < next; ++i) shown += fmt::format("\\x{:02x}", bytes[i]);
    } else if (marks == Marks::kept && isMark(c)) {
      shown += text.substr(start, next - start);
    } else if (misleads(c) && (c >= 0x80 || kept.find(text[start]) == std::string_view::npos)) {
      shown += escapeFor(c);
    } else {
      shown += text.substr(start, next - start);
    }
  }
  return shown;
}

std::size_t widthOf(UChar32 c) {
  const auto type = u_charType(c);
  if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR) return 0;
  const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

}  // namespace

std::string shownText(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), isPlain)) return std::string(text);
  return escaped(text, "");
}

std::string shownLines(std::string_view text) {
  return escaped(text, "\n\t");
}

std::string shownOwnLines(std::string_view text) {
  return escaped(text, "\n\t", Marks::kept);
}

// JSON has escaped what lies below a blank; such a character is a new line between values.
void writeShownJson(std::string_view json, const std::function<void(std::string_view)>& write) {
  std::size_t written = 0;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(json.data());
  for (std::size_t next = 0; next < json.size();) {
    const std::size_t start = next;
    UChar32 c = 0;
    U8_NEXT(bytes, next, json.size(), c);
    const bool stays = c >= 0 && (c < 0x7f || !misleads(c));
    if (stays) continue;
    write(json.substr(written, start - written));
    write(fmt::format("\\u{:04x}", c < 0 ? 0xFFFD : c));
    written = next;
  }
  write(json.substr(written));
}

std::string_view withoutIsolation(std::string_view text) {
  constexpr std::string_view kIsolate = "\u2066";
  constexpr std::string_view kEnd = "\u2069";
  const bool isWhole = text.size() >= kIsolate.size() + kEnd.size() && text.starts_with(kIsolate) &&
                       text.find(kEnd) == text.size() - kEnd.size();
  if (!isWhole) return text;
  return text.substr(kIsolate.size(), text.size() - kIsolate.size() - kEnd.size());
}

std::size_t shownWidth(std::string_view text) {
  if (isASCII(text)) return text.size();
  std::size_t width = 0;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  for (std::size_t next = 0; next < text.size();) {
    UChar32 c = 0;
    U8_NEXT(bytes, next, text.size(), c);
    width += widthOf(c);
  }
  return width;
}

std::string_view cutToWidth(std::string_view text, std::size_t columns) {
  std::size_t width = 0;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  for (std::size_t next = 0; next < text.size();) {
    const std::size_t start = next;
    UChar32 c = 0;
    U8_NEXT(bytes, next, text.size(), c);
    width += widthOf(c);
    if (width > columns) return text.substr(0, start);
  }
  return text;
}

std::string padded(std::string text, std::size_t width) {
  const std::size_t taken = shownWidth(text);
  if (taken < width) text.append(width - taken, ' ');
  return text;
}

}  // namespace quillon
