#include "quillon/organisation/predicates/internal/QNTextTest.h"

#include "quillon/organisation/predicates/internal/QNWildcards.h"
#include "quillon/platform/text/QNFoldedText.h"

namespace quillon {
namespace {

bool compareFolded(QNOperatorType operatorType, std::string_view left, std::string_view right,
                   QNPredicateRun& run) {
  switch (operatorType) {
    case QNOperatorType::lessThan:
      return left < right;
    case QNOperatorType::lessThanOrEqualTo:
      return left <= right;
    case QNOperatorType::greaterThan:
      return left > right;
    case QNOperatorType::greaterThanOrEqualTo:
      return left >= right;
    case QNOperatorType::equalTo:
      return left == right;
    case QNOperatorType::notEqualTo:
      return left != right;
    case QNOperatorType::beginsWith:
      return left.starts_with(right);
    case QNOperatorType::endsWith:
      return left.ends_with(right);
    case QNOperatorType::contains:
      return containsText(left, right);
    case QNOperatorType::like:
      if (const auto matched = matchesWildcards(left, right, run.budget())) return *matched;
      return run.failTooCostly();
    default:
      return false;
  }
}

/// How a text is compared.
struct Given {
  Given(const QNComparedText& it, QNFolding forAll)
      : text(it.text),
        folding(it.isFolded ? QNFolding::none : forAll),
        way(QNFoldedText::wayFor(text, folding)) {}
  [[nodiscard]] bool keepsSize() const { return way != QNFoldedText::Way::large; }
  [[nodiscard]] std::uint64_t steps() const {
    return text.size() * (keepsSize() ? 1 : kStepsToFold);
  }
  [[nodiscard]] bool isFolded() const { return way == QNFoldedText::Way::none; }
  std::string_view text;
  QNFolding folding;
  QNFoldedText::Way way;
};

}  // namespace

QNFolding foldingForOptions(std::uint32_t options) {
  const bool letterCase = (options & kCaseInsensitive) != 0;
  const bool marks = (options & kDiacriticInsensitive) != 0;
  if (letterCase && marks) return QNFolding::caseAndMarks;
  if (letterCase) return QNFolding::letterCase;
  return marks ? QNFolding::marks : QNFolding::none;
}

bool compareTexts(QNOperatorType operatorType, QNFolding folding, const QNComparedText& left,
                  const QNComparedText& right, QNPredicateRun& run) {
  const Given a(left, folding);
  const Given b(right, folding);
  if (!run.spend(a.steps() + b.steps())) return false;
  const bool asksForEquality =
      operatorType == QNOperatorType::equalTo || operatorType == QNOperatorType::notEqualTo;
  if (asksForEquality && a.keepsSize() && b.keepsSize() && a.text.size() != b.text.size()) {
    return operatorType == QNOperatorType::notEqualTo;  // spares most texts the folding
  }
  if (a.isFolded() && b.isFolded()) return compareFolded(operatorType, a.text, b.text, run);
  return compareFolded(operatorType, QNFoldedText(a.text, a.folding, a.way).text(),
                       QNFoldedText(b.text, b.folding, b.way).text(), run);
}

}  // namespace quillon
