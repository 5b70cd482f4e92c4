#pragma once

#include <termios.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "cli/terminal/QNHeldSignals.h"
#include "cli/terminal/QNKeys.h"
#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// The controlling terminal, read key by key and without echo while this lives: standard output
/// stays free. It is as before when this goes, and also when a signal ends or stops the process
/// meanwhile.
class QNRawTerminal final {
 public:
  /// On a screen of its own, or below what was shown before.
  enum class Screen { own, shared };
  /// Error with exit code 2 without a terminal.
  static QNResult<std::unique_ptr<QNRawTerminal>> open(Screen screen);
  /// A signal that came and wasn't told yet, or was told as `ended`, ends the process here.
  ~QNRawTerminal();
  QNRawTerminal(const QNRawTerminal&) = delete;
  QNRawTerminal& operator=(const QNRawTerminal&) = delete;

  struct Size {
    std::size_t rows = 24;
    std::size_t columns = 80;
  };
  [[nodiscard]] Size size() const;
  /// Nothing of data, unless it went through shownText().
  void write(std::string_view text) const;

  enum class Event { key, resized, timedOut, ended };
  struct Next {
    Event event = Event::ended;
    QNKeyPress press;
  };
  /// The next key. `resized` also after a stop: all is to be drawn again. `ended` after a signal
  /// that ends the process, and where the terminal is gone: leave at once.
  Next next(std::optional<std::chrono::milliseconds> atMost = std::nullopt);
  /// Stops the process as Ctrl-Z does elsewhere; returns when it goes on.
  void suspend();
  /// Called before each stop, which may never end: for what mustn't be left behind.
  void beforeStop(std::function<void()> work) { _beforeStop = std::move(work); }
  /// Throws away what was typed until now.
  void forgetTyped();
  /// Waits so long, but for what comes from outside. False if the process is to end: see next().
  [[nodiscard]] bool pause(std::chrono::milliseconds time) const;

 private:
  QNRawTerminal(int descriptor, Screen screen);
  void enter();
  void leave();
  /// False at the terminal's end.
  bool readMore();
  int _descriptor;
  Screen _screen;
  termios _before{};
  std::optional<QNHeldSignals> _signals;
  QNKeyReader _keys;
  std::function<void()> _beforeStop;  // may be empty
  int _endedBy = 0;                   // a signal
};

}  // namespace quillon
