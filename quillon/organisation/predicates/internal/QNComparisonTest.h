#pragma once

#include <memory>
#include <vector>

#include "quillon/organisation/predicates/internal/QNTextTest.h"
#include "quillon/platform/text/QNRegularExpression.h"

namespace quillon {

/// A value on one side of a comparison, wherever it lies. A list is seen as what holds it.
using QNOperand = std::variant<std::monostate, bool, std::int64_t, double, std::chrono::sys_seconds,
                               QNComparedText, const JsonArray*, const std::vector<QNSecret>*,
                               const QNExpression::List*>;

/// A comparison made ready for many objects: constants are folded, and a pattern is compiled, once.
class QNComparisonTest final {
 public:
  /// `parts` must outlive it.
  explicit QNComparisonTest(const QNComparisonPredicate::Parts& parts);
  QNComparisonTest(const QNComparisonTest&) = delete;
  QNComparisonTest& operator=(const QNComparisonTest&) = delete;

  [[nodiscard]] QNTruth truth(QNPredicateRun& run) const;
  [[nodiscard]] std::optional<QNError> faultForItems() const;

 private:
  using Expression = std::shared_ptr<const QNRegularExpression>;
  QNResult<Expression> compiledExpression(std::string_view text) const;
  /// ALL and ANY.
  [[nodiscard]] bool holdsForElements(const QNOperand& left, const QNOperand& right,
                                      QNPredicateRun& run) const;
  [[nodiscard]] bool compare(QNOperatorType operatorType, const QNOperand& left,
                             const QNOperand& right, QNPredicateRun& run) const;
  [[nodiscard]] bool compareScalars(QNOperatorType operatorType, const QNOperand& left,
                                    const QNOperand& right, QNPredicateRun& run) const;
  [[nodiscard]] bool equalLists(const QNOperand& left, const QNOperand& right,
                                QNPredicateRun& run) const;
  [[nodiscard]] bool holds(const QNOperand& whole, const QNOperand& part,
                           QNPredicateRun& run) const;
  [[nodiscard]] bool isBetween(const QNOperand& left, const QNOperand& right,
                               QNPredicateRun& run) const;
  [[nodiscard]] bool matches(const QNOperand& left, const QNOperand& right,
                             QNPredicateRun& run) const;

  const QNComparisonPredicate::Parts& _parts;
  QNFolding _folding;
  QNExpression _left, _right;                       // constants folded
  QNOperand _leftConstant, _rightConstant;          // seen in them; nothing for a key path
  std::optional<QNResult<Expression>> _expression;  // of MATCHES with a constant text
};

}  // namespace quillon
