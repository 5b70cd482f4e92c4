#pragma once
// Who holds whom among the folders of a vault, whatever stands in their rows.

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quillon {

/// A folder's uuid and the uuid that it has for its parent.
struct QNFolderPlace {
  std::string uuid;
  std::optional<std::string> parentUUID;
};

struct QNFolderTree {
  /// By folder, the index of the one that holds it; nothing for those at the top.
  std::vector<std::optional<std::size_t>> parents;
  /// By folder: is it at the top against its row? Its parent isn't there, it lies in itself by way
  /// of others, or it would stand on more than `maxLevels`. Of a circle all are at the top, and
  /// each keeps what hangs under it.
  std::vector<bool> misplaced;
};

/// In linear time. Of two folders of one uuid, the first one holds what names it.
QNFolderTree folderTree(std::span<const QNFolderPlace> places, std::size_t maxLevels);

}  // namespace quillon
