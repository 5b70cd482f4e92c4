#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon {

/// The text with everything escaped that a terminal might obey, or that would show as something
/// else than it is: control characters (\x1b, \n), marks of writing direction and line separators
/// (\u{202e}), bytes that aren't UTF-8 (\xff). The rest stays as it is, backslashes too.
std::string shownText(std::string_view text);
/// The same, but new lines and tabs stay.
std::string shownLines(std::string_view text);

/// Columns that a terminal takes for a shown text.
std::size_t shownWidth(std::string_view text);
/// Blanks behind a shown text up to `width` columns.
std::string padded(std::string text, std::size_t width);

}  // namespace quillon
