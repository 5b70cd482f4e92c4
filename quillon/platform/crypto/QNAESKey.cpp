#include "quillon/platform/crypto/QNAESKey.h"

#include <algorithm>
#include <utility>

#include "quillon/platform/crypto/internal/QNAESGCM.h"
#include "quillon/platform/crypto/internal/QNKeyDerivation.h"
#include "quillon/platform/crypto/internal/QNSegmentCipher.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"

// The stored form of encryptKey(), 112 bytes:
//
//   offset  size  meaning
//   0       8     "QNKEY", 0, 0, and the version, 1: the associated data
//   8       24    random: the nonce
//   32      80    the 64 raw bytes, sealed with XAES-256-GCM, and the 16-byte tag

namespace quillon {
namespace {

constexpr std::string_view kKeyDataInfo = "quillon key data 1";
constexpr std::array<std::uint8_t, 8> kWrapHead{'Q', 'N', 'K', 'E', 'Y', 0, 0, 1};
constexpr std::size_t kWrapNonceAt = kWrapHead.size();
constexpr std::size_t kWrapSealedAt = kWrapNonceAt + kXAESNonceSize;
static_assert(kWrapSealedAt + QNAESKey::kRawKeySize + kGCMTagSize == QNAESKey::kWrappedKeySize);
static_assert(QNSegmentCipher::kHeadSize + kGCMTagSize == QNAESKey::kMinSealedSize);

QNCipherKey encryptionKey(const QNKeyBytes& raw) {
  return QNCipherKey(raw.data(), 32);
}
ByteView hmacKey(const QNKeyBytes& raw) {
  return ByteView(raw).subspan(32);
}

// Takes up to `size` bytes off the front of `rest`.
template <class Byte>
std::span<Byte> take(std::span<Byte>& rest, std::size_t size) {
  const std::span<Byte> front = rest.first(std::min(rest.size(), size));
  rest = rest.subspan(front.size());
  return front;
}

// An empty text has a segment too.
std::size_t segmentCount(std::size_t size, std::size_t segmentSize) {
  return std::max<std::size_t>(1, size / segmentSize + (size % segmentSize != 0));
}

QNSegmentPlace placeBefore(ByteView rest) {
  return rest.empty() ? QNSegmentPlace::last : QNSegmentPlace::inside;
}

}  // namespace

QNAESKey::QNAESKey(Passkey, QNKeyBytes raw) : _raw(std::move(raw)) {}
QNAESKey::~QNAESKey() = default;

QNAESKeyRef QNAESKey::initWithKeyData(std::optional<ByteView> data) {
  // Key data that is empty would give a key that everybody knows: it counts as absent.
  if (!data || data->empty()) return std::make_shared<QNAESKey>(Passkey(), QNKeyBytes());
  return std::make_shared<QNAESKey>(Passkey(),
                                    hkdf("SHA512", *data, {}, bytesOf(kKeyDataInfo), kRawKeySize));
}

QNAESKeyRef QNAESKey::initWithPassword(std::string_view password, ByteView salt,
                                       std::uint32_t iterations) {
  if (iterations < kMinIterations || iterations > kMaxIterations || salt.size() != kSaltSize) {
    return nullptr;
  }
  QNKeyBytes raw = argon2id(password, salt, iterations, kRawKeySize);
  if (raw.empty()) return nullptr;
  return std::make_shared<QNAESKey>(Passkey(), std::move(raw));
}

QNAESKeyRef QNAESKey::initWithRandomKey() {
  QNKeyBytes raw(kRawKeySize);
  fillRandomKey(raw);
  return std::make_shared<QNAESKey>(Passkey(), std::move(raw));
}

QNAESKeyRef QNAESKey::initWithRawKey(ByteView rawKey) {
  if (rawKey.size() != kRawKeySize) return nullptr;
  return std::make_shared<QNAESKey>(Passkey(), QNKeyBytes(rawKey.begin(), rawKey.end()));
}

std::uint32_t QNAESKey::calibrateForPassword(std::string_view password, ByteView salt) {
  const double start = steadySeconds();
  const auto key = initWithPassword(password, salt, kMinCalibratedIterations);
  return key == nullptr ? kMinCalibratedIterations : calibratedIterations(steadySeconds() - start);
}

const std::uint8_t* QNAESKey::rawKey() const noexcept {
  return _raw.empty() ? nullptr : _raw.data();
}

QNKeyBytes QNAESKey::rawKeyData() const {
  return _raw;
}

std::optional<Bytes> QNAESKey::encrypt(ByteView plain) const {
  auto message = QNSegmentCipher::forNewMessage(*this);
  if (!message) return std::nullopt;
  const std::size_t tags = segmentCount(plain.size(), kSegmentSize) * kGCMTagSize;
  Bytes sealed(QNSegmentCipher::kHeadSize + plain.size() + tags);
  std::span<std::uint8_t> out(sealed);
  std::copy(message->head().begin(), message->head().end(),
            take(out, QNSegmentCipher::kHeadSize).begin());
  do {
    const ByteView segment = take(plain, kSegmentSize);
    if (!message->seal(segment, placeBefore(plain), take(out, segment.size() + kGCMTagSize))) {
      return std::nullopt;
    }
  } while (!plain.empty());
  return sealed;
}

std::optional<Bytes> QNAESKey::decrypt(ByteView sealed) const {
  if (!isQNProfileEncrypted(sealed)) return std::nullopt;
  auto message = QNSegmentCipher::forHead(*this, take(sealed, QNSegmentCipher::kHeadSize));
  if (!message) return std::nullopt;
  const std::size_t tags =
      segmentCount(sealed.size(), QNSegmentCipher::kSealedSegmentSize) * kGCMTagSize;
  Bytes plain(sealed.size() - tags);
  std::span<std::uint8_t> out(plain);
  do {
    const ByteView segment = take(sealed, QNSegmentCipher::kSealedSegmentSize);
    // A last segment cut to less than its tag makes `out` too small for the one before: open()
    // refuses an `out` that doesn't fit.
    if (segment.size() < kGCMTagSize ||
        !message->open(segment, placeBefore(sealed), take(out, segment.size() - kGCMTagSize))) {
      return std::nullopt;
    }
  } while (!sealed.empty());
  return plain;
}

std::optional<Bytes> QNAESKey::encryptKey(const QNAESKey& key) const {
  if (_raw.empty() || key._raw.empty()) return std::nullopt;
  Bytes wrapped(kWrappedKeySize);
  std::copy(kWrapHead.begin(), kWrapHead.end(), wrapped.begin());
  const std::span<std::uint8_t, kXAESNonceSize> nonce(wrapped.data() + kWrapNonceAt,
                                                      kXAESNonceSize);
  fillRandom(nonce);
  if (!xaesSeal(encryptionKey(_raw), nonce, kWrapHead, key._raw,
                std::span(wrapped).subspan(kWrapSealedAt))) {
    return std::nullopt;
  }
  return wrapped;
}

QNAESKeyRef QNAESKey::decryptKey(ByteView wrapped) const {
  if (_raw.empty() || wrapped.size() != kWrappedKeySize ||
      !std::equal(kWrapHead.begin(), kWrapHead.end(), wrapped.begin())) {
    return nullptr;
  }
  const QNXAESNonce nonce(wrapped.data() + kWrapNonceAt, kXAESNonceSize);
  QNKeyBytes raw(kRawKeySize);
  if (!xaesOpen(encryptionKey(_raw), nonce, kWrapHead, wrapped.subspan(kWrapSealedAt), raw)) {
    return nullptr;
  }
  return std::make_shared<QNAESKey>(Passkey(), std::move(raw));
}

std::optional<std::array<std::uint8_t, 32>> QNAESKey::hmac(ByteView data) const {
  if (_raw.empty()) return std::nullopt;
  return hmacSHA256(hmacKey(_raw), data);
}

}  // namespace quillon
