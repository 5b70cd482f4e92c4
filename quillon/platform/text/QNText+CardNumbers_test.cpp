#include <gtest/gtest.h>

#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

std::string shown(std::string_view digits) {
  return std::string(mr_asFormattedCreditCardNumber(digits).reveal());
}

// The numbers are those that card companies publish for tests.

TEST(QNTextCardNumbers, StandInBlocksOfFour) {
  EXPECT_EQ(shown("4111111111111111"), "4111 1111 1111 1111");
  EXPECT_EQ(shown("5555555555554444"), "5555 5555 5555 4444");
  EXPECT_EQ(shown("6011111111111117"), "6011 1111 1111 1117");
}

TEST(QNTextCardNumbers, OfFifteenDigitsThatBeginWith34Or37HaveBlocksOf4And6And5) {
  EXPECT_EQ(shown("378282246310005"), "3782 822463 10005");
  EXPECT_EQ(shown("343434343434343"), "3434 343434 34343");
}

TEST(QNTextCardNumbers, OfFourteenDigitsThatBeginWith30Or36Or38Or39HaveBlocksOf4And6And4) {
  EXPECT_EQ(shown("30569309025904"), "3056 930902 5904");
  EXPECT_EQ(shown("36227206271667"), "3622 720627 1667");
  EXPECT_EQ(shown("38520000023237"), "3852 000002 3237");
  EXPECT_EQ(shown("39000000000000"), "3900 000000 0000");
}

TEST(QNTextCardNumbers, OfAnotherLengthEndWithAShorterBlock) {
  EXPECT_EQ(shown("6304000000000000000"), "6304 0000 0000 0000 000");
  EXPECT_EQ(shown("37828224631000"), "3782 8224 6310 00");
  EXPECT_EQ(shown("411111111111111"), "4111 1111 1111 111");
  EXPECT_EQ(shown("411"), "411");
  EXPECT_EQ(shown("4111"), "4111");
  EXPECT_EQ(shown(""), "");
}

TEST(QNTextCardNumbers, LeaveNoCopyBehind) {
  const QNFreedBlockWatch watch("3782 822463 10005");

  EXPECT_EQ(mr_asFormattedCreditCardNumber("378282246310005").size(), 17u);

  EXPECT_EQ(watch.found(), 0u);
}

}  // namespace
}  // namespace quillon
