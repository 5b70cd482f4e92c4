#include "quillon/platform/otp/TOTPError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillon {
namespace {

using testing::ElementsAre;

TEST(TOTPError, HasTheRawValuesOfItsCasesInOrder) {
  std::vector<std::string> values;
  for (const TOTPError one : TOTPError::kAllCases) values.emplace_back(one.rawValue());

  EXPECT_THAT(values, ElementsAre("InvalidDigits", "InvalidUriHost", "InvalidPeriod",
                                  "InvalidAlgorithm", "InvalidScheme", "NoSecret", "SecretTooShort",
                                  "SecretNotBase32", "SecretFailedDecoding"));
  EXPECT_EQ(TOTPError(TOTPError::InvalidDigits).rawValue(), "InvalidDigits");
  EXPECT_EQ(TOTPError(TOTPError::InvalidUriHost).rawValue(), "InvalidUriHost");
  EXPECT_EQ(TOTPError(TOTPError::InvalidPeriod).rawValue(), "InvalidPeriod");
  EXPECT_EQ(TOTPError(TOTPError::InvalidAlgorithm).rawValue(), "InvalidAlgorithm");
  EXPECT_EQ(TOTPError(TOTPError::InvalidScheme).rawValue(), "InvalidScheme");
  EXPECT_EQ(TOTPError(TOTPError::NoSecret).rawValue(), "NoSecret");
  EXPECT_EQ(TOTPError(TOTPError::SecretTooShort).rawValue(), "SecretTooShort");
  EXPECT_EQ(TOTPError(TOTPError::SecretNotBase32).rawValue(), "SecretNotBase32");
  EXPECT_EQ(TOTPError(TOTPError::SecretFailedDecoding).rawValue(), "SecretFailedDecoding");
}

TEST(TOTPError, IsMadeFromItsRawValue) {
  for (const TOTPError one : TOTPError::kAllCases) {
    EXPECT_EQ(TOTPError::fromRawValue(one.rawValue()), one) << one.rawValue();
  }
}

TEST(TOTPError, IsNothingForAnyOtherText) {
  for (const char* const text : {"", "invalidDigits", "InvalidDigits ", "NoSecre", "NoSecret2"}) {
    EXPECT_FALSE(TOTPError::fromRawValue(text)) << text;
  }
}

TEST(TOTPError, IsWrittenAndReadAsAJsonText) {
  for (const TOTPError one : TOTPError::kAllCases) {
    const std::string text = "\"" + std::string(one.rawValue()) + "\"";
    EXPECT_EQ(mr_JSONStringWithError(one.toJson()), text);
    const auto read = mr_valueFromJSONDataWithError(bytesOf(text));
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(TOTPError::fromJson(*read), one) << text;
  }
}

TEST(TOTPError, IsNothingForAnyOtherJson) {
  EXPECT_FALSE(TOTPError::fromJson(Json("Unknown")));
  EXPECT_FALSE(TOTPError::fromJson(Json(0)));
  EXPECT_FALSE(TOTPError::fromJson(Json(nullptr)));
  EXPECT_FALSE(TOTPError::fromJson(Json(JsonArray{"NoSecret"})));
}

TEST(TOTPError, HasACodeOfItsOwnForEachCase) {
  std::vector<std::string> told;
  for (const TOTPError one : TOTPError::kAllCases) {
    const QNError error = one.toError();
    told.push_back(error.domainCodeString());
    EXPECT_EQ(error.message, one.rawValue());
  }

  EXPECT_THAT(
      told,
      ElementsAre("latticeErrorDomain 1211", "latticeErrorDomain 1212", "latticeErrorDomain 1213",
                  "latticeErrorDomain 1214", "latticeErrorDomain 1215", "latticeErrorDomain 1216",
                  "latticeErrorDomain 1217", "latticeErrorDomain 1218", "latticeErrorDomain 1219"));
}

TEST(TOTPError, IsFoundAgainInAnErrorOfItsDomain) {
  for (const TOTPError one : TOTPError::kAllCases) {
    EXPECT_EQ(TOTPError::fromError(one.toError()), one);
  }
  EXPECT_FALSE(TOTPError::fromError({std::string(latticeErrorDomain), 1201, ""}));
  EXPECT_FALSE(TOTPError::fromError({std::string(latticeErrorDomain), 1220, ""}));
  EXPECT_FALSE(TOTPError::fromError({std::string(QNErrorDomain), 1211, ""}));
}

}  // namespace
}  // namespace quillon
