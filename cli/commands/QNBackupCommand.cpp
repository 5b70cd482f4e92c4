#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNBackupArguments& arguments) {
  const auto store = openStore(global, QNStore::Access::readOnly);
  if (!store) return store.error();
  const auto copied = store.value()->backupTo(arguments.file);
  if (!copied) return copied.error().within(shownText(arguments.file.string()));
  if (global.json) return printJson({{"backup", arguments.file.string()}});
  say(fmt::format("copied to {}", shownText(arguments.file.string())));
  return QNExit::done;
}

}  // namespace quillon
