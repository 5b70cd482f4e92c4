// The form: "1:", then the base64 of the text's bytes, byte i (from 0) XORed with the low eight
// bits of 0xA7 + 31 * i.

#include "quillon/platform/passwords/QNObfuscation.h"

#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

constexpr std::string_view kVersion = "1:";

void scramble(Bytes& bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] ^= static_cast<std::uint8_t>(0xA7 + 31 * i);
  }
}

}  // namespace

QNSecret persistentObfuscatedString(std::string_view text) {
  Bytes bytes = toBytes(bytesOf(text));
  scramble(bytes);
  QNSecret scrambled(kVersion);
  std::string encoded = mr_base64encode(bytes);
  scrambled.append(encoded);
  wipe(encoded.data(), encoded.size());
  return scrambled;
}

std::optional<QNSecret> persistentDeobfuscatedString(std::string_view scrambled) {
  if (!scrambled.starts_with(kVersion)) return std::nullopt;
  auto bytes = mr_base64decode(scrambled.substr(kVersion.size()));
  if (!bytes) return std::nullopt;
  scramble(*bytes);
  return QNSecret(textOf(*bytes));
}

}  // namespace quillon
