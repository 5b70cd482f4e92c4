#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

// A folder is one of its vault; only another store of the same vault, such as a backup, has it too.
QNResult<QNDone> leaveUnknownFolder(QNItem& copy, QNStore& store,
                                    const std::shared_ptr<QNProfile>& vault) {
  if (!copy.folderUUID()) return QNDone{};
  const auto folders = QNVaultFolders::read(store, vault);
  if (!folders) return folders.error();
  if (!folders.value().pathTo(*copy.folderUUID())) copy.clearFolder();
  return QNDone{};
}

QNResult<std::string> saveCopy(QNItem& item, QNStore& store,
                               const std::shared_ptr<QNProfile>& vault) {
  const auto required = item.requirementForCopyingFromProfile(item.profile(), vault);
  switch (required) {
    case QNCopyRequirement::nothing:
      break;
    case QNCopyRequirement::signingKeys:
      return toolError(QNExit::failed, "some of the item's files have no key to refer to them");
    case QNCopyRequirement::vaultForFiles:
      return toolError(QNExit::failed, "that vault can't hold the item's files");
    case QNCopyRequirement::sameServer:
      return toolError(QNExit::failed, "the item's files can't move to another server");
  }
  const auto copy = item.makeCopyWithoutAttachments();
  if (copy == nullptr) return toolError(QNExit::damaged, "the item can't be copied");
  copy->setProfile(vault);  // gives it a uuid of its own
  const auto left = leaveUnknownFolder(*copy, store, vault);
  if (!left) return left.error();
  const auto saved = store.save(copy);
  if (!saved) return saved.error();
  return *copy->uuid();
}

// As the primary vault opens it.
QNResult<std::shared_ptr<QNProfile>> openSibling(const QNVaultSession& session,
                                                 const QNGlobalArguments& global) {
  auto vault = lockedVault(session.store(), global);
  if (!vault) return vault.error();
  if (*vault.value()->uuid() == *session.vault()->uuid()) {
    return toolError(QNExit::failed,
                     "the item is in that vault; quillon duplicate makes a second one there");
  }
  const auto& primary = session.primaryVault();
  if (primary == nullptr) {
    return toolError(QNExit::wrongPassword, "only the password of the first vault opens both");
  }
  if (vault.value()->isPrimaryProfile()) return primary;
  const auto opened = session.store().unlockWithPrimary(*vault.value(), primary);
  if (!opened) return opened.error();
  if (opened.value()) return vault;
  return toolError(QNExit::wrongPassword, "the first vault doesn't open that one");
}

QNResult<std::string> copyToSibling(const QNVaultSession& session, QNItem& item,
                                    const QNGlobalArguments& global) {
  const auto vault = openSibling(session, global);
  if (!vault) return vault.error();
  auto uuid = saveCopy(item, session.store(), vault.value());
  if (vault.value() != session.primaryVault()) vault.value()->lock();  // that one is the session's
  return uuid;
}

QNResult<std::string> copyToStore(Global global, QNItem& item, const QNCopyArguments& arguments) {
  const auto other =
      QNVaultSession::openBeside(global, arguments.store, arguments.vault, arguments.password);
  if (!other) return other.error();
  auto uuid = saveCopy(item, other.value().store(), other.value().vault());
  if (uuid) return uuid;
  return uuid.error().within(shownText(arguments.store.string()));
}

}  // namespace

QNCommandResult runCommand(Global global, const QNCopyArguments& arguments) {
  if (arguments.vault.empty()) return toolError(QNExit::wrongUsage, "--to needs a name");
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  QNGlobalArguments target = global;
  target.vault = arguments.vault;
  const auto uuid = arguments.store.empty() ? copyToSibling(session.value(), *item.value(), target)
                                            : copyToStore(global, *item.value(), arguments);
  if (!uuid) return uuid.error();
  if (global.json) return printJson({{"uuid", uuid.value()}, {"vault", arguments.vault}});
  QNOutput out;
  out.line(uuid.value());
  return out.finish();
}

}  // namespace quillon
