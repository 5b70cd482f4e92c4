#include "quillon/platform/data/MRData.h"

// The low-level SHA-256: the provider interface costs several times the hash itself for the
// short messages that are hashed here by the hundred thousand.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/sha.h>

#include <algorithm>

namespace quillon {
namespace {

constexpr std::string_view kStandardAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kURLAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

std::string encode64(ByteView bytes, std::string_view alphabet, bool padded) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8 | (k < count ? bytes[i + k] : std::uint8_t{0});
    }
    for (std::size_t k = 0; k <= count; ++k) text += alphabet[group >> (18 - 6 * k) & 63];
  }
  if (padded) text.append((4 - text.size() % 4) % 4, '=');
  return text;
}

// The value of each character; kNoDigit for those outside the alphabet.
using DigitValues = std::array<std::uint8_t, 256>;
constexpr std::uint8_t kNoDigit = 64;

constexpr DigitValues valuesOf(std::string_view alphabet) {
  DigitValues values{};
  for (std::uint8_t& value : values) value = kNoDigit;
  for (std::size_t i = 0; i < alphabet.size(); ++i) {
    values[static_cast<std::uint8_t>(alphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}
constexpr DigitValues kStandardValues = valuesOf(kStandardAlphabet);
constexpr DigitValues kURLValues = valuesOf(kURLAlphabet);

// The last group's unused bits must be 0, so that each byte string has exactly one text.
std::optional<Bytes> decode64(std::string_view digits, const DigitValues& values) {
  if (digits.size() % 4 == 1) return std::nullopt;
  Bytes bytes;
  bytes.reserve(digits.size() * 3 / 4);
  std::uint32_t group = 0;
  int bits = 0;
  for (const char digit : digits) {
    const std::uint8_t value = values[static_cast<std::uint8_t>(digit)];
    if (value == kNoDigit) return std::nullopt;
    group = group << 6 | value;
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    bytes.push_back(static_cast<std::uint8_t>(group >> bits));
    group &= (1u << bits) - 1;
  }
  if (group != 0) return std::nullopt;
  return bytes;
}

}  // namespace

std::string mr_base64encode(ByteView bytes) {
  return encode64(bytes, kStandardAlphabet, true);
}

std::optional<Bytes> mr_base64decode(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  const std::size_t padding =
      std::min<std::size_t>(2, text.size() - text.find_last_not_of('=') - 1);
  return decode64(text.substr(0, text.size() - padding), kStandardValues);
}

std::string mr_base64URLencode(ByteView bytes) {
  return encode64(bytes, kURLAlphabet, false);
}

std::optional<Bytes> mr_base64URLdecode(std::string_view text) {
  return decode64(text, kURLValues);
}

std::string mr_base64ToBase64URL(std::string_view text) {
  std::string url(text.substr(0, text.find_last_not_of('=') + 1));
  std::replace(url.begin(), url.end(), '+', '-');
  std::replace(url.begin(), url.end(), '/', '_');
  return url;
}

std::array<std::uint8_t, 32> sha256(ByteView bytes) {
  std::array<std::uint8_t, 32> digest{};
  SHA256_CTX context;
  SHA256_Init(&context);
  SHA256_Update(&context, bytes.data(), bytes.size());
  SHA256_Final(digest.data(), &context);
  wipe(&context, sizeof context);
  return digest;
}

std::array<std::uint8_t, 32> hmacSHA256(ByteView key, ByteView bytes) {
  std::array<std::uint8_t, 64> block{};
  if (key.size() > block.size()) {
    const auto digest = sha256(key);
    std::copy(digest.begin(), digest.end(), block.begin());
  } else {
    std::copy(key.begin(), key.end(), block.begin());
  }
  std::array<std::uint8_t, 32> digest{};
  SHA256_CTX context;
  const auto pass = [&](std::uint8_t pad, ByteView message) {
    for (std::uint8_t& byte : block) byte = static_cast<std::uint8_t>(byte ^ pad);
    SHA256_Init(&context);
    SHA256_Update(&context, block.data(), block.size());
    SHA256_Update(&context, message.data(), message.size());
    SHA256_Final(digest.data(), &context);
  };
  pass(0x36, bytes);
  pass(0x36 ^ 0x5c, digest);
  wipe(block.data(), block.size());
  wipe(&context, sizeof context);
  return digest;
}

std::string hexText(ByteView bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

std::optional<Bytes> bytesFromHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  const auto digit = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  };
  Bytes bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = digit(text[i]);
    const int low = digit(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
  }
  return bytes;
}

std::string mr_SHA256hex(ByteView bytes) {
  return hexText(sha256(bytes));
}

Bytes mr_asData(std::string_view text) {
  return toBytes(bytesOf(text));
}

}  // namespace quillon
