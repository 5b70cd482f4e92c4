#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNMessages.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNFavoriteArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  const bool favorite = !arguments.off;
  if (item.value()->isFavorite() == favorite) {
    say(favorite ? "the item is a favorite already" : "the item is no favorite");
  } else {
    item.value()->setFaveIndex(favorite ? QNItem::newItemFaveIndex() : 0);
  }
  const auto saved = session.value().store().save(item.value());
  if (!saved) return saved.error();
  if (!global.json) return QNExit::done;
  return printJson({{"uuid", *item.value()->uuid()}, {"favorite", favorite}});
}

}  // namespace quillon
