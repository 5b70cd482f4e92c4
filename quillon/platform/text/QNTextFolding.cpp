#include "quillon/platform/text/QNTextFolding.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <vector>

#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/internal/QNPlainLetters.h"

namespace quillon {
namespace {

// ICU works in C here: what its strings of C++ allocate isn't wiped.
using WipedUnits = std::vector<UChar, QNWipingAllocator<UChar>>;

constexpr UChar32 kReplacement = 0xFFFD;
// Most UTF-16 units that one becomes: in NFD (UAX 15), and by folding its case.
constexpr std::size_t kLongestDecomposition = 4;
constexpr std::size_t kLongestFolding = 3;

bool folds(QNFolding folding, QNFolding part) {
  return (static_cast<std::uint32_t>(folding) & static_cast<std::uint32_t>(part)) != 0;
}

WipedUnits unitsOf(std::string_view text, UErrorCode& status) {
  WipedUnits units(text.size());
  int32_t length = 0;
  u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                       static_cast<int32_t>(text.size()), kReplacement, nullptr, &status);
  units.resize(static_cast<std::size_t>(std::max(length, 0)));
  return units;
}

WipedUnits decomposed(const WipedUnits& units, UErrorCode& status) {
  WipedUnits result(units.size() * kLongestDecomposition);
  const int32_t length = unorm2_normalize(unorm2_getNFDInstance(&status), units.data(),
                                          static_cast<int32_t>(units.size()), result.data(),
                                          static_cast<int32_t>(result.size()), &status);
  result.resize(static_cast<std::size_t>(std::max(length, 0)));
  return result;
}

WipedUnits withoutCase(const WipedUnits& units, UErrorCode& status) {
  WipedUnits result(units.size() * kLongestFolding);
  const int32_t length = u_strFoldCase(
      result.data(), static_cast<int32_t>(result.size()), units.data(),
      static_cast<int32_t>(units.size()), U_FOLD_CASE_DEFAULT, &status);
  result.resize(static_cast<std::size_t>(std::max(length, 0)));
  return result;
}

void dropMarks(WipedUnits& units) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < units.size();) {
    const std::size_t start = i;
    UChar32 c = 0;
    U16_NEXT(units.data(), i, units.size(), c);
    if (u_charType(c) == U_NON_SPACING_MARK) continue;
    for (std::size_t from = start; from < i; ++from) units[kept++] = units[from];
  }
  units.resize(kept);
}

QNSecret utf8Of(const WipedUnits& units, bool plainLetters) {
  Bytes bytes;
  bytes.reserve(units.size() * 3);
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c = 0;
    U16_NEXT(units.data(), i, units.size(), c);
    if (const char* plain = plainLetters ? plainLetterFor(c) : nullptr) {
      for (; *plain != '\0'; ++plain) bytes.push_back(static_cast<std::uint8_t>(*plain));
      continue;
    }
    std::uint8_t unit[U8_MAX_LENGTH];
    std::size_t size = 0;
    U8_APPEND_UNSAFE(unit, size, c);
    bytes.insert(bytes.end(), unit, unit + size);
  }
  return QNSecret(textOf(bytes));
}

QNSecret foldedASCII(std::string_view text, QNFolding folding) {
  if (!folds(folding, QNFolding::letterCase)) return QNSecret(text);
  Bytes lowered(text.size());
  std::transform(text.begin(), text.end(), lowered.begin(),
                 [](char c) { return static_cast<std::uint8_t>(lowercaseASCII(c)); });
  return QNSecret(textOf(lowered));
}

}  // namespace

QNSecret foldedText(std::string_view text, QNFolding folding) {
  if (folding == QNFolding::none) return QNSecret(text);
  if (isASCII(text)) return foldedASCII(text, folding);
  UErrorCode status = U_ZERO_ERROR;
  WipedUnits units = decomposed(unitsOf(text, status), status);
  if (folds(folding, QNFolding::marks)) dropMarks(units);
  // A folded letter may be a composed one again.
  if (folds(folding, QNFolding::letterCase)) {
    units = withoutCase(units, status);
    if (folding == QNFolding::letterCase) units = decomposed(units, status);
  }
  if (U_FAILURE(status)) return QNSecret(text);  // ICU without its data
  return utf8Of(units, folds(folding, QNFolding::marks));
}

}  // namespace quillon
