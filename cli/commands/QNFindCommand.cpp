// find and for: items by words, by a predicate, or by the page that they fit.

#include <algorithm>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/fields/QNGivenPredicate.h"
#include "cli/output/QNItemSearch.h"
#include "cli/output/QNListing.h"

namespace quillon {
namespace {

// `exit` is what the folders end with.
QNCommandResult print(QNListing& listing, const QNListReport& report, QNExit exit) {
  QNOutput out;
  listing.print(out);
  return out.finish(std::max(exit, warnOfDamage(report)));
}

QNCommandResult findByWords(Global global, const QNFindArguments& arguments,
                            const QNItemFilter& filter, const QNVaultSession& session,
                            QNExit exit) {
  std::vector<std::string> unread;
  const auto load = [&](QNItem& item) {
    const bool loaded = session.store().loadDetails(item.shared_from_this()).ok();
    if (!loaded) unread.push_back(*item.uuid());
    return loaded;
  };
  const QNItemSearch search(arguments.words, arguments.level, load);
  QNListing listing(listForm(global.json, arguments.withUUIDs));
  auto report = session.store().list(session.vault(), QNStore::Which::normal,
                                     [&](const std::shared_ptr<QNItem>& item) {
                                       if (!filter.admits(*item)) return;
                                       const auto rank = search.rankOf(*item);
                                       if (rank) listing.add(item, *rank);
                                     });
  if (!report) return report.error();
  auto& damaged = report.value().damaged;
  damaged.insert(damaged.end(), unread.begin(), unread.end());
  return print(listing, report.value(), exit);
}

QNCommandResult findByPredicate(Global global, const QNFindArguments& arguments,
                                const QNPredicate& predicate, const QNItemFilter& filter,
                                const QNVaultSession& session, QNExit exit) {
  QNListing listing(listForm(global.json, arguments.withUUIDs));
  const auto report = session.store().listMatching(
      session.vault(), QNStore::Which::normal, predicate,
      [&](const auto& item) { listing.add(item); },
      [&](QNItem& item) { return filter.admits(item); });
  if (!report) return report.error();
  return print(listing, report.value(), exit);
}

}  // namespace

QNCommandResult runCommand(Global global, const QNFindArguments& arguments) {
  auto filter = itemFilter(arguments.filter);
  if (!filter) return filter.error();
  const auto predicate = arguments.predicate ? predicateFrom(*arguments.predicate)
                                             : QNResult<QNPredicateRef>(QNPredicateRef());
  if (!predicate) return predicate.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto folder = chooseFolderOf(filter.value(), session.value(), arguments.filter);
  if (!folder) return folder.error();
  return predicate.value() == nullptr
             ? findByWords(global, arguments, filter.value(), session.value(), folder.value())
             : findByPredicate(global, arguments, *predicate.value(), filter.value(),
                               session.value(), folder.value());
}

// In the order in which they would be offered for the page.
QNCommandResult runCommand(Global global, const QNForArguments& arguments) {
  auto filter = itemFilter(arguments.filter);
  if (!filter) return filter.error();
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto folder = chooseFolderOf(filter.value(), session.value(), arguments.filter);
  if (!folder) return folder.error();
  QNListReport report;
  const auto set = session.value().store().itemSetForURL(session.value().vault(), arguments.url,
                                                         &report.damaged);
  if (!set) return set.error();
  set.value()->limitMatchesToDerivedDomain = true;  // the page's own host first
  QNListing listing(listForm(global.json, arguments.withUUIDs));
  std::uint32_t rank = 0;
  for (const auto& item : set.value()->matchingItems()) {
    if (filter.value().admits(*item)) listing.add(item, rank++);
  }
  return print(listing, report, folder.value());
}

}  // namespace quillon
