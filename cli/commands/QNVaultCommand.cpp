// vault list and vault add: which vaults there are.

#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNColorText.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "cli/terminal/QNPasswords.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

struct ListedVault {
  QNStoredVaultInfo counted;
  std::shared_ptr<QNProfile> vault;  // locked
};

QNResult<std::vector<ListedVault>> vaultsIn(QNStore& store) {
  auto counts = store.vaults();
  if (!counts) return counts.error();
  std::vector<ListedVault> vaults;
  for (QNStoredVaultInfo& counted : counts.value()) {
    auto vault = store.vaultNamed(counted.name);
    if (!vault) return vault.error();
    vaults.push_back({std::move(counted), std::move(vault).value()});
  }
  return vaults;
}

JsonObject jsonOf(const ListedVault& listed) {
  const auto color = listed.vault->profileColor();
  return {{"name", listed.counted.name},
          {"uuid", listed.counted.uuid},
          {"primary", listed.vault->isPrimaryProfile()},
          {"items", listed.counted.items},
          {"trashed", listed.counted.trashed},
          {"color", color ? Json(textOfColor(*color)) : Json()},
          {"icon", listed.vault->iconData().has_value()}};
}

void print(QNOutput& out, const ListedVault& listed) {
  const auto color = listed.vault->profileColor();
  std::string text = padded(shownText(listed.counted.name), 30);
  text += "  " + localizedFormat("items: %jd", std::to_string(listed.counted.items));
  text += ", " + localizedFormat("in trash: %jd", std::to_string(listed.counted.trashed));
  if (color) text += ", " + textOfColor(*color);
  if (listed.vault->iconData()) text += ", " + QNLocalizedString("icon");
  out.line(text);
}

// Before a password is asked for.
QNResult<QNDone> requireFreeName(QNStore& store, const std::string& name) {
  if (!isUTF8(name)) return toolError(QNExit::wrongUsage, "the name isn't UTF-8 text");
  if (isBlankText(name)) return toolError(QNExit::wrongUsage, "the name is empty");
  const auto vault = store.vaultNamed(name);
  if (vault.ok()) return toolError(QNExit::failed, "the store has a vault of that name already");
  if (isStoreError(vault.error(), QNStoreErrorCode::notFound)) return QNDone{};
  return vault.error();
}

// One that nobody gets to know opens no vault: only the primary vault does then.
QNResult<QNSecret> passwordFor(const QNVaultAddArguments& arguments) {
  if (arguments.hasOwnPassword) return readNewPassword(arguments.ownPassword);
  return QNSPG::generateCharactersPassword();
}

QNResult<std::shared_ptr<QNProfile>> addVault(const QNVaultSession& session,
                                              const QNVaultAddArguments& arguments) {
  const auto password = passwordFor(arguments);
  if (!password) return password.error();
  // Its keys are sealed under what is derived from it.
  auto vault =
      QNProfile::profileWithName(arguments.name, password.value().reveal(), arguments.hint);
  if (vault->encryptedMasterKey() &&
      vault->encryptAttributesWithPrimaryProfile(session.primaryVault())) {
    const auto saved = session.store().saveVault(*vault);
    vault->lock();
    if (!saved) return saved.error();
    return vault;
  }
  vault->lock();
  return toolError(QNExit::failed, "no key can be made of the password; is memory short?");
}

}  // namespace

QNCommandResult runCommand(Global global, const QNVaultListArguments&) {
  const auto store = openStore(global, QNStore::Access::readOnly);
  if (!store) return store.error();
  const auto vaults = vaultsIn(*store.value());
  if (!vaults) return vaults.error();
  QNOutput out;
  if (global.json) {
    JsonArray array;
    for (const ListedVault& listed : vaults.value()) array.push_back(jsonOf(listed));
    out.json(Json(std::move(array)));
    out.line("");
    return out.finish();
  }
  for (const ListedVault& listed : vaults.value()) print(out, listed);
  return out.finish();
}

QNCommandResult runCommand(Global global, const QNVaultAddArguments& arguments) {
  QNGlobalArguments ofPrimary = global;
  ofPrimary.vault.clear();
  const auto session = QNVaultSession::open(ofPrimary, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto free = requireFreeName(session.value().store(), arguments.name);
  if (!free) return free.error();
  const auto vault = addVault(session.value(), arguments);
  if (!vault) return vault.error();
  if (global.json) {
    return printJson({{"vault", arguments.name},
                      {"uuid", *vault.value()->uuid()},
                      {"ownPassword", arguments.hasOwnPassword}});
  }
  say(fmt::format("added the vault {}", shownText(arguments.name)));
  return QNExit::done;
}

}  // namespace quillon
