// What foldedForSearch() finds beside what ICU's own search does, which asks a collator for the
// letters alone (primary strength). The two agree but for what the table at the end lists.

#include <gtest/gtest.h>
#include <unicode/coll.h>
#include <unicode/stsearch.h>
#include <unicode/tblcoll.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

bool foldedFinds(std::string_view text, std::string_view part) {
  return foldedForSearch(text).find(foldedForSearch(part)) != std::string::npos;
}

icu::RuleBasedCollator& lettersAlone() {
  static const std::unique_ptr<icu::Collator> collator = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> made(
        icu::Collator::createInstance(icu::Locale::getRoot(), status));
    made->setStrength(icu::Collator::PRIMARY);
    return made;
  }();
  return dynamic_cast<icu::RuleBasedCollator&>(*collator);
}

bool collatorFinds(std::string_view text, std::string_view part) {
  UErrorCode status = U_ZERO_ERROR;
  const auto wide = [](std::string_view utf8) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(utf8.data(), static_cast<int32_t>(utf8.size())));
  };
  icu::StringSearch search(wide(part), wide(text), &lettersAlone(), nullptr, status);
  const bool found = search.first(status) != USEARCH_DONE;
  EXPECT_TRUE(U_SUCCESS(status));
  return found;
}

/// Letters of a script, each plain, then as it may be written too: in capitals, with marks.
struct Script {
  const char* name;
  std::vector<std::vector<std::string>> letters;
};

const std::array<Script, 12>& scripts() {
  static const std::array<Script, 12> all = {{
      {"Latin",
       {{"i", "I", "í", "Î", "ị̈"},
        {"u", "U", "û", "ư"},
        {"o", "O", "ø", "ơ"},
        {"ss", "SS", "ß"},
        {"ae", "Æ", "æ"},
        {"d", "đ", "Ð"},
        {"h", "ħ"},
        {"l", "L", "ł"},
        {"n", "N", "n\u0303"},
        {"c", "C", "ç"},
        {"1"},
        {" "},
        {"."}}},
      {"Greek",
       {{"α", "Α", "ά", "ᾳ\u0314"},
        {"ι", "Ι", "ϊ", "ΐ"},
        {"σ", "Σ", "ς"},
        {"ω", "Ω", "ώ"},
        {"κ"},
        {"τ", "Τ"},
        {" "}}},
      {"Cyrillic",
       {{"а", "А"},
        {"е", "Е", "ё", "Ё"},
        {"и", "И", "ѝ"},
        {"к", "К"},
        {"о", "О"},
        {"ж", "Ж"},
        {"я", "Я"},
        {" "}}},
      {"Hebrew", {{"א", "אָ"}, {"ב", "בּ"}, {"ש", "שׁ", "שׂ"}, {"ל"}, {"ו", "וֹ"}, {"ם"}, {" "}}},
      {"Arabic", {{"ب", "بَ", "بّ"}, {"ك", "كُ"}, {"ت", "تِ"}, {"ر"}, {"س", "سْ"}, {"ن", "نً"}, {" "}}},
      {"Devanagari", {{"क"}, {"का"}, {"कि"}, {"कु"}, {"म", "म\u0951"}, {"ल"}, {"न"}, {"आ"}, {" "}}},
      {"Thai", {{"ก", "ก่", "ก้"}, {"กา"}, {"กิ"}, {"กู"}, {"น", "น้"}, {"ม"}, {"ร"}, {" "}}},
      {"Hangul", {{"가"}, {"나"}, {"도"}, {"무"}, {"비"}, {"서"}, {" "}}},
      {"Kana",
       {{"か", "が"},
        {"は", "ば", "ぱ"},
        {"し", "じ"},
        {"ア"},
        {"ト", "ド"},
        {"フ", "ブ", "プ"},
        {"ん"},
        {" "}}},
      {"Han", {{"銀"}, {"行"}, {"仕"}, {"事"}, {"密"}, {"码"}, {"电"}, {" "}}},
      {"Armenian", {{"ա", "Ա"}, {"բ", "Բ"}, {"գ", "Գ"}, {"ե", "Ե"}, {"ր", "Ր"}, {"ն", "Ն"}, {" "}}},
      {"Georgian",
       {{"ა", "Ა"}, {"ბ", "Ბ"}, {"გ", "Გ"}, {"ე", "Ე"}, {"ნ", "Ნ"}, {"ს", "Ს"}, {" "}}},
  }};
  return all;
}

