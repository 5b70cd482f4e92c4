#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quillon {

/// The text with everything escaped that a terminal might obey, or that would show as something
/// else than it is: control characters (\x1b, \n), marks of writing direction and line separators
/// (\u{202e}), bytes that aren't UTF-8 (\xff). The rest stays as it is, backslashes too.
std::string shownText(std::string_view text);
/// The same, but new lines and tabs stay.
std::string shownLines(std::string_view text);
/// The same for a text that Quillon's tables or the language itself wrote: its plain marks of
/// direction (U+200E, U+200F, U+061C), which stand in Arabic dates, stay, too.
std::string shownOwnLines(std::string_view text);
/// Hands on a JSON text, piece by piece, with what shownText() escapes written as JSON does it
/// (\u202e): the value stays the same. Bytes that aren't UTF-8, which JSON has no form for, become
/// \ufffd.
void writeShownJson(std::string_view json, const std::function<void(std::string_view)>& write);
/// Without the pair of marks around the whole text (U+2066, U+2069) that keeps it from left to
/// right in a language from right to left. A terminal's line needs none, and would show them
/// escaped.
std::string_view withoutIsolation(std::string_view text);

/// Columns of a list's titles; a longer title pushes what follows it, where it isn't cut.
inline constexpr std::size_t kTitleWidth = 40;
/// Columns that a terminal takes for a shown text.
std::size_t shownWidth(std::string_view text);
/// As much of a shown text as `columns` hold; marks stay with their letter.
std::string_view cutToWidth(std::string_view text, std::size_t columns);
/// Blanks behind a shown text up to `width` columns.
std::string padded(std::string text, std::size_t width);

}  // namespace quillon
