#include <unicode/coll.h>

#include <algorithm>
#include <array>
#include <memory>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/text/internal/QNLocale.h"

namespace quillon {
namespace {

using Collator = std::unique_ptr<icu::Collator>;

Collator makeCollator(const std::string& locale, icu::Collator::ECollationStrength strength) {
  UErrorCode status = U_ZERO_ERROR;
  Collator collator(icu::Collator::createInstance(localeForTag(locale), status));
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

std::string keyBy(const Collator& collator, std::string_view text) {
  if (collator == nullptr) return std::string(text);
  auto wide = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
  std::array<char, 128> place;  // enough for nearly every title
  const auto write = [&](char* out, std::size_t size) {
    return static_cast<std::size_t>(collator->getSortKey(wide, reinterpret_cast<std::uint8_t*>(out),
                                                         static_cast<int32_t>(size)));
  };
  const std::size_t size = write(place.data(), place.size());
  if (size == 0) return std::string(text);  // memory is short
  std::string key(place.data(), std::min(size, place.size()));
  if (size > place.size()) {
    key.resize(size);
    write(key.data(), key.size());
  }
  key.pop_back();  // ICU's end mark
  wipe(place.data(), place.size());
  const auto units = static_cast<std::size_t>(wide.length());
  wipe(wide.getBuffer(-1), units * sizeof(char16_t));
  wide.releaseBuffer(0);
  return key;
}

}  // namespace

int localizedCompare(std::string_view a, std::string_view b) {
  return compared(collatorsOfThread().minding, a, b);
}

int localizedCaseInsensitiveCompare(std::string_view a, std::string_view b) {
  return compared(collatorsOfThread().ignoring, a, b);
}

std::string collationKey(std::string_view text) {
  return keyBy(collatorsOfThread().minding, text);
}

std::string caseInsensitiveCollationKey(std::string_view text) {
  return keyBy(collatorsOfThread().ignoring, text);
}

}  // namespace quillon
