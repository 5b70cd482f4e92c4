#include "quillon/touchpoints/QNTOTPGenerator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/QNItem.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The seed of RFC 6238, whose codes of eight digits these are.
constexpr std::string_view kURL =
    "otpauth://totp/RFC:test?secret=GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ&digits=8";
constexpr std::string_view kCodeAt59 = "94287082";
constexpr std::string_view kCodeAt1111111109 = "07081804";

QNTOTPGenerator::Date date(double seconds) {
  return QNTOTPGenerator::Date(std::chrono::duration<double>(seconds));
}

std::string codeOf(const QNResult<QNTOTPGeneratorResult>& result) {
  return result.ok() ? std::string(result.value().code.reveal()) : result.error().message;
}

TEST(QNTOTPGenerator, GivesTheCodeOfADate) {
  const auto result = QNTOTPGenerator::generate(kURL, date(59));

  ASSERT_TRUE(result.ok());
  EXPECT_EQ(result.value().code.reveal(), kCodeAt59);
  EXPECT_EQ(result.value().secondsLeft, 1u);
  EXPECT_EQ(result.value().period, 30u);
  EXPECT_EQ(result.value().digits, 8u);
}

TEST(QNTOTPGenerator, TakesATimePointOfAClock) {
  const std::chrono::sys_seconds at(std::chrono::seconds(1111111109));

  EXPECT_EQ(codeOf(QNTOTPGenerator::generate(kURL, at)), kCodeAt1111111109);
}

TEST(QNTOTPGenerator, GivesTheCodeOfTheClock) {
  const MRCapturingSink log;
  const QNScopedClock clock(1111111109);

  const auto result = QNTOTPGenerator::generateWithURL(kURL);

  ASSERT_TRUE(result);
  EXPECT_EQ(result->code.reveal(), kCodeAt1111111109);
  EXPECT_THAT(log.records(), IsEmpty());
}

TEST(QNTOTPGenerator, TrimsTheText) {
  const std::string withNewline = std::string(kURL) + "\n";
  const std::string withBlanks = " \t\r\n\u00A0" + std::string(kURL) + "\u3000\n ";

  EXPECT_EQ(codeOf(QNTOTPGenerator::generate(withNewline, date(59))), kCodeAt59);
  EXPECT_EQ(codeOf(QNTOTPGenerator::generate(withBlanks, date(59))), kCodeAt59);
  const QNScopedClock clock(59);
  EXPECT_EQ(QNTOTPGenerator::generateWithURL(withNewline)->code.reveal(), kCodeAt59);
}

TEST(QNTOTPGenerator, RefusesATextOfBlanksWithCode1201AndNoMessage) {
  for (const char* const text : {"", "   ", "\n", " \t\r\n\u2028"}) {
    const auto result = QNTOTPGenerator::generate(text, date(59));
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.error().domain, latticeErrorDomain);
    EXPECT_EQ(result.error().code, 1201);
    EXPECT_EQ(result.error().message, "");
  }
}

TEST(QNTOTPGenerator, GivesNothingAndLogsForATextOfBlanks) {
  const MRCapturingSink log;

  const auto result = QNTOTPGenerator::generateWithURL("   ");

  EXPECT_FALSE(result);
  EXPECT_THAT(log.texts(MRLogKind::error),
              ElementsAre("failed to get JSON request string for lattice latticeErrorDomain 1201"));
  EXPECT_EQ(log.records().size(), 1u);
  EXPECT_EQ(log.records().front().file, "Common/QNTOTPGenerator");
  EXPECT_EQ(log.records().front().method, "generate(url:)");
  EXPECT_EQ(log.records().front().object, "");
}

TEST(QNTOTPGenerator, HandsTheErrorOfTheReaderOnAsItIs) {
  const MRCapturingSink log;

  const auto result = QNTOTPGenerator::generate("otpauth://hotp/x?secret=MZXW6YTBOI", date(59));

  ASSERT_FALSE(result.ok());
  EXPECT_EQ(TOTPError::fromError(result.error()), TOTPError::InvalidUriHost);
  EXPECT_EQ(result.error().message, "InvalidUriHost");
  EXPECT_THAT(log.records(), IsEmpty());
}

TEST(QNTOTPGenerator, LogsTheErrorOfTheReaderByItsCodeAlone) {
  const MRCapturingSink log;

  const auto result = QNTOTPGenerator::generateWithURL("otpauth://totp/me?secret=MZXW6YTB1");

  EXPECT_FALSE(result);
  EXPECT_THAT(log.texts(MRLogKind::error),
              ElementsAre("failed to get JSON request string for lattice latticeErrorDomain 1218"));
}

TEST(QNTOTPGenerator, GivesOneCodeForTwoDatesOfOneSecond) {
  const auto early = QNTOTPGenerator::generate(kURL, date(59.0));
  const auto late = QNTOTPGenerator::generate(kURL, date(59.999999));

  EXPECT_EQ(codeOf(early), kCodeAt59);
  EXPECT_EQ(codeOf(late), kCodeAt59);
  EXPECT_EQ(early.value().secondsLeft, late.value().secondsLeft);
}

TEST(QNTOTPGenerator, CutsFractionsTowards1970) {
  const auto before = QNTOTPGenerator::generate(kURL, date(-0.9));
  const auto after = QNTOTPGenerator::generate(kURL, date(0.9));

  EXPECT_EQ(codeOf(before), codeOf(after));
  EXPECT_EQ(before.value().secondsLeft, 30u);
  EXPECT_EQ(QNTOTPGenerator::generate(kURL, date(-1.9)).value().secondsLeft, 1u);
}

TEST(QNTOTPGenerator, TakesTheEndsOfTime) {
  constexpr double first = -9223372036854775808.0;
  constexpr double last = 9223372036854774784.0;  // the last double below 2^63

  EXPECT_EQ(QNTOTPGenerator::generate(kURL, date(first)).value().secondsLeft, 8u);
  EXPECT_TRUE(QNTOTPGenerator::generate(kURL, date(last)).ok());
}

TEST(QNTOTPGeneratorDeathTest, EndsTheProcessForADateThatNoClockHas) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const double seconds :
       {std::nan(""), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), 9223372036854775808.0, -9223372036854777856.0}) {
    EXPECT_DEATH(static_cast<void>(QNTOTPGenerator::generate(kURL, date(seconds))),
                 "a date that no clock has");
  }
}

TEST(QNTOTPGenerator, GivesTheCodeOfAnItemsField) {
  const auto item = std::make_shared<QNItem>(initNew);
  item->setProfile(std::make_shared<QNTestServerProfile>());
  const auto field = std::make_shared<QNItemTOTPField>();
  field->setValue(kURL);
  item->fieldSectionWithName("s", "")->addField(field);

  const auto result = QNTOTPGenerator::generate(item->firstTOTPString()->reveal(), date(59));

  EXPECT_EQ(codeOf(result), kCodeAt59);
}

TEST(QNTOTPGenerator, LooksAtTheTextBeforeTheDate) {
  EXPECT_EQ(QNTOTPGenerator::generate(" ", date(std::nan(""))).error().code, 1201);
}

}  // namespace
}  // namespace quillon
