#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "cli/arguments/QNArguments.h"
#include "store/QNStore.h"

namespace quillon {

/// A vault of a store that is open, unlocked. Locked again when the last that holds it lets go.
struct QNOpenVault final {
  QNOpenVault(std::shared_ptr<QNStore> store, std::shared_ptr<QNProfile> vault,
              std::shared_ptr<QNProfile> primary);
  ~QNOpenVault();
  QNOpenVault(const QNOpenVault&) = delete;
  QNOpenVault& operator=(const QNOpenVault&) = delete;

  /// Also for whoever else holds it.
  void lock();

  std::shared_ptr<QNStore> store;
  std::shared_ptr<QNProfile> vault;
  std::shared_ptr<QNProfile> primary;  // null if the vault was opened by a password of its own
};

/// What a shell keeps open from one command to the next: its store, and every vault of it that a
/// command opened. Whoever asks for a vault gets it only as it would be opened anew: a file that
/// was exchanged meanwhile, and a vault that was changed but not saved, locks everything.
class QNKeptVaults final {
 public:
  explicit QNKeptVaults(std::filesystem::path store) : _file(std::move(store)) {}

  /// Locks all vaults, whoever else holds them, and closes the store: keys are wiped. Between two
  /// commands: one that runs would lose the vault that it works with.
  void lock();
  [[nodiscard]] bool isLocked() const { return _vaults.empty(); }

  /// Is it the store that is kept, by whatever name?
  [[nodiscard]] bool isOf(const std::filesystem::path& store) const;
  /// The open store, opened if need be; to be written, too, unless only reading is asked for and
  /// nothing else is possible. Errors: as openStore().
  QNResult<std::shared_ptr<QNStore>> store(const QNGlobalArguments& global, QNStore::Access access);
  /// The vault of that name ("" for the first one); null if none is open.
  [[nodiscard]] std::shared_ptr<QNOpenVault> vaultNamed(const std::string& name);
  /// The first vault, unlocked; null if none is open.
  [[nodiscard]] std::shared_ptr<QNProfile> primaryVault();
  void keep(const std::string& name, std::shared_ptr<QNOpenVault> vault);

 private:
  struct Place {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    bool operator==(const Place&) const = default;
  };
  static Place placeOf(const std::filesystem::path& file);
  // Of what a command that runs holds, the end of that command locks it.
  void letGo();
  void letGoIfStale();

  std::filesystem::path _file;
  Place _place;  // of the file that is open
  std::shared_ptr<QNStore> _store;
  QNStore::Access _access = QNStore::Access::readOnly;
  std::map<std::string, std::shared_ptr<QNOpenVault>> _vaults;
};

}  // namespace quillon
