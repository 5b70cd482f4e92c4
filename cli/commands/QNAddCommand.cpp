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
  if (arguments.favorite) item->setFaveIndex(QNItem::newItemFaveIndex());
  return item;
}

// What an item would be saved with, or lost with.
QNResult<QNDone> checkTexts(const std::string& title, const std::optional<std::string>& notes,
                            const std::optional<std::string>& username) {
  if (isBlankText(title)) {
    return toolError(QNExit::wrongUsage, "an item needs a title, by which it is found");
  }
  const bool areTexts =
      isUTF8(title) && isUTF8(notes.value_or("")) && isUTF8(username.value_or(""));
  if (!areTexts) return toolError(QNExit::wrongUsage, "a value isn't UTF-8 text");
  return QNDone{};
}

QNResult<std::string> categoryFor(const QNAddArguments& arguments) {
  auto uuid = categoryNamed(arguments.category);
  if (uuid) return std::move(*uuid);
  return toolError(QNExit::wrongUsage, "there is no such category; quillon categories lists them");
}

QNResult<std::shared_ptr<QNItem>> makeItem(const std::shared_ptr<QNProfile>& vault,
                                           const std::string& category,
                                           const QNAddArguments& arguments) {
  if (!vault->supportsCategoryUUID(category)) {
    return toolError(QNExit::failed, fmt::format("this vault doesn't take items of {}",
                                                 shownText(titleOfCategory(category))));
  }
  auto item = vault->newItemForCategoryUUID(category);
  if (item == nullptr) {
    return toolError(QNExit::failed,
                     fmt::format("the template of {} is missing", nameOfCategory(category)));
  }
  item->setProfile(vault);
  item->setTitle(arguments.title);
  if (arguments.notes) item->setNotesPlain(*arguments.notes);
  item->setTags({arguments.tags.begin(), arguments.tags.end()});
  if (arguments.favorite) item->setFaveIndex(QNItem::newItemFaveIndex());
  const auto edited = editItem(*item, arguments.edits);
  if (!edited) return edited.error();
  return item;
}

QNCommandResult saveNew(Global global, const QNVaultSession& session,
                        const std::shared_ptr<QNItem>& item) {
  const auto saved = session.store().save(item);
  if (!saved) return saved.error();
  if (global.json) return printJson({{"uuid", *item->uuid()}});
  QNOutput out;
  out.line(*item->uuid());
  return out.finish();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNAddArguments& arguments) {
  const auto category = categoryFor(arguments);
  if (!category) return category.error();
  const auto checked = checkTexts(arguments.title, arguments.notes, std::nullopt);
  if (!checked) return checked.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = makeItem(session.value().vault(), category.value(), arguments);
  if (!item) return item.error();
  return saveNew(global, session.value(), item.value());
}

QNCommandResult runCommand(Global global, const QNAddLoginArguments& arguments) {
  const auto checked = checkTexts(arguments.title, arguments.notes, arguments.username);
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
