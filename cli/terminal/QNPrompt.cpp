#include "cli/terminal/QNPrompt.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <optional>

#include "cli/QNToolError.h"
#include "cli/terminal/QNMessages.h"

namespace quillon {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
volatile std::sig_atomic_t caughtSignal = 0;

extern "C" void noteSignal(int number) {
  caughtSignal = number;
}

// While it lives the terminal doesn't echo, and signals are noted and wait: they are let in
// during wait() only, so that none arrives unseen just before it.
class QuietTerminal {
 public:
  explicit QuietTerminal(int terminal) : _terminal(terminal) {
    caughtSignal = 0;
    sigset_t held;
    sigemptyset(&held);
    struct sigaction noting {};
    noting.sa_handler = noteSignal;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaddset(&held, kSignals[i]);
      sigaction(kSignals[i], &noting, &_actionsBefore[i]);
    }
    sigprocmask(SIG_BLOCK, &held, &_maskBefore);
    tcgetattr(terminal, &_settingsBefore);
    termios quiet = _settingsBefore;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    quiet.c_lflag |= ICANON | ISIG | ECHONL;
    tcsetattr(terminal, TCSAFLUSH, &quiet);
  }
  ~QuietTerminal() {
    tcsetattr(_terminal, TCSAFLUSH, &_settingsBefore);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaction(kSignals[i], &_actionsBefore[i], nullptr);
    }
    sigprocmask(SIG_SETMASK, &_maskBefore, nullptr);
  }
  QuietTerminal(const QuietTerminal&) = delete;
  QuietTerminal& operator=(const QuietTerminal&) = delete;

  // Until there is something to read: true. False after a signal.
  [[nodiscard]] bool wait() const {
    pollfd waiting{_terminal, POLLIN, 0};
    return ppoll(&waiting, 1, nullptr, &_maskBefore) > 0 && caughtSignal == 0;
  }

 private:
  int _terminal;
  termios _settingsBefore{};
  sigset_t _maskBefore{};
  std::array<struct sigaction, kSignals.size()> _actionsBefore{};
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
    if (!line && caughtSignal != 0) kill(getpid(), caughtSignal);
  }
  close(terminal);
  return std::move(*line);
}

}  // namespace quillon
