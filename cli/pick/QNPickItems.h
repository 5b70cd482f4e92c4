#pragma once

#include <string>
#include <vector>

#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNItemFilter.h"
#include "cli/pick/QNPickList.h"

namespace quillon {

/// The items of a vault for a finder, by title as the language sorts: what their overviews hold, no
/// details.
class QNPickItems final {
 public:
  /// Those outside the trash that the filter admits.
  QNResult<QNListReport> load(const QNVaultSession& session, const QNItemFilter& filter);
  QNPickList& list() { return _list; }
  [[nodiscard]] const std::string& uuidOf(std::size_t index) const { return _uuids[index]; }

 private:
  QNPickList _list;
  std::vector<std::string> _uuids;
};

}  // namespace quillon
