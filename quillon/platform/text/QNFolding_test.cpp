#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <array>
#include <string>

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

std::string folded(std::string_view text, QNFolding folding) {
  return std::string(foldedText(text, folding).reveal());
}

// A letter of each sort that folding treats in a way of its own, and bytes that are no text.
const std::array<std::string, 20> kPieces = {
    "a", "Z", "ä", "A\u0308", "Ø", "ı", "İ", "ß", "ẞ", "Æ", "ŉ",
    "ǰ", "\u0345", "Ω", "ガ", "한", "\U0001D160", "\U0001F600", "\xFF", "\xC3"};

std::string randomText() {
  std::string text;
  for (const auto i : *rc::gen::container<std::vector<std::size_t>>(
           rc::gen::inRange<std::size_t>(0, kPieces.size()))) {
    text += kPieces[i];
  }
  return text;
}

TEST(QNFolding, LeavesCaseAside) {
  EXPECT_EQ(folded("Example BANK 24", QNFolding::letterCase), "example bank 24");
  EXPECT_EQ(folded("ÄRGER", QNFolding::letterCase), folded("ärger", QNFolding::letterCase));
  EXPECT_EQ(folded("Straße", QNFolding::letterCase), folded("STRASSE", QNFolding::letterCase));
  EXPECT_NE(folded("ärger", QNFolding::letterCase), folded("arger", QNFolding::letterCase));
}

TEST(QNFolding, LeavesMarksAside) {
  EXPECT_EQ(folded("Crème Brûlée", QNFolding::marks), "Creme Brulee");
  EXPECT_EQ(folded("Łódź Øre Æsir Þór", QNFolding::marks), "Lodz Ore AEsir THor");
  EXPECT_NE(folded("CRÈME", QNFolding::marks), folded("creme", QNFolding::marks));
  EXPECT_EQ(folded("Plain Text", QNFolding::marks), "Plain Text");
}

TEST(QNFolding, LeavesBothAside) {
  EXPECT_EQ(folded("CRÈME Øre", QNFolding::caseAndMarks), "creme ore");
}

TEST(QNFolding, LeavesNothingAsideWhereNothingIsAsked) {
  EXPECT_EQ(folded("Ä\xFF", QNFolding::none), "Ä\xFF");
}

TEST(QNFolding, TakesComposedLettersForWhatTheyAreComposedOf) {
  for (const QNFolding folding :
       {QNFolding::letterCase, QNFolding::marks, QNFolding::caseAndMarks}) {
    EXPECT_EQ(folded("Zürich", folding), folded("Zu\u0308rich", folding));
  }
}

TEST(QNFolding, FoldsBothAsTheSearchDoes) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = randomText();

    RC_ASSERT(folded(text, QNFolding::caseAndMarks) == foldedForSearch(text));
  }));
}

TEST(QNFolding, ChangesNothingTheSecondTime) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = randomText();
    for (const QNFolding folding :
         {QNFolding::none, QNFolding::letterCase, QNFolding::marks, QNFolding::caseAndMarks}) {
      const std::string once = folded(text, folding);

      RC_ASSERT(folded(once, folding) == once);
    }
  }));
}

}  // namespace
}  // namespace quillon
