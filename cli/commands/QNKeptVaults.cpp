#include "cli/commands/QNKeptVaults.h"

#include <sys/stat.h>

#include <algorithm>

#include "cli/commands/QNVaultSession.h"

namespace quillon {
namespace {

// A password or colour that could not be saved must not come along with the next change.
bool isAsStored(const QNOpenVault& open) {
  return open.vault->isUnlocked() && !open.vault->dirtyRow() &&
         (open.primary == nullptr || open.primary->isUnlocked());
}

std::string keyOf(const std::string& name) {
  return name.empty() ? std::string(QNProfile::primaryProfileName()) : name;
}

}  // namespace

QNOpenVault::QNOpenVault(std::shared_ptr<QNStore> ofStore, std::shared_ptr<QNProfile> opened,
                         std::shared_ptr<QNProfile> first)
    : store(std::move(ofStore)), vault(std::move(opened)), primary(std::move(first)) {}

QNOpenVault::~QNOpenVault() {
  lock();
}

void QNOpenVault::lock() {
  if (vault != nullptr) vault->lock();
  if (primary != nullptr && primary != vault) primary->lock();
}

void QNKeptVaults::lock() {
  for (const auto& [name, open] : _vaults) open->lock();
  letGo();
}

void QNKeptVaults::letGo() {
  _vaults.clear();
  _store.reset();
}

bool QNKeptVaults::isOf(const std::filesystem::path& store) const {
  std::error_code ignored;  // a file that isn't there is told of when it is opened
  return store == _file || std::filesystem::equivalent(store, _file, ignored);
}

QNKeptVaults::Place QNKeptVaults::placeOf(const std::filesystem::path& file) {
  struct stat about {};
  if (::stat(file.c_str(), &about) != 0) return {};
  return {static_cast<std::uint64_t>(about.st_dev), static_cast<std::uint64_t>(about.st_ino)};
}

void QNKeptVaults::letGoIfStale() {
  const bool sound = std::all_of(_vaults.begin(), _vaults.end(),
                                 [](const auto& kept) { return isAsStored(*kept.second); });
  if (!sound || placeOf(_file) != _place) letGo();
}

QNResult<std::shared_ptr<QNStore>> QNKeptVaults::store(const QNGlobalArguments& global,
                                                       QNStore::Access access) {
  letGoIfStale();
  if (_store != nullptr && (access == QNStore::Access::readOnly || _access == access)) {
    return _store;
  }
  QNStore::Access given = QNStore::Access::readWrite;
  const Place place = placeOf(_file);  // before: what is exchanged now is noticed next time
  auto opened = openStore(global, given);
  if (!opened && access == QNStore::Access::readOnly) {
    given = access;
    opened = openStore(global, given);
  }
  if (!opened) return opened.error();
  letGo();
  _store = std::move(opened).value();
  _access = given;
  _place = place;
  return _store;
}

std::shared_ptr<QNOpenVault> QNKeptVaults::vaultNamed(const std::string& name) {
  const auto found = _vaults.find(keyOf(name));
  return found == _vaults.end() ? nullptr : found->second;
}

std::shared_ptr<QNProfile> QNKeptVaults::primaryVault() {
  for (const auto& [name, open] : _vaults) {
    if (open->primary != nullptr) return open->primary;
  }
  return nullptr;
}

void QNKeptVaults::keep(const std::string& name, std::shared_ptr<QNOpenVault> vault) {
  _vaults.insert_or_assign(keyOf(name), std::move(vault));
}

}  // namespace quillon
