#include <algorithm>

#include "quillon/templates/QNCategory.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

// In the order in which vaultRow() reads them.
#define QN_VAULT_COLUMNS                                                                        \
  "oid, uuid, name, revision, status, created_at, updated_at, master_key, overview_key, salt, " \
  "iterations, hint, last_updated_by, icon, color, attributes, seal"

QNVaultRow vaultRow(const QNQuery& query) {
  QNVaultRow row;
  row.oid = query.number(0);
  row.uuid = query.text(1);
  row.name = query.text(2);
  row.revision = query.number(3);
  row.status = query.number(4);
  row.createdAt = query.number(5);
  row.updatedAt = query.number(6);
  row.masterKey = query.bytes(7);
  row.overviewKey = query.bytes(8);
  row.salt = query.bytes(9);
  row.iterations = query.number(10);
  row.hint = query.optionalText(11);
  row.lastUpdatedBy = query.optionalText(12);
  row.icon = query.optionalBytes(13);
  row.color = query.optionalText(14);
  row.attributes = query.optionalBytes(15);
  row.seal = query.bytes(16);
  return row;
}

/// A vault's columns, with the copies that the row's views lie in.
struct VaultColumns {
  explicit VaultColumns(const QNProfile& vault)
      : name(vault.profileName()),
        hint(vault.passwordHint()),
        lastUpdatedBy(vault.lastUpdatedBy()),
        color(vault.profileColorText()),
        icon(vault.iconData()) {
    row.oid = vault.oid();
    row.uuid = *vault.uuid();
    row.name = *name;
    row.status = vault.status();
    row.createdAt = vault.createdAt();
    row.updatedAt = vault.updatedAt();
    row.masterKey = *vault.encryptedMasterKey();
    row.overviewKey = *vault.encryptedOverviewKey();
    row.salt = *vault.salt();
    row.iterations = vault.iterations();
    row.hint = hint;
    row.lastUpdatedBy = lastUpdatedBy;
    row.icon = icon;
    row.color = color;
    row.attributes = vault.attributesData();
  }
  std::optional<std::string> name, hint, lastUpdatedBy, color;
  std::optional<Bytes> icon;
  QNVaultRow row;
};

/// Could the vault be opened again from its row?
bool isStorable(const QNProfile& vault) {
  return vault.uuid() != nullptr && vault.profileName() && vault.encryptedMasterKey() &&
         vault.encryptedOverviewKey() && vault.salt();
}

template <class Value>
auto owned(std::optional<Value> view) {
  if constexpr (std::is_same_v<Value, ByteView>) {
    return view ? std::optional(toBytes(*view)) : std::nullopt;
  } else {
    return view ? std::optional(std::string(*view)) : std::nullopt;
  }
}

std::shared_ptr<QNProfile> vaultOf(const QNVaultRow& row) {
  auto vault = QNProfile::initExistingWithID(row.oid);
  vault->setUuid(sharedString(std::string(row.uuid)));
  vault->setProfileName(std::string(row.name));
  vault->setCreatedAt(row.createdAt);
  vault->setUpdatedAt(row.updatedAt);
  vault->setEncryptedMasterKey(toBytes(row.masterKey));
  vault->setEncryptedOverviewKey(toBytes(row.overviewKey));
  vault->setSalt(toBytes(row.salt));
  // A count that no key is made with stays one.
  vault->setIterations(static_cast<std::uint32_t>(
      std::min<std::uint64_t>(row.iterations, std::numeric_limits<std::uint32_t>::max())));
  vault->setPasswordHint(owned(row.hint));
  vault->setLastUpdatedBy(owned(row.lastUpdatedBy));
  vault->setIconData(owned(row.icon));
  vault->setProfileColorText(owned(row.color));
  vault->setAttributesData(owned(row.attributes));
  if (row.status == 2) vault->markDeleted();
  if (row.status == 1) vault->setTrashed(true);
  vault->didLoad();
  return vault;
}

