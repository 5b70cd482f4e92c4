#pragma once
// The database layer over one SQLite file. Tables and seals: docs/formats.md, "store".

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/items/QNItem.h"
#include "quillon/logins/QNItemSetForURL.h"
#include "quillon/platform/errors/QNError.h"
#include "quillon/sync/QNSyncSource.h"
#include "quillon/vaults/QNProfile.h"
#include "store/QNMergeReport.h"
#include "store/QNStoreError.h"

namespace quillon {

class QNFolder;
class QNPredicate;
class QNTag;

/// What a store holds of one vault, without opening it.
struct QNStoredVaultInfo {
  std::uint64_t oid = 0;
  std::string uuid;
  std::string name;
  std::uint64_t items = 0;  // rows that aren't trashed
  std::uint64_t trashed = 0;
};

/// Rows of a list that aren't what was saved. Identifiers only.
struct QNListReport {
  std::uint64_t listed = 0;
  /// uuid of each row whose seal doesn't fit or whose overview doesn't open; not visited.
  std::vector<std::string> damaged;
  /// Rows are missing, were added, or are older than the vault's ledger says.
  bool ledgerBroken = false;
};

/// The folders of a vault as a tree: each knows its parent, its subfolders and both counts. The
/// items that count are those that aren't trashed; a smart folder holds none.
struct QNFolderReport {
  /// In row order. Keep them as long as the tree is used: a folder holds its parent weakly.
  std::vector<std::shared_ptr<QNFolder>> folders;
  /// Those of them that no other holds, by title, in the user's language.
  std::vector<std::shared_ptr<QNFolder>> top;
  /// uuid of each that is at the top only because its parent isn't there or is damaged, because it
  /// would lie in itself, or because it would lie too deep. Its parentUUID() is what was stored.
  std::vector<std::string> misplaced;
  /// uuid of each smart folder whose predicate, written by an older version, can't be brought
  /// forward: smartFolderPredicate() would end the process. It is handed out as an ordinary folder,
  /// and stays smart in the file. A save with another predicate makes it a smart folder again.
  std::vector<std::string> quarantined;
  /// uuid of each row whose seal doesn't fit or whose overview doesn't open; not among the folders.
  std::vector<std::string> damaged;
  /// Folders are missing, were added, or are older than the vault's ledger says.
  bool ledgerBroken = false;
};

/// The tags of a vault, with the number of items that have them and aren't trashed.
struct QNTagReport {
  /// By title, in the user's language. A nested tag counts for itself alone.
  std::vector<std::shared_ptr<QNTag>> tags;
  QNListReport rows;
};

/// What a repair of folders did. Identifiers only.
struct QNFolderRepair {
  /// Their rows weren't what was saved, but their titles and questions open, or they are those of
  /// deleted ones: kept as they stand.
  std::vector<std::string> foldersSealedAnew;
  /// Their titles and questions don't open.
  std::vector<std::string> foldersRemoved;
  /// Rows were missing, were added, or were older than the vault's ledger said: it says now what is
  /// there.
  bool ledgerSetRight = false;
  /// By how many rows there were less than it said, those of deleted folders counted.
  std::uint64_t foldersMissing = 0;
  std::vector<std::string> foldersMovedToTop;
  std::vector<std::string> itemsMovedToTop;
};

/// What happened to an item last.
struct QNStoredChange {
  enum class Kind { saved, trashed, deleted };
  std::string uuid;
  Kind kind = Kind::saved;
  std::uint64_t txTimestamp = 0;
};

/// Changes of a vault in the order in which they were made, one for each item.
struct QNChangeFeed {
  std::vector<QNStoredChange> changes;
  /// uuid of each row whose seal doesn't fit; not among the changes.
  std::vector<std::string> damaged;
  /// What to ask from the next time: the last change's time, whether it stands here or not.
  std::uint64_t txTimestamp = 0;
};

class QNStore;
/// One of two vaults that are brought into step.
struct QNMergeSide {
  QNStore* store = nullptr;
  std::shared_ptr<QNProfile> vault;  // of that store, unlocked
  /// The name under which the other side remembers this one: where the file lies, for instance. The
  /// same at each merge, and one alone for each place (an absolute path without links): under
  /// another name nothing is remembered, and each difference counts as changed on both sides.
  std::string place;
};

/// What an integrity check found; every text names rows by identifier and place only.
struct QNCheckReport {
  std::uint64_t itemsChecked = 0;
  std::uint64_t tombstonesChecked = 0;
  std::uint64_t syncSourcesChecked = 0;
  std::uint64_t foldersChecked = 0;
  std::vector<std::string> problems;
  /// No damage, but to be known: items whose folder isn't there, and folders in quarantine.
  std::vector<std::string> remarks;
  [[nodiscard]] bool clean() const { return problems.empty(); }
};

/// A file of vaults. One object for one thread; several processes may open one file. Every
/// change is one transaction, durable when the call returns; a failure changes nothing, neither
/// in the file nor in what dirtyRow() says. Files are 0600 from their creation, folders that had
/// to be made 0700.
class QNStore final {
 public:
  enum class Access { readWrite, readOnly };

