#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/output/QNOutput.h"

namespace quillon {
namespace {

struct Target {
  std::optional<std::string> uuid;  // nothing for the top
  QNExit exit = QNExit::done;       // what the folders end with
};

QNResult<Target> targetOf(const QNVaultSession& session, const QNMoveArguments& arguments) {
  if (!arguments.folder) return Target{};
  const auto tree = QNVaultFolders::read(session);
  if (!tree) return tree.error();
  const auto folder = tree.value().chooseOrdinary(*arguments.folder);
  if (!folder) return folder.error();
  return Target{*folder.value()->uuid(), tree.value().warn()};
}

}  // namespace

QNCommandResult runCommand(Global global, const QNMoveArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  const auto target = targetOf(session.value(), arguments);
  if (!target) return target.error();
  const auto& [uuid, exit] = target.value();
  item.value()->setFolderUUID(uuid);
  const auto saved = session.value().store().save(item.value());
  if (!saved) return saved.error();
  if (!global.json) return exit;
  return printJson({{"uuid", *item.value()->uuid()}, {"folder", uuid ? Json(*uuid) : Json()}},
                   exit);
}

}  // namespace quillon
