// duplicate and fingerprint: a second item of one, and what tells equal items.

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/output/QNOutput.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNDuplicateArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  const auto duplicate = item.value()->makeDuplicateWithoutAttachments();
  if (duplicate == nullptr) return toolError(QNExit::damaged, "the item can't be copied");
  const auto saved = session.value().store().save(duplicate);
  if (!saved) return saved.error();
  return printUUID(global.json, *duplicate->uuid());
}

QNCommandResult runCommand(Global global, const QNFingerprintArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  const auto fingerprint = item.value()->fingerprint_fingerprint();
  if (!fingerprint) return toolError(QNExit::damaged, "the item doesn't open");
  if (global.json) {
    return printJson({{"uuid", *item.value()->uuid()}, {"fingerprint", *fingerprint}});
  }
  QNOutput out;
  out.line(*fingerprint);
  return out.finish();
}

}  // namespace quillon
