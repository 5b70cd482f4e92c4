#include "quillon/platform/otp/internal/QNBase32.h"

#include <cstdint>

namespace quillon {
namespace {

constexpr int kForeign = -1;

constexpr int valueOf(char c) noexcept {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a';
  if (c >= '2' && c <= '7') return c - '2' + 26;
  return kForeign;
}

constexpr bool isBetweenCharacters(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r') || c == '-';
}

constexpr std::size_t kGroup = 8;  // characters that make 5 bytes

constexpr bool canEndWith(std::size_t characters) noexcept {
  const std::size_t rest = characters % kGroup;
  return rest != 1 && rest != 3 && rest != 6;
}

}  // namespace

QNBase32 QNBase32::decode(std::string_view text) {
  QNBase32 result;
  result.bytes.reserve(text.size() * 5 / kGroup);
  std::size_t characters = 0;
  std::size_t padding = 0;
  bool isBroken = false;
  std::uint32_t group = 0;
  int bits = 0;
  for (const char c : text) {
    if (isBetweenCharacters(c)) continue;
    if (c == '=') {
      ++padding;
      continue;
    }
    const int value = valueOf(c);
    if (value == kForeign) return {Fault::foreignCharacter, {}};
    isBroken |= padding > 0;
    ++characters;
    group = group << 5 | static_cast<std::uint32_t>(value);
    bits += 5;
    if (bits < 8) continue;
    bits -= 8;
    result.bytes.push_back(static_cast<std::uint8_t>(group >> bits));
    group &= (1u << bits) - 1;
  }
  const std::size_t complete = (kGroup - characters % kGroup) % kGroup;
  if (isBroken || !canEndWith(characters) || padding > complete) return {Fault::brokenGroup, {}};
  return result;
}

}  // namespace quillon
