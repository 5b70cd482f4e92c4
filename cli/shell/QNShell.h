#pragma once

#include <memory>
#include <optional>

#include "cli/QNToolError.h"
#include "cli/arguments/QNArguments.h"
#include "cli/arguments/QNCommandOutline.h"
#include "cli/commands/QNKeptVaults.h"
#include "cli/shell/QNHistoryFile.h"
#include "cli/shell/QNLineEditor.h"
#include "cli/shell/QNShellCompletion.h"
#include "cli/shell/QNShellNames.h"

namespace quillon {

/// Runs lines as commands of the tool, over vaults that stay open between them until nobody has
/// pressed a key for a while.
class QNShell final {
 public:
  QNShell(const QNGlobalArguments& global, const QNShellArguments& arguments);

  /// Unlocks the vault, then runs lines up to the last: typed ones if standard input is a terminal,
  /// else its lines, of which the last that failed tells the exit code.
  QNCommandResult run();

 private:
  QNResult<QNDone> openVault();
  QNCommandResult runTyped();
  QNCommandResult runScript();
  /// False if it was the last.
  bool take(std::string_view line);
  void runWords(const std::vector<std::string>& words);
  void runHelp(const std::vector<std::string>& words);
  void fail(const QNError& error);

  void lock();
  void startIdle();
  [[nodiscard]] std::optional<std::chrono::milliseconds> untilIdle() const;
  /// True if it locked the vault.
  bool lockIfIdle();
  void waitForInput();

  QNLineEditor::Calls callsOfEditor();
  void openHistory(QNLineEditor& editor);
  void remember(QNLineEditor& editor, std::string_view line);

  QNKeptVaults _kept;
  QNGlobalArguments _defaults;  // of its lines
  std::chrono::seconds _idle;
  double _idleFrom = 0;  // of the steady clock
  std::optional<QNHistoryFile> _history;
  std::vector<QNCommandOutline> _outlines;
  QNShellNames _names;
  QNShellCompletion _completion;
  QNExit _lastFailure = QNExit::done;
};

}  // namespace quillon
