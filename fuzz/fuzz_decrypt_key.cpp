// Wrapped keys. The first byte of the input says what is done with the rest:
//   even  it is unwrapped;
//   odd   2 bytes of bit number, and the raw bytes of a key: it is wrapped, must unwrap to the
//         same key, and must not unwrap with that bit flipped.
#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "quillon/platform/crypto/QNAESKey.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

// The raw bytes 0, 1, 2 and so on: the seeds are wrapped under this key.
QNAESKeyRef fixedKey() {
  Bytes raw(QNAESKey::kRawKeySize);
  std::iota(raw.begin(), raw.end(), std::uint8_t{0});
  return QNAESKey::initWithRawKey(raw);
}

void unwrap(const QNAESKey& key, ByteView wrapped) {
  const auto unwrapped = key.decryptKey(wrapped);
  if (unwrapped == nullptr) return;
  require(wrapped.size() == QNAESKey::kWrappedKeySize);
  require(unwrapped->rawKeyData().size() == QNAESKey::kRawKeySize);
}

void wrapAndSpoil(const QNAESKey& key, ByteView input) {
  if (input.size() < 2) return;
  const std::size_t bit = (std::size_t{input[0]} << 8 | input[1]) % (QNAESKey::kWrappedKeySize * 8);
  Bytes raw = toBytes(input.subspan(2));
  raw.resize(QNAESKey::kRawKeySize, 0);
  const auto item = QNAESKey::initWithRawKey(raw);
  Bytes wrapped = key.encryptKey(*item).value();
  const auto unwrapped = key.decryptKey(wrapped);
  require(unwrapped != nullptr && unwrapped->rawKeyData() == item->rawKeyData());
  wrapped[bit / 8] = static_cast<std::uint8_t>(wrapped[bit / 8] ^ 1u << bit % 8);
  require(key.decryptKey(wrapped) == nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const QNAESKeyRef key = fixedKey();
  if (size == 0) return 0;
  const ByteView rest(data + 1, size - 1);
  data[0] % 2 == 0 ? unwrap(*key, rest) : wrapAndSpoil(*key, rest);
  return 0;
}
