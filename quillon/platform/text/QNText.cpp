#include "quillon/platform/text/QNText.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/internal/QNLocale.h"

namespace quillon {
namespace {

// Reads the code point at `offset` and moves behind it; below 0 for bytes that aren't UTF-8.
UChar32 nextCodePoint(std::string_view text, std::size_t& offset) noexcept {
  const ByteView bytes = bytesOf(text);
  UChar32 c = 0;
  U8_NEXT(bytes.data(), offset, bytes.size(), c);
  return c;
}

// Where the code point begins whose last byte stands just before `end`, which isn't 0.
std::size_t startOfCodePoint(std::string_view text, std::size_t end) noexcept {
  const std::size_t earliest = end > U8_MAX_LENGTH ? end - U8_MAX_LENGTH : 0;
  std::size_t start = end - 1;
  while (start > earliest && U8_IS_TRAIL(text[start])) --start;
  return start;
}

bool isBlank(UChar32 c) noexcept {
  return c >= 0 && u_isUWhiteSpace(c);
}

std::size_t startOfUnblank(std::string_view text) noexcept {
  std::size_t start = 0;
  for (std::size_t next = 0; next < text.size(); start = next) {
    if (!isBlank(nextCodePoint(text, next))) return start;
  }
  return start;
}

std::string_view withoutBlankEnd(std::string_view text) {
  std::size_t end = text.size();
  while (end > 0) {
    const std::size_t start = startOfCodePoint(text, end);
    std::size_t next = start;
    if (!isBlank(nextCodePoint(text, next)) || next != end) break;
    end = start;
  }
  return text.substr(0, end);
}

std::size_t unitsOf(UChar32 c) noexcept {
  return c > 0xFFFF ? 2 : 1;
}

// Turkish and Azeri map I and i to letters with and without a dot.
bool mapsASCIILikeEnglish(std::string_view locale) noexcept {
  const std::string_view language = locale.substr(0, locale.find_first_of("-_"));
  return language != "tr" && language != "az";
}

enum class Case { lower, upper };

std::string mappedByLocale(std::string_view text, const std::string& locale, Case to) {
  auto letters = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
  const icu::Locale rules = localeForTag(locale);
  if (to == Case::lower) {
    letters.toLower(rules);
  } else {
    letters.toUpper(rules);
  }
  std::string result;
  return letters.toUTF8String(result);
}

std::string mapped(std::string_view text, Case to, const std::string& locale = currentLocale()) {
  if (!isASCII(text) || !mapsASCIILikeEnglish(locale)) return mappedByLocale(text, locale, to);
  std::string result(text);
  const auto map = to == Case::lower ? lowercaseASCII : uppercaseASCII;
  std::transform(result.begin(), result.end(), result.begin(), map);
  return result;
}

// Clusters don't depend on the locale. Making an iterator costs far more than using it.
icu::BreakIterator* clusterIterator() {
  thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> made(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    return U_SUCCESS(status) ? std::move(made) : nullptr;
  }();
  return iterator.get();
}

std::size_t bytesOfFirstCluster(std::string_view text) {
  std::size_t end = 0;
  nextCodePoint(text, end);
  icu::BreakIterator* const iterator = clusterIterator();
  UErrorCode status = U_ZERO_ERROR;
  UText view = UTEXT_INITIALIZER;
  utext_openUTF8(&view, text.data(), static_cast<int64_t>(text.size()), &status);
  if (iterator != nullptr && U_SUCCESS(status)) {
    iterator->setText(&view, status);
    if (U_SUCCESS(status)) end = static_cast<std::size_t>(std::max(iterator->next(), 0));
  }
  utext_close(&view);
  return end;
}

}  // namespace

bool isUTF8(std::string_view text) noexcept {
  if (isASCII(text)) return true;
  for (std::size_t offset = 0; offset < text.size();) {
    if (nextCodePoint(text, offset) < 0) return false;
  }
  return true;
}

std::size_t textLength(std::string_view text) {
  if (isASCII(text)) return text.size();
  std::size_t length = 0;
  for (std::size_t offset = 0; offset < text.size();)
    length += unitsOf(nextCodePoint(text, offset));
  return length;
}

std::size_t bytesOfCutToLength(std::string_view text, std::size_t length) {
  if (text.size() <= length) return text.size();  // a byte is at most one code unit
  std::size_t end = 0;
  for (std::size_t next = 0; next < text.size(); end = next) {
    const std::size_t units = unitsOf(nextCodePoint(text, next));
    if (units > length) return end;
    length -= units;
  }
  return end;
}

std::string textCutToLength(std::string_view text, std::size_t length) {
  return std::string(text.substr(0, bytesOfCutToLength(text, length)));
}

// A character is kept or left out whole, never half of a surrogate pair.
QNSecret charactersOfTextInSet(std::string_view text, std::string_view set) {
  QNSecret kept;
  for (std::size_t start = 0, next = 0; start < text.size(); start = next) {
    if (nextCodePoint(text, next) < 0) continue;  // it would be found inside of characters
    const std::string_view character = text.substr(start, next - start);
    if (set.find(character) != std::string_view::npos) kept.append(character);
  }
  return kept;
}

std::string lowercaseText(std::string_view text) {
  return mapped(text, Case::lower);
}

std::string uppercaseText(std::string_view text) {
  return mapped(text, Case::upper);
}

std::string lowercaseIdentifier(std::string_view text) {
  return mapped(text, Case::lower, "und");
}

std::string firstComposedCharacter(std::string_view text) {
  const std::string_view start = text.substr(0, 2);
  const bool standsAlone = isASCII(start) && start != "\r\n";
  return std::string(text.substr(0, standsAlone ? 1 : bytesOfFirstCluster(text)));
}

bool isLettersOnly(std::string_view text) {
  if (text.empty()) return false;
  for (std::size_t offset = 0; offset < text.size();) {
    const bool first = offset == 0;
    const UChar32 c = nextCodePoint(text, offset);
    const uint32_t allowed = first ? U_GC_L_MASK : U_GC_L_MASK | U_GC_M_MASK;
    if (c < 0 || (U_GET_GC_MASK(c) & allowed) == 0) return false;
  }
  return true;
}

bool beginsWithDigitOrSymbol(std::string_view text) {
  if (text.empty()) return false;
  std::size_t next = 0;
  const UChar32 c = nextCodePoint(text, next);
  constexpr uint32_t kDigitOrSymbol = U_GC_ND_MASK | U_GC_P_MASK | U_GC_S_MASK;
  return c >= 0 && c <= 0xFFFF && (U_GET_GC_MASK(c) & kDigitOrSymbol) != 0;
}

std::string trimmedRight(std::string_view text) {
  return std::string(trimmedRightView(text));
}

std::string_view trimmedRightView(std::string_view text) {
  return withoutBlankEnd(text);
}

std::string trimmed(std::string_view text) {
  return std::string(trimmedView(text));
}

std::string_view trimmedView(std::string_view text) {
  return withoutBlankEnd(text.substr(startOfUnblank(text)));
}

std::string subtitleOfText(std::string_view text) {
  constexpr std::size_t kMostCharacters = 80;
  const std::string_view shown = text.substr(0, bytesOfCutToLength(text, kMostCharacters));
  return std::string(shown.substr(0, shown.find('\n')));
}

std::string mr_NonRTLString(std::string_view text) {
  constexpr std::string_view kIsolate = "\u2066";
  constexpr std::string_view kEnd = "\u2069";
  const icu::Locale locale = localeForTag(currentLocale());
  if (!locale.isRightToLeft()) return std::string(text);
  return std::string(kIsolate).append(text).append(kEnd);
}

bool isBlankText(std::string_view text) {
  return startOfUnblank(text) == text.size();
}

std::vector<std::string_view> componentsSeparatedByString(std::string_view text,
                                                          std::string_view separator) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  while (!separator.empty()) {
    const std::size_t end = text.find(separator, start);
    if (end == std::string_view::npos) break;
    parts.push_back(text.substr(start, end - start));
    start = end + separator.size();
  }
  parts.push_back(text.substr(start));
  return parts;
}

}  // namespace quillon
