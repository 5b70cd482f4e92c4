#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNCategoryNames.h"
#include "cli/fields/QNItemEditing.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNPasswords.h"
#include "quillon/platform/text/QNText.h"
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
  item->setTags({arguments.tags.begin(), arguments.tags.end()});
  if (arguments.favorite) item->setFaveIndex(QNItem::newItemFaveIndex());
  return item;
}

QNResult<QNDone> requireTitle(const std::string& title) {
  if (!isBlankText(title)) return QNDone{};
  return toolError(QNExit::wrongUsage, "an item needs a title, by which it is found");
}

// Before a password is asked for.
QNResult<std::string> categoryFor(const QNAddArguments& arguments) {
  auto uuid = categoryNamed(arguments.category);
  if (!uuid) {
    return toolError(QNExit::wrongUsage,
                     "there is no such category; quillon categories lists them");
  }
  if (isAvailable(*uuid)) return std::move(*uuid);
  return toolError(QNExit::failed,
                   fmt::format("a local vault doesn't take items of {}; quillon categories tells "
                               "what it takes",
                               shownText(titleOfCategory(*uuid))));
}

QNResult<std::shared_ptr<QNItem>> makeItem(const std::shared_ptr<QNProfile>& vault,
                                           const std::string& category,
                                           const QNAddArguments& arguments) {
  auto item = vault->newItemForCategoryUUID(category);
  if (item == nullptr) {
    return toolError(QNExit::failed,
                     fmt::format("the template of {} is missing", nameOfCategory(category)));
  }
  item->setProfile(vault);
  item->setTitle(arguments.title);
  if (arguments.notes) item->setNotesPlain(*arguments.notes);
  if (arguments.favorite) item->setFaveIndex(QNItem::newItemFaveIndex());
  const auto edited = editItem(*item, arguments.edits);
  if (!edited) return edited.error();
  return item;
}

QNCommandResult saveNew(Global global, const QNVaultSession& session,
                        const std::shared_ptr<QNItem>& item) {
  const auto saved = session.store().save(item);
  if (!saved) return saved.error();
  return printUUID(global.json, *item->uuid());
}

}  // namespace

QNCommandResult runCommand(Global global, const QNAddArguments& arguments) {
  const auto category = categoryFor(arguments);
  if (!category) return category.error();
  const auto checked = requireTitle(arguments.title);
  if (!checked) return checked.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = makeItem(session.value().vault(), category.value(), arguments);
  if (!item) return item.error();
  return saveNew(global, session.value(), item.value());
}

QNCommandResult runCommand(Global global, const QNAddLoginArguments& arguments) {
  const auto checked = requireTitle(arguments.title);
  if (!checked) return checked.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = makeLogin(session.value().vault(), arguments);
  if (arguments.password != QNItemPassword::none) {
    const auto made = makeItemPassword(arguments.password);
    if (!made) return made.error();
    setItemPassword(*item, made.value());
  }
  return saveNew(global, session.value(), item);
}

}  // namespace quillon
