#include "quillon/organisation/predicates/internal/QNComparisonTest.h"

// Which values are compared, and how; anything else isn't equal, not before and not behind.
//
//   left              right          operators
//   nothing           nothing        == is true, != is false; any other false
//   number, yes or no the same       == != < <= > >=; yes is 1 and no is 0
//   moment            moment         == != < <= > >=
//   text              text           == != < <= > >= by bytes of the folded texts; CONTAINS,
//                                    BEGINSWITH, ENDSWITH, LIKE, MATCHES, and IN with the sides
//                                    exchanged
//   list              list           == !=, element by element
//   list              any            CONTAINS: is one element equal to it
//   any               list           IN: the same with the sides exchanged
//   any               list of two    BETWEEN: not before the first, not behind the second
//
// ALL and ANY compare each element of a list on the left; nothing is a list of none there, and any
// other value a list of itself.

namespace quillon {
namespace {

// What it costs to compile an expression, for each of its bytes.
constexpr std::uint64_t kStepsToCompile = 1000;

QNExpression foldedConstant(const QNExpression& expression, QNFolding folding) {
  if (const auto* const text = std::get_if<std::string>(&expression.content())) {
    // What is searched for stays as long as the question does.
    return *QNExpression::text(foldedText(*text, folding).reveal());
  }
  if (const auto* const list = std::get_if<QNExpression::List>(&expression.content())) {
    QNExpression::List folded;
    for (const QNExpression& element : *list) folded.push_back(foldedConstant(element, folding));
    return *QNExpression::list(std::move(folded));
  }
  return expression;
}

/// Makes an operand where it stays: one that is copied while it is new is waited for.
struct Filling {
  void operator()(std::monostate /*it*/) const { operand = std::monostate(); }
  void operator()(QNExpression::Nil /*it*/) const { operand = std::monostate(); }
  void operator()(const QNKeyPath& /*it*/) const { operand = std::monostate(); }
  void operator()(const std::string& it) const { operand.emplace<QNComparedText>(it, true); }
  void operator()(const QNExpression::List& it) const { operand = &it; }
  void operator()(std::string_view it) const { operand.emplace<QNComparedText>(it, false); }
  // Looked at where it lies.
  void operator()(const QNSecret& it) const { operand.emplace<QNComparedText>(it.reveal(), false); }
  void operator()(const std::vector<QNSecret>& it) const { operand = &it; }
  template <class Plain>
  void operator()(Plain it) const {
    operand = it;
  }
  QNOperand& operand;
};

QNOperand operandOf(const QNExpression& folded) {
  QNOperand operand;
  std::visit(Filling{operand}, folded.content());
  return operand;
}

/// One side of the comparison in one run.
class Side {
 public:
  /// A key path is asked for; without one it is the constant. Both arguments must outlive it.
  Side(const QNKeyPath* keyPath, const QNOperand& constant, QNPredicateRun& run)
      : _isKnown(keyPath == nullptr || run.mayAsk(*keyPath)),
        _value(keyPath != nullptr && _isKnown ? run.valueForKeyPath(*keyPath) : std::nullopt) {
    if (_value) {
      std::visit(Filling{_own}, *_value);
    } else {
      _operand = &constant;
    }
  }
  Side(const Side&) = delete;
  Side& operator=(const Side&) = delete;
  bool isKnown() const { return _isKnown; }
  const QNOperand& operand() const { return *_operand; }

