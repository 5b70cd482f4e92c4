#include "quillon/organisation/predicates/QNPredicate.h"

#include "quillon/organisation/predicates/internal/QNPredicateRun.h"
#include "quillon/organisation/predicates/internal/QNPredicateText.h"

namespace quillon {
namespace {

/// TRUEPREDICATE or FALSEPREDICATE.
class ConstantPredicate final : public QNPredicate {
 public:
  explicit ConstantPredicate(bool value) : _value(value) {}
  bool needsDetails() const override { return false; }
  bool isEqual(const QNPredicate& other) const override {
    const auto* const constant = dynamic_cast<const ConstantPredicate*>(&other);
    return constant != nullptr && constant->_value == _value;
  }
  std::optional<bool> constantValue() const override { return _value; }
  QNTruth truth(QNPredicateRun& /*run*/) const override {
    return _value ? QNTruth::yes : QNTruth::no;
  }
  void describe(QNPredicateText& text) const override {
    text.add(_value ? "TRUEPREDICATE" : "FALSEPREDICATE");
  }
  std::optional<QNError> faultForItems() const override { return std::nullopt; }

 private:
  bool _value;
};

}  // namespace

// One asking

namespace {

/// What it took to make an answer; nothing for one that lies in the object.
std::uint64_t stepsToMake(const QNKeyPathValue& value) {
  if (const auto* const text = std::get_if<QNSecret>(&value)) return text->size();
  const auto* const texts = std::get_if<std::vector<QNSecret>>(&value);
  if (texts == nullptr) return 0;
  std::uint64_t steps = 0;
  for (const QNSecret& text : *texts) {
    steps += QNPredicateBudget::kStepsPerComparison + text.size();
  }
  return steps;
}

}  // namespace

std::optional<QNKeyPathValue> QNPredicateRun::valueForKeyPath(const QNKeyPath& keyPath) {
  auto value = _source.valueForKeyPath(keyPath);
  if (!value) {
    fail(unknownKeyPath(keyPath));
  } else {
    spend(stepsToMake(*value));
  }
  return value;
}

bool QNPredicateRun::fail(QNError fault) {
  if (!_fault) _fault = std::move(fault);
  return false;
}

bool QNPredicateRun::failTooCostly() {
  return fail(predicateFault("the predicate costs more than is allowed"));
}

QNError predicateFault(std::string message) {
  return {std::string(QNErrorDomain), kErrorUnreadableData, std::move(message)};
}

QNError unknownKeyPath(const QNKeyPath& keyPath) {
  return predicateFault("there is no key path " + keyPath.name());
}

// Predicates

QNPredicateRef QNPredicate::predicateWithValue(bool value) {
  static const QNPredicateRef yes = std::make_shared<const ConstantPredicate>(true);
  static const QNPredicateRef no = std::make_shared<const ConstantPredicate>(false);
  return value ? yes : no;
}

QNPredicateRef QNPredicate::withinLimits(QNPredicateRef predicate) {
  if (predicate->depth() > kMaxDepth) return nullptr;
  QNPredicateText text(QNPredicateTextUse::counted);
  predicate->describe(text);
  return text.size() <= kMaxTextBytes ? predicate : nullptr;
}

std::string QNPredicate::predicateFormat() const {
  QNPredicateText text(QNPredicateTextUse::whole);
  describe(text);
  return text.take();
}

std::string QNPredicate::predicateFormatForLogging() const {
  QNPredicateText text(QNPredicateTextUse::forLogging);
  describe(text);
  return text.take();
}

QNResult<bool> QNPredicate::evaluate(QNKeyPathSource& source) const {
  QNPredicateBudget budget;
  return evaluate(source, budget);
}

QNResult<bool> QNPredicate::evaluate(QNKeyPathSource& source, QNPredicateBudget& budget) const {
  QNPredicateRun run(source, budget, true);
  const QNTruth answer = truth(run);
  if (run.fault()) return *run.fault();
  return answer == QNTruth::yes;
}

QNResult<QNTruth> QNPredicate::evaluateWithoutDetails(QNKeyPathSource& source,
                                                      QNPredicateBudget& budget) const {
  QNPredicateRun run(source, budget, false);
  const QNTruth answer = truth(run);
  if (run.fault()) return *run.fault();
  return answer;
}

}  // namespace quillon