  /// Errors: exists, notWritable, inputOutput.
  static QNResult<std::unique_ptr<QNStore>> create(const std::filesystem::path& file);
  /// Brings an older schema forward in one transaction, and writes for that also if only reading
  /// was asked for: where the file can't be written, an older one can't be read. Errors: notFound,
  /// notAStore, newerSchema, damaged, notWritable, inputOutput, busy.
  static QNResult<std::unique_ptr<QNStore>> open(const std::filesystem::path& file,
                                                 Access access = Access::readWrite);
  static constexpr int kSchemaVersion = 3;
  ~QNStore();
  QNStore(const QNStore&) = delete;
  QNStore& operator=(const QNStore&) = delete;

  // Vaults: QNStore+Vaults.cpp
  /// Counts rows, so its time grows with the store; vaultNamed()'s doesn't.
  [[nodiscard]] QNResult<std::vector<QNStoredVaultInfo>> vaults();
  /// Stores a new vault, or the keys and columns of one that came from this store (a password
  /// change touches no item row). The vault must be unlocked; it is given its row id. Errors:
  /// exists, lostRace, locked, notFound, unreadableItem, ...
  QNResult<QNDone> saveVault(QNProfile& vault);
  /// A locked vault by its name. Unlock it with unlock(), which also tests its row's seal.
  QNResult<std::shared_ptr<QNProfile>> vaultNamed(std::string_view name);
  /// False for a wrong password. Error: damaged, if the row or its ledger was altered or is older
  /// than the other. The vault is unlocked if the value is true, and locked otherwise.
  QNResult<bool> unlock(QNProfile& vault, std::string_view password);
  /// Unlocks a vault with the twin archive in its row, which the unlocked primary vault opens;
  /// QNProfile::encryptAttributesWithPrimaryProfile() makes it before saveVault(). False, and the
  /// vault locked, if it has none. Errors: locked, if the primary vault is; damaged, if the archive
  /// doesn't open, or the row or its ledger was altered.
  QNResult<bool> unlockWithPrimary(QNProfile& vault, const std::shared_ptr<QNProfile>& primary);

  // Saving: QNStore+Save.cpp
  /// Saves a dirty item with its URLs: sets updatedAt and txTimestamp, willSave, write, didSave.
  /// A clean item costs nothing. An item that was given another vault of this store moves there;
  /// its former vault must be unlocked too. Errors: lostRace, locked, unreadableItem, exists,
  /// notFound, damaged, busy, diskFull, ...
  QNResult<QNDone> save(const std::shared_ptr<QNItem>& item);
  /// All of them in one transaction, or none.
  QNResult<QNDone> saveAll(std::span<const std::shared_ptr<QNItem>> items);
  /// The same, but each keeps the updatedAt that it has: for items that come back out of a file.
  QNResult<QNDone> saveAllWithTheirTimes(std::span<const std::shared_ptr<QNItem>> items);
  /// Runs several operations as one transaction. An error of `work`, or of any change inside it,
  /// rolls everything back. Until the end, saved items stay dirty.
  QNResult<QNDone> inTransaction(const std::function<QNResult<QNDone>()>& work);

  // Deleting: QNStore+Delete.cpp
  /// Makes the row a tombstone: uuid, time of creation, time of now and the wrapped key stay,
  /// everything else is wiped. The item is marked deleted and has no row id any more. A tombstone
  /// isn't read as an item; changesSince() tells of it, and an item of its uuid takes its row back.
  /// Saving a QNTombstone does the same; it needs the txTimestamp of the item that it was made of.
  QNResult<QNDone> deleteItem(const std::shared_ptr<QNItem>& item);

