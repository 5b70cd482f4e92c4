#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/import/QNCSVColumns.h"
#include "store/QNStore.h"

namespace quillon {

/// What an import did, or would do.
struct QNImportReport {
  struct KeptColumn {
    std::string name;
    std::uint64_t rows = 0;  // of the added ones, those with a value in that column
  };
  QNCSVFormat format = QNCSVFormat::generic;
  std::uint64_t added = 0;
  std::uint64_t alreadyThere = 0;
  std::uint64_t skipped = 0;  // rows without any value
  std::vector<KeptColumn> keptInNotes;
  QNListReport vault;  // of the items that were there before
};

enum class QNImportMode { add, onlyTell };

/// Adds the rows of a CSV file to a vault, in one transaction: all of them or, after an error,
/// none. A row that the vault or an earlier row has already isn't added. `content` is the file's.
/// `progress` gets the number of bytes read so far.
QNResult<QNImportReport> importCSV(QNStore& store, const std::shared_ptr<QNProfile>& vault,
                                   Bytes content, QNImportMode mode,
                                   const std::function<void(std::size_t)>& progress);

}  // namespace quillon
