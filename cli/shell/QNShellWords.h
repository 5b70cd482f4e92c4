#pragma once
// The words of a line, as a POSIX shell reads them: parted by blanks; quoted by a backslash, by
// '...' and by "...", where a backslash quotes $ ` " and itself; # at a word's start begins a
// comment. Nothing is expanded, and | > ; & are characters like any other.

#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

struct QNShellWord {
  std::string text;       // without its quoting
  std::size_t start = 0;  // where it begins in the line
  std::size_t end = 0;    // behind it
};

/// Error with exit code 2 for a quote that isn't closed, and for a backslash at the end.
QNResult<std::vector<QNShellWord>> shellWords(std::string_view line);

/// A line up to the cursor: the words that are complete, and the one that is being written, which
/// may be empty and needs no closing quote.
struct QNBegunLine {
  std::vector<std::string> words;
  QNShellWord begun;
};
QNBegunLine begunLine(std::string_view line);

/// The word as one can type it, quoted if need be.
std::string quotedWord(std::string_view word);

}  // namespace quillon
