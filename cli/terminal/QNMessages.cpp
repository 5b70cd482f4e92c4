#include "cli/terminal/QNMessages.h"

#include <fmt/format.h>
#include <unistd.h>

#include "cli/output/QNShownText.h"

namespace quillon {

void say(std::string_view message) {
  printRaw(fmt::format("quillon: {}\n", shownOwnLines(message)));
}

void printRaw(std::string_view text) {
  // One write, so that lines of several processes don't mix. Nobody is left to hear of a failure.
  static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
}

bool standardErrorIsTerminal() noexcept {
  return isatty(STDERR_FILENO) == 1;
}

}  // namespace quillon
