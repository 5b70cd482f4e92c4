#include "quillon/items/QNSearchPredicate.h"

#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

bool holds(std::string_view text, std::string_view searched) {
  return QNSearchPredicate(searched).matches(text);
}

bool beginsWith(std::string_view text, std::string_view searched) {
  return QNSearchPredicate(searched, QNSearchPredicate::Place::beginning).matches(text);
}

TEST(QNSearchPredicate, OverlooksCaseAndDiacriticsOnBothSides) {
  EXPECT_TRUE(holds("Café", "cafe"));
  EXPECT_TRUE(holds("cafe", "Café"));
  EXPECT_TRUE(holds("GRÜNE STRASSE", "straße"));
  EXPECT_TRUE(holds("Øresund", "ore"));
  EXPECT_TRUE(holds("ΟΔΟΣ", "οδος"));
  EXPECT_FALSE(holds("Café", "cafes"));
  EXPECT_FALSE(holds("", "a"));
}

TEST(QNSearchPredicate, EveryTextHoldsTheEmptyOne) {
  EXPECT_TRUE(holds("a", ""));
  EXPECT_TRUE(holds("", ""));
  EXPECT_TRUE(beginsWith("", ""));
}

TEST(QNSearchPredicate, LooksAtTheBeginningAlone) {
  EXPECT_TRUE(beginsWith("Bánk of Example", "ban"));
  EXPECT_FALSE(beginsWith("My Bank", "ban"));
}

TEST(QNSearchPredicate, KnowsWhatItWasGiven) {
  EXPECT_EQ(QNSearchPredicate("Café").searched(), "Café");
}

// Against the library's own search, over texts of few letters: near misses at every place.
TEST(QNSearchPredicate, FindsATextWhereverItStands) {
  std::uint32_t state = 1;
  const auto randomText = [&state](std::size_t longest) {
    state = state * 1664525 + 1013904223;
    std::string text((state >> 8) % (longest + 1), ' ');
    for (char& c : text) {
      state = state * 1664525 + 1013904223;
      c = "ab\0"[(state >> 16) % 3];
    }
    return text;
  };
  std::size_t found = 0;
  for (int round = 0; round < 200'000; ++round) {
    const std::string text = randomText(40);
    const std::string part = randomText(6);
    const bool expected = text.find(part) != std::string::npos;
    ASSERT_EQ(QNSearchPredicate(part).matchesFolded(text), expected) << text << "|" << part;
    found += expected;
  }
  EXPECT_GT(found, 20'000u);
  EXPECT_LT(found, 180'000u);
}

TEST(QNSearchPredicate, OfAnObjectLooksAtValuesAtAnyDepth) {
  const Json object = jsonValue(R"({"name":[[{"deep":["Zürich"]}],42,2.5,true,null]})");

  EXPECT_TRUE(objectMatchesLowercaseString(&object, "zurich"));
  EXPECT_TRUE(objectMatchesLowercaseString(&object, "42"));
  EXPECT_TRUE(objectMatchesLowercaseString(&object, "2.5"));
  EXPECT_FALSE(objectMatchesLowercaseString(&object, "name"));
  EXPECT_FALSE(objectMatchesLowercaseString(&object, "deep"));
  EXPECT_FALSE(objectMatchesLowercaseString(&object, "null"));
}

TEST(QNSearchPredicate, OfANumberLooksAtItsDigits) {
  const Json number(42);

  EXPECT_TRUE(objectMatchesLowercaseString(&number, "42"));
  EXPECT_TRUE(objectMatchesLowercaseString(&number, "4"));
  EXPECT_FALSE(objectMatchesLowercaseString(&number, "43"));
}

TEST(QNSearchPredicate, OfNothingIsFalse) {
  const Json null;

  EXPECT_FALSE(objectMatchesLowercaseString(nullptr, ""));
  EXPECT_FALSE(objectMatchesLowercaseString(&null, ""));
}

TEST(QNSearchPredicate, LeavesNoCopyOfWhatIsSearchedOrLookedAt) {
  const std::string secret = "ein geheimer Satz über Öl und Äpfel, länger als jeder Wert";
  const std::string folded = "ein geheimer satz uber ol und apfel";
  const QNFreedBlockWatch plain(secret);
  const QNFreedBlockWatch plainFolded(folded);

  EXPECT_TRUE(QNSearchPredicate(secret).matches(secret));

  EXPECT_EQ(plain.found(), 0u);
  EXPECT_EQ(plainFolded.found(), 0u);
}

}  // namespace
}  // namespace quillon
