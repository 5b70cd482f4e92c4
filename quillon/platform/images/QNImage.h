#pragma once

#include <memory>
#include <optional>
#include <string>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

/// An encoded picture: PNG or JPEG bytes.
class QNImage final {
 public:
  /// Null for bytes that begin neither as PNG nor as JPEG.
  static std::shared_ptr<const QNImage> imageWithData(ByteView encoded);
  [[nodiscard]] ByteView data() const noexcept { return _data; }

 private:
  explicit QNImage(Bytes data) : _data(std::move(data)) {}
  Bytes _data;
};

/// A colour in calibrated RGB, told by hue, saturation, brightness and alpha, each 0 to 1.
struct QNColor {
  float hue = 0, saturation = 0, brightness = 0, alpha = 1;
  friend bool operator==(const QNColor&, const QNColor&) = default;
};

}  // namespace quillon
