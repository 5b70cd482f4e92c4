#include "quillon/platform/text/QNCharacterSet.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {
namespace {

constexpr uint32_t kAlphanumerics = U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK;

bool isOfCategory(char32_t c, uint32_t mask) noexcept {
  return (U_GET_GC_MASK(static_cast<UChar32>(c)) & mask) != 0;
}

bool isWhitespace(char32_t c) noexcept {
  return c == '\t' || isOfCategory(c, U_GC_ZS_MASK);
}

bool isWhitespaceButBlank(char32_t c) noexcept {
  return c != ' ' && ((c >= '\t' && c <= '\r') || c == 0x85 || isOfCategory(c, U_GC_Z_MASK));
}

bool isNonAlphanumeric(char32_t c) noexcept {
  return !isOfCategory(c, kAlphanumerics);
}

// Reads the character at `offset` and moves behind it.
char32_t nextCharacter(std::string_view text, std::size_t& offset) noexcept {
  const ByteView bytes = bytesOf(text);
  UChar32 c = 0;
  U8_NEXT_OR_FFFD(bytes.data(), offset, bytes.size(), c);
  return static_cast<char32_t>(c);
}

}  // namespace

const QNCharacterSet& QNCharacterSet::whitespace() {
  static constexpr QNCharacterSet set(isWhitespace);
  return set;
}

const QNCharacterSet& QNCharacterSet::whitespaceButBlank() {
  static constexpr QNCharacterSet set(isWhitespaceButBlank);
  return set;
}

const QNCharacterSet& QNCharacterSet::nonAlphanumerics() {
  static constexpr QNCharacterSet set(isNonAlphanumeric);
  return set;
}

bool QNCharacterSet::containsAnyOf(std::string_view text) const noexcept {
  for (std::size_t next = 0; next < text.size();) {
    if (contains(nextCharacter(text, next))) return true;
  }
  return false;
}

std::vector<std::string_view> QNCharacterSet::piecesOf(std::string_view text) const {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (std::size_t at = 0, next = 0; at < text.size(); at = next) {
    if (!contains(nextCharacter(text, next))) continue;
    pieces.push_back(text.substr(start, at - start));
    start = next;
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

}  // namespace quillon
