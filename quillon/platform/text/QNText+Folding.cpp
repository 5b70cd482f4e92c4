#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <vector>

#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNSecretText.h"
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

// What bytes that aren't UTF-8 become: nothing at all, and the whole fails.
constexpr UChar32 kRefused = U_SENTINEL;
constexpr UChar32 kReplaced = 0xFFFD;

// Buffers are large enough from the start: what ICU would allocate for itself isn't wiped.
WipedUnits secretUnitsOf(std::string_view text, UChar32 badBytes, UErrorCode& status) {
  WipedUnits units(text.size());
  int32_t length = 0;
  u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                       static_cast<int32_t>(text.size()), badBytes, nullptr, &status);
  units.resize(static_cast<std::size_t>(std::max(length, 0)));
  return units;
}

// A normalization form, and the most units that it makes of one.
struct Form {
  const UNormalizer2* (*table)(UErrorCode* status);
  std::size_t longest;
};
constexpr Form kNFD{unorm2_getNFDInstance, 4};
constexpr Form kNFKD{unorm2_getNFKDInstance, 18};  // of U+FDFA

WipedUnits decomposed(const WipedUnits& units, const Form& form, UErrorCode& status) {
  WipedUnits result(units.size() * form.longest);
  const int32_t length =
      unorm2_normalize(form.table(&status), units.data(), static_cast<int32_t>(units.size()),
                       result.data(), static_cast<int32_t>(result.size()), &status);
  result.resize(static_cast<std::size_t>(std::max(length, 0)));
  return result;
}

WipedUnits withFoldedCase(const WipedUnits& units, UErrorCode& status) {
  constexpr std::size_t longestFolding = 3;  // of U+0390
  WipedUnits result(units.size() * longestFolding);
  const int32_t length =
      u_strFoldCase(result.data(), static_cast<int32_t>(result.size()), units.data(),
                    static_cast<int32_t>(units.size()), U_FOLD_CASE_DEFAULT, &status);
  result.resize(static_cast<std::size_t>(std::max(length, 0)));
  return result;
}

// By the rules of no language.
WipedUnits inSmallLetters(const WipedUnits& units, UErrorCode& status) {
  constexpr std::size_t longestSmallLetter = 3;
  WipedUnits result(units.size() * longestSmallLetter);
  const int32_t length =
      u_strToLower(result.data(), static_cast<int32_t>(result.size()), units.data(),
                   static_cast<int32_t>(units.size()), "", &status);
  result.resize(static_cast<std::size_t>(std::max(length, 0)));
  return result;
}

// The marks of no class, and of these, are vowels, as Thai, Tibetan and the scripts of India write
// them: without those a word is another one.
constexpr std::array<std::uint8_t, 7> kClassesOfVowels = {84, 91, 103, 118, 129, 130, 132};

// An accent, a tone mark, a point, or a mark that isn't seen at all.
bool isDiacritic(UChar32 c) noexcept {
  if (u_charType(c) != U_NON_SPACING_MARK) return false;
  const auto place = u_getCombiningClass(c);
  if (place == 0) return u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
  return std::find(kClassesOfVowels.begin(), kClassesOfVowels.end(), place) ==
         kClassesOfVowels.end();
}

void dropDiacritics(WipedUnits& units) {
  std::size_t kept = 0;
  for (std::size_t next = 0, start = 0; next < units.size(); start = next) {
    UChar32 c = 0;
    U16_NEXT(units.data(), next, units.size(), c);
    if (isDiacritic(c)) continue;
    while (start < next) units[kept++] = units[start++];
  }
  units.resize(kept);
}

QNSecret utf8Of(const WipedUnits& units, bool withPlainLetters) {
  constexpr std::size_t longestLetter = 3;  // bytes of one unit
  Bytes folded(units.size() * longestLetter);
  std::size_t size = 0;
  for (std::size_t next = 0; next < units.size();) {
    UChar32 c = 0;
    U16_NEXT(units.data(), next, units.size(), c);
    if (const char* plain = withPlainLetters ? plainLetterFor(c) : nullptr) {
      while (*plain != '\0') folded[size++] = static_cast<std::uint8_t>(*plain++);
    } else {
      U8_APPEND_UNSAFE(folded.data(), size, c);
    }
  }
  return QNSecret(textOf(folded).substr(0, size));
}

bool leavesAside(QNFolding folding, QNFolding part) {
  return folding == part || folding == QNFolding::caseAndMarks;
}

// Nothing should ICU be without its data.
std::optional<QNSecret> foldedLetters(std::string_view text, QNFolding folding) {
  const bool marks = leavesAside(folding, QNFolding::marks);
  UErrorCode status = U_ZERO_ERROR;
  WipedUnits units = decomposed(secretUnitsOf(text, kReplaced, status), kNFD, status);
  if (marks) dropDiacritics(units);
  if (leavesAside(folding, QNFolding::letterCase)) units = withFoldedCase(units, status);
  // A folded letter may be a composed one again.
  if (!marks) units = decomposed(units, kNFD, status);
  if (U_FAILURE(status)) return std::nullopt;
  return utf8Of(units, marks);
}

QNSecret secretLowered(std::string_view text) {
  std::vector<char, QNWipingAllocator<char>> letters(text.size());
  std::transform(text.begin(), text.end(), letters.begin(), lowercaseASCII);
  return QNSecret({letters.data(), letters.size()});
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
  if (isASCII(text)) return lowered(text);
  return std::string(secretFoldedForSearch(text).reveal());  // the caller's text isn't one
}

QNSecret secretFoldedForSearch(std::string_view text) {
  return foldedText(text, QNFolding::caseAndMarks);
}

QNSecret secretLowercaseIdentifier(std::string_view text) {
  if (isASCII(text)) return secretLowered(text);
  UErrorCode status = U_ZERO_ERROR;
  const WipedUnits lower = inSmallLetters(secretUnitsOf(text, kReplaced, status), status);
  return U_SUCCESS(status) ? utf8Of(lower, false) : QNSecret(text);
}

QNSecret foldedText(std::string_view text, QNFolding folding) {
  if (folding == QNFolding::none) return QNSecret(text);
  if (!isASCII(text)) {
    if (auto folded = foldedLetters(text, folding)) return std::move(*folded);
  }
  return leavesAside(folding, QNFolding::letterCase) ? secretLowered(text) : QNSecret(text);
}

bool containsIgnoringCaseAndWidth(std::string_view text, std::string_view part) {
  return withoutCaseAndWidth(text).find(withoutCaseAndWidth(part)) != std::string::npos;
}

std::optional<QNSecret> normalizedNFKD(std::string_view text) {
  if (isASCII(text)) return QNSecret(text);
  UErrorCode status = U_ZERO_ERROR;
  const WipedUnits units = decomposed(secretUnitsOf(text, kRefused, status), kNFKD, status);
  Bytes bytes(units.size() * 3);
  int32_t size = 0;
  u_strToUTF8(reinterpret_cast<char*>(bytes.data()), static_cast<int32_t>(bytes.size()), &size,
              units.data(), static_cast<int32_t>(units.size()), &status);
  if (U_FAILURE(status)) return std::nullopt;
  return QNSecret(textOf(bytes).substr(0, static_cast<std::size_t>(size)));
}

}  // namespace quillon
