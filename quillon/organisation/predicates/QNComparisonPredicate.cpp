#include "quillon/organisation/predicates/QNComparisonPredicate.h"

#include <array>

#include "quillon/organisation/predicates/QNItemKeyPaths.h"
#include "quillon/organisation/predicates/internal/QNComparisonTest.h"
#include "quillon/organisation/predicates/internal/QNPredicateText.h"

namespace quillon {
namespace {

constexpr std::uint32_t kAllOptions = kCaseInsensitive | kDiacriticInsensitive;

// The text of each operator, by its number.
constexpr std::array<std::string_view, 13> kOperatorTexts = {
    "<",    "<=",         ">",        ">=", "==",       "!=",     "MATCHES",
    "LIKE", "BEGINSWITH", "ENDSWITH", "IN", "CONTAINS", "BETWEEN"};
constexpr std::array<std::string_view, 3> kModifierTexts = {"", "ALL ", "ANY "};
constexpr std::array<std::string_view, 4> kOptionTexts = {"", "[c]", "[d]", "[cd]"};

// Has `table` a place for it? A negative one is beyond every table.
template <class Table, class Enumeration>
bool isIn(const Table& table, Enumeration value) {
  return static_cast<std::size_t>(value) < table.size();
}

bool needsDetailsFor(const QNExpression& side) {
  const QNItemKeyPath* const known =
      side.asKeyPath() == nullptr ? nullptr : side.asKeyPath()->ofItem();
  return known != nullptr && known->home == QNKeyPathHome::details;
}

}  // namespace

bool operator==(const QNComparisonPredicate::Parts& a, const QNComparisonPredicate::Parts& b) {
  return a.modifier == b.modifier && a.operatorType == b.operatorType && a.options == b.options &&
         a.left == b.left && a.right == b.right;
}

QNComparisonPredicate::QNComparisonPredicate(Parts parts) : _parts(std::move(parts)) {}

QNComparisonPredicate::~QNComparisonPredicate() = default;

QNPredicateRef QNComparisonPredicate::comparison(Parts parts) {
  if (!isIn(kModifierTexts, parts.modifier) || !isIn(kOperatorTexts, parts.operatorType) ||
      (parts.options & ~kAllOptions) != 0) {
    return nullptr;
  }
  const std::shared_ptr<QNComparisonPredicate> made(new QNComparisonPredicate(std::move(parts)));
  if (withinLimits(made) == nullptr) return nullptr;
  made->_test = std::make_unique<const QNComparisonTest>(made->_parts);  // costs more than a look
  return made;
}

bool QNComparisonPredicate::needsDetails() const {
  return needsDetailsFor(_parts.left) || needsDetailsFor(_parts.right);
}

bool QNComparisonPredicate::isEqual(const QNPredicate& other) const {
  const auto* const comparison = dynamic_cast<const QNComparisonPredicate*>(&other);
  return comparison != nullptr && comparison->_parts == _parts;
}

QNTruth QNComparisonPredicate::truth(QNPredicateRun& run) const {
  return _test->truth(run);
}

std::optional<QNError> QNComparisonPredicate::faultForItems() const {
  return _test->faultForItems();
}

void QNComparisonPredicate::describe(QNPredicateText& text) const {
  text.add(kModifierTexts[static_cast<std::size_t>(_parts.modifier)]);
  text.add(_parts.left);
  text.add(" ");
  text.add(kOperatorTexts[static_cast<std::size_t>(_parts.operatorType)]);
  text.add(kOptionTexts[_parts.options]);
  text.add(" ");
  text.add(_parts.right);
}

}  // namespace quillon
