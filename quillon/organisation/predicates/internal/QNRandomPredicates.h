#pragma once
// For tests: any predicate that can be made, up to a depth, from a seed that a failure prints.

#include <bit>
#include <random>

#include "quillon/organisation/predicates/QNComparisonPredicate.h"
#include "quillon/organisation/predicates/QNCompoundPredicate.h"

namespace quillon {

class QNRandomPredicates final {
 public:
  explicit QNRandomPredicates(std::uint32_t seed) : _engine(seed) {}

  QNPredicateRef predicate(int depth) {
    const std::size_t kind = below(depth > 0 ? 6 : 3);
    if (kind == 0) return QNPredicate::predicateWithValue(below(2) == 0);
    if (kind < 3) return comparison();
    const auto type = static_cast<QNCompoundType>(kind - 3);
    const std::size_t count = type == QNCompoundType::notType ? 1 : below(4);
    std::vector<QNPredicateRef> parts;
    for (std::size_t i = 0; i < count; ++i) parts.push_back(predicate(depth - 1));
    return QNCompoundPredicate::compound(type, std::move(parts));
  }

 private:
  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(_engine);
  }
  const char* pick(std::initializer_list<const char*> texts) {
    return texts.begin()[below(texts.size())];
  }

  QNPredicateRef comparison() {
    return QNComparisonPredicate::comparison(
        {side(), side(), static_cast<QNComparisonModifier>(below(3)),
         static_cast<QNOperatorType>(below(13)), static_cast<std::uint32_t>(below(4))});
  }

  QNExpression side() {
    const std::size_t kind = below(4);
    if (kind == 0) return constant();
    if (kind > 1) {
      return *QNExpression::keyPath(pick({"title", "tagsForSearch", "a.b_9", "AND", "date", "x"}));
    }
    QNExpression::List elements;
    for (std::size_t count = below(4); count > 0; --count) elements.push_back(constant());
    return *QNExpression::list(std::move(elements));
  }

  QNExpression constant() {
    switch (below(6)) {
      case 0:
        return {};
      case 1:
        return QNExpression::boolean(below(2) == 0);
      case 2:
        return QNExpression::integer(static_cast<std::int64_t>(_engine()));
      case 3:
        return QNExpression::real(std::bit_cast<double>(_engine())).value_or(QNExpression());
      case 4:
        return *QNExpression::date(std::chrono::sys_seconds(
            std::chrono::seconds(std::uniform_int_distribution<std::int64_t>(
                QNExpression::kFirstSecond, QNExpression::kLastSecond)(_engine))));
      default:
        return *QNExpression::text(text());
    }
  }

  std::string text() {
    std::string text;
    for (std::size_t count = below(8); count > 0; --count) {
      text += pick({"a", "B", "\"", "'", "\\", "\n", "\x01", "\x7f", " ", "ä", "\U0001F600", "%@",
                    "}", "\\u0041", "#"});
    }
    return text;
  }

  std::mt19937_64 _engine;
};

}  // namespace quillon
