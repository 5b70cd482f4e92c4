#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNItemFilter.h"
#include "cli/output/QNListing.h"
#include "cli/output/QNTitleSearch.h"

namespace quillon {
namespace {

QNCommandResult findByTitle(Global global, const QNFindArguments& arguments,
                            const QNItemFilter& filter, const QNVaultSession& session) {
  const QNTitleSearch search(arguments.words);
  QNListing listing(listForm(global.json, arguments.withUUIDs));
  const auto report = session.store().list(session.vault(), QNStore::Which::normal,
                                           [&](const std::shared_ptr<QNItem>& item) {
                                             if (!filter.admits(*item)) return;
                                             const auto rank = search.rankOf(item->title());
                                             if (rank) listing.add(*item, *rank);
                                           });
  if (!report) return report.error();
  QNOutput out;
  listing.print(out);
  return out.finish(warnOfDamage(report.value()));
}

// In the order in which they would be offered for the page.
QNCommandResult findByWebsite(Global global, const QNFindArguments& arguments,
                              const QNItemFilter& filter, const QNVaultSession& session) {
  const auto set = session.store().itemSetForURL(session.vault(), *arguments.url);
  if (!set) return set.error();
  set.value()->limitMatchesToDerivedDomain = true;  // the page's own host first
  QNListing listing(listForm(global.json, arguments.withUUIDs));
  std::uint32_t rank = 0;
  for (const auto& item : set.value()->matchingItems()) {
    if (filter.admits(*item)) listing.add(*item, rank++);
  }
  QNOutput out;
  listing.print(out);
  return out.finish();
}

}  // namespace

QNCommandResult runCommand(Global global, const QNFindArguments& arguments) {
  const auto filter = itemFilter(arguments.category, arguments.tag);
  if (!filter) return filter.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  return arguments.url ? findByWebsite(global, arguments, filter.value(), session.value())
                       : findByTitle(global, arguments, filter.value(), session.value());
}

}  // namespace quillon
