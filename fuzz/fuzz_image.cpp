// Pictures: whatever the bytes are, an image has a size, and drawing it small gives a PNG of that
// size or nothing.
#include <cmath>
#include <cstdlib>

#include "quillon/platform/images/QNImageOperations.h"
#include "quillon/platform/log/MRLogger.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

void exercise(const std::shared_ptr<const QNImage>& image) {
  const QNSize size = image->size();
  require(std::isfinite(size.width) && size.width > 0);
  require(std::isfinite(size.height) && size.height > 0);
  require(image->pixelWidth() > 0 && image->pixelHeight() > 0);
  // Large ones take their time, and are no different.
  if (std::uint64_t{image->pixelWidth()} * image->pixelHeight() > 1 << 20) return;
  const auto small = image->imageWithSize({16, 16});
  const auto png = QNImagePNGRepresentation(small);
  if (!png) return;
  const auto drawn = QNImage::imageWithData(*png);
  require(drawn != nullptr && drawn->source().format == QNImageFormat::png);
  require(drawn->pixelWidth() <= 16 && drawn->pixelHeight() <= 16);
  const auto again = QNImagePNGRepresentation(drawn);
  require(again == png);
  require(QNImageJPGRepresentation(drawn, 0.4f).has_value());
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  MRLogger::sharedLogger().setSink({});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (const auto image = QNImage::imageWithData({data, size})) exercise(image);
  return 0;
}
