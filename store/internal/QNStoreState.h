#pragma once
// What a store holds while it is open, and the steps that its operations are made of. Steps run
// inside a transaction and leave SQLite's errors with the connection.

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <vector>

#include "quillon/templates/QNCategoryUUID.h"
#include "store/QNStore.h"
#include "store/internal/QNDatabase.h"
#include "store/internal/QNLedger.h"
#include "store/internal/QNRowSeal.h"
#include "store/internal/QNSyncStates.h"

namespace quillon {

/// The columns of a QNItemRow, in the order in which itemRow() reads them.
#define QN_ITEM_COLUMNS                                                                           \
  "oid, status, fave_index, created_at, updated_at, tx_timestamp, times_used, last_used, inbox, " \
  "attachments, category_uuid, scope, folder_uuid, uuid, body_hash, seal, overview"
QNItemRow itemRow(const QNQuery& query);
/// A vault's rows in row order. The plus keeps SQLite from going through the index.
inline constexpr std::string_view kSelectItemsOfVault =
    "SELECT " QN_ITEM_COLUMNS " FROM items WHERE +vault_id = ?1 ORDER BY oid";
/// Items of a host, by the start of its hash that the index holds. The cross join keeps that index
/// in front, and the plus keeps SQLite from putting the whole hash into the first comparison.
#define QN_ITEMS_WITH_HASH(COLUMN)                                                    \
  "SELECT DISTINCT items.oid FROM urls CROSS JOIN items ON items.oid = urls.item_id " \
  "WHERE substr(urls." COLUMN ", 1, 12) = substr(?1, 1, 12) AND +urls." COLUMN        \
  " = ?1 AND items.vault_id = ?2 AND items.status = 0 AND "                           \
  "items.category_uuid IN ('001', '800', '005') ORDER BY items.oid"
inline constexpr std::string_view kSelectItemsWithDerivedHash = QN_ITEMS_WITH_HASH("derived_hash");
inline constexpr std::string_view kSelectItemsWithNakedHash = QN_ITEMS_WITH_HASH("naked_hash");
#undef QN_ITEMS_WITH_HASH
/// In the order of their times, through the index.
inline constexpr std::string_view kSelectChanges =
    "SELECT " QN_ITEM_COLUMNS
    " FROM items WHERE vault_id = ?1 AND tx_timestamp > ?2 ORDER BY tx_timestamp";

/// The columns of a QNFolderRow, in the order in which folderRow() reads them.
#define QN_FOLDER_COLUMNS                                                                        \
  "oid, status, created_at, updated_at, tx_timestamp, smart, display_order, parent_uuid, uuid, " \
  "icon, seal, overview"
QNFolderRow folderRow(const QNQuery& query);
/// Normal items first, then trashed ones: the order that the index has.
inline constexpr std::string_view kSelectItemsOfFolder =
    "SELECT " QN_ITEM_COLUMNS
    " FROM items WHERE vault_id = ?1 AND folder_uuid = ?2 ORDER BY status, oid";
/// By the index alone.
inline constexpr std::string_view kCountItemsOfFolders =
    "SELECT folder_uuid, count(*) FROM items WHERE vault_id = ?1 AND folder_uuid IS NOT NULL AND "
    "status = 0 GROUP BY folder_uuid";
/// Row id and uuid of the items whose folder isn't there.
inline constexpr std::string_view kSelectStrayItems =
    "SELECT oid, uuid FROM items WHERE vault_id = ?1 AND folder_uuid IS NOT NULL AND NOT EXISTS "
    "(SELECT 1 FROM folders WHERE folders.vault_id = ?1 AND folders.uuid = items.folder_uuid AND "
    "folders.status = 0) ORDER BY oid";

/// The keychain type of what a merge remembers: times of others needn't be those of our rows.
inline constexpr std::string_view kTypeOfMerges = "store";

// Values of `status`. What stays of a deleted item has that of a trashed one.
inline constexpr std::uint64_t kTrashedItem = 1;
inline constexpr std::uint64_t kDeletedFolder = 2;
/// Is it what stays of a deleted folder?
inline bool isDeleted(const QNFolderRow& row) {
  return row.status == kDeletedFolder;
}

/// Runs willSave, and tells whether it sealed the overview anew: it says nothing when it can't, for
/// instance with a text that isn't UTF-8, and leaves the former one.
bool sealAnew(QNDatabaseObjectWithOverview& object);

/// Is it what stays of a deleted item?
inline bool isTombstone(const QNItemRow& row) {
  return row.categoryUUID == QNCategoryUUIDTombstone;
}

/// A visitor of a list may read items and nothing else: the list's rows must not change under it.
inline QNError listingError() {
  return storeError(QNStoreErrorCode::busy, "a list of this store is going on");
}

struct QNStore::Database {
  explicit Database(std::unique_ptr<QNDatabase> opened) : file(std::move(opened)) {}

