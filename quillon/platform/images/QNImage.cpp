#include "quillon/platform/images/QNImage.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

template <std::size_t N>
bool beginsWith(ByteView bytes, const std::array<std::uint8_t, N>& magic) {
  return bytes.size() >= N && std::equal(magic.begin(), magic.end(), bytes.begin());
}

}  // namespace

std::shared_ptr<const QNImage> QNImage::imageWithData(ByteView encoded) {
  constexpr std::array<std::uint8_t, 8> png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  constexpr std::array<std::uint8_t, 3> jpeg{0xff, 0xd8, 0xff};
  if (!beginsWith(encoded, png) && !beginsWith(encoded, jpeg)) return nullptr;
  return std::shared_ptr<const QNImage>(new QNImage(toBytes(encoded)));
}

}  // namespace quillon
