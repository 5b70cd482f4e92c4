#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/arguments/QNCommandOutline.h"

namespace quillon {

/// Stands in a history for a value that it doesn't keep. The shell runs no line that has it.
inline constexpr std::string_view kHiddenValue = "‹hidden›";

/// What the history keeps of a line. Names of items, fields, tags, folders, vaults and files stay;
/// every other value of an option is hidden, the one of an option that isn't known too, and so is
/// what stands behind "=" in a word. Nothing of a line that begins with a blank, that can't be
/// read, or whose first word is no command: it may be a password that was typed into the wrong
/// place.
std::optional<std::string> historyLineOf(std::string_view line,
                                         const std::vector<QNCommandOutline>& outlines);

}  // namespace quillon
