#pragma once

#include <optional>
#include <string_view>

#include "quillon/organisation/predicates/QNPredicateBudget.h"

namespace quillon {

/// Is all of `text` such as `pattern` says? "?" stands for one character, "*" for any number of
/// them; a "\" before these and itself takes them as they are. Nothing if the budget is spent: the
/// work is at most the product of both lengths.
std::optional<bool> matchesWildcards(std::string_view text, std::string_view pattern,
                                     QNPredicateBudget& budget);

}  // namespace quillon
