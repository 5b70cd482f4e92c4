#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <vector>

#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/text/internal/QNPlainLetters.h"

namespace quillon {
namespace {

icu::UnicodeString unicodeOf(std::string_view text) {
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

// The form that `normalizer` makes, or the text as it is should ICU be without its data.
icu::UnicodeString normalized(const icu::UnicodeString& text,
                              const icu::Normalizer2* (*normalizer)(UErrorCode&)) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const form = normalizer(status);
  if (U_FAILURE(status)) return text;
  icu::UnicodeString result = form->normalize(text, status);
  return U_SUCCESS(status) ? result : text;
}

icu::UnicodeString withoutMarks(const icu::UnicodeString& text) {
  icu::UnicodeString kept;
  for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
    const UChar32 c = text.char32At(i);
    if (u_charType(c) != U_NON_SPACING_MARK) kept.append(c);
  }
  return kept;
}

std::string withPlainLetters(const icu::UnicodeString& text) {
  std::string folded;
  folded.reserve(static_cast<std::size_t>(text.length()) * 2);
  for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
    const UChar32 c = text.char32At(i);
    if (const char* const plain = plainLetterFor(c)) {
      folded += plain;
      continue;
    }
    char unit[U8_MAX_LENGTH];
    std::size_t size = 0;
    U8_APPEND_UNSAFE(unit, size, c);
    folded.append(unit, size);
  }
  return folded;
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lowercaseASCII);
  return result;
}

// Letters of the other width, and the wide blank, in their usual form.
icu::UnicodeString inUsualWidth(const icu::UnicodeString& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const table = icu::Normalizer2::getNFKCInstance(status);
  if (U_FAILURE(status)) return text;
  icu::UnicodeString usual;
  icu::UnicodeString letter;
  for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
    const UChar32 c = text.char32At(i);
    const bool hasOtherWidth = c == 0x3000 || (c >= 0xFF01 && c <= 0xFFEE);
    if (hasOtherWidth && table->getRawDecomposition(c, letter)) {
      usual.append(letter);
    } else {
      usual.append(c);
    }
  }
  return usual;
}

std::string withoutCaseAndWidth(std::string_view text) {
  if (isASCII(text)) return lowered(text);
  icu::UnicodeString folded = inUsualWidth(unicodeOf(text));
  folded.foldCase();
  std::string result;
  return normalized(folded, icu::Normalizer2::getNFCInstance).toUTF8String(result);
}

using WipedUnits = std::vector<UChar, QNWipingAllocator<UChar>>;

// Buffers are large enough from the start: what ICU would allocate for itself isn't wiped.
// Fails for text that isn't UTF-8.
WipedUnits secretUnitsOf(std::string_view text, UErrorCode& status) {
  WipedUnits units(text.size());
  int32_t length = 0;
  u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                static_cast<int32_t>(text.size()), &status);
  units.resize(static_cast<std::size_t>(length));
  return units;
}

WipedUnits decomposed(const WipedUnits& units, UErrorCode& status) {
  constexpr std::size_t longestDecomposition = 18;  // of U+FDFA
  WipedUnits result(units.size() * longestDecomposition);
  const int32_t length = unorm2_normalize(unorm2_getNFKDInstance(&status), units.data(),
                                          static_cast<int32_t>(units.size()), result.data(),
                                          static_cast<int32_t>(result.size()), &status);
  result.resize(static_cast<std::size_t>(std::max(length, 0)));
  return result;
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
  if (isASCII(text)) return lowered(text);
  icu::UnicodeString letters =
      withoutMarks(normalized(unicodeOf(text), icu::Normalizer2::getNFDInstance));
  return withPlainLetters(letters.foldCase());
}

bool containsIgnoringCaseAndWidth(std::string_view text, std::string_view part) {
  return withoutCaseAndWidth(text).find(withoutCaseAndWidth(part)) != std::string::npos;
}

std::optional<QNSecret> normalizedNFKD(std::string_view text) {
  if (isASCII(text)) return QNSecret(text);
  UErrorCode status = U_ZERO_ERROR;
  const WipedUnits units = decomposed(secretUnitsOf(text, status), status);
  Bytes bytes(units.size() * 3);
  int32_t size = 0;
  u_strToUTF8(reinterpret_cast<char*>(bytes.data()), static_cast<int32_t>(bytes.size()), &size,
              units.data(), static_cast<int32_t>(units.size()), &status);
  if (U_FAILURE(status)) return std::nullopt;
  return QNSecret(textOf(bytes).substr(0, static_cast<std::size_t>(size)));
}

}  // namespace quillon
