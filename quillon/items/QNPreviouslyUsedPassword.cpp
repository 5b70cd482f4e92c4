#include "quillon/items/QNPreviouslyUsedPassword.h"

#include <functional>
#include <limits>

namespace quillon {

QNPreviouslyUsedPassword QNPreviouslyUsedPassword::clone() const {
  return {_value ? std::optional<QNSecret>(_value->clone()) : std::nullopt, _retiredAt};
}

bool QNPreviouslyUsedPassword::isEqualToPreviouslyUsedPassword(
    const QNPreviouslyUsedPassword& other) const {
  if (_retiredAt != other._retiredAt || _value.has_value() != other._value.has_value()) {
    return false;
  }
  return !_value || _value->equals(*other._value);
}

// All ones stands for "no time" and counts as 0.
std::size_t QNPreviouslyUsedPassword::hash() const {
  const std::uint64_t time =
      _retiredAt == std::numeric_limits<std::uint64_t>::max() ? 0 : _retiredAt;
  return (_value ? std::hash<std::string_view>()(_value->reveal()) : 0) ^ time;
}

}  // namespace quillon
