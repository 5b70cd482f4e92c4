#include "quillon/organisation/predicates/QNCompoundPredicate.h"

#include <algorithm>

#include "quillon/organisation/predicates/internal/QNPredicateText.h"

namespace quillon {
namespace {

QNTruth opposite(QNTruth truth) {
  if (truth == QNTruth::unknown) return truth;
  return truth == QNTruth::yes ? QNTruth::no : QNTruth::yes;
}

}  // namespace

QNCompoundPredicate::QNCompoundPredicate(QNCompoundType type,
                                         std::vector<QNPredicateRef> subpredicates)
    : _type(type), _subpredicates(std::move(subpredicates)) {
  for (const auto& part : _subpredicates) _depth = std::max(_depth, part->depth() + 1);
}

QNPredicateRef QNCompoundPredicate::compound(QNCompoundType type,
                                             std::vector<QNPredicateRef> subpredicates) {
  if (type < QNCompoundType::notType || type > QNCompoundType::orType) return nullptr;
  if (type == QNCompoundType::notType && subpredicates.size() != 1) return nullptr;
  if (std::find(subpredicates.begin(), subpredicates.end(), nullptr) != subpredicates.end()) {
    return nullptr;
  }
  return withinLimits(QNPredicateRef(new QNCompoundPredicate(type, std::move(subpredicates))));
}

bool QNCompoundPredicate::needsDetails() const {
  return std::any_of(_subpredicates.begin(), _subpredicates.end(),
                     [](const QNPredicateRef& part) { return part->needsDetails(); });
}

bool QNCompoundPredicate::isEqual(const QNPredicate& other) const {
  const auto* const compound = dynamic_cast<const QNCompoundPredicate*>(&other);
  return compound != nullptr && compound->_type == _type &&
         std::equal(
             _subpredicates.begin(), _subpredicates.end(), compound->_subpredicates.begin(),
             compound->_subpredicates.end(),
             [](const QNPredicateRef& a, const QNPredicateRef& b) { return a->isEqual(*b); });
}

// The parts are asked in order until one settles it; one that can't be asked leaves it open.
QNTruth QNCompoundPredicate::truth(QNPredicateRun& run) const {
  if (_type == QNCompoundType::notType) return opposite(_subpredicates.front()->truth(run));
  const QNTruth settled = _type == QNCompoundType::andType ? QNTruth::no : QNTruth::yes;
  QNTruth whole = opposite(settled);
  for (const auto& part : _subpredicates) {
    const QNTruth truth = part->truth(run);
    if (truth == settled) return settled;
    if (truth == QNTruth::unknown) whole = truth;
  }
  return whole;
}

std::optional<QNError> QNCompoundPredicate::faultForItems() const {
  for (const auto& part : _subpredicates) {
    if (auto fault = part->faultForItems()) return fault;
  }
  return std::nullopt;
}

// A compound in a compound stands in parentheses. AND and OR of less than two parts have a form of
// their own, so that the text tells them from their part.
void QNCompoundPredicate::describe(QNPredicateText& text) const {
  const std::string_view word = _type == QNCompoundType::andType ? "AND" : "OR";
  const auto part = [&text](const QNPredicate& predicate) {
    const bool isCompound = predicate.depth() > 0;
    if (isCompound) text.add("(");
    predicate.describe(text);
    if (isCompound) text.add(")");
  };
  if (_type == QNCompoundType::notType) {
    text.add("NOT ");
    part(*_subpredicates.front());
  } else if (_subpredicates.size() < 2) {
    text.add(word);
    text.add(" {");
    if (!_subpredicates.empty()) _subpredicates.front()->describe(text);
    text.add("}");
  } else {
    for (std::size_t i = 0; i < _subpredicates.size(); ++i) {
      if (i > 0) {
        text.add(" ");
        text.add(word);
        text.add(" ");
      }
      part(*_subpredicates[i]);
    }
  }
}

}  // namespace quillon
