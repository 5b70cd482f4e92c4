#include "quillon/organisation/predicates/QNExpression.h"

#include <algorithm>
#include <cmath>

#include "quillon/organisation/predicates/QNItemKeyPaths.h"
#include "quillon/organisation/predicates/internal/QNPredicateText.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

bool isKeyPathName(std::string_view name) {
  if (name.empty() || name.size() > QNKeyPath::kMaxBytes) return false;
  bool begins = true;
  for (const char c : name) {
    if (begins ? !beginsPredicateWord(c) : c != '.' && !continuesPredicateWord(c)) return false;
    begins = c == '.';
  }
  return !begins;
}

}  // namespace

std::optional<QNKeyPath> QNKeyPath::named(std::string_view name) {
  if (!isKeyPathName(name)) return std::nullopt;
  return QNKeyPath(name, itemKeyPathNamed(name));
}

std::optional<QNExpression> QNExpression::real(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  return QNExpression(value);
}

std::optional<QNExpression> QNExpression::date(std::chrono::sys_seconds value) {
  const std::int64_t seconds = value.time_since_epoch().count();
  if (seconds < kFirstSecond || seconds > kLastSecond) return std::nullopt;
  return QNExpression(value);
}

std::optional<QNExpression> QNExpression::text(std::string_view value) {
  if (!isUTF8(value)) return std::nullopt;
  return QNExpression(std::string(value));
}

std::optional<QNExpression> QNExpression::list(List elements) {
  const bool isPlain = std::none_of(elements.begin(), elements.end(), [](const QNExpression& it) {
    return it.asKeyPath() != nullptr || std::holds_alternative<List>(it._content);
  });
  if (!isPlain) return std::nullopt;
  return QNExpression(std::move(elements));
}

std::optional<QNExpression> QNExpression::keyPath(std::string_view name) {
  auto path = QNKeyPath::named(name);
  if (!path) return std::nullopt;
  return QNExpression(std::move(*path));
}

QNExpressionType QNExpression::expressionType() const noexcept {
  return asKeyPath() != nullptr ? QNExpressionType::keyPath : QNExpressionType::constantValue;
}

std::string QNExpression::description() const {
  QNPredicateText text(QNPredicateTextUse::whole);
  text.add(*this);
  return text.take();
}

std::string QNExpression::descriptionForLogging() const {
  QNPredicateText text(QNPredicateTextUse::forLogging);
  text.add(*this);
  return text.take();
}

bool operator==(const QNExpression& a, const QNExpression& b) {
  return a._content == b._content;
}

}  // namespace quillon