std::shared_ptr<QNCategory> newCategory(QNProfile& vault, std::string_view uuid) {
  auto category = vault.newLegacyCategoryWithUUID(uuid);
  if (category == nullptr) category = vault.newSystemCategoryWithUUID(uuid);
  return std::dynamic_pointer_cast<QNCategory>(category);
}

}  // namespace

QNStore::Database::KnownVault* QNStore::Database::knownVault(const QNProfile& vault) {
  const auto found = std::find_if(vaults.begin(), vaults.end(), [&vault](const KnownVault& known) {
    return known.vault.lock().get() == &vault;
  });
  return found == vaults.end() ? nullptr : &*found;
}

std::shared_ptr<QNProfile> QNStore::Database::unlockedVaultWithOid(std::uint64_t oid) {
  for (const KnownVault& known : vaults) {
    auto vault = known.vault.lock();
    if (known.oid == oid && vault != nullptr && vault->isUnlocked()) return vault;
  }
  return nullptr;
}

// Ledgers

QNResult<QNLedger> QNStore::Database::ledgerNow(QNProfile& vault) {
  if (vault.isLocked()) return storeError(QNStoreErrorCode::locked, "the vault is locked");
  const auto open = ledgers.find(vault.oid());
  if (open != ledgers.end() && open->second.vault->isEqual(vault)) return open->second.ledger;
  QNQuery query = file->query(
      "SELECT content FROM vaults LEFT JOIN ledgers ON vault_id = oid "
      "WHERE oid = ?1 AND uuid = ?2",
      vault.oid(), vault.uuid() == nullptr ? std::string_view() : std::string_view(*vault.uuid()));
  if (!query.next()) {
    if (file->failed()) return *file->error();
    return storeError(QNStoreErrorCode::notFound, "the vault isn't in this store");
  }
  const auto ledger = QNLedger::open(vault, query.bytes(0));
  if (!ledger) return storeError(QNStoreErrorCode::damaged, "the vault's ledger doesn't open");
  return *ledger;
}

QNResult<QNLedger*> QNStore::Database::openLedger(const std::shared_ptr<QNProfile>& vault) {
  const auto now = ledgerNow(*vault);
  if (!now.ok()) return now.error();
  OpenLedger& open = ledgers[vault->oid()];
  open.vault = vault;
  open.ledger = now.value();
  return &open.ledger;
}

// Saving

QNResult<QNDone> QNStore::saveVault(QNProfile& vault) {
  const auto shared = vault.shared_from_this();
  return inTransaction([this, &shared]() -> QNResult<QNDone> {
    if (shared->isLocked()) return storeError(QNStoreErrorCode::locked, "the vault is locked");
    if (!isStorable(*shared)) {
      return storeError(QNStoreErrorCode::unreadableItem, "the vault has no name or no password");
    }
    shared->willSave();
    return shared->hasOid() ? _database->updateVault(shared) : _database->insertVault(shared);
  });
}

QNResult<QNDone> QNStore::Database::insertVault(const std::shared_ptr<QNProfile>& vault) {
  VaultColumns columns(*vault);
  QNVaultRow& row = columns.row;
  row.oid = file->number("SELECT coalesce(max(oid), 0) + 1 FROM vaults");
  row.revision = 1;
  const auto seal = QNRowSealer(*vault).seal(row);
  if (!seal) return storeError(QNStoreErrorCode::locked, "the vault's keys aren't there");
  file->change(
      "INSERT INTO vaults (" QN_VAULT_COLUMNS
      ") VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17)",
      row.oid, row.uuid, row.name, row.revision, row.status, row.createdAt, row.updatedAt,
      row.masterKey, row.overviewKey, row.salt, row.iterations, row.hint, row.lastUpdatedBy,
      row.icon, row.color, row.attributes, ByteView(seal->tag));
  QNLedger ledger;
  ledger.vaultRevision = row.revision;
  ledgers.insert_or_assign(row.oid, OpenLedger{vault, ledger});
  vault->_setOid(row.oid);
  vaults.push_back({vault, row.oid, row.revision});
  undo.emplace_back([this, vault] {
    vault->_setOid(0);
    std::erase_if(vaults, [&vault](const auto& known) { return known.vault.lock() == vault; });
  });
  afterCommit.emplace_back([vault] { vault->didSave(); });
  return QNDone{};
}

