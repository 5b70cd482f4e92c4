#pragma once

#include <cstdint>
#include <limits>

namespace quillon {

/// "Not found" for an index, and "never" for a number of days.
inline constexpr std::int64_t kNotFound = std::numeric_limits<std::int64_t>::max();

}  // namespace quillon
