#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNItemFilter.h"
#include "cli/output/QNListing.h"

namespace quillon {

QNCommandResult runCommand(Global global, const QNListArguments& arguments) {
  const auto filter = itemFilter(arguments.category, arguments.tag);
  if (!filter) return filter.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  QNListing listing(listForm(global.json, arguments.withUUIDs), arguments.order);
  const auto report = session.value().store().list(
      session.value().vault(), arguments.trashed ? QNStore::Which::trashed : QNStore::Which::normal,
      [&](const std::shared_ptr<QNItem>& item) {
        if (filter.value().admits(*item)) listing.add(*item);
      });
  if (!report) return report.error();
  QNOutput out;
  listing.print(out);
  return out.finish(warnOfDamage(report.value()));
}

}  // namespace quillon
