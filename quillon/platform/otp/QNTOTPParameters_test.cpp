#include "quillon/platform/otp/internal/QNTOTPParameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "quillon/platform/otp/TOTPError.h"

namespace quillon {
namespace {

using Algorithm = QNTOTPParameters::Algorithm;

constexpr std::string_view kFoobar = "MZXW6YTBOI";

QNResult<QNTOTPParameters> read(std::string_view text) {
  return QNTOTPParameters::fromText(text);
}

/// Its seed, or the cause for which there is none.
std::string seedIn(std::string_view text) {
  const auto parameters = read(text);
  if (!parameters.ok()) return parameters.error().message;
  return std::string(textOf(parameters.value().secret));
}

std::string withQuery(std::string_view query) {
  return "otpauth://totp/Example:me?secret=MZXW6YTBOI&" + std::string(query);
}

/// What was read of digits, period, algorithm and form, or the cause.
std::string settingsIn(std::string_view text) {
  const auto result = read(text);
  if (!result.ok()) return result.error().message;
  const QNTOTPParameters& parameters = result.value();
  const char* const names[] = {"SHA1", "SHA256", "SHA512"};
  return std::to_string(parameters.digits) + " " + std::to_string(parameters.period) + " " +
         names[static_cast<int>(parameters.algorithm)] + (parameters.isSteam ? " Steam" : "");
}

TEST(QNTOTPParameters, AreTheUsualOnesUnlessTold) {
  EXPECT_EQ(settingsIn("otpauth://totp/me?secret=MZXW6YTBOI"), "6 30 SHA1");
  EXPECT_EQ(settingsIn(kFoobar), "6 30 SHA1");
  EXPECT_EQ(settingsIn(withQuery("digits=8&period=60&algorithm=SHA512")), "8 60 SHA512");
}

TEST(QNTOTPParameters, TakeTheSeedFromAnAddressOrBare) {
  EXPECT_EQ(seedIn("otpauth://totp/Example:me?secret=MZXW6YTBOI&issuer=Example"), "foobar");
  EXPECT_EQ(seedIn("otpauth://totp/Example:me?issuer=Example&secret=MZXW6YTBOI======"), "foobar");
  EXPECT_EQ(seedIn(kFoobar), "foobar");
  EXPECT_EQ(seedIn("mzxw 6ytb-oi"), "foobar");
}

TEST(QNTOTPParameters, NeedNoLabel) {
  EXPECT_EQ(seedIn("otpauth://totp/?secret=MZXW6YTBOI"), "foobar");
  EXPECT_EQ(seedIn("otpauth://totp?secret=MZXW6YTBOI"), "foobar");
}

TEST(QNTOTPParameters, TakeAnAddressInCapitals) {
  EXPECT_EQ(seedIn("OTPAUTH://TOTP/ME?SECRET=MZXW6YTBOI&DIGITS=8"), "foobar");
  EXPECT_EQ(settingsIn("OTPAUTH://TOTP/ME?SECRET=MZXW6YTBOI&DIGITS=8"), "8 30 SHA1");
}

TEST(QNTOTPParameters, TrimTheText) {
  EXPECT_EQ(seedIn(" \n otpauth://totp/me?secret=MZXW6YTBOI \n"), "foobar");
  EXPECT_EQ(seedIn("\u00A0MZXW6YTBOI\u3000"), "foobar");
}

TEST(QNTOTPParameters, TakeEscapesInValues) {
  EXPECT_EQ(seedIn("otpauth://totp/me?secret=MZXW%36YTB%4fI%3D%3d"), "foobar");
  EXPECT_EQ(seedIn("otpauth://totp/me?secret=mzxw%206ytb%20oi"), "foobar");
  EXPECT_EQ(seedIn("otpauth://totp/me?secret=mzxw+6ytb+oi"), "foobar");
  EXPECT_EQ(settingsIn(withQuery("digits=%38&algorithm=SHA%32%35%36")), "8 30 SHA256");
}

TEST(QNTOTPParameters, RefuseASeedWithABrokenEscapeOrAnEscapedForeignCharacter) {
  for (const char* const value : {"MZXW6YTB%4", "MZXW6YTB%", "MZXW6YTB%GG", "MZXW%2B6YTB",
                                  "MZXW%006YTB", "MZXW%C3%A9YTB", "%25MZXW6YTB"}) {
    EXPECT_EQ(seedIn("otpauth://totp/me?secret=" + std::string(value)), "SecretNotBase32") << value;
  }
}

TEST(QNTOTPParameters, TakeTheFirstOfTwoParametersOfOneName) {
  EXPECT_EQ(seedIn("otpauth://totp/me?secret=MZXW6YTBOI&secret=MZXW6YTB"), "foobar");
  EXPECT_EQ(settingsIn(withQuery("digits=7&digits=x")), "7 30 SHA1");
}

TEST(QNTOTPParameters, OverlookUnknownParametersEmptyOnesAndAFragment) {
  EXPECT_EQ(settingsIn(withQuery("&image=https%3A%2F%2Fa.example%2Fb.png&counter=1&&digits=7#x")),
            "7 30 SHA1");
  EXPECT_EQ(seedIn("otpauth://totp/me?secret=MZXW6YTBOI#&secret=x"), "foobar");
  EXPECT_EQ(seedIn("otpauth://totp/flat #3:me?secret=MZXW6YTBOI"), "foobar");
}

TEST(QNTOTPParameters, TakeSixToTenDigits) {
  EXPECT_EQ(settingsIn(withQuery("digits=6")), "6 30 SHA1");
  EXPECT_EQ(settingsIn(withQuery("digits=9")), "9 30 SHA1");
  EXPECT_EQ(settingsIn(withQuery("digits=10")), "10 30 SHA1");
  for (const char* const digits : {"5", "11", "0", "-6", "+6", "6.0", "", "six", "6%20",
                                   "4294967302", "99999999999999999999"}) {
    EXPECT_EQ(settingsIn(withQuery("digits=" + std::string(digits))), "InvalidDigits") << digits;
  }
  EXPECT_EQ(settingsIn(withQuery("digits")), "InvalidDigits");
}

TEST(QNTOTPParameters, TakePeriodsOfASecondToFiveMinutes) {
  EXPECT_EQ(settingsIn(withQuery("period=1")), "6 1 SHA1");
  EXPECT_EQ(settingsIn(withQuery("period=300")), "6 300 SHA1");
  for (const char* const period : {"0", "301", "-30", "30s", "", "1e1", "4294967326"}) {
    EXPECT_EQ(settingsIn(withQuery("period=" + std::string(period))), "InvalidPeriod") << period;
  }
}

TEST(QNTOTPParameters, TakeThreeAlgorithmsByTwoNames) {
  EXPECT_EQ(settingsIn(withQuery("algorithm=SHA1")), "6 30 SHA1");
  EXPECT_EQ(settingsIn(withQuery("algorithm=sha256")), "6 30 SHA256");
  EXPECT_EQ(settingsIn(withQuery("algorithm=SHA512")), "6 30 SHA512");
  EXPECT_EQ(settingsIn(withQuery("algorithm=SHA-1")), "6 30 SHA1");
  EXPECT_EQ(settingsIn(withQuery("algorithm=SHA-256")), "6 30 SHA256");
  EXPECT_EQ(settingsIn(withQuery("algorithm=sha-512")), "6 30 SHA512");
  for (const char* const name : {"MD5", "SHA", "SHA224", "SHA384", "", "SHA1%20"}) {
    EXPECT_EQ(settingsIn(withQuery("algorithm=" + std::string(name))), "InvalidAlgorithm") << name;
  }
}

TEST(QNTOTPParameters, RefuseOtherSchemes) {
  for (const char* const text :
       {"https://totp/me?secret=MZXW6YTBOI", "otpauth-migration://offline?data=MZXW6YTBOI",
        "totp://me?secret=MZXW6YTBOI", "://totp/me?secret=MZXW6YTBOI", ":",
        " otpauth ://totp/me?secret=MZXW6YTBOI", "MZXW:6YTBOI"}) {
    EXPECT_EQ(seedIn(text), "InvalidScheme") << text;
  }
}

TEST(QNTOTPParameters, RefuseOtherHosts) {
  for (const char* const text :
       {"otpauth://hotp/me?secret=MZXW6YTBOI&counter=1", "otpauth:///me?secret=MZXW6YTBOI",
        "otpauth://?secret=MZXW6YTBOI", "otpauth://totp.example/me?secret=MZXW6YTBOI",
        "otpauth://totp:80/me?secret=MZXW6YTBOI", "otpauth://me@totp/?secret=MZXW6YTBOI",
        "otpauth:totp/me?secret=MZXW6YTBOI", "otpauth:/totp/me?secret=MZXW6YTBOI",
        "otpauth:", "steam:MZXW6YTBOI"}) {
    EXPECT_EQ(seedIn(text), "InvalidUriHost") << text;
  }
}

TEST(QNTOTPParameters, MissASeedThatIsNotThereOrEmpty) {
  for (const char* const text :
       {"", " \n", "- -", "otpauth://totp/me", "otpauth://totp/me?", "otpauth://totp/me?secret",
        "otpauth://totp/me?secret=", "otpauth://totp/me?secret=%20-", "otpauth://totp/me?issuer=A",
        "otpauth://totp/me?mysecret=MZXW6YTBOI", "steam://", "steam:///MZXW6YTBOI"}) {
    EXPECT_EQ(seedIn(text), "NoSecret") << text;
  }
}

TEST(QNTOTPParameters, RefuseASeedOfLessThanFiveBytes) {
  EXPECT_EQ(seedIn("MZXW6YTB"), "fooba");
  for (const char* const text : {"MZXW6YQ", "MZXW6YQ=", "MZXW6", "MZXQ", "MY",
                                 "otpauth://totp/me?secret=MZXW6YQ%3D", "steam://MZXW6YQ"}) {
    EXPECT_EQ(seedIn(text), "SecretTooShort") << text;
  }
}

TEST(QNTOTPParameters, RefuseASeedThatIsNotBase32) {
  for (const char* const text : {"MZXW0YTBOI", "MZXW1YTBOI", "MZXW8YTBOI", "MZXW9YTBOI",
                                 "MZXW/YTBOI", "Z\u00FCrich", "otpauth//totp/me?secret=MZXW6YTBOI",
                                 "otpauth://totp/me?secret=MZXW8YTBOI", "steam://MZXW8YTBOI"}) {
    EXPECT_EQ(seedIn(text), "SecretNotBase32") << text;
  }
}

TEST(QNTOTPParameters, RefuseASeedThatNoEncoderPutsOut) {
  for (const char* const text :
       {"MZXW6YTBO", "MZXW6YTBOIM", "MZXW6YTBOIMZXW", "MZXW6===YTBOI",
        "MZXW6YTBOI=======", "otpauth://totp/me?secret=MZXW6YTBO", "steam://MZXW6YTBO"}) {
    EXPECT_EQ(seedIn(text), "SecretFailedDecoding") << text;
  }
}

TEST(QNTOTPParameters, TellOfTheFirstFaultOnly) {
  const std::string rest = "?digits=x&period=x&algorithm=x&secret=1";
  EXPECT_EQ(seedIn("x://x/" + rest), "InvalidScheme");
  EXPECT_EQ(seedIn("otpauth://x/" + rest), "InvalidUriHost");
  EXPECT_EQ(seedIn("otpauth://totp/" + rest), "InvalidDigits");
  EXPECT_EQ(seedIn("otpauth://totp/?period=x&algorithm=x&secret=1"), "InvalidPeriod");
  EXPECT_EQ(seedIn("otpauth://totp/?algorithm=x&secret=1"), "InvalidAlgorithm");
}

TEST(QNTOTPParameters, KnowSteamByItsIssuer) {
  EXPECT_EQ(settingsIn(withQuery("issuer=Steam")), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn(withQuery("issuer=%20STEAM")), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn("otpauth://totp/Steam:me?secret=MZXW6YTBOI"), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn("otpauth://totp/steam%3Ame?secret=MZXW6YTBOI"), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn("otpauth://totp/Steam:me?secret=MZXW6YTBOI&issuer=Other"), "6 30 SHA1");
  EXPECT_EQ(settingsIn("otpauth://totp/Steam?secret=MZXW6YTBOI"), "6 30 SHA1");
  EXPECT_EQ(settingsIn(withQuery("issuer=Steamboat")), "6 30 SHA1");
}

TEST(QNTOTPParameters, KnowSteamByItsEncoderHostOrScheme) {
  EXPECT_EQ(settingsIn(withQuery("encoder=steam&period=30&digits=5")), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn("otpauth://steam/Steam:me?secret=MZXW6YTBOI"), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn("steam://MZXW6YTBOI"), "5 30 SHA1 Steam");
  EXPECT_EQ(seedIn("Steam://mzxw%206ytb-oi/?x"), "foobar");
}

TEST(QNTOTPParameters, RefuseAnUnknownEncoder) {
  EXPECT_EQ(settingsIn(withQuery("encoder=yandex")), "InvalidAlgorithm");
  EXPECT_EQ(settingsIn(withQuery("encoder=")), "InvalidAlgorithm");
}

TEST(QNTOTPParameters, GiveSteamFiveLettersWhateverItsDigitsSay) {
  EXPECT_EQ(settingsIn(withQuery("issuer=Steam&digits=5")), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn(withQuery("issuer=Steam&digits=6")), "5 30 SHA1 Steam");
  EXPECT_EQ(settingsIn(withQuery("issuer=Steam&digits=4")), "InvalidDigits");
  EXPECT_EQ(settingsIn(withQuery("issuer=Steam&digits=11")), "InvalidDigits");
}

TEST(QNTOTPParameters, SayNothingOfTheTextInAnError) {
  const auto result = read("otpauth://totp/label?secret=MZXW6YTB!&issuer=name");

  ASSERT_FALSE(result.ok());
  EXPECT_EQ(result.error().message, "SecretNotBase32");
  EXPECT_EQ(result.error().domainCodeString(), "latticeErrorDomain 1218");
}

TEST(QNTOTPParameters, TakeALongSeed) {
  const std::string seed(100'000, 'A');

  EXPECT_EQ(seedIn(seed), std::string(62'500, '\0'));
}

}  // namespace
}  // namespace quillon
