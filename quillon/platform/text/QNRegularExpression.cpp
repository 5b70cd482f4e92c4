#include "quillon/platform/text/QNRegularExpression.h"

#include <unicode/regex.h>
#include <unicode/utext.h>

namespace quillon {
namespace {

QNError noExpression(std::string message) {
  return {std::string(QNErrorDomain), kErrorUnreadableData, std::move(message)};
}

using Spend = std::function<bool(std::uint64_t)>;

// The engine calls it after each piece of work.
UBool U_CALLCONV mayGoOn(const void* context, int32_t /*pieces*/) {
  return (*static_cast<const Spend*>(context))(QNRegularExpression::kStepsBetweenCalls);
}

}  // namespace

struct QNRegularExpression::Pattern {
  std::unique_ptr<icu::RegexPattern> compiled;
};

QNRegularExpression::QNRegularExpression(std::unique_ptr<const Pattern> pattern)
    : _pattern(std::move(pattern)) {}

QNRegularExpression::~QNRegularExpression() = default;

QNResult<std::shared_ptr<const QNRegularExpression>> QNRegularExpression::compiled(
    std::string_view expression, bool ignoringCase) {
  if (expression.size() > kMaxBytes) return noExpression("the regular expression is too long");
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(expression.data(), static_cast<int32_t>(expression.size())));
  const std::uint32_t flags = ignoringCase ? UREGEX_CASE_INSENSITIVE : 0;
  UErrorCode status = U_ZERO_ERROR;
  UParseError place{};
  auto pattern = std::make_unique<Pattern>();
  pattern->compiled.reset(icu::RegexPattern::compile(text, flags, place, status));
  if (U_FAILURE(status) || pattern->compiled == nullptr) {
    return noExpression("no regular expression");
  }
  return std::shared_ptr<const QNRegularExpression>(new QNRegularExpression(std::move(pattern)));
}

QNRegularExpression::Match QNRegularExpression::matches(std::string_view text,
                                                        const Spend& spend) const {
  UErrorCode status = U_ZERO_ERROR;
  UText bytes = UTEXT_INITIALIZER;
  utext_openUTF8(&bytes, text.data(), static_cast<int64_t>(text.size()), &status);
  const std::unique_ptr<icu::RegexMatcher> matcher(_pattern->compiled->matcher(status));
  if (U_FAILURE(status)) return Match::tooCostly;  // no memory is left
  matcher->setTimeLimit(kMaxTime, status);
  matcher->setStackLimit(kMaxStackBytes, status);
  matcher->setMatchCallback(mayGoOn, &spend, status);
  matcher->reset(&bytes);
  const bool matched = matcher->matches(status) != 0;
  utext_close(&bytes);
  if (U_FAILURE(status)) return Match::tooCostly;
  return matched ? Match::yes : Match::no;
}

}  // namespace quillon
