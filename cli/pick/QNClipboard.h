#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/terminal/QNRawTerminal.h"
#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// Where copied text goes: to a program that reads it from its standard input, or to the terminal
/// (OSC 52), which puts it into the clipboard of the screen that one sits at, over ssh too.
class QNClipboard final {
 public:
  /// "terminal"; a program by name or path, where wl-copy, xclip, xsel and pbcopy get the options
  /// that they need; or "" for one that is there and fits the environment, else the terminal.
  /// Error with exit code 2 for a program that isn't there.
  static QNResult<QNClipboard> named(const std::string& name);

  /// Error with exit code 1 if the program fails, takes too long, or a signal came that ends the
  /// process: the text may be there all the same. A terminal tells nobody whether it obeyed.
  [[nodiscard]] QNResult<QNDone> put(std::string_view text, const QNRawTerminal& terminal) const;
  /// Leaves the clipboard empty, whatever has been copied to it since. Signals wait until it is
  /// done. Error with exit code 1 if the program fails or takes too long.
  [[nodiscard]] QNResult<QNDone> clear(const QNRawTerminal& terminal) const;

 private:
  explicit QNClipboard(std::vector<std::string> command) : _command(std::move(command)) {}
  std::vector<std::string> _command;  // with its options; empty for the terminal
};

}  // namespace quillon
