#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNOutput.h"
#include "cli/terminal/QNMessages.h"
#include "cli/terminal/QNPasswords.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNPasswdArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readWrite);
  if (!session) return session.error();
  const auto password = readNewPassword(arguments.newPassword);
  if (!password) return password.error();
  QNProfile& vault = *session.value().vault();
  // Its keys are sealed anew under what is derived from it.
  if (!vault.changePasswordTo(password.value().reveal())) {
    return toolError(QNExit::failed, "no key can be made of the password; is memory short?");
  }
  // Its twin archive holds the password, too. Without the primary vault, the old one there is of no
  // use to anybody: the keys beside it are what opens the vault.
  const auto& primary = session.value().primaryVault();
  if (primary != nullptr && primary.get() != &vault &&
      !vault.encryptAttributesWithPrimaryProfile(primary)) {
    return toolError(QNExit::failed, "the vault can't be sealed for the first one");
  }
  const auto saved = session.value().store().saveVault(vault);
  if (!saved) return saved.error();
  if (global.json) return printJson({{"changed", true}});
  say("the password is changed");
  return QNExit::done;
}

}  // namespace quillon
