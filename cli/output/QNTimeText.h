#pragma once

#include <cstdint>
#include <string>

namespace quillon {

/// That moment, in seconds since 1970, as "2026-11-21 04:32:00" of the user's time zone; "" for 0,
/// which is no moment.
std::string timeText(std::uint64_t seconds);

}  // namespace quillon
