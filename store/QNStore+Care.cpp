#include <fmt/format.h>

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/urls/QNURLTools.h"
#include "store/QNStore.h"
#include "store/internal/QNFiles.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

// The naked domain follows the public suffix list, which a newer library may bring: its hash can
// be another one without damage.
bool hashesFit(QNItemURL& url, std::string_view salt) {
  const QNURLTools& tools = QNURLTools::shared();
  const auto address = url.URLString();
  if (!address) return !url.nakedHash() && !url.derivedHash();
  return url.hashVersion() != tools.hashVersion() ||
         url.derivedHash() == tools.derivedHashWithSalt(salt, *address);
}

/// What is wrong inside an item that could be read.
void checkContent(QNItem& item, const std::string& name, std::vector<std::string>& problems) {
  if (item.key() == nullptr) problems.push_back(name + "the key doesn't open");
  if (item.details() == nullptr) problems.push_back(name + "the details don't open");
  for (const auto& url : item.URLs()) {
    if (url->mutableOverview() == nullptr) {
      problems.push_back(fmt::format("{}URL {} doesn't open", name, url->oid()));
    } else if (!hashesFit(*url, *item.profile()->uuid())) {
      problems.push_back(fmt::format("{}the hashes of URL {} aren't its own", name, url->oid()));
    }
  }
}

}  // namespace

QNResult<QNCheckReport> QNStore::check(const std::shared_ptr<QNProfile>& vault) {
  if (_database->listing) return listingError();
  QNCheckReport report;
  const auto done = _database->read([&]() -> QNResult<QNDone> {
    _database->checkFile(report);
    return _database->checkVault(vault, report);
  });
  // A file that can't be read through is what a check is for.
  if (!done.ok()) {
    if (!isStoreError(done.error(), QNStoreErrorCode::damaged)) return done.error();
    report.problems.push_back(done.error().message);
  }
  return report;
}

void QNStore::Database::checkFile(QNCheckReport& report) {
  QNQuery integrity = file->query("PRAGMA integrity_check");
  while (integrity.next()) {
    if (integrity.text(0) != "ok") report.problems.emplace_back(integrity.text(0));
  }
  QNQuery foreignKeys = file->query("PRAGMA foreign_key_check");
  while (foreignKeys.next()) {
    report.problems.push_back(fmt::format("table {}, row {}: what it belongs to isn't there",
                                          foreignKeys.text(0), foreignKeys.number(1)));
  }
}

QNResult<QNDone> QNStore::Database::checkVault(const std::shared_ptr<QNProfile>& vault,
                                               QNCheckReport& report) {
  const auto ledger = ledgerNow(*vault);
  if (!ledger.ok()) return ledger.error();
  const auto genuine = isGenuine(*vault);
  if (!genuine.ok()) return genuine.error();
  QNRowSealer sealer(*vault);
  QNRowCount count;
  QNQuery query = file->query(kSelectItemsOfVault, vault->oid());
  while (query.next()) {
    const QNItemRow row = itemRow(query);
    const std::string name = fmt::format("item {}: ", row.uuid);
    ++(isTombstone(row) ? report.tombstonesChecked : report.itemsChecked);
    if (!count.add(sealer.seal(row), row.seal)) {
      report.problems.push_back(name + "the row was altered");
      continue;
    }
    if (isTombstone(row)) {
      checkTombstone(row, *vault, report);
      continue;
    }
    const auto item = itemOf(row, vault);
    if (item.ok()) {
      checkContent(*item.value(), name, report.problems);
    } else {
      report.problems.push_back(name + item.error().message);
    }
  }
  if (!count.agreesWith(ledger.value().items)) {
    report.problems.emplace_back("rows are missing, were added, or are older than the ledger says");
  }
  checkFolders(vault, report);
  checkSyncSources(vault, report);
  return QNDone{};
}

void QNStore::Database::checkTombstone(const QNItemRow& row, QNProfile& vault,
                                       QNCheckReport& report) {
  const auto key = wrappedKeyOf(row.oid, row.bodyHash);
  if (!key) {
    report.problems.push_back(fmt::format("deleted item {}: what is left was altered", row.uuid));
  } else if (!key->empty() && vault.decryptItemKey(*key) == nullptr) {
    report.problems.push_back(fmt::format("deleted item {}: the key doesn't open", row.uuid));
  }
}

QNResult<QNDone> QNStore::backupTo(const std::filesystem::path& target) {
  if (_database->file->inTransaction()) {
    return storeError(QNStoreErrorCode::busy, "a transaction of this store is going on");
  }
  // SQLite writes into an empty file as well: so it is private before anything stands in it.
  const auto created = createPrivateFile(target);
  if (!created.ok()) return created.error();
  std::error_code ignored;  // createPrivateFile() has used the path
  const std::string path = std::filesystem::absolute(target, ignored).string();
  _database->file->change("VACUUM INTO ?1", std::string_view(path));
  const auto error = _database->file->takeError();
  const auto durable = error ? QNResult<QNDone>(*error) : makeDurable(target);
  if (!durable.ok()) removeDatabaseFiles(target);
  return durable;
}

QNResult<std::vector<std::pair<std::string, std::uint64_t>>> QNStore::categories(
    const QNProfile& vault) {
  using Counts = std::vector<std::pair<std::string, std::uint64_t>>;
  return _database->read([&]() -> QNResult<Counts> {
    QNQuery query = _database->file->query(
        "SELECT items.category_uuid, count(*) FROM items LEFT JOIN categories "
        "ON categories.vault_id = items.vault_id AND categories.uuid = items.category_uuid "
        "WHERE +items.vault_id = ?1 AND items.status = 0 "
        "GROUP BY items.category_uuid ORDER BY categories.display_order, items.category_uuid",
        vault.oid());
    Counts counts;
    while (query.next()) counts.emplace_back(query.text(0), query.number(1));
    return counts;
  });
}

}  // namespace quillon
