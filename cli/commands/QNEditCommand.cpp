#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/fields/QNItemEditing.h"
#include "cli/output/QNOutput.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNEditArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  const auto edited = editItem(*item.value(), arguments.edits);
  if (!edited) return edited.error();
  const auto saved = session.value().store().save(item.value());
  if (!saved) return saved.error();
  if (!global.json) return QNExit::done;
  return printJson({{"uuid", *item.value()->uuid()}, {"updatedAt", item.value()->updatedAt()}});
}

}  // namespace quillon
