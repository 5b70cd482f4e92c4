#include "quillon/platform/text/QNText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using namespace std::string_literals;

TEST(QNText, TellsUTF8FromOtherBytes) {
  const std::vector<std::string> good{"", "plain", "héllo", "日本語", "😀", "\xEF\xBB\xBF", "\0"s};
  const std::vector<std::string> bad{
      "\xFF",              // no lead byte
      "\x80",              // trail byte alone
      "a\xC3",             // cut short
      "\xC0\xAF",          // overlong slash
      "\xE0\x80\xAF",      // overlong slash in three bytes
      "\xED\xA0\x80",      // half a surrogate pair
      "\xF4\x90\x80\x80",  // beyond U+10FFFF
      "Latin-1: h\xE9llo",
  };

  for (const auto& text : good) EXPECT_TRUE(isUTF8(text)) << text;
  for (const auto& text : bad) EXPECT_FALSE(isUTF8(text)) << text;
}

TEST(QNText, CountsLengthInUTF16Units) {
  EXPECT_EQ(textLength(""), 0u);
  EXPECT_EQ(textLength("plain"), 5u);
  EXPECT_EQ(textLength("é"), 1u);
  EXPECT_EQ(textLength("e\u0301"), 2u);
  EXPECT_EQ(textLength("日本語"), 3u);
  EXPECT_EQ(textLength("😀"), 2u);
  EXPECT_EQ(textLength("a\xFF\x62"), 3u);
}

TEST(QNText, CutsAtALengthAndNeverInsideASurrogatePair) {
  EXPECT_EQ(textCutToLength("plain", 9), "plain");
  EXPECT_EQ(textCutToLength("plain", 5), "plain");
  EXPECT_EQ(textCutToLength("plain", 3), "pla");
  EXPECT_EQ(textCutToLength("plain", 0), "");
  EXPECT_EQ(textCutToLength("äöü", 2), "äö");
  EXPECT_EQ(textCutToLength("a😀b", 2), "a");
  EXPECT_EQ(textCutToLength("a😀b", 3), "a😀");
  EXPECT_EQ(textCutToLength("日本語", 2), "日本");
}

TEST(QNText, ACutKeepsBytesThatAreNotUTF8) {
  EXPECT_EQ(textCutToLength("\xFF\xFE\x61", 2), "\xFF\xFE");
  EXPECT_EQ(bytesOfCutToLength("\xFF\xFE\x61", 2), 2u);
}

TEST(QNText, EveryCutOfATextIsItsBeginningOfThatLengthOrOneLess) {
  const std::string text = "Aé日😀\u0301z🇩🇪\xFF!";
  const std::size_t whole = textLength(text);

  for (std::size_t length = 0; length <= whole + 2; ++length) {
    const std::string cut = textCutToLength(text, length);
    const std::size_t wanted = std::min(length, whole);
    EXPECT_EQ(text.substr(0, cut.size()), cut);
    EXPECT_THAT(textLength(cut), testing::AnyOf(wanted, wanted - 1)) << length;
  }
}

TEST(QNText, MapsCaseForTheEnglishLocale) {
  const QNScopedLocale locale("en-US");

  EXPECT_EQ(lowercaseText("TITLE I"), "title i");
  EXPECT_EQ(uppercaseText("title i"), "TITLE I");
  EXPECT_EQ(uppercaseText("straße"), "STRASSE");
  EXPECT_EQ(lowercaseText("ΌΔΟΣ"), "όδος");
  EXPECT_EQ(uppercaseText("ǆ"), "Ǆ");
  EXPECT_EQ(uppercaseText(""), "");
}

TEST(QNText, MapsTheDotsOfTurkishAndAzeri) {
  for (const char* const tag : {"tr-TR", "tr", "az-AZ"}) {
    const QNScopedLocale locale(tag);

    EXPECT_EQ(uppercaseText("istanbul"), "İSTANBUL") << tag;
    EXPECT_EQ(lowercaseText("ILICA"), "ılıca") << tag;
    EXPECT_EQ(lowercaseText("İZMİR"), "izmir") << tag;
  }
}

TEST(QNText, MapsAnIdentifierAlikeInEveryLanguage) {
  for (const char* const tag : {"en-US", "tr-TR", "lt-LT"}) {
    const QNScopedLocale locale(tag);

    EXPECT_EQ(lowercaseIdentifier("/Users/ILICA/Ärger"), "/users/ilica/ärger") << tag;
    EXPECT_EQ(lowercaseIdentifier("ILICA"), "ilica") << tag;
  }
}

TEST(QNText, ALanguageThatOnlyBeginsLikeTurkishMapsLikeEnglish) {
  const QNScopedLocale locale("trv-TW");

  EXPECT_EQ(uppercaseText("i"), "I");
}

TEST(QNText, MapsCaseByTheRulesOfGreekAndLithuanian) {
  {
    const QNScopedLocale locale("el-GR");
    EXPECT_EQ(uppercaseText("Αθήνα"), "ΑΘΗΝΑ");
  }
  {
    const QNScopedLocale locale("lt-LT");
    EXPECT_EQ(lowercaseText("Ì"), "i\u0307\u0300");
  }
}

TEST(QNText, CaseMappingReadsBadBytesAsReplacementCharacters) {
  const QNScopedLocale locale("en-US");

  EXPECT_EQ(uppercaseText("a\xFFz"), "A\uFFFDZ");
}