  // Vaults: QNStore+Vaults.cpp
  /// The vault's ledger as it stands, the running transaction's changes included. Errors: notFound
  /// for a vault of another store, locked, damaged.
  QNResult<QNLedger> ledgerNow(QNProfile& vault);
  /// The same for a change; written at the transaction's end.
  QNResult<QNLedger*> openLedger(const std::shared_ptr<QNProfile>& vault);
  /// Is the vault's row what was saved last? Error: damaged, if it isn't.
  QNResult<bool> isGenuine(QNProfile& vault);
  QNResult<bool> lockUnlessGenuine(QNProfile& vault);
  QNResult<QNDone> insertVault(const std::shared_ptr<QNProfile>& vault);
  QNResult<QNDone> updateVault(const std::shared_ptr<QNProfile>& vault);
  void readCategories(const std::shared_ptr<QNProfile>& vault);
  void writeCategory(const std::shared_ptr<QNProfile>& vault, std::string_view uuid);

  // Saving: QNStore+Save.cpp
  /// Is a save a change of now, or does it bring over one of another store, with its time?
  enum class Times { now, kept };
  /// Saves all, changed or not; one that is there twice once.
  QNResult<QNDone> saveItems(std::span<const std::shared_ptr<QNItem>> items, Times times);
  /// Saves those that have changed, in groups.
  QNResult<QNDone> saveChanged(std::span<const std::shared_ptr<QNItem>> items, Times times);
  /// The vault that an item or a folder goes to, with its ledger open.
  QNResult<std::shared_ptr<QNProfile>> vaultOf(const QNDatabaseObject& object);
  /// What is known of the row that a save replaces.
  struct Before {
    std::optional<QNSeal> seal;  // nothing for an item without a row
    std::uint64_t oid = 0;
    std::uint64_t txTimestamp = 0;
    std::uint64_t createdAt = 0;
    std::string uuid;
    Bytes bodyHash;
    std::shared_ptr<QNProfile> vault;  // that it lies in, unlocked
  };
  /// Error: damaged.
  QNResult<Before> rowWithOid(std::uint64_t oid, const std::shared_ptr<QNProfile>& vault);
  Before beforeOf(const QNItemRow& row, const std::shared_ptr<QNProfile>& vault);
  /// Errors: lostRace, locked, unreadableItem, damaged.
  QNResult<Before> rowBefore(QNItem& item, const std::shared_ptr<QNProfile>& vault);
  /// An item with everything sealed, for the row that it goes to.
  struct Prepared {
    std::shared_ptr<QNItem> item;
    std::shared_ptr<QNProfile> vault;
    Before before;
  };
  QNResult<Prepared> prepareItem(const std::shared_ptr<QNItem>& item, Times times);
  QNResult<QNDone> writeItem(const Prepared& prepared);
  /// Seals a row, writes it over what it was before or as a new one, and enters it into the
  /// ledger. Its oid, body hash and columns are there already.
  QNResult<QNDone> writeRow(QNItemRow& row, const std::shared_ptr<QNProfile>& vault,
                            const Before& before);
  /// The same for an item without a row: a new one, or that of a deleted item of its uuid.
  QNResult<QNDone> writeNewRow(QNItemRow& row, const std::shared_ptr<QNProfile>& vault);
  std::uint64_t freshOid();
  void writeDetails(std::uint64_t itemOid, ByteView wrappedKey, ByteView details);
  void writeBody(QNItem& item, bool isNew);
  void noteForUndo(const std::shared_ptr<QNItem>& item);
  QNResult<QNDone> run(const std::function<QNResult<QNDone>()>& work);
  /// Ends the outermost transaction in memory, after it has ended in the file: by the steps of
  /// afterCommit or of undo, the latter also if the work has thrown.
  class Ending final {
   public:
    Ending(Database& database, bool outermost) : _database(database), _outermost(outermost) {}
    ~Ending();
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    bool committed = false;

