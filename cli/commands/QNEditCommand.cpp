#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNPasswords.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"

namespace quillon {
namespace {

bool hasField(const QNItem& item, QNFieldName field) {
  const bool isLogin = dynamic_cast<const QNLogin*>(&item) != nullptr;
  if (field == QNFieldName::username) return isLogin;
  if (field == QNFieldName::password) {
    return isLogin || dynamic_cast<const QNPassword*>(&item) != nullptr;
  }
  return true;
}

QNResult<QNDone> requireField(const QNItem& item, QNFieldName field) {
  if (hasField(item, field)) return QNDone{};
  return toolError(QNExit::wrongUsage,
                   fmt::format("an item of this kind has no {}", nameOfField(field)));
}

// An empty value takes the field away.
void apply(QNItem& item, const QNFieldEdit& edit) {
  const auto value =
      edit.value.empty() ? std::nullopt : std::optional<std::string_view>(edit.value);
  switch (edit.field) {
    case QNFieldName::title:
      return item.setTitle(value);
    case QNFieldName::username:
      return item.setUsername(value);
    case QNFieldName::url:
      return item.setURLString(value);
    case QNFieldName::notes:
      return item.setNotesPlain(value);
    case QNFieldName::password:
      return;  // it never comes as a value
  }
}

QNResult<QNDone> applyAll(QNItem& item, const QNEditArguments& arguments) {
  for (const QNFieldEdit& edit : arguments.edits) {
    if (const auto has = requireField(item, edit.field); !has) return has;
    apply(item, edit);
  }
  if (arguments.password == QNItemPassword::none) return QNDone{};
  if (const auto has = requireField(item, QNFieldName::password); !has) return has;
  const auto made = makeItemPassword(arguments.password);
  if (!made) return made.error();
  setItemPassword(item, made.value());
  return QNDone{};
}

}  // namespace

QNCommandResult runCommand(Global global, const QNEditArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  const auto applied = applyAll(*item.value(), arguments);
  if (!applied) return applied.error();
  const auto saved = session.value().store().save(item.value());
  if (!saved) return saved.error();
  if (!global.json) return QNExit::done;
  return printJson({{"uuid", *item.value()->uuid()}, {"updatedAt", item.value()->updatedAt()}});
}

}  // namespace quillon
