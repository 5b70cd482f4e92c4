#pragma once
// For tests: vaults that cost next to nothing to open, and ears for what they post and report.

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/notifications/MRNotificationCenter.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {

/// An unlocked vault of that name, with the demonstration password.
inline std::shared_ptr<QNProfile> demoVault(std::string_view name = "demo") {
  return QNProfile::profileWithName(name, DEMO_PASSWORD, std::nullopt);
}

/// What a database layer makes of the vault's row: a locked shell with its stored fields.
inline std::shared_ptr<QNProfile> storedCopyOf(const QNProfile& vault) {
  auto copy = QNProfile::initExistingWithID(vault.oid());
  copy->setUuid(vault.uuid());
  copy->setProfileName(vault.profileName());
  copy->setSalt(vault.salt());
  copy->setIterations(vault.iterations());
  copy->setEncryptedMasterKey(vault.encryptedMasterKey());
  copy->setEncryptedOverviewKey(vault.encryptedOverviewKey());
  return copy;
}

/// The names of the notifications that one vault posts while this lives, in their order, each
/// with the vault's state at that moment: "QNProfileWillLockNotification unlocked".
class QNVaultListener final {
 public:
  explicit QNVaultListener(const QNProfile& vault)
      : _token(MRNotificationCenter::defaultCenter().addObserver(
            "", &vault, [this, &vault](std::string_view name, const void* /*object*/) {
              heard.push_back(std::string(name) + (vault.isLocked() ? " locked" : " unlocked"));
            })) {}
  ~QNVaultListener() { MRNotificationCenter::defaultCenter().removeObserver(_token); }
  QNVaultListener(const QNVaultListener&) = delete;
  QNVaultListener& operator=(const QNVaultListener&) = delete;

  std::vector<std::string> heard;

 private:
  MRNotificationCenter::Token _token;
};

}  // namespace quillon
