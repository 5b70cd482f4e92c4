#pragma once

#include <optional>

#include "quillon/organisation/predicates/QNKeyPathSource.h"
#include "quillon/organisation/predicates/QNPredicateBudget.h"
#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// One asking of one object. The first fault stays; what is answered after it means nothing.
class QNPredicateRun final {
 public:
  QNPredicateRun(QNKeyPathSource& source, QNPredicateBudget& budget, bool opensDetails)
      : _source(source), _budget(budget), _opensDetails(opensDetails) {}

  /// May the object be asked for it in this run?
  [[nodiscard]] bool mayAsk(const QNKeyPath& keyPath) const {
    return _opensDetails || !_source.needsDetails(keyPath);
  }
  /// Nothing, and a fault, for a key path that the object doesn't have.
  [[nodiscard]] std::optional<QNKeyPathValue> valueForKeyPath(const QNKeyPath& keyPath);
  /// False, and a fault, if the budget is spent.
  bool spend(std::uint64_t steps) { return _budget.spend(steps) || failTooCostly(); }
  [[nodiscard]] QNPredicateBudget& budget() { return _budget; }

  /// Always false.
  bool fail(QNError fault);
  bool failTooCostly();
  [[nodiscard]] const std::optional<QNError>& fault() const { return _fault; }

 private:
  QNKeyPathSource& _source;
  QNPredicateBudget& _budget;
  bool _opensDetails;
  std::optional<QNError> _fault;
};

/// Error 114 of QNErrorDomain.
QNError predicateFault(std::string message);
QNError unknownKeyPath(const QNKeyPath& keyPath);

}  // namespace quillon
