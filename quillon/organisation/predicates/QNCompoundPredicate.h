#pragma once

#include <span>
#include <vector>

#include "quillon/organisation/predicates/QNPredicate.h"

namespace quillon {

/// How a compound joins its parts; stored in archives.
enum class QNCompoundType : std::int32_t { notType = 0, andType = 1, orType = 2 };

/// Questions joined: none of one, all of them, one of them. Of none at all, "all" is true and "one"
/// is false.
class QNCompoundPredicate final : public QNPredicate {
 public:
  /// Null for an unknown type, if a part is null, if a NOT has another number of parts than one, or
  /// beyond a limit of QNPredicate.
  static QNPredicateRef compound(QNCompoundType type, std::vector<QNPredicateRef> subpredicates);

  [[nodiscard]] QNCompoundType compoundPredicateType() const noexcept { return _type; }
  [[nodiscard]] std::span<const QNPredicateRef> subpredicates() const noexcept {
    return _subpredicates;
  }

  [[nodiscard]] bool needsDetails() const override;
  [[nodiscard]] bool isEqual(const QNPredicate& other) const override;
  [[nodiscard]] std::size_t depth() const override { return _depth; }
  [[nodiscard]] QNTruth truth(QNPredicateRun& run) const override;
  void describe(QNPredicateText& text) const override;
  [[nodiscard]] std::optional<QNError> faultForItems() const override;

 private:
  QNCompoundPredicate(QNCompoundType type, std::vector<QNPredicateRef> subpredicates);

  QNCompoundType _type;
  std::size_t _depth = 1;
  std::vector<QNPredicateRef> _subpredicates;
};

}  // namespace quillon
