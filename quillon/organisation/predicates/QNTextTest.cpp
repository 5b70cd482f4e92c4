#include "quillon/organisation/predicates/internal/QNTextTest.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "quillon/organisation/predicates/internal/QNWildcards.h"
#include "quillon/platform/text/QNASCII.h"

namespace quillon {
namespace {

bool contains(std::string_view text, std::string_view part) {
  // Linear whatever both hold, which find() isn't. An empty text may have no address.
  if (part.empty() || text.empty()) return part.empty();
  return ::memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

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
      return contains(left, right);
    case QNOperatorType::like:
      if (const auto matched = matchesWildcards(left, right, run.budget())) return *matched;
      return run.failTooCostly();
    default:
      return false;
  }
}

/// A text folded for one comparison. Short ASCII, which nearly every title is, needs no memory of
/// its own.
class Folded {
 public:
  Folded(const QNComparedText& given, QNFolding folding, QNPredicateRun& run) {
    const bool isASCIIText = isASCII(given.text);
    const bool keepsCase = folding == QNFolding::none || folding == QNFolding::marks;
    if (given.isFolded || folding == QNFolding::none || (isASCIIText && keepsCase)) {
      _text = given.text;
    } else if (isASCIIText && given.text.size() <= _small.size()) {
      std::transform(given.text.begin(), given.text.end(), _small.begin(), lowercaseASCII);
      _text = std::string_view(_small.data(), given.text.size());
      _smallSize = given.text.size();
    } else if (run.spend(given.text.size() * kStepsToFold)) {
      _large = foldedText(given.text, folding);
      _text = _large.reveal();  // for the comparison alone
    }
  }
  ~Folded() {
    if (_smallSize > 0) wipe(_small.data(), _smallSize);
  }
  Folded(const Folded&) = delete;
  Folded& operator=(const Folded&) = delete;
  std::string_view text() const { return _text; }

 private:
  std::string_view _text;
  std::size_t _smallSize = 0;
  QNSecret _large;
  std::array<char, 256> _small;  // NOLINT: not filled before it is needed
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
  if (!run.spend(left.text.size() + right.text.size())) return false;
  const Folded foldedLeft(left, folding, run);
  const Folded foldedRight(right, folding, run);
  if (run.fault()) return false;
  return compareFolded(operatorType, foldedLeft.text(), foldedRight.text(), run);
}

}  // namespace quillon
