#pragma once

#include <string>
#include <string_view>

#include "cli/pick/QNPickList.h"
#include "cli/terminal/QNRawTerminal.h"

namespace quillon {

/// What a finder shows: a line to type into, the matches, and a line that counts them.
struct QNPickView {
  const QNPickList& list;
  std::string_view prompt;  // in front of what was typed
  std::string_view typed;
  std::size_t first = 0;     // the match on top
  std::size_t selected = 0;  // of all matches
};

/// Rows for matches on a terminal of that size: at least one.
std::size_t rowsForMatches(const QNRawTerminal::Size& size);
/// The view in the terminal's own language, for one write. No line is wider than the terminal, by
/// the widths that QNShownText.h tells, and nothing of data is there that a terminal obeys.
std::string drawn(const QNPickView& view, const QNRawTerminal::Size& size);

}  // namespace quillon
