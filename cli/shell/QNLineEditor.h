#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// What Tab does to a line: `word` takes the place of what stands from `start` to the cursor, and
/// `choices`, if there are several, are shown below.
struct QNLineCompletion {
  std::size_t start = 0;  // in bytes of the line
  std::string word;
  std::vector<std::string> choices;
};

/// Lines typed on the terminal, with editing and history. libedit's buffers keep what was typed
/// until this goes, and don't wipe it.
class QNLineEditor final {
 public:
  struct Calls {
    std::function<std::string()> prompt;
    std::function<QNLineCompletion(std::string_view beforeCursor)> complete;
    /// How long to wait for a key; nothing for ever.
    std::function<std::optional<std::chrono::milliseconds>()> timeout;
    std::function<void()> keyPressed;
    /// After the time is up. True if the prompt is another one now.
    std::function<bool()> timedOut;
  };
  /// Error with exit code 2 without a terminal.
  static QNResult<std::unique_ptr<QNLineEditor>> open(Calls calls);
  ~QNLineEditor();
  QNLineEditor(const QNLineEditor&) = delete;
  QNLineEditor& operator=(const QNLineEditor&) = delete;

  enum class End { line, givenUp, endOfInput };
  struct Read {
    End end = End::line;
    std::string line;
  };
  /// The next line, without its newline; given up by Ctrl-C, at the end by Ctrl-D. The terminal is
  /// as before when it returns, and also when a signal ends or stops the process meanwhile.
  Read read();
  /// For the arrow keys. A line that equals the one before isn't kept twice.
  void remember(std::string_view line);

 private:
  struct Editor;
  explicit QNLineEditor(std::unique_ptr<Editor> editor);
  std::unique_ptr<Editor> _editor;
};

}  // namespace quillon
