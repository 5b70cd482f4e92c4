#pragma once
// Text that needs no tables: nearly every title and address is ASCII.

#include <cstdint>
#include <cstring>
#include <string_view>

namespace quillon {

inline bool isASCII(std::string_view text) noexcept {
  std::uint64_t bits = 0;
  std::size_t i = 0;
  for (; i + sizeof bits <= text.size(); i += sizeof bits) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + i, sizeof word);
    bits |= word;
  }
  for (; i < text.size(); ++i) bits |= static_cast<std::uint8_t>(text[i]);
  return (bits & 0x8080808080808080u) == 0;
}

constexpr char lowercaseASCII(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr char uppercaseASCII(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

}  // namespace quillon