 private:
  bool _isKnown;
  std::optional<QNKeyPathValue> _value;
  QNOperand _own;
  const QNOperand* _operand = &_own;
};

std::size_t lengthOf(const JsonArray& list) {
  return list.size();
}
template <class Element>
std::size_t lengthOf(const std::vector<Element>& list) {
  return list.size();
}
QNOperand elementOf(const JsonArray& list, std::size_t index) {
  const auto* const text = list[index].if_string();
  if (text == nullptr) return std::monostate();
  return QNComparedText(std::string_view(text->data(), text->size()), false);
}
QNOperand elementOf(const std::vector<QNSecret>& list, std::size_t index) {
  return QNComparedText(list[index].reveal(), false);  // looked at where it lies
}
QNOperand elementOf(const QNExpression::List& list, std::size_t index) {
  return operandOf(list[index]);
}

/// Hands a list to `see`, as what holds it. Nothing if it is no list.
template <class See>
auto ofList(const QNOperand& list, const See& see)
    -> std::optional<decltype(see(QNExpression::List()))> {
  if (const auto* const stored = std::get_if<const JsonArray*>(&list)) return see(**stored);
  if (const auto* const texts = std::get_if<const std::vector<QNSecret>*>(&list)) {
    return see(**texts);
  }
  if (const auto* const constants = std::get_if<const QNExpression::List*>(&list)) {
    return see(**constants);
  }
  return std::nullopt;
}

/// Gives the elements of a list in order, until `test` is true of one. Nothing if it is no list.
template <class Test>
std::optional<bool> anyElement(const QNOperand& list, const Test& test) {
  return ofList(list, [&test](const auto& elements) {
    for (std::size_t i = 0; i < lengthOf(elements); ++i) {
      if (test(elementOf(elements, i))) return true;
    }
    return false;
  });
}

std::optional<std::size_t> countOf(const QNOperand& list) {
  return ofList(list, [](const auto& elements) { return lengthOf(elements); });
}

/// `index` must be below the list's count.
QNOperand elementAt(const QNOperand& list, std::size_t index) {
  const auto element =
      ofList(list, [index](const auto& elements) { return elementOf(elements, index); });
  return element.value_or(std::monostate());
}

template <class Value>
bool compareOrdered(QNOperatorType operatorType, Value left, Value right) {
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
    default:
      return false;
  }
}

std::optional<std::int64_t> wholeNumber(const QNOperand& operand) {
  if (const auto* const number = std::get_if<std::int64_t>(&operand)) return *number;
  if (const auto* const truth = std::get_if<bool>(&operand)) return *truth ? 1 : 0;
  return std::nullopt;
}

std::optional<double> number(const QNOperand& operand) {
  if (const auto* const real = std::get_if<double>(&operand)) return *real;
  const auto whole = wholeNumber(operand);
  return whole ? std::optional<double>(static_cast<double>(*whole)) : std::nullopt;
}

bool isNothing(const QNOperand& operand) {
  return std::holds_alternative<std::monostate>(operand);
}

}  // namespace

QNComparisonTest::QNComparisonTest(const QNComparisonPredicate::Parts& parts)
    : _parts(parts), _folding(foldingForOptions(parts.options)) {
  if (parts.operatorType == QNOperatorType::matches) {
    // Case is the expression's own affair: a folded "\D" would be another expression.
    const bool marks = (parts.options & kDiacriticInsensitive) != 0;
    _folding = marks ? QNFolding::marks : QNFolding::none;
  }
  _left = foldedConstant(parts.left, _folding);
  _right = foldedConstant(parts.right, _folding);
  _leftConstant = operandOf(_left);
  _rightConstant = operandOf(_right);
  if (const auto* const text = std::get_if<std::string>(&_right.content());
      text != nullptr && parts.operatorType == QNOperatorType::matches) {
    _expression = compiledExpression(*text);
  }
}

QNResult<QNComparisonTest::Expression> QNComparisonTest::compiledExpression(
    std::string_view text) const {
  return QNRegularExpression::compiled(text, (_parts.options & kCaseInsensitive) != 0);
}

std::optional<QNError> QNComparisonTest::faultForItems() const {
  for (const QNExpression* const side : {&_parts.left, &_parts.right}) {
    const QNKeyPath* const keyPath = side->asKeyPath();
    if (keyPath != nullptr && keyPath->ofItem() == nullptr) return unknownKeyPath(*keyPath);
  }
  if (_expression && !_expression->ok()) return _expression->error();
  return std::nullopt;
}

QNTruth QNComparisonTest::truth(QNPredicateRun& run) const {
  if (!run.spend(QNPredicateBudget::kStepsPerComparison)) return QNTruth::unknown;
  const Side left(_left.asKeyPath(), _leftConstant, run);
  const Side right(_right.asKeyPath(), _rightConstant, run);
  if (!left.isKnown() || !right.isKnown()) return QNTruth::unknown;
  const bool holds = _parts.modifier == QNComparisonModifier::direct
                         ? compare(_parts.operatorType, left.operand(), right.operand(), run)
                         : holdsForElements(left.operand(), right.operand(), run);
  return holds ? QNTruth::yes : QNTruth::no;
}

bool QNComparisonTest::holdsForElements(const QNOperand& left, const QNOperand& right,
                                        QNPredicateRun& run) const {
  const bool isAny = _parts.modifier == QNComparisonModifier::any;
  if (isNothing(left)) return !isAny;
  const auto settles = [&](const QNOperand& element) {
    return !run.spend(QNPredicateBudget::kStepsPerComparison) ||
           compare(_parts.operatorType, element, right, run) == isAny || run.fault();
  };
  const auto settled = anyElement(left, settles);
  return (settled ? *settled : settles(left)) == isAny;
}