  // Lists: QNStore+Lists.cpp
  enum class Which { normal, trashed, all };
  using Visitor = std::function<void(const std::shared_ptr<QNItem>&)>;
  using Filter = std::function<bool(QNItem&)>;
  /// Hands out a shell for each row, in row order, its overview checked and open, neither key nor
  /// details read. The shell may be kept or dropped. The visitor may read items from this store,
  /// but neither list nor write (error: busy). Error: locked, or the file can't be read.
  QNResult<QNListReport> list(const std::shared_ptr<QNProfile>& vault, Which which,
                              const Visitor& visit);
  /// The items right in a folder, as list() gives them, by an index: the time grows with the
  /// folder. A row that was taken out behind our back isn't missed here; list() and check() tell.
  QNResult<QNListReport> listFolder(const std::shared_ptr<QNProfile>& vault,
                                    std::string_view folderUUID, Which which, const Visitor& visit);
  /// The items that a predicate holds for, as list() gives them. Where it asks for more than
  /// overviews hold, details are read for those rows alone that the rest of it doesn't decide, and
  /// such an item comes with its details. The predicate is asked only of items that `filter` lets
  /// through, which may read their overviews; without one, of all. Errors: as for list(), and what
  /// the predicate's evaluation ends with.
  QNResult<QNListReport> listMatching(const std::shared_ptr<QNProfile>& vault, Which which,
                                      const QNPredicate& predicate, const Visitor& visit,
                                      const Filter& filter = nullptr);
  /// One pass over the overviews: tags stand nowhere else.
  QNResult<QNTagReport> tags(const std::shared_ptr<QNProfile>& vault);

  // Reading: QNStore+Load.cpp
  /// One item with key, details and URLs. Errors: notFound, damaged.
  QNResult<std::shared_ptr<QNItem>> item(const std::shared_ptr<QNProfile>& vault,
                                         std::string_view uuid);
  /// Reads key, details and URLs into a listed shell. Errors: notFound, damaged, lostRace if the
  /// row has changed since.
  QNResult<QNDone> loadDetails(const std::shared_ptr<QNItem>& item);
  /// The items whose addresses have the page's host or naked domain, by hash, details loaded, as
  /// the inputs of a set. Trashed items are left out. A row that was altered is left out too, and
  /// its uuid added to `damaged`; without that place it is the error damaged. A row that was taken
  /// out behind our back isn't missed here; list() and check() tell.
  QNResult<std::unique_ptr<QNItemSetForURL>> itemSetForURL(
      const std::shared_ptr<QNProfile>& vault, std::string_view url,
      std::vector<std::string>* damaged = nullptr);

  // Folders: QNStore+Folders.cpp
  /// Errors: locked, or the file can't be read.
  QNResult<QNFolderReport> folders(const std::shared_ptr<QNProfile>& vault);
  /// One folder with its counts and subfolders, but without its parent. Errors: notFound, damaged.
  QNResult<std::shared_ptr<QNFolder>> folder(const std::shared_ptr<QNProfile>& vault,
                                             std::string_view uuid);

  // Changing folders: QNStore+FolderChanges.cpp
  /// Folders from the top to one that has no parent, itself included.
  static constexpr std::size_t kMaxFolderLevels = 1000;
  /// Saves a folder, dirty or not: sets updatedAt and txTimestamp; its parent is the folder of
  /// parentUUID(). Saving a trashed folder is deleting it. Errors: misplacedFolder, if the parent
  /// isn't there, is in the folder itself, or lies too deep for it or for what hangs below it;
  /// notFound, if its row is that of another uuid; unreadableItem, if it has no uuid; lostRace,
  /// locked, exists, damaged, ...
  QNResult<QNDone> saveFolder(const std::shared_ptr<QNFolder>& folder);
  /// Makes the row a tombstone: uuid, time of creation and time of now stay. Its items lose their
  /// folder, trashed ones too, and its subfolders move up to its parent. None of these is edited by
  /// that: the times stay, the items' txTimestamp too, and changesSince() tells nothing of them.
  /// Objects of them that are held must be read anew: saved, an item takes the uuid back with it.
  /// The folder has no row id any more.
  QNResult<QNDone> deleteFolder(const std::shared_ptr<QNFolder>& folder);
  /// Keeps of damaged folders what opens, removes the others, and counts the ledger of folders
  /// anew: whatever stands in the file counts as saved from now on. Then it takes the parent from
  /// folders that are misplaced, and the folder from items that are in none that is there. A merge
  /// brings a removed folder back from a store that has it. Errors: as for saving.
  QNResult<QNFolderRepair> repairFolders(const std::shared_ptr<QNProfile>& vault);