TEST(QNText, TheFirstComposedCharacterIsAWholeCluster) {
  EXPECT_EQ(firstComposedCharacter(""), "");
  EXPECT_EQ(firstComposedCharacter("a"), "a");
  EXPECT_EQ(firstComposedCharacter("ab"), "a");
  EXPECT_EQ(firstComposedCharacter("éa"), "é");
  EXPECT_EQ(firstComposedCharacter("e\u0301a"), "e\u0301");
  EXPECT_EQ(firstComposedCharacter("\r\nx"), "\r\n");
  EXPECT_EQ(firstComposedCharacter("🇩🇪🇫🇷"), "🇩🇪");
  EXPECT_EQ(firstComposedCharacter("👩‍👩‍👧x"), "👩‍👩‍👧");
  EXPECT_EQ(firstComposedCharacter("👍🏽!"), "👍🏽");
  EXPECT_EQ(firstComposedCharacter("각도"), "각");
  EXPECT_EQ(firstComposedCharacter("1️⃣ first"), "1️⃣");
}

TEST(QNText, LettersAreLettersOfAnyScriptWithTheirMarks) {
  const std::vector<std::string> letters{"a",  "É", "e\u0301", "日", "ß",
                                         "SS", "И", "각",      "ʻ",  "हि"};
  const std::vector<std::string> others{"",  "1", "#",  " ",      "a1", "😀",
                                        "½", "_", "\n", "\u0301", "€",  "a\xFF"};

  for (const auto& text : letters) EXPECT_TRUE(isLettersOnly(text)) << text;
  for (const auto& text : others) EXPECT_FALSE(isLettersOnly(text)) << text;
}

TEST(QNText, TrimsWhiteSpaceOfEveryKindAtTheEndsOnly) {
  EXPECT_EQ(trimmedRight("  two words \t\r\n"), "  two words");
  EXPECT_EQ(trimmedRight("x\u00A0\u2028\u3000"), "x");
  EXPECT_EQ(trimmedRight("日本語"), "日本語");
  EXPECT_EQ(trimmedRight(" \n"), "");
  EXPECT_EQ(trimmedRight("x \xFF"), "x \xFF");
  EXPECT_EQ(trimmed(" \u3000two words\u0085 "), "two words");
  EXPECT_EQ(trimmed("\xFF x \xC3"), "\xFF x \xC3");
  EXPECT_EQ(trimmed(""), "");
  const std::string_view text = " \u3000two words\u0085 ";
  EXPECT_EQ(trimmedView(text), "two words");
  EXPECT_EQ(trimmedView(text).data(), text.data() + 4);
  EXPECT_EQ(trimmedView(" \n"), "");
  EXPECT_EQ(trimmedRightView(text), " \u3000two words");
  EXPECT_EQ(trimmedRightView(text).data(), text.data());
  EXPECT_EQ(trimmedRightView(" \n"), "");
}

TEST(QNText, ATextOfBlanksAloneIsBlank) {
  EXPECT_TRUE(isBlankText(""));
  EXPECT_TRUE(isBlankText(" \t\u00A0\u3000\n"));
  EXPECT_FALSE(isBlankText("  . "));
  EXPECT_FALSE(isBlankText("\xFF"));
}

TEST(QNText, ASubtitleIsTheFirstLineOfEightyCharacters) {
  const std::string eighty(80, 'a');

  EXPECT_EQ(subtitleOfText(eighty), eighty);
  EXPECT_EQ(subtitleOfText(eighty + "b"), eighty);
  EXPECT_EQ(subtitleOfText("ab\ncd"), "ab");
  EXPECT_EQ(subtitleOfText(eighty + "b\nc"), eighty);
  EXPECT_EQ(subtitleOfText("\nb"), "");
  EXPECT_EQ(subtitleOfText(""), "");
}

TEST(QNText, KeepsANumbersOrderInALanguageFromRightToLeft) {
  {
    const QNScopedLocale english("en-US");
    EXPECT_EQ(mr_NonRTLString("1234 **** 9012"), "1234 **** 9012");
  }
  const QNScopedLocale arabic("ar-EG");
  EXPECT_EQ(mr_NonRTLString("1234 **** 9012"), "\u20661234 **** 9012\u2069");
}

TEST(QNText, TellsWhatBeginsWithADigitPunctuationOrASymbol) {
  for (const auto* const text :
       {"1", "9 lives", "#", "(a)", "-", "\"a\"", "€", "+1", "٣", "。", "\u2019s", "^", "\u2603"}) {
    EXPECT_TRUE(beginsWithDigitOrSymbol(text)) << text;
  }
  for (const auto* const text : {"", "a1", "é", "日", " 1", "\n", "½", "Ⅷ", "\u0301", "\xFF"}) {
    EXPECT_FALSE(beginsWithDigitOrSymbol(text)) << text;
  }
}

TEST(QNText, TakesNoSymbolOfTwoCodeUnitsForOne) {
  EXPECT_FALSE(beginsWithDigitOrSymbol("😀"));
  EXPECT_FALSE(beginsWithDigitOrSymbol("𝟙"));
}

TEST(QNText, PartsBetweenSeparatorsAreOneMoreThanThese) {
  using Parts = std::vector<std::string_view>;

  EXPECT_EQ(componentsSeparatedByString("a/b/c", "/"), (Parts{"a", "b", "c"}));
  EXPECT_EQ(componentsSeparatedByString("/a//b/", "/"), (Parts{"", "a", "", "b", ""}));
  EXPECT_EQ(componentsSeparatedByString("a--b---c", "--"), (Parts{"a", "b", "-c"}));
  EXPECT_EQ(componentsSeparatedByString("a", "/"), Parts{"a"});
  EXPECT_EQ(componentsSeparatedByString("", "/"), Parts{""});
}

TEST(QNText, AnEmptySeparatorStandsNowhere) {
  EXPECT_EQ(componentsSeparatedByString("ab", ""), std::vector<std::string_view>{"ab"});
}

}  // namespace
}  // namespace quillon