QNResult<QNDone> QNStore::Database::updateVault(const std::shared_ptr<QNProfile>& vault) {
  KnownVault* const known = knownVault(*vault);
  if (known == nullptr) {
    return storeError(QNStoreErrorCode::notFound, "the vault isn't in this store");
  }
  const auto ledger = openLedger(vault);
  if (!ledger.ok()) return ledger.error();
  if (ledger.value()->vaultRevision != known->revision) {
    return storeError(QNStoreErrorCode::lostRace, "the vault was saved by somebody else");
  }
  VaultColumns columns(*vault);
  QNVaultRow& row = columns.row;
  row.revision = known->revision + 1;
  const auto seal = QNRowSealer(*vault).seal(row);
  if (!seal) return storeError(QNStoreErrorCode::locked, "the vault's keys aren't there");
  const std::uint64_t changed = file->change(
      "UPDATE vaults SET name = ?3, revision = ?4, status = ?5, created_at = ?6, updated_at = ?7, "
      "master_key = ?8, overview_key = ?9, salt = ?10, iterations = ?11, hint = ?12, "
      "last_updated_by = ?13, icon = ?14, color = ?15, attributes = ?16, seal = ?17 "
      "WHERE oid = ?1 AND uuid = ?2 AND revision = ?18",
      row.oid, row.uuid, row.name, row.revision, row.status, row.createdAt, row.updatedAt,
      row.masterKey, row.overviewKey, row.salt, row.iterations, row.hint, row.lastUpdatedBy,
      row.icon, row.color, row.attributes, ByteView(seal->tag), known->revision);
  if (changed != 1) return storeError(QNStoreErrorCode::damaged, "the vault's row was altered");
  ledger.value()->vaultRevision = row.revision;
  known->revision = row.revision;
  undo.emplace_back([this, vault] { --knownVault(*vault)->revision; });
  afterCommit.emplace_back([vault] { vault->didSave(); });
  return QNDone{};
}

// Reading

QNResult<std::vector<QNStoredVaultInfo>> QNStore::vaults() {
  return _database->read([this]() -> QNResult<std::vector<QNStoredVaultInfo>> {
    QNQuery query = _database->file->query(
        "SELECT vaults.oid, vaults.uuid, vaults.name, "
        "count(items.oid) FILTER (WHERE items.status = 0), "
        "count(items.oid) FILTER (WHERE items.status = 1 AND items.category_uuid <> '099') "
        "FROM vaults LEFT JOIN items ON +items.vault_id = vaults.oid "
        "GROUP BY vaults.oid ORDER BY vaults.oid");
    std::vector<QNStoredVaultInfo> infos;
    while (query.next()) {
      infos.push_back({query.number(0), std::string(query.text(1)), std::string(query.text(2)),
                       query.number(3), query.number(4)});
    }
    return infos;
  });
}

QNResult<std::shared_ptr<QNProfile>> QNStore::vaultNamed(std::string_view name) {
  return _database->read([this, name]() -> QNResult<std::shared_ptr<QNProfile>> {
    QNQuery query =
        _database->file->query("SELECT " QN_VAULT_COLUMNS " FROM vaults WHERE name = ?1", name);
    if (!query.next()) return storeError(QNStoreErrorCode::notFound, "no vault of that name");
    const QNVaultRow row = vaultRow(query);
    const auto vault = vaultOf(row);
    _database->readCategories(vault);
    std::erase_if(_database->vaults, [](const auto& known) { return known.vault.expired(); });
    _database->vaults.push_back({vault, row.oid, row.revision});
    return vault;
  });
}

