#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"
#include "store/internal/QNUUIDTable.h"

namespace quillon {

/// What is known of a row without opening it.
struct QNMergeHead {
  std::uint64_t oid = 0;
  std::uint64_t txTimestamp = 0;
  std::uint64_t createdAt = 0;
  std::uint64_t updatedAt = 0;
  bool isTombstone = false;
  std::uint64_t removedTx = 0;  // of the item that this merge has deleted
  /// Of a row that its side doesn't remember so.
  std::optional<std::array<std::uint8_t, 32>> sealedContent = {};
};

/// How far the two rows of a uuid were when they held the same.
struct QNMergeReached {
  std::uint64_t mine = 0;
  std::uint64_t theirs = 0;
  [[nodiscard]] bool isNotAfter(const QNMergeReached& other) const {
    return mine <= other.mine && theirs <= other.theirs;
  }
};

inline QNError vaultDamaged(std::string_view what) {
  return storeError(QNStoreErrorCode::damaged, what);
}

/// Times never shrink: rows and a ledger of an older copy were put back beside a newer memory.
inline QNError rowsOlderThanMemory() {
  return vaultDamaged("rows are older than a merge remembers them");
}

/// Brings two vaults into step, inside the transactions of a merge; their folders by FolderMerge.
class QNStore::Merge final {
 public:
  Merge(const QNMergeSide& mine, const QNMergeSide& theirs) : _mine{mine}, _theirs{theirs} {}
  QNResult<QNDone> run();
  QNMergeReport report;
  bool finished = false;

 private:
  using Kind = QNMergedItem::Kind;
  using Head = QNMergeHead;
  using Loaded = QNResult<std::shared_ptr<QNItem>>;
  struct Side {
    const QNMergeSide& given;
    Database::Partner memory = {};  // of the other side
    QNUUIDTable<Head> heads = {};
    [[nodiscard]] Database& database() const { return *given.store->_database; }
    [[nodiscard]] const std::shared_ptr<QNProfile>& vault() const { return given.vault; }
    /// How far the row was here, `localTimestamp`, and there, `sourceTimestamp`. Null if this side
    /// remembers nothing of it.
    [[nodiscard]] const QNSyncStateRow* remembered(std::string_view uuid) {
      return memory.states.itemState(uuid);
    }
  };

  static QNResult<QNDone> readHeads(Side& side);
  void findWhatIsOutOfStep();
  QNResult<QNDone> mergeOne(const std::string& uuid);
  QNResult<QNDone> mergeDeletion(const std::string& uuid, Side& deleted, Side& living);
  QNResult<QNDone> mergeTombstones(const std::string& uuid);
  QNResult<QNDone> mergeItems(const std::string& uuid);
  QNResult<QNDone> replace(const std::string& uuid, Side& side, QNItem& loser,
                           const std::shared_ptr<QNItem>& winner);
  QNResult<QNDone> saveWithoutDuplicateURLs(const std::string& uuid, Side& side,
                                            const std::shared_ptr<QNItem>& item);
  QNResult<QNDone> join(const std::string& uuid, const std::shared_ptr<QNItem>& mine,
                        const std::shared_ptr<QNItem>& theirs);
  QNResult<QNDone> copy(const std::string& uuid, Side& from, Side& to);
  QNResult<QNDone> copyTombstone(const std::string& uuid, Side& from, Side& to);
  QNResult<QNDone> remove(const std::string& uuid, Side& side, std::uint64_t deletedAt);
  QNResult<QNDone> bury(const std::string& uuid, Side& side, std::uint64_t deletedAt);

  Loaded load(const std::string& uuid, Side& side);
  QNResult<QNDone> saveIn(Side& side, const std::string& uuid, const std::shared_ptr<QNItem>& item,
                          Database::Times times);
  void noteWritten(Side& side, const std::string& uuid, std::uint64_t oid, const Head& content);
  /// The last time that was given in that side's vault.
  static std::uint64_t lastTxOf(const Side& side);
  /// The kind for what happened to that side.
  [[nodiscard]] Kind kindFor(const Side& side, Kind mine, Kind theirs) const {
    return &side == &_mine ? mine : theirs;
  }
  void note(const std::string& uuid, Kind kind, std::vector<QNMergedField> fields = {});

  // Memory: QNStore+MergeMemory.cpp
  QNResult<QNDone> readMemory(Side& side, const Side& partner);
  [[nodiscard]] bool isInStep(const std::string& uuid, const Head& mine, const Head& theirs);
  std::optional<QNMergeReached> lastReached(const std::string& uuid);
  bool hasChanged(Side& side, const std::string& uuid);
  static bool hasSeen(Side& side, const std::string& uuid, const Head& other);
  static bool hasMovedOn(Side& side, const std::string& uuid, const Head& own);
  QNSyncStateRow stateOf(const std::string& uuid, Side& side, Side& partner) const;
  std::map<std::uint64_t, std::string> outOfStepByRow(Side& side) const;
  QNResult<QNDone> writeMemory(Side& side, Side& partner);

  Side _mine, _theirs;
  std::set<std::string> _outOfStep;  // uuids that must be looked at, in the report's order
  std::set<std::string> _apart;      // those that couldn't be brought into step
};

}  // namespace quillon
