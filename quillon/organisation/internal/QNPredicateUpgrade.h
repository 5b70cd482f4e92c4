#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "quillon/organisation/predicates/QNComparisonPredicate.h"
#include "quillon/organisation/predicates/QNCompoundPredicate.h"

namespace quillon {

/// Rewrites a question of an older format in today's words. It answers the fault of a NOT over a
/// condition that has no meaning any more, and stops nothing: that is its caller's to do.
class QNPredicateUpgrade final {
 public:
  /// Logs what it can't convert under that description; nothing without one.
  explicit QNPredicateUpgrade(std::optional<std::string> objectForLogging)
      : _object(std::move(objectForLogging)) {}

  /// Null for what has no meaning any more.
  [[nodiscard]] QNResult<QNPredicateRef> upgraded(const QNPredicateRef& predicate) const;

  /// The tables of old constants.
  static std::int64_t passwordStrengthForKeyPath(std::string_view keyPath);
  static std::optional<std::string> categoryUUIDForName(std::string_view name);

 private:
  using Parts = QNComparisonPredicate::Parts;
  [[nodiscard]] QNResult<QNPredicateRef> upgradedCompound(
      const QNPredicateRef& predicate, const QNCompoundPredicate& compound) const;
  [[nodiscard]] QNPredicateRef upgradedComparison(const QNPredicateRef& predicate,
                                                  const Parts& parts) const;
  [[nodiscard]] QNPredicateRef upgradedCategory(const QNPredicateRef& predicate,
                                                const Parts& parts) const;
  [[nodiscard]] QNPredicateRef upgradedOther(const QNPredicateRef& predicate) const;
  /// `made`, or what unconverted() gives where a limit forbids it.
  [[nodiscard]] QNPredicateRef madeOf(const QNPredicateRef& predicate, QNPredicateRef made) const;
  /// Null, with an error log.
  [[nodiscard]] QNPredicateRef unconverted(const QNPredicateRef& predicate) const;
  void report(std::string_view text, const QNPredicateRef& predicate) const;

  std::optional<std::string> _object;
};

}  // namespace quillon
