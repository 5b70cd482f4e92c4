#pragma once

#include <cstdint>
#include <string>

namespace quillon {

/// How many items something holds, in the user's language: "empty", "1 item", "1,234 items".
std::string localizedItemCount(std::uint64_t count);

}  // namespace quillon