QNResult<bool> QNStore::unlock(QNProfile& vault, std::string_view password) {
  if (!vault._unlockWithPassword(password)) return false;
  return _database->lockUnlessGenuine(vault);
}

QNResult<bool> QNStore::unlockWithPrimary(QNProfile& vault,
                                          const std::shared_ptr<QNProfile>& primary) {
  if (primary == nullptr || primary->isLocked()) {
    return storeError(QNStoreErrorCode::locked, "the primary vault is locked");
  }
  if (!vault.attributesData()) return false;
  if (!vault.decryptAttributesWithPrimaryProfile(primary)) {
    return storeError(QNStoreErrorCode::damaged, "the vault's twin archive doesn't open");
  }
  // The archive may be another vault's: then the keys don't fit the seals of this one.
  return _database->lockUnlessGenuine(vault);
}

QNResult<bool> QNStore::Database::lockUnlessGenuine(QNProfile& vault) {
  auto genuine = read([this, &vault] { return isGenuine(vault); });
  if (!genuine.ok()) vault.lock();
  return genuine;
}

QNResult<bool> QNStore::Database::isGenuine(QNProfile& vault) {
  const auto ledger = ledgerNow(vault);
  if (!ledger.ok()) return ledger.error();
  QNQuery query =
      file->query("SELECT " QN_VAULT_COLUMNS " FROM vaults WHERE oid = ?1", vault.oid());
  if (!query.next()) return storeError(QNStoreErrorCode::notFound, "the vault isn't there");
  const QNVaultRow row = vaultRow(query);
  if (!sealFits(QNRowSealer(vault).seal(row), row.seal) ||
      row.revision != ledger.value().vaultRevision) {
    return storeError(QNStoreErrorCode::damaged, "the vault's row was altered");
  }
  return true;
}

// Categories

void QNStore::Database::writeCategory(const std::shared_ptr<QNProfile>& vault,
                                      std::string_view uuid) {
  if (!ledgers.at(vault->oid()).categories.emplace(uuid).second) return;
  auto category = std::dynamic_pointer_cast<QNCategory>(vault->categoryWithUUID(uuid));
  if (category != nullptr && category->hasOid()) return;
  {
    QNQuery query = file->query("SELECT oid FROM categories WHERE vault_id = ?1 AND uuid = ?2",
                                vault->oid(), uuid);
    if (query.next()) return;
  }
  if (category == nullptr) category = newCategory(*vault, uuid);
  file->change(
      "INSERT INTO categories (vault_id, uuid, display_order, singular_name, plural_name, "
      "list_icon_name, detail_icon_name) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)",
      vault->oid(), uuid, category->displayOrder(), category->singularName(),
      category->pluralName(), category->listIconName(), category->detailIconName());
  afterCommit.emplace_back([vault, category, oid = file->lastRow()] {
    category->_setOid(oid);
    category->didSave();
    vault->addCategory(category);
  });
}

void QNStore::Database::readCategories(const std::shared_ptr<QNProfile>& vault) {
  QNQuery query = file->query(
      "SELECT oid, uuid, display_order, singular_name, plural_name, list_icon_name, "
      "detail_icon_name FROM categories WHERE vault_id = ?1",
      vault->oid());
  while (query.next()) {
    auto category = std::make_shared<QNCategory>(QNExisting{query.number(0)});
    category->setProfile(vault);
    category->setUuid(std::string(query.text(1)));
    category->setDisplayOrder(query.number(2));
    category->setSingularName(owned(query.optionalText(3)));
    category->setPluralName(owned(query.optionalText(4)));
    category->setListIconName(owned(query.optionalText(5)));
    category->setDetailIconName(owned(query.optionalText(6)));
    category->didLoad();
    vault->addCategory(category);
  }
}

}  // namespace quillon
