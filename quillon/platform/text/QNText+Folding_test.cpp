#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/text/QNSecretText.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

std::string utf8Of(char32_t c) {
  std::string text;
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0x800) {
    text += static_cast<char>(0xC0 | c >> 6);
  } else {
    if (c < 0x10000) {
      text += static_cast<char>(0xE0 | c >> 12);
    } else {
      text += static_cast<char>(0xF0 | c >> 18);
      text += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    }
    text += static_cast<char>(0x80 | (c >> 6 & 0x3F));
  }
  return text + static_cast<char>(0x80 | (c & 0x3F));
}

TEST(QNTextFolding, FoldsCaseAndDropsMarks) {
  EXPECT_EQ(foldedForSearch(""), "");
  EXPECT_EQ(foldedForSearch("Example Bank 24"), "example bank 24");
  EXPECT_EQ(foldedForSearch("Zürich"), "zurich");
  EXPECT_EQ(foldedForSearch("Zu\u0308rich"), "zurich");
  EXPECT_EQ(foldedForSearch("CRÈME BRÛLÉE"), "creme brulee");
  EXPECT_EQ(foldedForSearch("Tiếng Việt"), "tieng viet");
  EXPECT_EQ(foldedForSearch("ΌΔΟΣ"), foldedForSearch("όδος"));
  EXPECT_EQ(foldedForSearch("ガス"), foldedForSearch("カス"));
}

TEST(QNTextFolding, FoldsLettersThatCarryTheirStrokeInside) {
  EXPECT_EQ(foldedForSearch("Øre øre Ǿ"), "ore ore o");
  EXPECT_EQ(foldedForSearch("Łódź"), "lodz");
  EXPECT_EQ(foldedForSearch("Đặng đ"), "dang d");
  EXPECT_EQ(foldedForSearch("Ħal ħ"), "hal h");
  EXPECT_EQ(foldedForSearch("Ŧ ŧ"), "t t");
  EXPECT_EQ(foldedForSearch("Straße STRASSE ẞ"), "strasse strasse ss");
  EXPECT_EQ(foldedForSearch("Æsir æ Ǽ"), "aesir ae ae");
  EXPECT_EQ(foldedForSearch("Œuvre œ"), "oeuvre oe");
  EXPECT_EQ(foldedForSearch("Ðð Þþ"), "dd thth");
}

TEST(QNTextFolding, MarksThatAreVowelsAreKept) {
  for (const char* const word : {"กิน", "กู", "ກຸ", "कुल", "రీ", "ཀི"}) {
    EXPECT_EQ(foldedForSearch(word), word);
  }
}

TEST(QNTextFolding, ToneMarksPointsAndWhatIsNotSeenAreDropped) {
  EXPECT_EQ(foldedForSearch("ก่า"), "กา");
  EXPECT_EQ(foldedForSearch("שָׁלוֹם"), "שלום");
  EXPECT_EQ(foldedForSearch("كِتَاب"), "كتاب");
  EXPECT_EQ(foldedForSearch("क़लम"), "कलम");
  EXPECT_EQ(foldedForSearch("☎\uFE0F"), "☎");
}

TEST(QNTextFolding, ASecretIsFoldedLikeAnyText) {
  for (const char* const text : {"", "Plain 1", "CRÈME ﬁ Łódź", "\u0301", "A\xFFZ", "銀行"}) {
    EXPECT_EQ(secretFoldedForSearch(text).reveal(), foldedForSearch(text));
  }
}

TEST(QNTextFolding, ASecretInSmallLettersIsWhatTheTextIs) {
  for (const char* const tag : {"en-US", "tr-TR"}) {
    const QNScopedLocale locale(tag);
    for (const char* const text : {"", "ABC xyz", "ÄRGER Izgara İ", "ΟΔΟΣ", "A\xFFZ", "𐐀"}) {
      EXPECT_EQ(secretLowercaseIdentifier(text).reveal(), lowercaseIdentifier(text)) << text;
    }
  }
}

TEST(QNTextFolding, TheLocaleDoesNotTouchWhatIsSearched) {
  for (const char* const tag : {"en-US", "tr-TR", "lt-LT"}) {
    const QNScopedLocale locale(tag);

    EXPECT_EQ(foldedForSearch("IİıI"), "iiii") << tag;
  }
}

TEST(QNTextFolding, BadBytesFoldToReplacementCharacters) {
  EXPECT_EQ(foldedForSearch("A\xFFZ"), "a\uFFFDz");
}

