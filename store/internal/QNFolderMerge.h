#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "store/internal/QNStoreState.h"

namespace quillon {

/// Brings the folders of two vaults into step, inside the transactions of a merge.
class QNStore::FolderMerge final {
 public:
  /// The report takes what happened.
  FolderMerge(const QNMergeSide& mine, const QNMergeSide& theirs, QNMergeReport& report)
      : _mine{mine}, _theirs{theirs}, _report(report) {}
  QNResult<QNDone> run();

 private:
  using Kind = QNMergedItem::Kind;
  /// A folder, or what stays of a deleted one.
  struct Version {
    std::uint64_t updatedAt = 0;
    std::shared_ptr<QNFolder> folder = nullptr;
    Database::FolderBefore tombstone = {};  // if there is no folder
  };
  struct Side {
    const QNMergeSide& given;
    std::map<std::string, Version> versions = {};
    [[nodiscard]] Database& database() const { return *given.store->_database; }
    [[nodiscard]] const std::shared_ptr<QNProfile>& vault() const { return given.vault; }
    [[nodiscard]] const Version* version(const std::string& uuid) const {
      const auto found = versions.find(uuid);
      return found == versions.end() ? nullptr : &found->second;
    }
  };

  QNResult<QNDone> read();
  static QNResult<QNDone> read(Side& side);
  [[nodiscard]] std::set<std::string> uuids() const;
  QNResult<QNDone> bury(const std::string& uuid, const Side& from, Side& to);
  QNResult<QNDone> join(const std::string& uuid);
  QNResult<QNDone> copy(const std::string& uuid, const Side& from, Side& to);
  static QNResult<QNDone> refileItems(const std::string& uuid, const Side& from, Side& to);
  [[nodiscard]] static bool hasMovedUp(const QNFolder& moved, const QNFolder& other,
                                       const Side& others);
  QNResult<QNDone> replace(const std::string& uuid, const Side& from, Side& to);
  QNResult<QNDone> settle();
  /// The kind for what happened to that side.
  [[nodiscard]] Kind kindFor(const Side& side, Kind mine, Kind theirs) const {
    return &side == &_mine ? mine : theirs;
  }

  Side _mine, _theirs;
  QNMergeReport& _report;
};

}  // namespace quillon
