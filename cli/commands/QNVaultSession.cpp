#include "cli/commands/QNVaultSession.h"

#include <fmt/format.h>

#include "cli/QNToolError.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "cli/terminal/QNPasswords.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using OpenVault = std::shared_ptr<QNOpenVault>;

QNError wrongPassword(const QNProfile& vault, std::string_view typed) {
  if (!isUTF8(typed)) {
    return toolError(QNExit::wrongPassword, "wrong password: it isn't UTF-8 text");
  }
  const auto hint = vault.passwordHint();
  if (!hint || hint->empty()) return toolError(QNExit::wrongPassword, "wrong password");
  return toolError(QNExit::wrongPassword,
                   fmt::format("wrong password; the hint is: {}", shownText(*hint)));
}

QNResult<std::shared_ptr<QNProfile>> lockedPrimary(QNStore& store) {
  auto vault = store.vaultNamed(QNProfile::primaryProfileName());
  if (!vault.ok() && isStoreError(vault.error(), QNStoreErrorCode::notFound)) {
    return toolError(QNExit::damaged, "the store has no vault");
  }
  return vault;
}

// Does the password open the vault, be it the primary one's or its own? The primary vault is left
// unlocked if it is the primary one's.
QNResult<bool> unlockOther(QNStore& store, QNProfile& vault,
                           const std::shared_ptr<QNProfile>& primary, std::string_view password) {
  const auto opensPrimary = store.unlock(*primary, password);
  if (!opensPrimary) return opensPrimary.error();
  if (opensPrimary.value()) {
    const auto opened = store.unlockWithPrimary(vault, primary);
    if (!opened || opened.value()) return opened;
    primary->lock();
  }
  return store.unlock(vault, password);
}

// Null if this is no command of a shell, or one for another store.
QNKeptVaults* keptFor(const QNGlobalArguments& global) {
  return global.kept != nullptr && global.kept->isOf(global.store) ? global.kept : nullptr;
}

QNResult<std::shared_ptr<QNStore>> storeFor(const QNGlobalArguments& global,
                                            QNStore::Access access) {
  if (auto* const kept = keptFor(global)) return kept->store(global, access);
  auto store = openStore(global, access);
  if (!store) return store.error();
  return std::shared_ptr<QNStore>(std::move(store).value());
}

// Another vault of a store of which the first one is open. Null if that one doesn't open it.
QNResult<OpenVault> openWithPrimary(const std::shared_ptr<QNStore>& store,
                                    const std::shared_ptr<QNProfile>& vault,
                                    const std::shared_ptr<QNProfile>& primary) {
  const auto opened = store->unlockWithPrimary(*vault, primary);
  if (!opened) return opened.error();
  return opened.value() ? std::make_shared<QNOpenVault>(store, vault, primary) : OpenVault();
}

QNResult<OpenVault> openWithPassword(const QNGlobalArguments& global,
                                     const std::shared_ptr<QNStore>& store,
                                     const std::shared_ptr<QNProfile>& vault,
                                     std::string_view prompt) {
  const auto primary = vault->isPrimaryProfile() ? QNResult<std::shared_ptr<QNProfile>>(vault)
                                                 : lockedPrimary(*store);
  if (!primary) return primary.error();
  const auto password = readPassword(global.password, prompt);
  if (!password) return password.error();
  // The key is derived from it, and the vault keeps it sealed while it is open.
  const std::string_view text = password.value().reveal();
  const auto unlocked = vault == primary.value()
                            ? store->unlock(*vault, text)
                            : unlockOther(*store, *vault, primary.value(), text);
  const bool isPrimaryOpen = primary.value()->isUnlocked();
  auto open =
      std::make_shared<QNOpenVault>(store, vault, isPrimaryOpen ? primary.value() : nullptr);
  if (!unlocked) return unlocked.error();
  if (!unlocked.value()) {
    return wrongPassword(vault->passwordHint() ? *vault : *primary.value(), text);
  }
  return open;
}

}  // namespace

