#pragma once
// AES-256-GCM (NIST SP 800-38D), and XAES-256-GCM (C2SP): the same with a key derived for each
// message, so that 24 random bytes are a safe nonce for any number of messages under one key.
// No state outlives a call: every key schedule is wiped before the call returns.

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

inline constexpr std::size_t kGCMTagSize = 16;
inline constexpr std::size_t kXAESNonceSize = 24;

using QNCipherKey = std::span<const std::uint8_t, 32>;
using QNGCMNonce = std::span<const std::uint8_t, 12>;
using QNXAESNonce = std::span<const std::uint8_t, kXAESNonceSize>;

/// Writes the sealed text and its tag to `out`, which must be of plain.size() + 16 bytes. A nonce
/// must never come twice under one key. False for another size, or if OpenSSL fails (no memory):
/// `out` is then worth nothing.
[[nodiscard]] bool gcmSeal(QNCipherKey key, QNGCMNonce nonce, ByteView associated, ByteView plain,
                           std::span<std::uint8_t> out);
/// Writes the text to `out`, which must be of sealed.size() - 16 bytes. False, with `out` wiped,
/// for another size and for data that wasn't sealed with this key, nonce and associated data.
[[nodiscard]] bool gcmOpen(QNCipherKey key, QNGCMNonce nonce, ByteView associated, ByteView sealed,
                           std::span<std::uint8_t> out);

/// The AES key of one message, 32 bytes, wiped when it goes.
class QNMessageKey final {
 public:
  /// As XAES-256-GCM derives it from the first half of its nonce: two AES-CMAC blocks (NIST
  /// SP 800-108). Nothing if OpenSSL fails.
  static std::optional<QNMessageKey> derive(QNCipherKey key, QNGCMNonce nonceHead);
  QNMessageKey(QNMessageKey&&) noexcept = default;  // a copy of the bytes; both ends wipe theirs
  QNMessageKey& operator=(QNMessageKey&&) = delete;
  ~QNMessageKey() { wipe(_bytes.data(), _bytes.size()); }
  [[nodiscard]] QNCipherKey bytes() const noexcept { return _bytes; }

 private:
  QNMessageKey() = default;
  std::array<std::uint8_t, 32> _bytes{};
};

/// gcmSeal and gcmOpen for a random nonce of 24 bytes.
[[nodiscard]] bool xaesSeal(QNCipherKey key, QNXAESNonce nonce, ByteView associated, ByteView plain,
                            std::span<std::uint8_t> out);
[[nodiscard]] bool xaesOpen(QNCipherKey key, QNXAESNonce nonce, ByteView associated,
                            ByteView sealed, std::span<std::uint8_t> out);

}  // namespace quillon