bool QNComparisonTest::compare(QNOperatorType operatorType, const QNOperand& left,
                               const QNOperand& right, QNPredicateRun& run) const {
  switch (operatorType) {
    case QNOperatorType::matches:
      return matches(left, right, run);
    case QNOperatorType::contains:
      return holds(left, right, run);
    case QNOperatorType::in:
      return holds(right, left, run);
    case QNOperatorType::between:
      return isBetween(left, right, run);
    default:
      return compareScalars(operatorType, left, right, run);
  }
}

bool QNComparisonTest::compareScalars(QNOperatorType operatorType, const QNOperand& left,
                                      const QNOperand& right, QNPredicateRun& run) const {
  const auto* const leftText = std::get_if<QNComparedText>(&left);
  const auto* const rightText = std::get_if<QNComparedText>(&right);
  if (leftText != nullptr && rightText != nullptr) {
    return compareTexts(operatorType, _folding, *leftText, *rightText, run);
  }
  if (const auto a = wholeNumber(left), b = wholeNumber(right); a && b) {
    return compareOrdered(operatorType, *a, *b);
  }
  if (const auto a = number(left), b = number(right); a && b) {
    return compareOrdered(operatorType, *a, *b);
  }
  const auto* const leftDate = std::get_if<std::chrono::sys_seconds>(&left);
  const auto* const rightDate = std::get_if<std::chrono::sys_seconds>(&right);
  if (leftDate != nullptr && rightDate != nullptr) {
    return compareOrdered(operatorType, *leftDate, *rightDate);
  }
  const bool equal = (isNothing(left) && isNothing(right)) || equalLists(left, right, run);
  if (operatorType == QNOperatorType::equalTo) return equal;
  return operatorType == QNOperatorType::notEqualTo && !equal;
}

bool QNComparisonTest::equalLists(const QNOperand& left, const QNOperand& right,
                                  QNPredicateRun& run) const {
  const auto count = countOf(left);
  if (!count || count != countOf(right) ||
      !run.spend(*count * QNPredicateBudget::kStepsPerComparison)) {
    return false;
  }
  for (std::size_t i = 0; i < *count; ++i) {
    if (!compareScalars(QNOperatorType::equalTo, elementAt(left, i), elementAt(right, i), run)) {
      return false;
    }
  }
  return true;
}

bool QNComparisonTest::holds(const QNOperand& whole, const QNOperand& part,
                             QNPredicateRun& run) const {
  const auto inList = anyElement(whole, [&](const QNOperand& element) {
    return !run.spend(QNPredicateBudget::kStepsPerComparison) ||
           compareScalars(QNOperatorType::equalTo, element, part, run);
  });
  return inList ? *inList : compareScalars(QNOperatorType::contains, whole, part, run);
}

bool QNComparisonTest::isBetween(const QNOperand& left, const QNOperand& right,
                                 QNPredicateRun& run) const {
  return countOf(right) == 2u &&
         compareScalars(QNOperatorType::greaterThanOrEqualTo, left, elementAt(right, 0), run) &&
         compareScalars(QNOperatorType::lessThanOrEqualTo, left, elementAt(right, 1), run);
}

bool QNComparisonTest::matches(const QNOperand& left, const QNOperand& right,
                               QNPredicateRun& run) const {
  const auto* const text = std::get_if<QNComparedText>(&left);
  const auto* const given = std::get_if<QNComparedText>(&right);
  if (text == nullptr || given == nullptr) return false;
  if (!run.spend(text->text.size() * kStepsToFold)) return false;
  std::optional<QNResult<Expression>> made;
  if (!_expression) {
    if (!run.spend(given->text.size() * kStepsToCompile)) return false;
    made = compiledExpression(foldedText(given->text, _folding).reveal());
  }
  const QNResult<Expression>& expression = _expression ? *_expression : *made;
  if (!expression.ok()) return run.fail(expression.error());
  const QNSecret folded = foldedText(text->text, text->isFolded ? QNFolding::none : _folding);
  const auto matched = expression.value()->matches(
      folded.reveal(), [&run](std::uint64_t steps) { return run.spend(steps); });
  if (matched == QNRegularExpression::Match::tooCostly) return run.failTooCostly();
  return matched == QNRegularExpression::Match::yes;
}

}  // namespace quillon
