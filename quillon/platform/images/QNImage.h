#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

// What is read of foreign pictures at all: everything is refused before work or memory grows with
// what a file only claims.
/// Longest encoded picture, in bytes; of an SVG, which costs by what it draws.
inline constexpr std::size_t kMaxImageBytes = std::size_t{32} << 20;
inline constexpr std::size_t kMaxSVGBytes = std::size_t{64} << 10;
/// Most pixels of a picture that is decoded or drawn, and the longest side, in pixels.
inline constexpr double kMaxImagePixels = 4096.0 * 4096.0;
inline constexpr double kMaxImageSide = 32767;

/// Width and height, in points unless told otherwise.
struct QNSize {
  double width = 0, height = 0;
  friend bool operator==(const QNSize&, const QNSize&) = default;
};

enum class QNImageFormat { png, jpeg, svg };

/// Encoded bytes and what their header tells; never changed, shared by copies of an image.
struct QNImageSource {
  QNImageFormat format{};
  Bytes data;
  /// In pixels; an SVG may tell fractions of them.
  QNSize size;
  /// What drawing an SVG costs: plain fills for each pixel, and edges at its own size.
  double fillsPerPixel = 1, edges = 0;
};

/// An encoded picture (PNG, JPEG or SVG) with a size to show it at. A shared value: "setting" makes
/// a copy that shares the bytes. Making one reads the header alone, without the image stack, so it
/// says nothing about the pixels: those may be damaged.
class QNImage final {
 public:
  /// Null for bytes of another format. Null, with an error log, for a header that can't be read,
  /// for more than kMaxImageBytes, and for an SVG that is more than plain shapes (README.md).
  static std::shared_ptr<const QNImage> imageWithData(ByteView encoded);

  [[nodiscard]] ByteView data() const noexcept { return _source->data; }
  [[nodiscard]] const QNImageSource& source() const noexcept { return *_source; }
  /// Whole pixels as encoded; an SVG's size rounded up. At least 1.
  [[nodiscard]] std::uint32_t pixelWidth() const noexcept;
  [[nodiscard]] std::uint32_t pixelHeight() const noexcept;
  /// Are there pixels that can be read? False for a picture that is too large to decode; an SVG is
  /// drawn at the size that is asked for.
  [[nodiscard]] bool hasRepresentation() const noexcept;

  /// Points; as many as pixels at first. What files say about dots per inch is left aside.
  [[nodiscard]] QNSize size() const noexcept { return _size; }
  /// Null for a size that isn't finite and above zero. Pixels stay as they are.
  [[nodiscard]] std::shared_ptr<const QNImage> imageWithSize(QNSize size) const;

  /// A template image is a shape to fill with the colour of its surroundings.
  [[nodiscard]] bool isTemplate() const noexcept { return _template; }
  [[nodiscard]] std::shared_ptr<const QNImage> imageWithTemplate(bool isTemplate) const;

 private:
  explicit QNImage(std::shared_ptr<const QNImageSource> source)
      : _source(std::move(source)), _size(_source->size) {}

  std::shared_ptr<const QNImageSource> _source;  // never null
  QNSize _size;
  bool _template = false;
};

/// The picture Icons/NAME.svg of the resource folder, read once and then shared. Null for a name
/// that there is no file for, that isn't made of ASCII letters, digits, '-' and '_', or whose file
/// is no picture. Any thread.
std::shared_ptr<const QNImage> mr_imageNamed(std::string_view name);

/// A colour in calibrated RGB, told by hue, saturation, brightness and alpha, each 0 to 1.
struct QNColor {
  float hue = 0, saturation = 0, brightness = 0, alpha = 1;
  friend bool operator==(const QNColor&, const QNColor&) = default;
};

}  // namespace quillon
