#include "quillon/platform/images/QNImage.h"

#include <algorithm>
#include <cmath>

#include "quillon/platform/images/internal/QNImageHeader.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

std::uint32_t wholePixels(double length) noexcept {
  return static_cast<std::uint32_t>(std::max(1.0, std::ceil(length)));
}

std::shared_ptr<const QNImage> refused(const QNError& why) {
  log_error(DEBUG_IMAGESERVICE, "Failed to read a picture: {}", why.message);
  return nullptr;
}

}  // namespace

std::shared_ptr<const QNImage> QNImage::imageWithData(ByteView encoded) {
  const auto format = imageFormatOf(encoded);
  if (!format) return nullptr;
  const auto header = readImageHeader(encoded, *format);
  if (!header) return refused(header.error());
  const auto& [size, fillsPerPixel, edges] = header.value();
  return std::shared_ptr<const QNImage>(new QNImage(std::make_shared<const QNImageSource>(
      QNImageSource{*format, toBytes(encoded), size, fillsPerPixel, edges})));
}

std::uint32_t QNImage::pixelWidth() const noexcept {
  return wholePixels(_source->size.width);
}

std::uint32_t QNImage::pixelHeight() const noexcept {
  return wholePixels(_source->size.height);
}

bool QNImage::hasRepresentation() const noexcept {
  if (_source->format == QNImageFormat::svg) return true;  // drawn at the size that is asked for
  const double width = pixelWidth(), height = pixelHeight();
  return width <= kMaxImageSide && height <= kMaxImageSide && width * height <= kMaxImagePixels;
}

std::shared_ptr<const QNImage> QNImage::imageWithSize(QNSize size) const {
  const auto usable = [](double length) { return std::isfinite(length) && length > 0; };
  if (!usable(size.width) || !usable(size.height)) return nullptr;
  const std::shared_ptr<QNImage> copy(new QNImage(*this));
  copy->_size = size;
  return copy;
}

std::shared_ptr<const QNImage> QNImage::imageWithTemplate(bool isTemplate) const {
  const std::shared_ptr<QNImage> copy(new QNImage(*this));
  copy->_template = isTemplate;
  return copy;
}

}  // namespace quillon
