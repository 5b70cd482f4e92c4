#pragma once

#include <cstdint>

namespace quillon {

/// Bookkeeping of an item of an account vault: which server version it is, and how often it was
/// edited here since.
struct H9ItemProperties {
  std::uint64_t itemVersion = 0;
  std::uint64_t localEditCount = 0;
};

}  // namespace quillon
