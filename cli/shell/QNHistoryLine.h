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
/// every other word and value of an option is hidden: what is searched for, addresses, predicates,
/// contents, and what stands behind "=" in a word. Of a line that its command doesn't take the
/// command's name alone. Nothing of a line that begins with a blank, that can't be cut into words,
/// or whose first word is no command: it may be a password that was typed into the wrong place.
std::optional<std::string> historyLineOf(std::string_view line,
                                         const std::vector<QNCommandOutline>& outlines);

}  // namespace quillon
