#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "cli/terminal/QNPasswords.h"
#include "store/QNStore.h"

namespace quillon {
namespace {

// Before the password is asked for: an existing store is never touched.
QNResult<QNDone> requireFreePlace(const std::filesystem::path& store) {
  std::error_code ignored;
  if (store.empty()) {
    return toolError(QNExit::wrongUsage, "no home folder; name the store with --store");
  }
  if (std::filesystem::symlink_status(store, ignored).type() ==
      std::filesystem::file_type::not_found) {
    return QNDone{};
  }
  return toolError(QNExit::failed, fmt::format("{}: is there already, and stays as it is",
                                               shownText(store.string())));
}

QNResult<std::shared_ptr<QNProfile>> makeStore(const std::filesystem::path& file,
                                               std::string_view password,
                                               const std::optional<std::string>& hint) {
  auto vault = QNProfile::profileWithName(QNProfile::primaryProfileName(), password, hint);
  if (vault == nullptr || vault->isLocked()) {
    return toolError(QNExit::failed, "no key can be made of the password; is memory short?");
  }
  auto store = QNStore::create(file);
  if (!store) return store.error().within(shownText(file.string()));
  const auto saved = store.value()->saveVault(*vault);
  if (saved) return vault;
  store.value().reset();
  std::error_code ignored;
  std::filesystem::remove(file, ignored);  // it holds nothing yet
  return saved.error();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNInitArguments& arguments) {
  if (const auto free = requireFreePlace(global.store); !free) return free.error();
  const auto password = readNewPassword(global.password);
  if (!password) return password.error();
  // Its keys are derived from it.
  const auto vault = makeStore(global.store, password.value().reveal(), arguments.hint);
  if (!vault) return vault.error();
  vault.value()->lock();
  if (global.json) {
    return printJson({{"store", global.store.string()}, {"vault", *vault.value()->uuid()}});
  }
  say(fmt::format("made {}", shownText(global.store.string())));
  return QNExit::done;
}

}  // namespace quillon
