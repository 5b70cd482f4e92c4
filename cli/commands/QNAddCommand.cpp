#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNPasswords.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {
namespace {

std::shared_ptr<QNItem> makeLogin(const std::shared_ptr<QNProfile>& vault,
                                  const QNAddLoginArguments& arguments) {
  auto item = vault->newItemForCategoryUUID(QNCategoryUUIDLogin);
  item->setProfile(vault);
  item->setTitle(arguments.title);
  for (const std::string& url : arguments.urls) item->addURLString(url);
  item->removeDuplicateURLs();
  if (arguments.username) item->setUsername(*arguments.username);
  if (arguments.notes) item->setNotesPlain(*arguments.notes);
  if (arguments.favorite) item->setFaveIndex(QNItem::newItemFaveIndex());
  return item;
}

}  // namespace

QNCommandResult runCommand(Global global, const QNAddLoginArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = makeLogin(session.value().vault(), arguments);
  if (arguments.password != QNItemPassword::none) {
    const auto made = makeItemPassword(arguments.password);
    if (!made) return made.error();
    setItemPassword(*item, made.value());
  }
  const auto saved = session.value().store().save(item);
  if (!saved) return saved.error();
  if (global.json) return printJson({{"uuid", *item->uuid()}});
  QNOutput out;
  out.line(*item->uuid());
  return out.finish();
}

}  // namespace quillon
