#pragma once
// For tests: any predicate that can be made, up to a depth.

#include <rapidcheck.h>

#include <cmath>

#include "quillon/organisation/predicates/QNComparisonPredicate.h"
#include "quillon/organisation/predicates/QNCompoundPredicate.h"

namespace quillon {

inline std::string randomText() {
  static const char* const pieces[] = {"a", "B", "\"", "'", "\\", "\n", "\x01", "\x7f",
                                       " ", "ä", "\U0001F600", "%@", "}", "\\u0041", "#"};
  std::string text;
  for (const int i : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 15))) {
    text += pieces[i];
  }
  return text;
}

inline QNExpression randomConstant() {
  switch (*rc::gen::inRange(0, 6)) {
    case 0:
      return {};
    case 1:
      return QNExpression::boolean(*rc::gen::arbitrary<bool>());
    case 2:
      return QNExpression::integer(*rc::gen::arbitrary<std::int64_t>());
    case 3:
      return QNExpression::real(*rc::gen::arbitrary<double>()).value_or(QNExpression());
    case 4:
      return *QNExpression::date(std::chrono::sys_seconds(std::chrono::seconds(
          *rc::gen::inRange(QNExpression::kFirstSecond, QNExpression::kLastSecond + 1))));
    default:
      return *QNExpression::text(randomText());
  }
}

inline QNExpression randomSide() {
  static const char* const keyPaths[] = {"title", "tagsForSearch", "a.b_9", "AND", "date", "x"};
  switch (*rc::gen::inRange(0, 4)) {
    case 0:
      return randomConstant();
    case 1: {
      QNExpression::List elements;
      const int count = *rc::gen::inRange(0, 4);
      for (int i = 0; i < count; ++i) elements.push_back(randomConstant());
      return *QNExpression::list(std::move(elements));
    }
    default:
      return *QNExpression::keyPath(keyPaths[*rc::gen::inRange(0, 6)]);
  }
}

inline QNPredicateRef randomPredicate(int depth) {
  const int kind = *rc::gen::inRange(0, depth > 0 ? 6 : 3);
  if (kind == 0) return QNPredicate::predicateWithValue(*rc::gen::arbitrary<bool>());
  if (kind < 3) {
    return QNComparisonPredicate::comparison(
        {randomSide(), randomSide(), static_cast<QNComparisonModifier>(*rc::gen::inRange(0, 3)),
         static_cast<QNOperatorType>(*rc::gen::inRange(0, 13)),
         static_cast<std::uint32_t>(*rc::gen::inRange(0, 4))});
  }
  const auto type = static_cast<QNCompoundType>(kind - 3);
  const int count = type == QNCompoundType::notType ? 1 : *rc::gen::inRange(0, 4);
  std::vector<QNPredicateRef> parts;
  for (int i = 0; i < count; ++i) parts.push_back(randomPredicate(depth - 1));
  return QNCompoundPredicate::compound(type, std::move(parts));
}

}  // namespace quillon
