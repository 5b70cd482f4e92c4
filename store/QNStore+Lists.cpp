#include <algorithm>
#include <map>

#include "quillon/organisation/QNTag.h"
#include "quillon/organisation/predicates/QNItemKeyPaths.h"
#include "quillon/organisation/predicates/QNPredicate.h"
#include "store/QNStore.h"
#include "store/internal/QNStoreState.h"

namespace quillon {

namespace {

bool isWanted(QNStore::Which which, const QNItemRow& row) {
  if (isTombstone(row)) return false;
  return which == QNStore::Which::all ||
         row.status == (which == QNStore::Which::trashed ? kTrashedItem : std::uint64_t{0});
}

/// While a list goes on, nothing else of the store may write.
class ListingMark final {
 public:
  explicit ListingMark(bool& listing) : _listing(listing) { _listing = true; }
  ~ListingMark() { _listing = false; }
  ListingMark(const ListingMark&) = delete;
  ListingMark& operator=(const ListingMark&) = delete;

 private:
  bool& _listing;
};

/// What became of an item that was shown.
enum class Shown { listed, passedOver, damaged, last };  // no item behind it is shown

}  // namespace

/// Shows the sound rows of a query that are wanted.
template <class Show>
QNListReport QNStore::Database::listRows(QNQuery query, const std::shared_ptr<QNProfile>& vault,
                                         Which which, QNRowCount& count, const Show& show) {
  const ListingMark mark(listing);
  QNListReport report;
  QNRowSealer sealer(*vault);
  while (query.next()) {
    const QNItemRow row = itemRow(query);
    const bool genuine = count.add(sealer.seal(row), row.seal);
    if (genuine && !isWanted(which, row)) continue;
    const auto item = genuine ? shellOf(row, vault) : nullptr;
    const bool opens = item != nullptr && item->mutableOverview() != nullptr;
    const Shown shown = opens ? show(item, row) : Shown::damaged;
    if (shown == Shown::last) break;
    if (shown == Shown::damaged) report.damaged.emplace_back(row.uuid);
    if (shown == Shown::listed) ++report.listed;
  }
  return report;
}

/// The same for all rows of a vault, whose sum is known.
template <class Show>
QNResult<QNListReport> QNStore::Database::listVault(const std::shared_ptr<QNProfile>& vault,
                                                    Which which, const Show& show) {
  if (listing) return listingError();
  return read([&]() -> QNResult<QNListReport> {
    const auto ledger = ledgerNow(*vault);
    if (!ledger.ok()) return ledger.error();
    QNRowCount count;
    QNListReport report =
        listRows(file->query(kSelectItemsOfVault, vault->oid()), vault, which, count, show);
    report.ledgerBroken = !count.agreesWith(ledger.value().items);
    return report;
  });
}

QNResult<QNListReport> QNStore::list(const std::shared_ptr<QNProfile>& vault, Which which,
                                     const Visitor& visit) {
  return _database->listVault(vault, which, [&visit](const auto& item, const QNItemRow&) {
    visit(item);
    return Shown::listed;
  });
}

QNResult<QNListReport> QNStore::listFolder(const std::shared_ptr<QNProfile>& vault,
                                           std::string_view folderUUID, Which which,
                                           const Visitor& visit) {
  if (_database->listing) return listingError();
  return _database->read([&]() -> QNResult<QNListReport> {
    const auto ledger = _database->ledgerNow(*vault);
    if (!ledger.ok()) return ledger.error();
    QNRowCount count;  // of a part of the rows: nothing to compare it with
    return _database->listRows(
        _database->file->query(kSelectItemsOfFolder, vault->oid(), folderUUID), vault, which, count,
        [&visit](const auto& item, const QNItemRow&) {
          visit(item);
          return Shown::listed;
        });
  });
}

// By a question

/// Asks a question of one item after the other, and for details only where it must.
class QNStore::Database::Matcher final {
 public:
  Matcher(Database& database, const QNPredicate& predicate, std::uint64_t items)
      : _database(database), _predicate(predicate), _budget(items) {}

  /// What became of the item. One at which the question fails is the last.
  Shown match(const std::shared_ptr<QNItem>& item, const QNItemRow& row) {
    QNItemKeyPathSource source(*item);
    const auto truth = _predicate.evaluateWithoutDetails(source, _budget);
    if (!truth.ok()) return fail(truth.error());
    if (truth.value() != QNTruth::unknown) return shown(truth.value() == QNTruth::yes);
    if (!_database.readBody(item, row.bodyHash).ok() || item->details() == nullptr) {
      return Shown::damaged;
    }
    const auto answer = _predicate.evaluate(source, _budget);
    return answer.ok() ? shown(answer.value()) : fail(answer.error());
  }

  std::optional<QNError> failure;

 private:
  static Shown shown(bool holds) { return holds ? Shown::listed : Shown::passedOver; }
  Shown fail(const QNError& error) {
    failure = error;
    return Shown::last;
  }

  Database& _database;
  const QNPredicate& _predicate;
  QNPredicateBudget _budget;
};

QNResult<QNListReport> QNStore::listMatching(const std::shared_ptr<QNProfile>& vault, Which which,
                                             const QNPredicate& predicate, const Visitor& visit,
                                             const Filter& filter) {
  if (const auto fault = predicate.faultForItems()) return *fault;
  const auto ledger = _database->read([&] { return _database->ledgerNow(*vault); });
  if (!ledger.ok()) return ledger.error();
  Database::Matcher matcher(*_database, predicate, ledger.value().items.rows);
  auto report = _database->listVault(vault, which, [&](const auto& item, const QNItemRow& row) {
    if (filter != nullptr && !filter(*item)) return Shown::passedOver;
    const Shown shown = matcher.match(item, row);
    if (shown == Shown::listed) visit(item);
    return shown;
  });
  if (matcher.failure) return *matcher.failure;
  return report;
}

// Tags

QNResult<QNTagReport> QNStore::tags(const std::shared_ptr<QNProfile>& vault) {
  std::map<std::string, std::uint64_t> counts;
  const auto listed = list(vault, Which::normal, [&counts](const auto& item) {
    for (const std::string& title : item->tags()) ++counts[title];
  });
  if (!listed.ok()) return listed.error();
  QNTagReport report;
  report.rows = listed.value();
  for (const auto& [title, count] : counts) {
    const auto tag = std::make_shared<QNTag>(initNew);
    tag->setProfile(vault);
    tag->setTitle(title);
    tag->setNumberOfItems(count);
    report.tags.push_back(tag);
  }
  // Stable: what the comparison takes for equal stays in the order of its bytes.
  std::stable_sort(report.tags.begin(), report.tags.end(),
                   [](const auto& a, const auto& b) { return a->localizedCompare(*b) < 0; });
  return report;
}

}  // namespace quillon
