#pragma once
// What a comparison of two texts leaves aside, each alone or both; the texts may be secrets.

#include <cstdint>
#include <string_view>

#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

enum class QNFolding : std::uint32_t { none = 0, letterCase = 1, marks = 2, caseAndMarks = 3 };

/// The text without them. Two texts that differ in nothing else become the same bytes, whether their
/// letters were composed or not; with `none` it is the text as it is. `caseAndMarks` gives what
/// foldedForSearch() gives. Folding twice changes nothing. Every buffer on the way is wiped.
QNSecret foldedText(std::string_view text, QNFolding folding);

}  // namespace quillon
