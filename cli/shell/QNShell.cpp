#include "cli/shell/QNShell.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNOutput.h"
#include "cli/shell/QNHistoryLine.h"
#include "cli/shell/QNShellWords.h"
#include "cli/terminal/QNHeldSignals.h"
#include "cli/terminal/QNInput.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

constexpr std::string_view kHelp =
    "\nThe shell's own commands:\n"
    "  help [COMMAND]              Tell of all commands, or of one\n"
    "  lock                        Lock the vault until the next command that needs it\n"
    "  exit                        End the shell, as Ctrl-D does\n";

std::vector<std::string> textsOf(const std::vector<QNShellWord>& words) {
  std::vector<std::string> texts;
  for (const QNShellWord& word : words) texts.push_back(word.text);
  return texts;
}

bool holdsHidden(const std::vector<std::string>& words) {
  return std::any_of(words.begin(), words.end(), [](const std::string& word) {
    return word.find(kHiddenValue) != std::string::npos;
  });
}

}  // namespace

QNShell::QNShell(const QNGlobalArguments& global, const QNShellArguments& arguments)
    : _kept(global.store),
      _defaults(global),
      _idle(arguments.idle),
      _outlines(commandOutlines()),
      _completion(_outlines, [this](QNShellCompletion::Kind kind, const std::string& item) {
        return _names.of(kind, item, _kept.vaultNamed(_defaults.vault).get());
      }) {
  _defaults.kept = &_kept;
  const auto place = QNHistoryFile::defaultPlace();
  if (arguments.keepsHistory && !place.empty()) _history.emplace(place);
}

QNCommandResult QNShell::run() {
  const auto opened = openVault();
  if (!opened) return opened.error();
  const bool isTyped = isatty(STDIN_FILENO) == 1;
  // A lock asks the person who types. To a script a file says the same again; what comes next from
  // elsewhere is no password.
  using Kind = QNPasswordSource::Kind;
  QNPasswordSource& source = _defaults.password;
  if (isTyped || source.kind != Kind::file) source.kind = Kind::terminal;
  startIdle();
  return isTyped ? runTyped() : runScript();
}

// What was opened stays with _kept alone: a session that the shell held would outlast a lock.
QNResult<QNDone> QNShell::openVault() {
  const auto session = QNVaultSession::open(_defaults, QNStore::Access::readOnly);
  if (!session) return session.error();
  return QNDone{};
}

QNCommandResult QNShell::runTyped() {
  const auto editor = QNLineEditor::open(callsOfEditor());
  if (!editor) return editor.error();
  openHistory(*editor.value());
  const QNInterruption interruption;
  for (;;) {
    const auto read = editor.value()->read();
    if (read.end == QNLineEditor::End::endOfInput) break;
    if (read.end == QNLineEditor::End::givenUp) continue;
    remember(*editor.value(), read.line);
    QNInterruption::forget();
    if (!take(read.line)) return QNExit::done;
    startIdle();
  }
  printRaw("\n");
  return QNExit::done;
}

QNCommandResult QNShell::runScript() {
  for (;;) {
    waitForInput();
    const auto line = readLineIfAny(STDIN_FILENO, "the line");
    if (!line) return line.error();
    // Cut into words, which are wiped with the heap.
    if (!line.value() || !take(line.value()->reveal())) return _lastFailure;
    startIdle();
  }
}

bool QNShell::take(std::string_view line) {
  const auto split = shellWords(line);
  if (!split) {
    fail(split.error());
    return true;
  }
  const std::vector<std::string> words = textsOf(split.value());
  if (words.size() == 1 && words.front() == "exit") return false;
  if (!words.empty()) runWords(words);
  _names.forget();
  return true;
}

void QNShell::runWords(const std::vector<std::string>& words) {
  if (words.front() == "help") return runHelp(words);
  if (words.size() == 1 && words.front() == "lock") return lock();
  if (holdsHidden(words)) {
    return fail(
        toolError(QNExit::wrongUsage, "the history doesn't keep that value: write it anew"));
  }
  const QNExit exit = runTool(words, _defaults);
  if (exit != QNExit::done) _lastFailure = exit;
}

void QNShell::runHelp(const std::vector<std::string>& words) {
  std::vector<std::string> asked(words.begin() + 1, words.end());
  asked.emplace_back("--help");
  const QNExit exit = runTool(asked, _defaults);
  if (exit != QNExit::done) _lastFailure = exit;
  if (asked.size() > 1 || _defaults.json) return;
  QNOutput out;
  out.text(kHelp);
  const auto done = out.finish();
  if (!done) fail(done.error());
}

void QNShell::fail(const QNError& error) {
  if (!error.message.empty()) say(error.message);
  _lastFailure = exitFor(error);
}

void QNShell::lock() {
  _kept.lock();
  _names.forget();
}

void QNShell::startIdle() {
  _idleFrom = steadySeconds();
}

std::optional<std::chrono::milliseconds> QNShell::untilIdle() const {
  if (_idle.count() == 0 || _kept.isLocked()) return std::nullopt;
  const double left = _idleFrom + static_cast<double>(_idle.count()) - steadySeconds();
  return std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(std::max(left, 0.0) * 1e3)));
}

bool QNShell::lockIfIdle() {
  const auto left = untilIdle();
  if (!left || left->count() > 0) return false;
  lock();
  return true;
}

void QNShell::waitForInput() {
  pollfd waiting{STDIN_FILENO, POLLIN, 0};
  for (;;) {
    const auto left = untilIdle();
    if (poll(&waiting, 1, left ? static_cast<int>(left->count()) : -1) != 0) return;
    lockIfIdle();
  }
}

QNLineEditor::Calls QNShell::callsOfEditor() {
  QNLineEditor::Calls calls;
  calls.prompt = [this] { return _kept.isLocked() ? "quillon (locked)> " : "quillon> "; };
  calls.complete = [this](std::string_view line) { return _completion.complete(line); };
  calls.timeout = [this] { return untilIdle(); };
  calls.keyPressed = [this] { startIdle(); };
  calls.timedOut = [this] { return lockIfIdle(); };
  return calls;
}

void QNShell::openHistory(QNLineEditor& editor) {
  if (!_history) return;
  const auto lines = _history->read();
  if (!lines) {
    say(lines.error().message + "; nothing is kept in the history");
    _history.reset();
    return;
  }
  for (const std::string& line : lines.value()) editor.remember(line);
}

void QNShell::remember(QNLineEditor& editor, std::string_view line) {
  const auto kept = historyLineOf(line, _outlines);
  if (!kept) return;
  editor.remember(*kept);
  if (!_history) return;
  const auto appended = _history->append(*kept);
  if (appended) return;
  say(appended.error().message + "; nothing is kept in the history");
  _history.reset();
}

QNCommandResult runCommand(Global global, const QNShellArguments& arguments) {
  if (global.kept != nullptr) {
    return toolError(QNExit::wrongUsage, "this is the shell; exit ends it");
  }
  return QNShell(global, arguments).run();
}

}  // namespace quillon
