#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/output/QNOutput.h"

namespace quillon {
namespace {

// The uuid of the folder that was named, if one was.
QNResult<std::optional<std::string>> targetOf(const QNVaultSession& session,
                                              const QNMoveArguments& arguments) {
  if (!arguments.folder) return std::optional<std::string>();
  const auto tree = QNVaultFolders::read(session);
  if (!tree) return tree.error();
  const auto folder = tree.value().chooseOrdinary(*arguments.folder);
  if (!folder) return folder.error();
  return std::optional(*folder.value()->uuid());
}

}  // namespace

QNCommandResult runCommand(Global global, const QNMoveArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  const auto folder = targetOf(session.value(), arguments);
  if (!folder) return folder.error();
  item.value()->setFolderUUID(folder.value());
  const auto saved = session.value().store().save(item.value());
  if (!saved) return saved.error();
  if (!global.json) return QNExit::done;
  const Json target = folder.value() ? Json(*folder.value()) : Json();
  return printJson({{"uuid", *item.value()->uuid()}, {"folder", target}});
}

}  // namespace quillon
