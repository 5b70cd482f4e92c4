#include <unicode/numfmt.h>

#include <memory>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/text/internal/QNLocale.h"

namespace quillon {
namespace {

// As with dates: costly to make, so each thread keeps its own until the locale changes.
struct KeptFormat {
  std::string locale;
  std::unique_ptr<icu::NumberFormat> format;
};

const icu::NumberFormat* formatOfThread() {
  thread_local KeptFormat kept;
  std::string locale = currentLocale();
  if (kept.format == nullptr || kept.locale != locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> made(
        icu::NumberFormat::createInstance(localeForTag(locale), status));
    kept = {locale, U_SUCCESS(status) ? std::move(made) : nullptr};
  }
  return kept.format.get();
}

}  // namespace

std::string qn_formatNumber(std::uint64_t number) {
  std::string digits = std::to_string(number);
  const icu::NumberFormat* const format = formatOfThread();
  if (format == nullptr) return digits;
  // As digits, since ICU's own numbers end at 63 bits.
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString shown;
  format->format(icu::StringPiece(digits), shown, nullptr, status);
  if (U_FAILURE(status)) return digits;
  std::string text;
  return shown.toUTF8String(text);
}

}  // namespace quillon
