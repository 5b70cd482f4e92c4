#pragma once
// Text that needs no tables: nearly every title and address is ASCII.

#include <cstdint>
#include <cstring>
#include <string_view>

namespace quillon {

/// The eight characters at `place`.
inline std::uint64_t eightBytesAt(const char* place) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, place, sizeof word);
  return word;
}

inline bool isASCII(std::string_view text) noexcept {
  constexpr std::size_t wordSize = sizeof(std::uint64_t);
  std::uint64_t bits = 0;
  if (text.size() < wordSize) {
    for (const char c : text) bits |= static_cast<std::uint8_t>(c);
  } else {
    for (std::size_t i = 0; i + wordSize < text.size(); i += wordSize) {
      bits |= eightBytesAt(text.data() + i);
    }
    bits |= eightBytesAt(text.data() + text.size() - wordSize);  // may overlap the one before it
  }
  return (bits & 0x8080808080808080u) == 0;
}

constexpr char lowercaseASCII(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr char uppercaseASCII(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

}  // namespace quillon
