#pragma once

#include <fmt/core.h>

#include <string>

namespace quillon {

/// "{}" placeholders filled in, checked when it is compiled. For the folders above, which see no
/// library of others.
template <class... Args>
std::string formatted(fmt::format_string<Args...> format, Args&&... args) {
  return fmt::format(format, std::forward<Args>(args)...);
}

}  // namespace quillon
