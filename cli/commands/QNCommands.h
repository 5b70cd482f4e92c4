#pragma once
// The commands of the tool, one a file; which of them runs is told by the type of its arguments.

#include "cli/QNToolError.h"
#include "cli/arguments/QNArguments.h"

namespace quillon {

using Global = const QNGlobalArguments&;

QNCommandResult runCommand(Global global, const QNTextArguments& arguments);
QNCommandResult runCommand(Global global, const QNInitArguments& arguments);
QNCommandResult runCommand(Global global, const QNImportArguments& arguments);
QNCommandResult runCommand(Global global, const QNExportArguments& arguments);
QNCommandResult runCommand(Global global, const QNListArguments& arguments);
QNCommandResult runCommand(Global global, const QNFindArguments& arguments);
QNCommandResult runCommand(Global global, const QNShowArguments& arguments);
QNCommandResult runCommand(Global global, const QNAddArguments& arguments);
QNCommandResult runCommand(Global global, const QNAddLoginArguments& arguments);
QNCommandResult runCommand(Global global, const QNEditArguments& arguments);
QNCommandResult runCommand(Global global, const QNTrashArguments& arguments);
QNCommandResult runCommand(Global global, const QNRestoreArguments& arguments);
QNCommandResult runCommand(Global global, const QNDeleteArguments& arguments);
QNCommandResult runCommand(Global global, const QNHistoryArguments& arguments);
QNCommandResult runCommand(Global global, const QNDuplicateArguments& arguments);
QNCommandResult runCommand(Global global, const QNCopyArguments& arguments);
QNCommandResult runCommand(Global global, const QNFingerprintArguments& arguments);
QNCommandResult runCommand(Global global, const QNCategoriesArguments& arguments);
QNCommandResult runCommand(Global global, const QNTemplateArguments& arguments);
QNCommandResult runCommand(Global global, const QNPasswdArguments& arguments);
QNCommandResult runCommand(Global global, const QNInfoArguments& arguments);
QNCommandResult runCommand(Global global, const QNCheckArguments& arguments);
QNCommandResult runCommand(Global global, const QNBackupArguments& arguments);
QNCommandResult runCommand(Global global, const QNMergeArguments& arguments);
QNCommandResult runCommand(Global global, const QNConflictsArguments& arguments);
QNCommandResult runCommand(Global global, const QNResolveArguments& arguments);
QNCommandResult runCommand(Global global, const QNOTPArguments& arguments);
QNCommandResult runCommand(Global global, const QNVaultListArguments& arguments);
QNCommandResult runCommand(Global global, const QNVaultAddArguments& arguments);
QNCommandResult runCommand(Global global, const QNVaultIconArguments& arguments);
QNCommandResult runCommand(Global global, const QNVaultColorArguments& arguments);
QNCommandResult runCommand(Global global, const QNGenerateArguments& arguments);
QNCommandResult runCommand(Global global, const QNPickArguments& arguments);
QNCommandResult runCommand(Global global, const QNShellArguments& arguments);
QNCommandResult runCommand(Global global, const QNCompletionArguments& arguments);

/// Reads the command line, runs the command, and says what went wrong. What the process ends
/// with. `defaults` are those of the shell that the line was typed in.
QNExit runTool(const std::vector<std::string>& arguments, const QNGlobalArguments& defaults = {});

}  // namespace quillon