  // New folders: QNStore+FolderImport.cpp
  /// Saves new folders of a vault that come out of a file, in that order, smart or not as they are
  /// and with the times that they have, or now for one that is to come; one that was deleted counts
  /// as changed no earlier than that. The uuid of each that was put at the top, since its parent is
  /// neither there nor new, since it would lie in itself, or too deep. Errors: exists;
  /// unreadableItem, if one has no uuid or another vault; locked, damaged, ...
  QNResult<std::vector<std::string>> addFolders(const std::shared_ptr<QNProfile>& vault,
                                                std::span<const std::shared_ptr<QNFolder>> folders);

  // Synchronisation: QNStore+Sync.cpp
  /// What was saved, trashed or deleted after `txTimestamp`, by an index: its time grows with the
  /// changes. A row that was taken away behind our back isn't missed here; list() and check() tell.
  QNResult<QNChangeFeed> changesSince(const std::shared_ptr<QNProfile>& vault,
                                      std::uint64_t txTimestamp);
  /// The partners of a vault, each with all of its states, in row order. Errors: locked; damaged,
  /// if one of them or of their states was altered.
  QNResult<std::vector<std::shared_ptr<QNSyncSource>>> syncSources(
      const std::shared_ptr<QNProfile>& vault);
  /// Stores a source and all of its states, whether it is dirty or not: its profile is the vault.
  /// Errors: exists, if two item states have one uuid; damaged, if what a merge remembers (of the
  /// keychain type "store") is newer than all rows; lostRace, locked, notFound, ...
  QNResult<QNDone> saveSyncSource(const std::shared_ptr<QNSyncSource>& source);
  /// Forgets a source and its states. The source has no row id any more.
  QNResult<QNDone> deleteSyncSource(const std::shared_ptr<QNSyncSource>& source);

  // Merging: QNStore+Merge.cpp
  enum class MergeMode { write, dryRun };
  /// Brings two vaults of two stores into step: afterwards both hold the same folders, and the
  /// same items but for those of different categories (notJoined), and a second run changes
  /// nothing. Attachments and counters of use aren't brought over, nor the place among the
  /// favourites of an item that both have there.
  /// One transaction on each side, and none may be open. A dry run does the same and takes it back,
  /// so it needs the right to write too. Errors: sameFile, notFound for a side without store or
  /// vault, locked, damaged if either vault isn't sound, busy, notWritable, unreadableItem, ...
  static QNResult<QNMergeReport> merge(const QNMergeSide& mine, const QNMergeSide& theirs,
                                       MergeMode mode = MergeMode::write);

  // Care: QNStore+Care.cpp
  /// SQLite's own check, then every row's seal, ledger, key, details and URLs, tombstones, folders
  /// and sync sources too.
  QNResult<QNCheckReport> check(const std::shared_ptr<QNProfile>& vault);
  /// A whole copy under a name that isn't there yet, 0600.
  QNResult<QNDone> backupTo(const std::filesystem::path& file);
  /// Category identifier and number of rows that aren't trashed, in category order.
  QNResult<std::vector<std::pair<std::string, std::uint64_t>>> categories(const QNProfile& vault);
  [[nodiscard]] int schemaVersion() const;

  /// Rows of the details table read by this object so far: a list leaves it alone.
  [[nodiscard]] std::uint64_t detailsRead() const;

 private:
  struct Database;
  class Merge;
  class FolderMerge;
  static QNResult<QNDone> requireTwoStores(const QNMergeSide& mine, const QNMergeSide& theirs);
  explicit QNStore(std::unique_ptr<Database> database);
  std::unique_ptr<Database> _database;
};

}  // namespace quillon
