#pragma once
// What the tool says to a person, on standard error.

#include <string_view>

namespace quillon {

/// "quillon: MESSAGE" on a line of its own; what a terminal would obey in it is escaped.
void say(std::string_view message);
/// Exactly this text: a prompt, a progress bar.
void printRaw(std::string_view text);
[[nodiscard]] bool standardErrorIsTerminal() noexcept;

}  // namespace quillon
