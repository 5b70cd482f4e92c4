#pragma once

#include <unicode/locid.h>

#include <string_view>

namespace quillon {

/// The ICU locale of a BCP 47 tag; the root locale for any other text.
inline icu::Locale localeForTag(std::string_view tag) {
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale locale = icu::Locale::forLanguageTag(
      icu::StringPiece(tag.data(), static_cast<int32_t>(tag.size())), status);
  return U_SUCCESS(status) ? locale : icu::Locale::getRoot();
}

}  // namespace quillon
