#include "cli/fields/QNItemFilter.h"

#include <algorithm>

#include "cli/fields/QNCategoryNames.h"

namespace quillon {
namespace {

bool hasTag(QNItem& item, const QNTagName& name, bool nested) {
  const auto tags = item.tags();
  return std::any_of(tags.begin(), tags.end(), [&](const std::string& tag) {
    auto rest = name.restOf(tag, QNTagName::Match::exact);
    if (!rest) rest = name.restOf(tag, QNTagName::Match::loose);
    return rest && (nested || rest->empty());
  });
}

}  // namespace

bool QNItemFilter::admits(QNItem& item) const {
  if (categoryUUID && item.categoryUUID() != *categoryUUID) return false;
  if (favorites && !item.isFavorite()) return false;
  if (folderUUIDs && folderUUIDs->count(item.folderUUID().value_or("")) == 0) return false;
  return !tag || hasTag(item, *tag, nested);
}

QNResult<QNItemFilter> itemFilter(const QNFilterArguments& arguments) {
  QNItemFilter filter;
  filter.favorites = arguments.favorites;
  filter.nested = arguments.nested;
  if (arguments.tag) filter.tag.emplace(*arguments.tag);
  if (!arguments.category) return filter;
  filter.categoryUUID = categoryNamed(*arguments.category);
  if (filter.categoryUUID) return filter;
  return toolError(QNExit::wrongUsage, "there is no such category; quillon categories lists them");
}

}  // namespace quillon
