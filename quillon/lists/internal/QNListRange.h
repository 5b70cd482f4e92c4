#pragma once

#include <cstdlib>
#include <string_view>

#include "quillon/platform/log/MRLogger.h"

namespace quillon {

/// An index beyond the end, where the caller promised that it isn't, ends the process: what would
/// be changed in its place is somebody's data.
inline void requireIndex(std::size_t index, std::size_t count, std::string_view object) {
  if (index < count) return;
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, object, "index {} beyond the last of {}",
                                     index, count);
  std::abort();
}

}  // namespace quillon