   private:
    Database& _database;
    bool _outermost;
  };
  void writeLedgers();

  // Deleting: QNStore+Delete.cpp
  QNResult<QNDone> deleteItem(const std::shared_ptr<QNItem>& item);
  QNResult<QNDone> saveTombstone(const std::shared_ptr<QNItem>& item);
  /// Makes a tombstone of a row.
  QNResult<QNDone> bury(const Before& before, std::uint64_t deletedAt);
  /// What a tombstone keeps.
  struct Remains {
    std::uint64_t oid = 0;
    std::string_view uuid;
    std::uint64_t createdAt = 0;
    std::uint64_t updatedAt = 0;
    std::uint64_t txTimestamp = 0;
    ByteView wrappedKey;  // empty if the body was altered, and may be another's
  };
  QNResult<QNDone> writeTombstone(const Remains& remains, const std::shared_ptr<QNProfile>& vault,
                                  const Before& before);
  /// The tombstone of that uuid, if there is one. Error: damaged.
  QNResult<Before> tombstoneBefore(const std::shared_ptr<QNProfile>& vault, std::string_view uuid);

  // Reading: QNStore+Load.cpp
  /// A shell with the row's columns; null for a category that makes no item.
  static std::shared_ptr<QNItem> shellOf(const QNItemRow& row,
                                         const std::shared_ptr<QNProfile>& vault);
  QNResult<std::shared_ptr<QNItem>> itemOf(const QNItemRow& row,
                                           const std::shared_ptr<QNProfile>& vault);
  /// Fills key, details and URLs in, if they are what `hash` was made of.
  QNResult<QNDone> readBody(const std::shared_ptr<QNItem>& item, ByteView hash);
  Bytes wrappedKeyOf(std::uint64_t itemOid);
  /// Nothing if the hash was made of another body.
  std::optional<Bytes> wrappedKeyOf(std::uint64_t itemOid, ByteView hash);
  std::vector<std::shared_ptr<QNItemURL>> readURLs(std::uint64_t itemOid);
  QNResult<QNItemSetForURL::Items> itemsWithHash(const std::shared_ptr<QNProfile>& vault,
                                                 std::string_view sql,
                                                 const std::optional<std::string>& hash,
                                                 const QNItemSetForURL::Items& butNot,
                                                 std::vector<std::string>* damaged);

  // Lists: QNStore+Lists.cpp
  template <class Show>
  QNListReport listRows(QNQuery query, const std::shared_ptr<QNProfile>& vault, Which which,
                        QNRowCount& count, const Show& show);
  template <class Show>
  QNResult<QNListReport> listVault(const std::shared_ptr<QNProfile>& vault, Which which,
                                   const Show& show);
  class Matcher;

  // Folders: QNStore+Folders.cpp
  /// Null if overview or icon doesn't open.
  static std::shared_ptr<QNFolder> folderOf(const QNFolderRow& row,
                                            const std::shared_ptr<QNProfile>& vault);
  /// Without the numbers of items, and with smart folders that belong into quarantine.
  QNResult<QNFolderReport> readFolders(const std::shared_ptr<QNProfile>& vault);
  /// A folder whose old predicate would end the process must not be asked for it.
  static void quarantine(QNFolderReport& report);
  void countItems(const QNFolderReport& report, QNProfile& vault);
  void checkFolders(const std::shared_ptr<QNProfile>& vault, QNCheckReport& report);

