// trash, restore and delete: the way of an item out of the vault, and back.

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNMessages.h"

namespace quillon {
namespace {

QNCommandResult setTrashed(Global global, std::string_view name, bool trashed) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item =
      chooseItem(session.value(), name,
                 trashed ? QNTrashPreference::normalFirst : QNTrashPreference::trashedFirst);
  if (!item) return item.error();
  if (item.value()->trashed() == trashed) {
    say(trashed ? "the item is in the trash already" : "the item isn't in the trash");
  }
  item.value()->setTrashed(trashed);
  const auto saved = session.value().store().save(item.value());
  if (!saved) return saved.error();
  if (!global.json) return QNExit::done;
  return printJson({{"uuid", *item.value()->uuid()}, {"trashed", trashed}});
}

}  // namespace

QNCommandResult runCommand(Global global, const QNTrashArguments& arguments) {
  return setTrashed(global, arguments.item, true);
}

QNCommandResult runCommand(Global global, const QNRestoreArguments& arguments) {
  return setTrashed(global, arguments.item, false);
}

QNCommandResult runCommand(Global global, const QNDeleteArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item, QNTrashPreference::trashedFirst);
  if (!item) return item.error();
  if (!item.value()->trashed() && !arguments.force) {
    return toolError(QNExit::failed,
                     "the item isn't in the trash; trash it first, or give --force");
  }
  const std::string uuid = *item.value()->uuid();
  const auto deleted = session.value().store().deleteItem(item.value());
  if (!deleted) return deleted.error();
  return global.json ? printJson({{"uuid", uuid}, {"deleted", true}}) : QNExit::done;
}

}  // namespace quillon
