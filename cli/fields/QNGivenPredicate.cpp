#include "cli/fields/QNGivenPredicate.h"

#include <fmt/format.h>

namespace quillon {
namespace {

QNError wrongUsage(const QNError& error) {
  return toolError(QNExit::wrongUsage, fmt::format("the predicate: {}", error.message));
}

}  // namespace

QNResult<QNPredicateRef> predicateFrom(std::string_view text) {
  auto predicate = QNPredicate::predicateWithFormat(text);
  if (!predicate) return wrongUsage(predicate.error());
  const auto fault = predicate.value()->faultForItems();
  if (fault) return wrongUsage(*fault);
  return predicate;
}

}  // namespace quillon
