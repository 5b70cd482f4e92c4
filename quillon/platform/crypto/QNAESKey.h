#pragma once
// The key object of the local generation. Byte tables of every form: docs/formats.md.

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/memory/QNLockedMemory.h"

namespace quillon {

/// The password of the demonstration vault. A vault with it costs next to nothing to open, and
/// protects nothing.
inline constexpr std::string_view DEMO_PASSWORD = "try quillon";

class QNAESKey;
using QNAESKeyRef = std::shared_ptr<const QNAESKey>;

/// 64 raw bytes in locked memory: 32 for encryption, 32 for HMAC-SHA256. Immutable; any thread
/// may use one. A wrong key or damaged data gives nothing, and never an exception.
class QNAESKey final {
 public:
  static constexpr std::size_t kRawKeySize = 64;
  static constexpr std::size_t kWrappedKeySize = 112;
  static constexpr std::size_t kSaltSize = 16;
  /// Iteration counts (KiB of memory) that make a key at all.
  static constexpr std::uint32_t kMinIterations = 8;
  static constexpr std::uint32_t kMaxIterations = 1'048'576;
  /// Bounds of what calibration chooses.
  static constexpr std::uint32_t kMinCalibratedIterations = 65'536;
  static constexpr std::uint32_t kMaxCalibratedIterations = 262'144;
  /// Plain bytes of one segment of `encrypt` output.
  static constexpr std::size_t kSegmentSize = 65'536;
  /// Bytes that `encrypt` adds to up to one segment of plain text: 28 of head, 16 of tag.
  static constexpr std::size_t kMinSealedSize = 44;

  // Making: QNAESKey.cpp
  /// From key data, 64 or 256 bytes in this system. The same bytes give the same key. A key that
  /// opens and seals nothing from absent or empty data, or if OpenSSL fails.
  static QNAESKeyRef initWithKeyData(std::optional<ByteView> data);
  /// Argon2id over the NFKD form of the password. Null, before any work, for a password that isn't
  /// UTF-8, a count outside kMinIterations to kMaxIterations or a salt that isn't 16 bytes; null if
  /// memory is short. Code points that Unicode hasn't assigned yet may get another NFKD form in a
  /// later version: a password with one may fail to open there.
  static QNAESKeyRef initWithPassword(std::string_view password, ByteView salt,
                                      std::uint32_t iterations);
  static QNAESKeyRef initWithRandomKey();
  /// Rebuilds what rawKeyData() gave. Null for any other length than 64.
  static QNAESKeyRef initWithRawKey(ByteView rawKey);
  /// A count that takes about half a second here, within the calibrated bounds.
  static std::uint32_t calibrateForPassword(std::string_view password, ByteView salt);

  /// The 64 raw bytes, in locked memory; null for the key of absent data.
  [[nodiscard]] const std::uint8_t* rawKey() const noexcept;
  /// A copy of the raw bytes, in locked memory; empty for the key of absent data.
  [[nodiscard]] QNKeyBytes rawKeyData() const;

  // Sealing: QNAESKey.cpp
  [[nodiscard]] std::optional<Bytes> encrypt(ByteView plain) const;
  [[nodiscard]] std::optional<Bytes> decrypt(ByteView sealed) const;
  /// Wraps another key into 112 bytes.
  [[nodiscard]] std::optional<Bytes> encryptKey(const QNAESKey& key) const;
  [[nodiscard]] QNAESKeyRef decryptKey(ByteView wrapped) const;
  /// HMAC-SHA256 under the second half of the raw key. Nothing for the key of absent data.
  [[nodiscard]] std::optional<std::array<std::uint8_t, 32>> hmac(ByteView data) const;

  // Streaming: QNAESKey+Stream.cpp
  /// Gives up to `count` bytes, fewer only at the end, where it is called once more and must give
  /// none: bytes behind a short read are an error. Nothing on a read error.
  using Reader = std::function<std::optional<Bytes>(std::size_t count)>;
  /// Takes bytes; false stops the operation.
  using Writer = std::function<bool(ByteView)>;
  /// The form of encrypt(), segment by segment in bounded memory. No byte reaches the writer
  /// before its segment is verified; on failure false and an error, and what was written before
  /// is a verified beginning, to be thrown away.
  bool decryptDataWithReader(const Reader& reader, const Writer& writer,
                             QNError* error = nullptr) const;
  bool encryptDataWithReader(const Reader& reader, const Writer& writer,
                             QNError* error = nullptr) const;

  ~QNAESKey();
  QNAESKey(const QNAESKey&) = delete;
  QNAESKey& operator=(const QNAESKey&) = delete;

 private:
  struct Passkey {
    explicit Passkey() = default;  // so that {} is no way round it
  };

 public:
  QNAESKey(Passkey, QNKeyBytes raw);

 private:
  QNKeyBytes _raw;  // 64 bytes, or none
};

/// Has the buffer the shape of what a local vault encrypts? Told from its first bytes and its
/// length alone.
bool isQNProfileEncrypted(ByteView data) noexcept;

}  // namespace quillon
