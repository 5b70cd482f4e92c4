#include "cli/shell/QNWideText.h"

#include <unicode/utf8.h>

#include <array>
#include <cstdint>

namespace quillon {
namespace {
constexpr UChar32 kReplacement = 0xFFFD;
}  // namespace

std::wstring wideText(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  for (std::size_t next = 0; next < text.size();) {
    UChar32 c = 0;
    U8_NEXT_OR_FFFD(bytes, next, text.size(), c);
    wide += static_cast<wchar_t>(c);
  }
  return wide;
}

std::string textOfWide(std::wstring_view wide) {
  std::string text;
  text.reserve(wide.size());
  for (const wchar_t c : wide) {
    const auto character = static_cast<UChar32>(c);
    const bool isCharacter = character >= 0 && character <= 0x10FFFF && !U_IS_SURROGATE(character);
    std::array<std::uint8_t, U8_MAX_LENGTH> bytes{};
    std::size_t size = 0;
    U8_APPEND_UNSAFE(bytes.data(), size, isCharacter ? character : kReplacement);
    text.append(reinterpret_cast<const char*>(bytes.data()), size);
  }
  return text;
}

}  // namespace quillon
