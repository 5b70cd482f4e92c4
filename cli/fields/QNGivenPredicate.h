#pragma once

#include <string_view>

#include "cli/QNToolError.h"
#include "quillon/organisation/predicates/QNPredicate.h"

namespace quillon {

/// The question about items that the user typed; error with exit code 2 for what is none, or asks
/// for what items don't have.
QNResult<QNPredicateRef> predicateFrom(std::string_view text);

}  // namespace quillon