  // Changing folders: QNStore+FolderChanges.cpp. The vault's ledger is open.
  /// What is known of the row that a save replaces.
  struct FolderBefore {
    std::optional<QNSeal> seal;  // nothing for a folder without a row
    std::uint64_t oid = 0;
    std::uint64_t createdAt = 0;
    std::uint64_t updatedAt = 0;
    std::uint64_t txTimestamp = 0;
    std::string uuid;
    std::optional<std::string> parentUUID;
    bool isSmart = false;
    bool isDeleted = false;
  };
  static FolderBefore folderBeforeOf(const QNFolderRow& row,
                                     const std::shared_ptr<QNProfile>& vault);
  /// Of the first row. Error: damaged.
  QNResult<FolderBefore> folderBefore(QNQuery query, const std::shared_ptr<QNProfile>& vault);
  QNResult<FolderBefore> folderRowNow(std::uint64_t oid, const std::shared_ptr<QNProfile>& vault);
  /// What stays of them, whether their rows are sound or not.
  std::vector<FolderBefore> deletedFolders(const std::shared_ptr<QNProfile>& vault);
  /// The folder's row; for a new one that of a deleted folder of its uuid. Errors: lostRace,
  /// exists, damaged.
  QNResult<FolderBefore> folderBefore(const QNFolder& folder,
                                      const std::shared_ptr<QNProfile>& vault);
  QNResult<QNDone> writeFolderRow(QNFolderRow& row, const std::shared_ptr<QNProfile>& vault,
                                  const FolderBefore& before);
  QNResult<QNDone> saveFolder(const std::shared_ptr<QNFolder>& folder);
  /// Error: misplacedFolder.
  QNResult<QNDone> requirePlace(const QNFolder& folder, const FolderBefore& before,
                                const QNProfile& vault);
  /// The height of what hangs below a folder: 0 if nothing does.
  std::size_t levelsBelow(const std::string& uuid, const QNProfile& vault);
  QNResult<QNDone> writeFolder(const std::shared_ptr<QNFolder>& folder,
                               const std::shared_ptr<QNProfile>& vault, const FolderBefore& before,
                               Times times, bool isSmart);
  // What leaves a folder, or is moved to the top, was moved and not edited: its time of change
  // stays, or a merge would put its older title over a newer one.
  /// Wherever its parent is, and smart or not as it is.
  QNResult<QNDone> saveFolderInPlace(const std::shared_ptr<QNFolder>& folder,
                                     const std::shared_ptr<QNProfile>& vault);
  std::uint64_t freshFolderOid();
  void noteForUndo(const std::shared_ptr<QNFolder>& folder);
  QNResult<QNDone> deleteFolder(const std::shared_ptr<QNFolder>& folder);
  /// Makes a tombstone of a row, or a new one, and empties the folder.
  QNResult<QNDone> buryFolder(const FolderBefore& before, const std::shared_ptr<QNProfile>& vault,
                              std::uint64_t deletedAt);
  /// The row alone; what the folder held isn't looked at.
  QNResult<QNDone> writeFolderTombstone(const FolderBefore& before,
                                        const std::shared_ptr<QNProfile>& vault,
                                        std::uint64_t deletedAt);
  QNResult<QNDone> moveSubfolders(const FolderBefore& deleted,
                                  const std::shared_ptr<QNProfile>& vault);
  /// Null if the row isn't sound.
  std::shared_ptr<QNFolder> folderWithOid(std::uint64_t oid,
                                          const std::shared_ptr<QNProfile>& vault);
  /// The first column.
  static std::vector<std::uint64_t> oidsOf(QNQuery query);
  /// The uuid of each item that lies in no folder now; rows that aren't sound stay as they are.
  QNResult<std::vector<std::string>> takeOutOfFolder(const std::vector<std::uint64_t>& oids,
                                                     const std::shared_ptr<QNProfile>& vault);
  /// Writes the row with another folder and the same tx_timestamp: a merge mustn't take what a
  /// folder's end or return does for an edit. False, and nothing, if the row isn't sound.
  QNResult<bool> refile(QNItemRow row, std::optional<std::string_view> folderUUID,
                        const std::shared_ptr<QNProfile>& vault);
  /// The same of an item that lies in no folder and was changed last at that time; nothing of any
  /// other.
  QNResult<QNDone> refileUnedited(std::string_view itemUUID, std::uint64_t updatedAt,
                                  std::string_view folderUUID,
                                  const std::shared_ptr<QNProfile>& vault);
  /// The uuid of each folder that was moved.
  QNResult<std::vector<std::string>> moveMisplacedToTop(const std::shared_ptr<QNProfile>& vault);
  QNResult<QNDone> repairFolders(const std::shared_ptr<QNProfile>& vault, QNFolderRepair& repair);

  // Damaged folders: QNStore+FolderRepair.cpp. The vault's ledger is open.
  /// What can be kept of a row that isn't sound; null if its overview doesn't open.
  static std::shared_ptr<QNFolder> keptFolder(QNFolderRow row,
                                              const std::shared_ptr<QNProfile>& vault);
  /// Leaves the ledger's sum wrong.
  QNResult<QNDone> mendFolderRow(const std::string& uuid, const std::shared_ptr<QNProfile>& vault,
                                 QNFolderRepair& repair);
  QNResult<QNDone> mendFolderRows(const std::shared_ptr<QNProfile>& vault, QNFolderRepair& repair);
  /// Of the rows that are there, sound ones all of them.
  QNRowSum sumOfFolders(const QNProfile& vault);

