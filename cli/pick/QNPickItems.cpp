#include "cli/pick/QNPickItems.h"

#include <algorithm>

#include "cli/output/QNListOrdering.h"
#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

struct Loaded {
  std::string key;  // what it sorts by
  std::string uuid;
  QNPickList::Row row;
  std::string alsoFound;
};

Loaded loadedFrom(QNItem& item) {
  Loaded loaded;
  loaded.uuid = *item.uuid();
  loaded.row.title = item.title();
  loaded.row.more = withoutIsolation(item.additionalInformation().value_or(""));
  loaded.key = listKeyOf(item, QNListOrder::title);
  loaded.alsoFound = item.URLString().value_or("");
  for (const std::string& tag : item.tags()) loaded.alsoFound += '\n' + tag;
  return loaded;
}

}  // namespace

QNResult<QNListReport> QNPickItems::load(const QNVaultSession& session,
                                         const QNItemFilter& filter) {
  std::vector<Loaded> items;
  auto report = session.store().list(session.vault(), QNStore::Which::normal,
                                     [&](const std::shared_ptr<QNItem>& item) {
                                       if (filter.admits(*item)) items.push_back(loadedFrom(*item));
                                     });
  if (!report) return report;
  std::sort(items.begin(), items.end(),
            [](const Loaded& a, const Loaded& b) { return a.key < b.key; });
  for (Loaded& item : items) {
    _uuids.push_back(std::move(item.uuid));
    _list.add(std::move(item.row), item.alsoFound);
  }
  return report;
}

}  // namespace quillon
