#include "cli/fields/QNItemFilter.h"

#include <algorithm>

#include "cli/fields/QNCategoryNames.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {

bool QNItemFilter::admits(QNItem& item) const {
  if (categoryUUID && item.categoryUUID() != *categoryUUID) return false;
  if (!foldedTag) return true;
  const auto tags = item.tags();
  return std::any_of(tags.begin(), tags.end(),
                     [this](const std::string& tag) { return foldedForSearch(tag) == *foldedTag; });
}

QNResult<QNItemFilter> itemFilter(const std::optional<std::string>& category,
                                  const std::optional<std::string>& tag) {
  QNItemFilter filter;
  if (tag) filter.foldedTag = foldedForSearch(*tag);
  if (!category) return filter;
  filter.categoryUUID = categoryNamed(*category);
  if (filter.categoryUUID) return filter;
  return toolError(QNExit::wrongUsage, "there is no such category; quillon categories lists them");
}

}  // namespace quillon