  // New folders: QNStore+FolderImport.cpp
  QNResult<QNDone> addFolders(const std::shared_ptr<QNProfile>& vault,
                              std::span<const std::shared_ptr<QNFolder>> folders,
                              std::vector<std::string>& movedToTop);
  QNResult<QNDone> addFolder(const std::shared_ptr<QNFolder>& folder,
                             const std::shared_ptr<QNProfile>& vault);

  // Synchronisation: QNStore+Sync.cpp
  /// A source without its states, which stand beside it: they may be many, and few of them change.
  struct Partner {
    std::shared_ptr<QNSyncSource> source;
    QNSyncStates states;
  };
  /// The partner vault of that uuid in that place; without a source if there is none. Errors:
  /// locked, damaged.
  QNResult<Partner> partnerAt(std::string_view place, std::string_view uuid,
                              const std::shared_ptr<QNProfile>& vault);
  QNResult<QNDone> savePartner(Partner& partner);
  /// The source alone; its states are what the hash was made of.
  QNResult<QNDone> writeSyncSource(const std::shared_ptr<QNSyncSource>& source,
                                   ByteView statesHash);
  QNResult<QNDone> insertSyncSource(const std::shared_ptr<QNSyncSource>& source, QNProfile& vault,
                                    ByteView statesHash);
  QNResult<QNDone> updateSyncSource(const std::shared_ptr<QNSyncSource>& source, QNProfile& vault,
                                    ByteView statesHash);
  QNResult<QNDone> deleteSyncSource(const std::shared_ptr<QNSyncSource>& source);
  /// Without its states. Nothing if it or one of them was altered.
  std::shared_ptr<QNSyncSource> syncSourceOf(const QNSyncSourceRow& row, const QNSyncStates& states,
                                             const std::shared_ptr<QNProfile>& vault);

  // Care: QNStore+Care.cpp
  void checkFile(QNCheckReport& report);
  QNResult<QNDone> checkVault(const std::shared_ptr<QNProfile>& vault, QNCheckReport& report);
  void checkTombstone(const QNItemRow& row, QNProfile& vault, QNCheckReport& report);
  void checkSyncSources(const std::shared_ptr<QNProfile>& vault, QNCheckReport& report);
  /// Would a merge refuse the vault, since its rows are older than the source remembers them?
  bool remembersNewerRows(const QNSyncSourceRow& source, const QNProfile& vault,
                          std::uint64_t lastTx);

  /// Runs `work` as one reading. SQLite's error, if there is one, goes before what it returns.
  template <class Work>
  auto read(const Work& work) {
    QNTransaction transaction(*file, QNTransaction::Kind::read);
    auto result = work();
    const auto done = transaction.commit();
    if (!done.ok()) return decltype(result)(done.error());
    return result;
  }

  /// A vault object that came from this store or was saved to it.
  struct KnownVault {
    std::weak_ptr<QNProfile> vault;
    std::uint64_t oid = 0;
    std::uint64_t revision = 0;  // of the row that the object was made of
  };
  KnownVault* knownVault(const QNProfile& vault);
  std::shared_ptr<QNProfile> unlockedVaultWithOid(std::uint64_t oid);

  /// The same of a sync source.
  struct KnownSource {
    std::weak_ptr<QNSyncSource> source;
    std::uint64_t revision = 0;
  };
  KnownSource* knownSource(const QNSyncSource& source);

  std::unique_ptr<QNDatabase> file;
  std::vector<KnownVault> vaults;
  std::vector<KnownSource> sources;
  bool listing = false;
  std::uint64_t detailsRead = 0;

  // Of the running transaction
  struct OpenLedger {
    std::shared_ptr<QNProfile> vault;
    QNLedger ledger;
    std::set<std::string, std::less<>> categories;  // written, or seen to have a row
  };
  std::map<std::uint64_t, OpenLedger> ledgers;  // by the vault's oid
  std::uint64_t lastItemOid = 0;                // 0 until a row is added
  // Both hold items weakly: an import needn't keep what its caller has dropped.
  std::vector<std::function<void()>> afterCommit;
  std::vector<std::function<void()>> undo;  // run from the last to the first
};

}  // namespace quillon
