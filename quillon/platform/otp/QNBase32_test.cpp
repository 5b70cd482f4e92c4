#include "quillon/platform/otp/internal/QNBase32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace quillon {
namespace {

using Fault = QNBase32::Fault;

std::optional<std::string> decoded(std::string_view text) {
  const QNBase32 result = QNBase32::decode(text);
  if (result.fault != Fault::none) return std::nullopt;
  return std::string(textOf(result.bytes));
}

Fault faultOf(std::string_view text) {
  return QNBase32::decode(text).fault;
}

// RFC 4648, section 10.
TEST(QNBase32, ReadsThePublishedVectors) {
  EXPECT_EQ(decoded(""), "");
  EXPECT_EQ(decoded("MY======"), "f");
  EXPECT_EQ(decoded("MZXQ===="), "fo");
  EXPECT_EQ(decoded("MZXW6==="), "foo");
  EXPECT_EQ(decoded("MZXW6YQ="), "foob");
  EXPECT_EQ(decoded("MZXW6YTB"), "fooba");
  EXPECT_EQ(decoded("MZXW6YTBOI======"), "foobar");
}

TEST(QNBase32, ReadsEachCharacterAsItsPlaceInTheAlphabet) {
  EXPECT_EQ(decoded("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567"),
            std::string("\x00\x44\x32\x14\xc7\x42\x54\xb6\x35\xcf"
                        "\x84\x65\x3a\x56\xd7\xc6\x75\xbe\x77\xdf",
                        20));
}

TEST(QNBase32, NeedsNoPaddingAndTakesAPartOfIt) {
  EXPECT_EQ(decoded("MY"), "f");
  EXPECT_EQ(decoded("MY=="), "f");
  EXPECT_EQ(decoded("MZXQ"), "fo");
  EXPECT_EQ(decoded("MZXW6"), "foo");
  EXPECT_EQ(decoded("MZXW6YQ"), "foob");
  EXPECT_EQ(decoded("MZXW6YTBOI="), "foobar");
}

TEST(QNBase32, ReadsSmallLettersAndSkipsBlanksAndDashes) {
  EXPECT_EQ(decoded("mzxw6ytboi"), "foobar");
  EXPECT_EQ(decoded("mZxW6yTbOi======"), "foobar");
  EXPECT_EQ(decoded(" MZXW 6YTB-OI\t=== ===\r\n"), "foobar");
  EXPECT_EQ(decoded(" -\n"), "");
}

TEST(QNBase32, DropsTheBitsThatFillNoByte) {
  EXPECT_EQ(decoded("MZ"), "f");
  EXPECT_EQ(decoded("MZXW6YTBO7"), "foobaw");
}

TEST(QNBase32, RefusesAGroupThatNoEncoderEndsWith) {
  for (const char* const text : {"M", "MZX", "MZXW6Y", "MZXW6YTBO", "M=======", "MZX====="}) {
    EXPECT_EQ(faultOf(text), Fault::brokenGroup) << text;
  }
}

TEST(QNBase32, RefusesPaddingInsideAndTooMuchOfIt) {
  for (const char* const text : {"MY======MY======", "=MY", "M=Y", "MY=======", "MZXW6YTB=", "="}) {
    EXPECT_EQ(faultOf(text), Fault::brokenGroup) << text;
  }
}

TEST(QNBase32, RefusesEveryCharacterOutsideTheAlphabet) {
  const std::string_view taken =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz234567=- \t\n\v\f\r";
  for (int c = 0; c < 256; ++c) {
    const std::string text{'M', static_cast<char>(c), 'Y'};
    const bool isTaken = taken.find(static_cast<char>(c)) != std::string_view::npos;
    EXPECT_EQ(faultOf(text) == Fault::foreignCharacter, !isTaken) << c;
  }
}

TEST(QNBase32, TellsOfAForeignCharacterBeforeABrokenGroup) {
  EXPECT_EQ(faultOf("M=Y1"), Fault::foreignCharacter);
}

TEST(QNBase32, GivesNoBytesWithAFault) {
  EXPECT_TRUE(QNBase32::decode("MZXW6YTBO").bytes.empty());
  EXPECT_TRUE(QNBase32::decode("MZXW6YTB!").bytes.empty());
}

}  // namespace
}  // namespace quillon
