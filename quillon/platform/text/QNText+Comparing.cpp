#include <unicode/coll.h>

#include <memory>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Collator = std::unique_ptr<icu::Collator>;

Collator makeCollator(const std::string& locale, icu::Collator::ECollationStrength strength) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale language = icu::Locale::forLanguageTag(locale, status);
  if (U_FAILURE(status)) status = U_ZERO_ERROR;  // the root locale then
  Collator collator(icu::Collator::createInstance(language, status));
  if (U_FAILURE(status)) return nullptr;
  collator->setStrength(strength);
  return collator;
}

// A collator costs thousands of times one comparison to make, so each thread keeps its own
// until the locale changes.
struct Collators {
  std::string locale;
  Collator minding;   // tertiary: accents, then case
  Collator ignoring;  // secondary: accents only
};

const Collators& collatorsOfThread() {
  thread_local Collators kept;
  std::string locale = currentLocale();
  if (kept.minding == nullptr || kept.locale != locale) {
    kept = {locale, makeCollator(locale, icu::Collator::TERTIARY),
            makeCollator(locale, icu::Collator::SECONDARY)};
  }
  return kept;
}

int compared(const Collator& collator, std::string_view a, std::string_view b) {
  if (collator == nullptr) return a.compare(b);
  UErrorCode status = U_ZERO_ERROR;
  return collator->compareUTF8(icu::StringPiece(a.data(), static_cast<int32_t>(a.size())),
                               icu::StringPiece(b.data(), static_cast<int32_t>(b.size())), status);
}

}  // namespace

int localizedCompare(std::string_view a, std::string_view b) {
  return compared(collatorsOfThread().minding, a, b);
}

int localizedCaseInsensitiveCompare(std::string_view a, std::string_view b) {
  return compared(collatorsOfThread().ignoring, a, b);
}

}  // namespace quillon
