#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// UTF-8 as libedit takes it, one wchar_t for each character, and back. What isn't UTF-8, or no
/// character, becomes U+FFFD.
std::wstring wideText(std::string_view text);
std::string textOfWide(std::wstring_view wide);

}  // namespace quillon
