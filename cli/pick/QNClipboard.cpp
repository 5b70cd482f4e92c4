#include "cli/pick/QNClipboard.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "cli/QNToolError.h"
#include "cli/output/QNShownText.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kTerminal = "terminal";
// How long a program may take, and how often one looks whether it is done.
constexpr double kProgramSeconds = 5;
constexpr auto kProgramStep = 10ms;

// In the order of preference; `environment` tells that the program's desktop is there.
struct Program {
  std::string_view name;
  const char* environment;
  std::array<const char*, 2> options;
};
constexpr std::array<Program, 4> kPrograms = {{
    {"wl-copy", "WAYLAND_DISPLAY", {}},
    {"xclip", "DISPLAY", {"-selection", "clipboard"}},
    {"xsel", "DISPLAY", {"--clipboard", "--input"}},
    {"pbcopy", nullptr, {}},
}};

bool isRunnable(const std::filesystem::path& file) {
  std::error_code failed;
  return std::filesystem::is_regular_file(file, failed) && ::access(file.c_str(), X_OK) == 0;
}

// Empty if there is none. A name with a slash is a path.
std::filesystem::path programNamed(std::string_view name) {
  if (name.find('/') != std::string_view::npos) return isRunnable(name) ? name : "";
  const char* const folders = std::getenv("PATH");
  std::string_view rest = folders == nullptr ? "" : folders;
  while (!rest.empty()) {
    const std::string_view folder = rest.substr(0, rest.find(':'));
    const auto file = std::filesystem::path(folder) / name;
    if (!folder.empty() && isRunnable(file)) return file;
    rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
  }
  return {};
}

std::vector<std::string> commandOf(const std::filesystem::path& file) {
  std::vector<std::string> command{file.string()};
  for (const Program& program : kPrograms) {
    if (file.filename() != program.name) continue;
    for (const char* const option : program.options) {
      if (option != nullptr) command.emplace_back(option);
    }
  }
  return command;
}

bool isDesktopThere(const Program& program) {
  if (program.environment == nullptr) return true;
  const char* const value = std::getenv(program.environment);
  return value != nullptr && *value != '\0';
}

// What the terminal takes for its clipboard.
QNSecret sequenceFor(std::string_view text) {
  QNSecret sequence("\x1b]52;c;");
  sequence.append(mr_base64encode(bytesOf(text)));
  sequence.append("\x07");
  return sequence;
}

// A child with nothing of ours but what it reads: no held signals, and nowhere to write to.
class Child {
 public:
  Child(const std::vector<std::string>& command, int input) {
    posix_spawn_file_actions_t files{};
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes{};
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
      arguments.push_back(const_cast<char*>(argument.c_str()));  // NOLINT: not written to
    }
    arguments.push_back(nullptr);
    _errorNumber =
        posix_spawn(&_process, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
  }
  // Ends it, if it still runs.
  ~Child() {
    if (_errorNumber != 0 || _hasEnded) return;
    ::kill(_process, SIGKILL);
    ::waitpid(_process, nullptr, 0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  [[nodiscard]] bool isRunning() const { return _errorNumber == 0; }
  // Did it end well? Nothing while it runs.
  std::optional<bool> end() {
    int status = 0;
    const pid_t ended = ::waitpid(_process, &status, WNOHANG);
    if (ended == 0) return std::nullopt;
    _hasEnded = true;
    return ended == _process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

 private:
  pid_t _process = 0;
  int _errorNumber = 0;
  bool _hasEnded = false;
};

// The end of a pipe that a program reads a text from, as fast as it likes.
class Input {
 public:
  Input(int descriptor, std::string_view text) : _descriptor(descriptor), _text(text) {
    ::fcntl(_descriptor, F_SETFL, O_NONBLOCK);
  }
  ~Input() { close(); }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  // As much as there is room for; behind the last of it the program sees the end.
  void feed() {
    while (!_text.empty()) {
      const ssize_t count = ::write(_descriptor, _text.data(), _text.size());
      if (count < 0 && errno == EAGAIN) return;
      if (count < 0 && errno != EINTR) break;  // how the program ends tells
      if (count > 0) _text.remove_prefix(static_cast<std::size_t>(count));
    }
    close();
  }

 private:
  void close() {
    if (_descriptor >= 0) ::close(_descriptor);
    _descriptor = -1;
    _text = {};
  }
  int _descriptor;
  std::string_view _text;
};

enum class Signals { giveUp, wait };

bool give(std::string_view text, const std::vector<std::string>& command,
          const QNRawTerminal& terminal, Signals signals) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  Input input(ends[1], text);
  Child child(command, ends[0]);
  ::close(ends[0]);
  if (!child.isRunning()) return false;
  const double latest = steadySeconds() + kProgramSeconds;
  while (steadySeconds() < latest) {
    input.feed();
    if (const auto well = child.end()) return *well;
    if (!terminal.pause(kProgramStep) && signals == Signals::giveUp) return false;
  }
  return false;
}

}  // namespace

QNResult<QNClipboard> QNClipboard::named(const std::string& name) {
  if (name == kTerminal) return QNClipboard(std::vector<std::string>());
  if (!name.empty()) {
    const auto file = programNamed(name);
    if (!file.empty()) return QNClipboard(commandOf(file));
    return toolError(QNExit::wrongUsage,
                     fmt::format("there is no program {} for the clipboard", shownText(name)));
  }
  for (const Program& program : kPrograms) {
    const auto file = isDesktopThere(program) ? programNamed(program.name) : "";
    if (!file.empty()) return QNClipboard(commandOf(file));
  }
  return QNClipboard(std::vector<std::string>());
}

QNResult<QNDone> QNClipboard::put(std::string_view text, const QNRawTerminal& terminal) const {
  if (_command.empty()) {
    terminal.write(sequenceFor(text).reveal());  // the user asked for it
    return QNDone{};
  }
  if (give(text, _command, terminal, Signals::giveUp)) return QNDone{};
  return toolError(QNExit::failed, fmt::format("{} didn't take the text for the clipboard",
                                               shownText(_command.front())));
}

QNResult<QNDone> QNClipboard::clear(const QNRawTerminal& terminal) const {
  if (_command.empty()) {
    terminal.write(sequenceFor("").reveal());  // holds nothing
    return QNDone{};
  }
  if (give("", _command, terminal, Signals::wait)) return QNDone{};
  return toolError(QNExit::failed,
                   fmt::format("{} didn't clear the clipboard", shownText(_command.front())));
}

}  // namespace quillon
