#include <algorithm>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/output/QNListing.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNListArguments& arguments) {
  auto filter = itemFilter(arguments.filter);
  if (!filter) return filter.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto folder = chooseFolderOf(filter.value(), session.value(), arguments.filter);
  if (!folder) return folder.error();
  QNListing listing(listForm(global.json, arguments.withUUIDs), arguments.order,
                    arguments.sections ? QNListLayout::sections : QNListLayout::plain);
  const auto report = session.value().store().list(
      session.value().vault(), arguments.trashed ? QNStore::Which::trashed : QNStore::Which::normal,
      [&](const std::shared_ptr<QNItem>& item) {
        if (filter.value().admits(*item)) listing.add(item);
      });
  if (!report) return report.error();
  QNOutput out;
  listing.print(out);
  return out.finish(std::max(folder.value(), warnOfDamage(report.value())));
}

}  // namespace quillon
