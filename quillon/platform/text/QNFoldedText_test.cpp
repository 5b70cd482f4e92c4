#include "quillon/platform/text/QNFoldedText.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/text/QNASCII.h"

namespace quillon {
namespace {

constexpr QNFolding kFoldings[] = {QNFolding::none, QNFolding::letterCase, QNFolding::marks,
                                   QNFolding::caseAndMarks};

TEST(QNFoldedText, IsWhatFoldingGivesForEverySizeAndCharacterOfASCII) {
  std::string text;
  for (int i = 0; i < 400; ++i) {
    for (const QNFolding folding : kFoldings) {
      EXPECT_EQ(QNFoldedText(text, folding).text(), foldedText(text, folding).reveal()) << i;
    }
    text += static_cast<char>(i % 128);
  }
}

TEST(QNFoldedText, IsWhatFoldingGivesForOtherLetters) {
  for (const char* const text : {"Zürich", "ŁÓDŹ", "ｆｕｌｌ", "Straße", "ΑΘΉΝΑ", "\xFF\xFE"}) {
    for (const QNFolding folding : kFoldings) {
      EXPECT_EQ(QNFoldedText(text, folding).text(), foldedText(text, folding).reveal()) << text;
    }
  }
}

TEST(QNFoldedText, LooksAtWhatFoldingKeepsWhereItLies) {
  const std::string text = "Zürich";
  const std::string plain(1000, 'A');

  EXPECT_EQ(QNFoldedText(text, QNFolding::none).text().data(), text.data());
  EXPECT_EQ(QNFoldedText(plain, QNFolding::marks).text().data(), plain.data());
}

TEST(QNFoldedText, TakesMemoryForLongTextsAndOtherLettersOnly) {
  using Way = QNFoldedText::Way;
  const std::string longest(256, 'A');

  EXPECT_EQ(QNFoldedText::wayFor(longest, QNFolding::caseAndMarks), Way::small);
  EXPECT_EQ(QNFoldedText::wayFor(longest + 'A', QNFolding::caseAndMarks), Way::large);
  EXPECT_EQ(QNFoldedText::wayFor(longest + 'A', QNFolding::marks), Way::none);
  EXPECT_EQ(QNFoldedText::wayFor("é", QNFolding::marks), Way::large);
  EXPECT_EQ(QNFoldedText::wayFor("é", QNFolding::none), Way::none);
}

TEST(QNFoldedText, LeavesNothingOnTheStack) {
  const std::size_t remains = remainsOnStack("a secret in small letters", [] {
    const QNFoldedText folded("A Secret In Small Letters");
    EXPECT_TRUE(folded.text().starts_with("a secret"));
  });

  EXPECT_EQ(remains, 0u);
}

TEST(QNASCII, IsLeftByOneByteAtAnyPlaceOfTextsOfEverySize) {
  for (std::size_t size = 0; size < 40; ++size) {
    std::string text(size, '\x7F');
    EXPECT_TRUE(isASCII(text)) << size;
    for (std::size_t place = 0; place < size; ++place) {
      text[place] = '\x80';
      EXPECT_FALSE(isASCII(text)) << size << ' ' << place;
      text[place] = '\x7F';
    }
  }
}

TEST(QNContainsText, FindsAPartAtEveryPlaceOfTextsOfEverySize) {
  for (std::size_t size = 1; size < 60; ++size) {
    for (std::size_t partSize = 1; partSize <= size; ++partSize) {
      const std::string part = partSize == 1 ? "x" : 'x' + std::string(partSize - 2, '-') + 'y';
      for (std::size_t place = 0; place + partSize <= size; ++place) {
        std::string text(size, '-');
        text.replace(place, partSize, part);
        EXPECT_TRUE(containsText(text, part));
        text[place] = '-';
        EXPECT_FALSE(containsText(text, part));
      }
    }
  }
}

TEST(QNContainsText, FindsAnEmptyPartAnywhere) {
  EXPECT_TRUE(containsText("", ""));
  EXPECT_TRUE(containsText("a", ""));
  EXPECT_FALSE(containsText("", "a"));
}

RC_GTEST_PROP(QNContainsText, SaysWhatFindSays, ()) {
  const auto letters = rc::gen::container<std::string>(rc::gen::elementOf(std::string("aab\xC3")));
  const std::string text = *letters;
  const std::string part = *letters;

  RC_ASSERT(containsText(text, part) == (text.find(part) != std::string::npos));
}

}  // namespace
}  // namespace quillon
