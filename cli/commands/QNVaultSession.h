#pragma once

#include "cli/QNToolError.h"
#include "cli/arguments/QNArguments.h"
#include "store/QNStore.h"

namespace quillon {

/// The store and its vault, open. The vault is locked again when this goes.
class QNVaultSession final {
 public:
  /// Opens the file, asks for the password, and unlocks. Errors: exit code 3 for a wrong password,
  /// 6 for a damaged store, 7 for a file that isn't there.
  static QNResult<QNVaultSession> open(const QNGlobalArguments& global, QNStore::Access access);
  ~QNVaultSession();
  QNVaultSession(QNVaultSession&&) noexcept = default;
  QNVaultSession& operator=(QNVaultSession&&) = delete;

  [[nodiscard]] QNStore& store() const { return *_store; }
  [[nodiscard]] const std::shared_ptr<QNProfile>& vault() const { return _vault; }

 private:
  QNVaultSession(std::unique_ptr<QNStore> store, std::shared_ptr<QNProfile> vault)
      : _store(std::move(store)), _vault(std::move(vault)) {}
  std::unique_ptr<QNStore> _store;
  std::shared_ptr<QNProfile> _vault;
};

/// The store file, opened; a missing one is an error with exit code 7.
QNResult<std::unique_ptr<QNStore>> openStore(const QNGlobalArguments& global,
                                             QNStore::Access access);
/// The one vault of the store, locked.
QNResult<std::shared_ptr<QNProfile>> lockedVault(QNStore& store);

/// Tells the user of rows that a list left out. `done` if there are none, else `damaged`.
QNExit warnOfDamage(const QNListReport& report);

}  // namespace quillon