class RandomTexts {
 public:
  std::size_t below(std::size_t limit) {
    _state = _state * 6364136223846793005u + 1442695040888963407u;
    return (_state >> 33) % limit;
  }
  /// The places of letters in a script.
  std::vector<std::size_t> letters(const Script& script, std::size_t count) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < count; ++i) places.push_back(below(script.letters.size()));
    return places;
  }
  /// Each letter in one of the ways to write it.
  std::string written(const Script& script, const std::vector<std::size_t>& letters) {
    std::string text;
    for (const std::size_t letter : letters) {
      const auto& ways = script.letters[letter];
      text += ways[below(ways.size())];
    }
    return text;
  }

 private:
  std::uint64_t _state = 20241122;
};

TEST(QNTextFoldingBesideACollator, FindsTheSameInRandomTextsOfTwelveScripts) {
  RandomTexts random;
  std::size_t found = 0;
  for (int pair = 0; pair < 10'000; ++pair) {
    const Script& script = scripts()[static_cast<std::size_t>(pair) % scripts().size()];
    const auto letters = random.letters(script, 4 + random.below(12));
    const std::size_t start = random.below(letters.size());
    const std::size_t count = 1 + random.below(std::min<std::size_t>(4, letters.size() - start));
    const bool isPart = random.below(2) == 0;
    const auto searched =
        isPart ? std::vector<std::size_t>(letters.begin() + std::ptrdiff_t(start),
                                          letters.begin() + std::ptrdiff_t(start + count))
               : random.letters(script, count);
    const std::string text = random.written(script, letters);
    const std::string part = random.written(script, searched);

    const bool folded = foldedFinds(text, part);

    EXPECT_EQ(folded, collatorFinds(text, part))
        << script.name << ": \"" << part << "\" in \"" << text << "\"";
    found += folded;
  }
  EXPECT_GT(found, 5'000u);
  EXPECT_LT(found, 9'000u);
}

// Each is meant; docs/architecture.md says why.
struct Difference {
  const char* what;
  const char* text;
  const char* part;
  bool folded;  // the collator says the contrary
};
constexpr Difference kDifferences[] = {
    {"half of a ligature or of a double letter", "æ", "a", true},
    {"half of a ligature or of a double letter", "œuvre", "o", true},
    {"half of a ligature or of a double letter", "Straße", "se", true},
    {"half of a ligature or of a double letter", "ﬁne", "f", true},
    {"letters that are found by a look-alike", "ısı", "i", true},
    {"letters that are found by a look-alike", "Ŧ", "t", true},
    {"letters that are found by a look-alike", "Þór", "thor", true},
    {"a letter that is written with an accent", "й", "и", true},
    {"a letter that is written with an accent", "أحمد", "احمد", true},
    {"the beginning of a syllable", "한국", "하", true},
    {"letters that are joined", "क्ष", "कष", true},
    {"a vowel that stands before its letter", "เก", "ก", true},
    {"a mark alone, which every text holds", "a", "\u0301", true},
    {"letters of the other syllabary, and small ones", "か", "カ", false},
    {"letters of the other syllabary, and small ones", "や", "ゃ", false},
    {"full and half width", "Ａ", "a", false},
    {"full and half width", "ｶ", "カ", false},
    {"the form at the end of a word", "ם", "מ", false},
    {"a hook that is part of the letter", "ґ", "г", false},
    {"signs that stand for others", "①", "1", false},
    {"signs that stand for others", "m²", "m2", false},
    {"signs that stand for others", "…", "...", false},
    {"digits of another script", "٣", "3", false},
    {"what isn't seen", "a\u00ADb", "ab", false},
};

TEST(QNTextFoldingBesideACollator, DiffersInThese) {
  for (const Difference& difference : kDifferences) {
    EXPECT_EQ(foldedFinds(difference.text, difference.part), difference.folded) << difference.what;
    EXPECT_EQ(collatorFinds(difference.text, difference.part), !difference.folded)
        << difference.what;
  }
}

}  // namespace
}  // namespace quillon
