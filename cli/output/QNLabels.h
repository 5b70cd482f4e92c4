#pragma once

#include <span>
#include <string>
#include <string_view>

namespace quillon {

/// What the tool writes before values: "Created:    ", in the user's language, all of them equally
/// wide. The English text is the key, as in QNLocalization.
class QNLabels final {
 public:
  /// Wide enough for the longest of `keys`, and at least `width` columns.
  QNLabels(std::span<const std::string_view> keys, std::size_t width);
  [[nodiscard]] std::size_t width() const { return _width; }
  /// With a colon and blanks behind it.
  [[nodiscard]] std::string labelFor(std::string_view key) const;

 private:
  std::size_t _width;
};

}  // namespace quillon
