#include "quillon/platform/crypto/internal/QNSegmentCipher.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

constexpr std::array<std::uint8_t, 4> kMagic{'Q', 'N', 'E', '1'};
constexpr std::ptrdiff_t kDerivationAt = 4;
constexpr std::ptrdiff_t kNonceAt = 16;
constexpr std::ptrdiff_t kAuthenticatedAt = 23;

bool hasMagic(ByteView data) {
  return data.size() >= kMagic.size() && std::equal(kMagic.begin(), kMagic.end(), data.begin());
}

}  // namespace

bool isQNProfileEncrypted(ByteView data) noexcept {
  return data.size() >= QNAESKey::kMinSealedSize && hasMagic(data);
}

QNSegmentCipher::QNSegmentCipher(const Head& head, QNMessageKey&& key)
    : _head(head), _key(std::move(key)), _associated{}, _nonce{} {
  const auto rest = std::copy(kMagic.begin(), kMagic.end(), _associated.begin());
  std::copy(_head.begin() + kAuthenticatedAt, _head.end(), rest);
  std::copy(_head.begin() + kNonceAt, _head.begin() + kAuthenticatedAt, _nonce.begin());
}

std::optional<QNSegmentCipher> QNSegmentCipher::make(const QNAESKey& key, const Head& head) {
  if (key.rawKey() == nullptr) return std::nullopt;
  const QNGCMNonce derivation(head.data() + kDerivationAt, 12);
  auto messageKey = QNMessageKey::derive(QNCipherKey(key.rawKey(), 32), derivation);
  if (!messageKey) return std::nullopt;
  return QNSegmentCipher(head, std::move(*messageKey));
}

std::optional<QNSegmentCipher> QNSegmentCipher::forNewMessage(const QNAESKey& key) {
  Head head{};
  const auto random = std::copy(kMagic.begin(), kMagic.end(), head.begin());
  fillRandom({random, head.end()});
  return make(key, head);
}

std::optional<QNSegmentCipher> QNSegmentCipher::forHead(const QNAESKey& key, ByteView bytes) {
  if (bytes.size() != kHeadSize || !hasMagic(bytes)) return std::nullopt;
  Head head{};
  std::copy(bytes.begin(), bytes.end(), head.begin());
  return make(key, head);
}

bool QNSegmentCipher::beginSegment(std::size_t plainSize, QNSegmentPlace place) {
  const std::size_t least = place == QNSegmentPlace::inside ? QNAESKey::kSegmentSize
                            : _next > 0                     ? 1
                                                            : 0;
  if (_ended || plainSize < least || plainSize > QNAESKey::kSegmentSize ||
      _next > std::numeric_limits<std::uint32_t>::max()) {
    return false;
  }
  for (std::size_t i = 0; i < 4; ++i) {
    _nonce[7 + i] = static_cast<std::uint8_t>(_next >> (24 - 8 * i));
  }
  _nonce[11] = static_cast<std::uint8_t>(place);
  ++_next;
  _ended = place == QNSegmentPlace::last;
  return true;
}

bool QNSegmentCipher::seal(ByteView plain, QNSegmentPlace place, std::span<std::uint8_t> out) {
  return beginSegment(plain.size(), place) &&
         gcmSeal(_key.bytes(), _nonce, _associated, plain, out);
}

bool QNSegmentCipher::open(ByteView sealed, QNSegmentPlace place, std::span<std::uint8_t> out) {
  return sealed.size() >= kGCMTagSize && beginSegment(sealed.size() - kGCMTagSize, place) &&
         gcmOpen(_key.bytes(), _nonce, _associated, sealed, out);
}

}  // namespace quillon
