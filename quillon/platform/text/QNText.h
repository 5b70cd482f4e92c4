#pragma once
// What a language decides about text, through ICU. UTF-8 in and out; bytes that aren't UTF-8
// read as U+FFFD, and only what cuts a text leaves them as they are. Lengths are in UTF-16
// code units, as stored data counts them.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

bool isUTF8(std::string_view text) noexcept;

/// Number of UTF-16 code units.
std::size_t textLength(std::string_view text);
/// The first `length` code units at most; never half a surrogate pair.
std::string textCutToLength(std::string_view text, std::size_t length);
/// How many bytes such a cut keeps: for text that mustn't be copied.
std::size_t bytesOfCutToLength(std::string_view text, std::size_t length);
/// White space and new lines at the end cut off, or at both ends.
std::string trimmedRight(std::string_view text);
std::string trimmed(std::string_view text);
/// What a list shows below a title: the first line of the first 80 characters.
std::string subtitleOfText(std::string_view text);
/// A text whose parts must keep their order from left to right, such as a number in blocks: in a
/// language that is written from right to left it is put between isolating marks (UAX 9, LRI and
/// PDI); in any other it is given back as it is.
std::string mr_NonRTLString(std::string_view text);
/// The same parts of the text itself: for a secret, which mustn't be copied.
std::string_view trimmedRightView(std::string_view text);
std::string_view trimmedView(std::string_view text);
/// Is it nothing but white space and new lines, or empty?
bool isBlankText(std::string_view text);
/// What stands between the separators, and before and behind them: one part more than there are
/// separators, empty ones too. An empty separator stands nowhere. Views into the text.
std::vector<std::string_view> componentsSeparatedByString(std::string_view text,
                                                          std::string_view separator);

/// Case mapping for the user's locale.
std::string lowercaseText(std::string_view text);
std::string uppercaseText(std::string_view text);
/// The same small letters in every language: for what programs read.
std::string lowercaseIdentifier(std::string_view text);
/// The first extended grapheme cluster (UAX 29); empty for an empty text.
std::string firstComposedCharacter(std::string_view text);
/// Is every character a letter, or a mark that belongs to one? False for an empty text.
bool isLettersOnly(std::string_view text);
/// Is the first UTF-16 code unit a decimal digit, a punctuation mark or a symbol? A symbol beyond
/// U+FFFF is two units, and none of them. False for an empty text.
bool beginsWithDigitOrSymbol(std::string_view text);

/// The characters of `text` that stand in `set`, in order.
QNSecret charactersOfTextInSet(std::string_view text, std::string_view set);

// Dates: QNText+Dates.cpp
/// The day of that moment (seconds since 1970) in the user's locale and time zone: "Jul 4, 2024".
/// Years beyond some millions are shown as the last that the calendar has.
QNSecret qn_formatDate(std::int64_t seconds);
/// Day and time of that moment: "Jul 4, 2024, 3:04:05 PM". Nothing if the locale has no such form.
std::optional<std::string> qn_formatDateAndTime(std::int64_t seconds);
/// The same day as "2024-07-04", in every language.
QNSecret qn_formatISODate(std::int64_t seconds);
/// The moment as a log or a diagnosis shows it, the same in every language and time zone:
/// "2024-07-04 12:30:05 +0000".
std::string qn_describedDate(std::uint64_t seconds);
/// A moment of a day that a person typed, "2024-07-04" or in the user's language: 11:00 UTC, one
/// day from UTC-11 to UTC+12:59; for users beyond, the nearest hour that is that day there. Nothing
/// for a day that isn't there, and for a year of less than four digits.
std::optional<std::int64_t> qn_parseDate(std::string_view text);
/// The first and the last day of a month, each by its first moment in the user's time zone; seconds
/// since 1970. The year is one of the Gregorian calendar, as cards and passports print it in every
/// country; months beyond 12 go on into the next year.
struct QNMonthDays {
  std::int64_t first = 0;
  std::int64_t last = 0;
};
std::optional<QNMonthDays> qn_daysOfMonth(std::int32_t month, std::int32_t ofYear);
/// A day of this year as the locale writes it in numbers, for telling what can be typed.
std::string qn_exampleOfDate();

// Numbers: QNText+Numbers.cpp
/// The number as the user's locale writes it, in groups: "1,234" in English.
std::string qn_formatNumber(std::uint64_t number);

// Card numbers: QNText+CardNumbers.cpp
/// A card's number, given in digits alone, in blocks as cards show it: "4111 1111 1111 1111".
QNSecret mr_asFormattedCreditCardNumber(std::string_view digits);

// Folding: QNText+Folding.cpp
/// Folded for search: NFD, diacritics dropped, case folded, and a small table for letters that
/// carry their stroke inside (ø, ł, đ, ħ and their like). Folding twice changes nothing.
std::string foldedForSearch(std::string_view text);
/// The same of a text that must not outlive its use.
QNSecret secretFoldedForSearch(std::string_view text);
/// What a comparison of two texts leaves aside.
enum class QNFolding { none, letterCase, marks, caseAndMarks };
/// The text without that: texts which differ in nothing else become the same bytes, whether their
/// letters were composed or not. With `none` it is the text as it is, with `caseAndMarks` the one
/// folded for search. Folding twice changes nothing.
QNSecret foldedText(std::string_view text, QNFolding folding);
/// Does `text` contain `part`, case and full or half width of letters apart? Each text contains
/// the empty one.
bool containsIgnoringCaseAndWidth(std::string_view text, std::string_view part);
/// Normalization form KD (UAX 15): what a key is derived from a password by. Nothing for text that
/// isn't UTF-8, or should ICU fail: any other text in its place would make another key.
std::optional<QNSecret> normalizedNFKD(std::string_view text);

// Comparing: QNText+Comparing.cpp
/// Order of two texts for a person, by the user's locale; case apart in the second. Below 0,
/// 0, or above 0.
int localizedCompare(std::string_view a, std::string_view b);
int localizedCaseInsensitiveCompare(std::string_view a, std::string_view b);
/// Bytes whose order is that of localizedCompare(): for sorting many texts, each looked at once.
/// They hold for one locale and one version of ICU only.
std::string collationKey(std::string_view text);
/// The same for localizedCaseInsensitiveCompare().
std::string caseInsensitiveCollationKey(std::string_view text);

}  // namespace quillon
