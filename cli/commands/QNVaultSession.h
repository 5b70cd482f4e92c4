#pragma once

#include "cli/QNToolError.h"
#include "cli/arguments/QNArguments.h"
#include "cli/commands/QNKeptVaults.h"
#include "store/QNStore.h"

namespace quillon {

/// The store and the vault that the user chose, open: by the password of the primary vault, which
/// opens the others, or by one of its own. What was unlocked is locked again when this goes, unless
/// a shell keeps it for its next command.
class QNVaultSession final {
 public:
  /// Opens the file, asks for the password, and unlocks; what a shell keeps open is there without
  /// both. Errors: exit code 3 for a wrong password,
  /// 4 for a vault that isn't there, 6 for a damaged store, 7 for a file that isn't there.
  static QNResult<QNVaultSession> open(const QNGlobalArguments& global, QNStore::Access access) {
    return open(global, access, "Password: ");
  }
  /// A vault of another store, to be written too; `global` is of the first one, which is open by
  /// now. Errors name the file; exit code 2 if it is the same file.
  static QNResult<QNVaultSession> openBeside(const QNGlobalArguments& global,
                                             const std::filesystem::path& file,
                                             const std::string& vault,
                                             const QNPasswordSource& password);
  QNVaultSession(QNVaultSession&&) noexcept = default;
  QNVaultSession& operator=(QNVaultSession&&) = delete;

  [[nodiscard]] QNStore& store() const { return *_open->store; }
  [[nodiscard]] const std::shared_ptr<QNProfile>& vault() const { return _open->vault; }
  /// Null if the vault was opened by a password of its own.
  [[nodiscard]] const std::shared_ptr<QNProfile>& primaryVault() const { return _open->primary; }

 private:
  static QNResult<QNVaultSession> open(const QNGlobalArguments& global, QNStore::Access access,
                                       std::string_view prompt);
  explicit QNVaultSession(std::shared_ptr<QNOpenVault> open) : _open(std::move(open)) {}
  std::shared_ptr<QNOpenVault> _open;
};

/// The store file, opened; a missing one is an error with exit code 7.
QNResult<std::unique_ptr<QNStore>> openStore(const QNGlobalArguments& global,
                                             QNStore::Access access);
/// The chosen vault of the store, locked; exit code 4 if there is none of that name.
QNResult<std::shared_ptr<QNProfile>> lockedVault(QNStore& store, const QNGlobalArguments& global);

/// Exit code 2 if both names are of one file.
QNResult<QNDone> requireTwoStores(const QNGlobalArguments& global,
                                  const std::filesystem::path& other);

/// Tells the user of rows that a list left out. `done` if there are none, else `damaged`.
QNExit warnOfDamage(const QNListReport& report);

}  // namespace quillon
