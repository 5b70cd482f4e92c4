#pragma once
// Random bytes, base64 (RFC 4648), hexadecimal, SHA-256, and identifiers.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

/// `count` cryptographically random bytes.
Bytes mr_randomData(std::size_t count);
/// Fills `out` with random bytes, for nonces and identifiers. Small requests are served from a
/// batch that each thread keeps in ordinary memory; a forked child never sees its parent's batch.
void fillRandom(std::span<std::uint8_t> out);
/// Fills `out` with the bytes of a key. They come straight from the system's generator for private
/// values: no copy of them lies in a batch.
void fillRandomKey(std::span<std::uint8_t> out);
/// A random number below `bound`, without bias. `bound` is 1 or more.
std::uint32_t randomBelow(std::uint32_t bound);

std::string mr_base64encode(ByteView bytes);
/// Standard alphabet, padding required, no blanks. Nothing for any other text.
std::optional<Bytes> mr_base64decode(std::string_view text);
/// URL alphabet, no padding.
std::string mr_base64URLencode(ByteView bytes);
std::optional<Bytes> mr_base64URLdecode(std::string_view text);
/// The text in the URL alphabet without padding; a text that is that already stays as it is.
std::string mr_base64ToBase64URL(std::string_view text);

std::array<std::uint8_t, 32> sha256(ByteView bytes);
/// HMAC-SHA256, RFC 2104.
std::array<std::uint8_t, 32> hmacSHA256(ByteView key, ByteView bytes);
/// SHA-256 in 64 lower-case hexadecimal digits.
std::string mr_SHA256hex(ByteView bytes);
std::string hexText(ByteView bytes);
std::optional<Bytes> bytesFromHex(std::string_view text);
/// The bytes of a text, UTF-8.
Bytes mr_asData(std::string_view text);

/// RFC 9562 version 4, lower case, 36 characters.
std::string mr_uuid();
/// 128 random bits in 22 characters of base58 (no 0, O, I, l; none of our separators occurs).
std::string mr_shortUUID();

}  // namespace quillon
