#include "cli/output/QNColorText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

// The hue in sixths of the circle: red is 0, green 2, blue 4.
float sixthsOf(const std::array<float, 3>& rgb, float largest, float range) {
  const auto [red, green, blue] = rgb;
  if (range == 0) return 0;
  if (largest == red) return std::fmod((green - blue) / range + 6, 6.0F);
  if (largest == green) return (blue - red) / range + 2;
  return (red - green) / range + 4;
}

int byteOf(float component) {
  return static_cast<int>(std::lround(std::clamp(component, 0.0F, 1.0F) * 255));
}

}  // namespace

std::optional<QNColor> colorFromText(std::string_view text) {
  if (text.starts_with('#')) text.remove_prefix(1);
  const auto bytes = bytesFromHex(text);
  if (!bytes || bytes->size() != 3) return std::nullopt;
  std::array<float, 3> rgb{};
  std::transform(bytes->begin(), bytes->end(), rgb.begin(),
                 [](std::uint8_t byte) { return static_cast<float>(byte) / 255; });
  const float largest = *std::max_element(rgb.begin(), rgb.end());
  const float range = largest - *std::min_element(rgb.begin(), rgb.end());
  return QNColor{sixthsOf(rgb, largest, range) / 6, largest == 0 ? 0 : range / largest, largest, 1};
}

std::string textOfColor(const QNColor& color) {
  // Each component falls from the brightness with its distance from its own place on the circle.
  const auto component = [&color](float place) {
    const float distance = std::fmod(place + color.hue * 6, 6.0F);
    const float fall = std::clamp(std::min(distance, 4 - distance), 0.0F, 1.0F);
    return byteOf(color.brightness * (1 - color.saturation * fall));
  };
  return fmt::format("#{:02X}{:02X}{:02X}", component(5), component(3), component(1));
}

}  // namespace quillon