QNResult<std::unique_ptr<QNStore>> openStore(const QNGlobalArguments& global,
                                             QNStore::Access access) {
  if (global.store.empty()) {
    return toolError(QNExit::wrongUsage, "no home folder; name the store with --store");
  }
  auto store = QNStore::open(global.store, access);
  if (store.ok()) return store;
  const std::string where = shownText(global.store.string());
  if (isStoreError(store.error(), QNStoreErrorCode::notFound)) {
    return toolError(QNExit::fileError,
                     fmt::format("{}: there is no store yet; quillon init makes one", where));
  }
  if (isStoreError(store.error(), QNStoreErrorCode::newerSchema)) {
    return toolError(QNExit::damaged,
                     fmt::format("{}: written by a newer version of quillon", where));
  }
  return store.error().within(where);
}

QNResult<std::shared_ptr<QNProfile>> lockedVault(QNStore& store, const QNGlobalArguments& global) {
  if (global.vault.empty() || global.vault == QNProfile::primaryProfileName()) {
    return lockedPrimary(store);
  }
  auto vault = store.vaultNamed(global.vault);
  if (vault.ok() || !isStoreError(vault.error(), QNStoreErrorCode::notFound)) return vault;
  return toolError(QNExit::notFound,
                   fmt::format("the store has no vault \"{}\"; quillon vault list "
                               "names those it has",
                               shownText(global.vault)));
}

QNResult<QNVaultSession> QNVaultSession::open(const QNGlobalArguments& global,
                                              QNStore::Access access, std::string_view prompt) {
  const auto store = storeFor(global, access);
  if (!store) return store.error();
  QNKeptVaults* const kept = keptFor(global);
  if (kept != nullptr) {
    if (auto open = kept->vaultNamed(global.vault)) return QNVaultSession(std::move(open));
  }
  const auto vault = lockedVault(*store.value(), global);
  if (!vault) return vault.error();
  QNResult<OpenVault> open = OpenVault();
  const auto primary = kept == nullptr ? nullptr : kept->primaryVault();
  if (primary != nullptr) open = openWithPrimary(store.value(), vault.value(), primary);
  if (open && open.value() == nullptr) {
    open = openWithPassword(global, store.value(), vault.value(), prompt);
  }
  if (!open) return open.error();
  if (kept != nullptr) kept->keep(global.vault, open.value());
  return QNVaultSession(std::move(open).value());
}

QNResult<QNDone> requireTwoStores(const QNGlobalArguments& global,
                                  const std::filesystem::path& other) {
  std::error_code ignored;  // a file that isn't there is told of when it is opened
  if (!std::filesystem::equivalent(global.store, other, ignored)) return QNDone{};
  return toolError(QNExit::wrongUsage,
                   fmt::format("{}: is the same store", shownText(other.string())));
}

QNResult<QNVaultSession> QNVaultSession::openBeside(const QNGlobalArguments& global,
                                                    const std::filesystem::path& file,
                                                    const std::string& vault,
                                                    const QNPasswordSource& password) {
  const auto two = requireTwoStores(global, file);
  if (!two) return two.error();
  QNGlobalArguments other = global;
  other.store = file;
  other.vault = vault;
  other.password = password;
  auto session = open(other, QNStore::Access::readWrite, "Password of the other store: ");
  if (session) return session;
  const std::string where = shownText(file.string());
  const bool isNamed = session.error().message.starts_with(where);
  return isNamed ? session.error() : session.error().within(where);
}

QNExit warnOfDamage(const QNListReport& report) {
  if (!report.damaged.empty()) {
    say(fmt::format("damaged items left out: {}; quillon check names them", report.damaged.size()));
  }
  if (report.ledgerBroken) {
    say("items were removed, added or put back to an older state by something else than quillon; "
        "quillon check tells more");
  }
  return report.damaged.empty() && !report.ledgerBroken ? QNExit::done : QNExit::damaged;
}

}  // namespace quillon