TEST(QNTextFolding, FoldingTwiceChangesNothingForAnyCodePoint) {
  for (char32_t c = 1; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    const std::string folded = foldedForSearch(utf8Of(c));
    ASSERT_EQ(foldedForSearch(folded), folded) << static_cast<std::uint32_t>(c);
  }
}

TEST(QNTextFolding, FoldingAnyBytesTwiceIsFoldingThemOnce) {
  EXPECT_TRUE(rc::check([](const std::string& text) {
    const std::string folded = foldedForSearch(text);
    RC_ASSERT(isUTF8(folded));
    RC_ASSERT(foldedForSearch(folded) == folded);
  }));
}

TEST(QNTextFolding, ContainsWithoutRegardToCase) {
  EXPECT_TRUE(containsIgnoringCaseAndWidth("My VAULT", " vault"));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("vault of mine", "Vault "));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("BÓVEDA Casa", "bóveda "));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("Großer Tresor", "GROSSER"));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("anything", ""));
  EXPECT_FALSE(containsIgnoringCaseAndWidth("Vaults", "vault "));
  EXPECT_FALSE(containsIgnoringCaseAndWidth("", "vault"));
}

TEST(QNTextFolding, ContainsWithoutRegardToWidth) {
  EXPECT_TRUE(containsIgnoringCaseAndWidth("Ｍｙ Ｖａｕｌｔ", "my vault"));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("仕事\u3000保管庫", " 保管庫"));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("ﾃﾞｰﾀ", "データ"));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("データ", "ﾃﾞｰﾀ"));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("￥500", "¥500"));
}

TEST(QNTextFolding, ContainsMindsMarksButNotHowTheyAreWritten) {
  EXPECT_FALSE(containsIgnoringCaseAndWidth("boveda", "bóveda"));
  EXPECT_FALSE(containsIgnoringCaseAndWidth("bóveda", "bo"));
  EXPECT_TRUE(containsIgnoringCaseAndWidth("bo\u0301veda", "bóveda"));
}

TEST(QNTextFolding, NormalizesPasswordsByCompatibilityDecomposition) {
  EXPECT_EQ(normalizedNFKD("")->reveal(), "");
  EXPECT_EQ(normalizedNFKD("plain Password 1")->reveal(), "plain Password 1");
  EXPECT_EQ(normalizedNFKD("Å")->reveal(), "A\u030A");
  EXPECT_EQ(normalizedNFKD("Å")->reveal(), "A\u030A");
  EXPECT_EQ(normalizedNFKD("ﬁne ①")->reveal(), "fine 1");
  EXPECT_EQ(normalizedNFKD("e\u0323\u0301")->reveal(), normalizedNFKD("e\u0301\u0323")->reveal());
  EXPECT_EQ(normalizedNFKD("한")->reveal(), "\u1112\u1161\u11AB");
}

TEST(QNTextFolding, APasswordThatIsNotUTF8HasNoNormalizedForm) {
  for (const std::string_view password :
       {"p\xFF", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\u00C5\xFF"}) {
    EXPECT_FALSE(normalizedNFKD(password).has_value());
  }
}

TEST(QNTextFolding, ThePasswordWithTheLongestDecompositionIsNormalizedWhole) {
  std::string password;
  for (int i = 0; i < 100; ++i) password += "\uFDFA";

  const auto normalized = normalizedNFKD(password);

  ASSERT_TRUE(normalized.has_value());
  EXPECT_EQ(textLength(normalized->reveal()), 1800u);
}

TEST(QNTextFolding, NormalizingLeavesNoCopyOfAPasswordBehind) {
  const std::string password = "crème brûlée mit Schlagobers zum Nachtisch";
  const std::string needle = " mit Schlagobers zum Nachtisch";
  std::string units;
  for (const char c : needle) (units += c) += '\0';
  const QNFreedBlockWatch clear(needle);
  const QNFreedBlockWatch wide(units);
  std::size_t size = 0;
  const auto work = [&] { size = normalizedNFKD(password)->size(); };

  const std::size_t onStack = remainsOnStack(needle, work) + remainsOnStack(units, work);

  EXPECT_GT(size, password.size());
  EXPECT_EQ(onStack, 0u);
  EXPECT_EQ(clear.found(), 0u);
  EXPECT_EQ(wide.found(), 0u);
}

}  // namespace
}  // namespace quillon
