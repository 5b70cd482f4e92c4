#pragma once

#include "quillon/organisation/predicates/QNExpression.h"
#include "quillon/organisation/predicates/QNPredicate.h"

namespace quillon {

// The numbers of these three are stored in archives.

/// Of a left side that is a list: the list itself, each of its elements, or one of them.
enum class QNComparisonModifier : std::int32_t { direct = 0, all = 1, any = 2 };

enum class QNOperatorType : std::int32_t {
  lessThan = 0,
  lessThanOrEqualTo = 1,
  greaterThan = 2,
  greaterThanOrEqualTo = 3,
  equalTo = 4,
  notEqualTo = 5,
  matches = 6,
  like = 7,
  beginsWith = 8,
  endsWith = 9,
  in = 10,
  contains = 11,
  between = 12,
};

/// Option bits: case apart, diacritics apart.
enum QNComparisonOption : std::uint32_t {
  kCaseInsensitive = 1u << 0,
  kDiacriticInsensitive = 1u << 1,
};

class QNComparisonTest;

/// Two expressions compared. README.md tells which values are compared, and how.
class QNComparisonPredicate final : public QNPredicate {
 public:
  struct Parts {
    QNExpression left, right;
    QNComparisonModifier modifier = QNComparisonModifier::direct;
    QNOperatorType operatorType = QNOperatorType::equalTo;
    std::uint32_t options = 0;
    friend bool operator==(const Parts& a, const Parts& b);
  };
  /// Null for an unknown modifier, operator or option bit, or beyond a limit of QNPredicate.
  static QNPredicateRef comparison(Parts parts);
  ~QNComparisonPredicate() override;

  [[nodiscard]] const QNExpression& leftExpression() const noexcept { return _parts.left; }
  [[nodiscard]] const QNExpression& rightExpression() const noexcept { return _parts.right; }
  [[nodiscard]] QNComparisonModifier comparisonPredicateModifier() const noexcept {
    return _parts.modifier;
  }
  [[nodiscard]] QNOperatorType predicateOperatorType() const noexcept {
    return _parts.operatorType;
  }
  [[nodiscard]] std::uint32_t options() const noexcept { return _parts.options; }
  [[nodiscard]] const Parts& parts() const noexcept { return _parts; }

  [[nodiscard]] bool needsDetails() const override;
  [[nodiscard]] bool isEqual(const QNPredicate& other) const override;
  [[nodiscard]] QNTruth truth(QNPredicateRun& run) const override;
  void describe(QNPredicateText& text) const override;
  [[nodiscard]] std::optional<QNError> faultForItems() const override;

 private:
  explicit QNComparisonPredicate(Parts parts);

  Parts _parts;
  std::unique_ptr<const QNComparisonTest> _test;  // constants folded and patterns compiled, once
};

}  // namespace quillon
