#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// The name of an item's title as a part. With "_conflict_" and a number behind it, the identifier
/// of a title that lost, in the section of conflicts.
inline constexpr std::string_view kTitlePart = "overview.title";

/// What became of one part of an item that both sides had changed, or that took the place of
/// another. Names parts by their keys, never by what stands in them: "notesPlain", "password",
/// "SECTION.FIELD".
struct QNMergedField {
  enum class Outcome {
    taken,         // the other side's value came over; of a joined item the own one may be a
                   // conflict's field, or in the history
    kept,          // the own value stayed, and the other side's is gone
    joined,        // it is made of both
    conflictCopy,  // the own value stayed, and the other side's is a conflict's field, or in the
                   // history of passwords
  };
  std::string name;
  Outcome outcome = Outcome::kept;
};

/// What a merge did with one item. "Mine" is the side that it was called for.
struct QNMergedItem {
  enum class Kind {
    copiedToMine,
    copiedToTheirs,
    replacedMine,    // only theirs had changed
    replacedTheirs,  // only mine had changed
    joined,          // both had changed: made of both, on both sides
    deletedMine,
    deletedTheirs,
    deletionRefused,  // one side had deleted what the other has changed since, or what it hadn't
                      // seen: that side has the other's item again
    notJoined,        // of different categories: each side keeps its own
  };
  std::string uuid;
  Kind kind = Kind::joined;
  std::vector<QNMergedField> fields;  // of `joined`, replacedMine and replacedTheirs; by name
};

/// What a merge did with one folder: copied, replaced, deleted, or deletionRefused.
struct QNMergedFolder {
  std::string uuid;
  QNMergedItem::Kind kind = QNMergedItem::Kind::replacedMine;
};

struct QNMergeReport {
  std::vector<QNMergedItem> items;      // that were touched, by uuid; what was in step isn't named,
                                        // nor what both had deleted
  std::vector<QNMergedFolder> folders;  // in the same way
  /// uuid of each folder whose place was changed on one side so that it lies in itself, or whose
  /// parent the other side had deleted: it is at the top on both sides.
  std::vector<std::string> foldersMovedToTop;
  /// uuid of each smart folder that is in quarantine now, as QNStore::folders() tells.
  std::vector<std::string> quarantinedFolders;
  bool isFirst = false;        // a side remembered nothing of the other's place: without a memory,
                               // what differs counts as changed on both
  std::uint64_t compared = 0;  // uuids of both sides together
  std::uint64_t opened = 0;    // readings of details; an item that is joined is read 3 times
};

}  // namespace quillon
