#include "quillon/platform/images/QNImageOperations.h"

#include <algorithm>
#include <cmath>

#include "quillon/platform/images/internal/QNDrawingLibrary.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

/// Layers of an SVG are as large as the result, and there may be 16 of them.
constexpr double kMaxSVGPixels = 2048.0 * 2048.0;
/// Pixels filled for one SVG, a gradient's counted several times; some seconds at the worst.
constexpr double kMaxSVGFills = 512.0 * 1024 * 1024;
/// Edges that its curves are cut into; some seconds at the worst.
constexpr double kMaxSVGEdges = 400'000;

std::optional<Bytes> refused(std::string_view why) {
  log_error(DEBUG_IMAGESERVICE, "Failed to draw a picture: {}", why);
  return std::nullopt;
}

bool costsTooMuch(const QNImageSource& svg, QNSize pixels) {
  const double growth = std::max(pixels.width / svg.size.width, pixels.height / svg.size.height);
  return pixels.width * pixels.height * svg.fillsPerPixel > kMaxSVGFills ||
         svg.edges * std::sqrt(growth) > kMaxSVGEdges;
}

/// Why a result of this size isn't even begun; empty if nothing speaks against it.
std::string_view reasonAgainst(const QNImage& image, QNSize pixels) {
  if (!image.hasRepresentation()) return "it has too many pixels";
  const bool svg = image.source().format == QNImageFormat::svg;
  if (pixels.width > kMaxImageSide || pixels.height > kMaxImageSide ||
      pixels.width * pixels.height > (svg ? kMaxSVGPixels : kMaxImagePixels)) {
    return "too many pixels are asked for";
  }
  if (svg && costsTooMuch(image.source(), pixels)) return "it is an SVG of too much to draw";
  return {};
}

std::optional<Bytes> drawn(const QNImage& image, QNSize pixels, QNDrawingOrder order) {
  pixels = {std::max(1.0, std::round(pixels.width)), std::max(1.0, std::round(pixels.height))};
  const std::string_view reason = reasonAgainst(image, pixels);
  if (!reason.empty()) return refused(reason);
  order.source = &image.source();
  order.width = static_cast<std::uint32_t>(pixels.width);
  order.height = static_cast<std::uint32_t>(pixels.height);
  auto result = QNDrawingLibrary::shared().draw(order);
  if (!result) return refused(result.error().message);
  return std::move(result).value();
}

/// What to multiply with so that it fits into `room`; infinite or not a number if nothing does.
double scaleInto(QNSize size, QNSize room) {
  return std::min(room.width / size.width, room.height / size.height);
}

QNSize scaled(QNSize size, double scale) {
  return {size.width * scale, size.height * scale};
}

QNSize representedPixels(const QNImage& image) {
  const QNSize own = image.source().size;
  const double scale = scaleInto(own, image.size());
  return scaled(own, image.source().format == QNImageFormat::svg ? scale : std::min(1.0, scale));
}

}  // namespace

std::optional<Bytes> QNImagePNGRepresentation(const std::shared_ptr<const QNImage>& image) {
  if (image == nullptr) return std::nullopt;
  return drawn(*image, representedPixels(*image), {});
}

std::optional<Bytes> QNImageJPGRepresentation(const std::shared_ptr<const QNImage>& image,
                                              float quality) {
  if (image == nullptr) return std::nullopt;
  QNDrawingOrder order;
  order.encoding = QNImageFormat::jpeg;
  const float bounded = quality > 0 ? std::min(quality, 1.0f) : 0;  // of a NaN too
  order.quality = static_cast<int>(std::lround(bounded * 100));
  return drawn(*image, representedPixels(*image), std::move(order));
}

std::shared_ptr<const QNImage> mr_imageByScalingProportionallyToSize(
    const std::shared_ptr<const QNImage>& image, QNSize size, const QNPixelPass& prePass,
    const QNPixelPass& postPass, double backingScale) {
  if (image == nullptr) return nullptr;
  const auto usable = [](double number) { return std::isfinite(number) && number > 0; };
  if (!usable(size.width) || !usable(size.height) || !usable(backingScale)) {
    refused("its new size isn't above zero");
    return nullptr;
  }
  const QNSize own = image->size();
  const QNSize points = scaled(own, scaleInto(own, size));
  QNDrawingOrder order;
  order.prePass = prePass;
  order.postPass = postPass;
  const auto png = drawn(*image, scaled(points, backingScale), std::move(order));
  const auto result = png ? QNImage::imageWithData(*png) : nullptr;
  if (result == nullptr) return nullptr;
  return result
      ->imageWithSize({result->pixelWidth() / backingScale, result->pixelHeight() / backingScale})
      ->imageWithTemplate(image->isTemplate());
}

}  // namespace quillon
