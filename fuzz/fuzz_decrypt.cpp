// Sealed messages. The first byte of the input says what is done with the rest:
//   even  it is opened, at once and as a stream, and both must come to the same end;
//   odd   3 bytes of bit number, 1 byte of how often the text is doubled, and a text: it is
//         sealed, must open again, and must not open with that bit flipped.
#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "quillon/platform/crypto/QNAESKey.h"

namespace {

using namespace quillon;

constexpr std::size_t kMaxText = 200'000;  // reaches the fourth segment

void require(bool truth) {
  if (!truth) std::abort();
}

// The raw bytes 0, 1, 2 and so on: the seeds are sealed under this key.
QNAESKeyRef fixedKey() {
  Bytes raw(QNAESKey::kRawKeySize);
  std::iota(raw.begin(), raw.end(), std::uint8_t{0});
  return QNAESKey::initWithRawKey(raw);
}

std::optional<Bytes> openedAsStream(const QNAESKey& key, ByteView sealed) {
  Bytes plain;
  const auto reader = [&](std::size_t count) {
    const ByteView front = sealed.first(std::min(count, sealed.size()));
    sealed = sealed.subspan(front.size());
    return std::optional(toBytes(front));
  };
  const auto writer = [&](ByteView more) {
    plain.insert(plain.end(), more.begin(), more.end());
    return true;
  };
  if (!key.decryptDataWithReader(reader, writer)) return std::nullopt;
  return plain;
}

void openBothWays(const QNAESKey& key, ByteView sealed) {
  const auto atOnce = key.decrypt(sealed);
  require(atOnce == openedAsStream(key, sealed));
  require(!atOnce || (isQNProfileEncrypted(sealed) && atOnce->size() < sealed.size()));
}

void sealAndSpoil(const QNAESKey& key, ByteView input) {
  if (input.size() < 4) return;
  std::size_t bit = std::size_t{input[0]} << 16 | std::size_t{input[1]} << 8 | input[2];
  Bytes text = toBytes(input.subspan(4));
  for (unsigned doublings = input[3] % 18; doublings > 0 && text.size() <= kMaxText / 2;
       --doublings) {
    const std::size_t size = text.size();
    text.resize(2 * size);
    std::copy_n(text.begin(), size, text.begin() + static_cast<std::ptrdiff_t>(size));
  }
  Bytes sealed = key.encrypt(text).value();
  require(key.decrypt(sealed) == text);
  require(openedAsStream(key, sealed) == text);
  bit %= sealed.size() * 8;
  sealed[bit / 8] = static_cast<std::uint8_t>(sealed[bit / 8] ^ 1u << bit % 8);
  require(!key.decrypt(sealed));
  require(!openedAsStream(key, sealed));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const QNAESKeyRef key = fixedKey();
  if (size == 0) return 0;
  const ByteView rest(data + 1, size - 1);
  data[0] % 2 == 0 ? openBothWays(*key, rest) : sealAndSpoil(*key, rest);
  return 0;
}
