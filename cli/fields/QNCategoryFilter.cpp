#include "cli/fields/QNCategoryFilter.h"

#include "cli/fields/QNCategoryNames.h"

namespace quillon {

QNResult<QNCategoryFilter> categoryFilter(const std::optional<std::string>& named) {
  if (!named) return QNCategoryFilter();
  auto uuid = categoryNamed(*named);
  if (!uuid) {
    return toolError(QNExit::wrongUsage,
                     "there is no such category; quillon categories lists them");
  }
  return QNCategoryFilter{std::move(uuid)};
}

}  // namespace quillon
