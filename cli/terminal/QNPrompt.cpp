#include "cli/terminal/QNPrompt.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>

#include "cli/QNToolError.h"
#include "cli/terminal/QNHeldSignals.h"
#include "cli/terminal/QNMessages.h"

namespace quillon {
namespace {

// While it lives the terminal doesn't echo, and signals wait.
class QuietTerminal {
 public:
  explicit QuietTerminal(int terminal) : _terminal(terminal) {
    tcgetattr(terminal, &_settingsBefore);
    termios quiet = _settingsBefore;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    quiet.c_lflag |= ICANON | ISIG | ECHONL;
    tcsetattr(terminal, TCSAFLUSH, &quiet);
  }
  ~QuietTerminal() { tcsetattr(_terminal, TCSAFLUSH, &_settingsBefore); }
  QuietTerminal(const QuietTerminal&) = delete;
  QuietTerminal& operator=(const QuietTerminal&) = delete;

  // Until there is something to read: true. False after a signal.
  [[nodiscard]] bool wait() const {
    return _signals.wait(_terminal) == QNHeldSignals::End::readable;
  }

 private:
  QNHeldSignals _signals{
      QNHeldSignals::Sizes::ignored};  // before the settings change, and until they are back
  int _terminal;
  termios _settingsBefore{};
};

QNResult<QNSecret> lineFrom(int terminal) {
  std::array<char, 4096> buffer;  // the kernel's longest line
  const ssize_t count = read(terminal, buffer.data(), buffer.size());
  if (count < 0) return fileError("/dev/tty", errno);
  QNSecret line(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
  wipe(buffer.data(), buffer.size());
  if (line.empty()) return toolError(QNExit::failed, "no password was given");
  if (line.reveal().ends_with('\n')) line.removeLast();  // looks at its last byte only
  return line;
}

// Nothing after a signal.
std::optional<QNResult<QNSecret>> quietLineFrom(int terminal) {
  const QuietTerminal quiet(terminal);
  if (!quiet.wait()) return std::nullopt;
  return lineFrom(terminal);
}

}  // namespace

QNResult<QNSecret> promptForSecret(std::string_view prompt, std::string_view instead) {
  const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (terminal < 0) {
    return toolError(QNExit::wrongUsage, fmt::format("no terminal to ask on; give {}", instead));
  }
  std::optional<QNResult<QNSecret>> line;
  while (!line) {
    printRaw(prompt);
    line = quietLineFrom(terminal);
    // The terminal is as before by now. After a stop the process goes on here, and asks again.
    if (const int caught = QNHeldSignals::takeCaught(); caught != 0) QNHeldSignals::deliver(caught);
    if (QNInterruption::happened()) line = toolError(QNExit::failed, "nothing was typed");
  }
  close(terminal);
  return std::move(*line);
}

}  // namespace quillon
