#include "quillon/platform/otp/LTTOTP.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

using testing::IsEmpty;

// Base32 of "12345678901234567890", and of the same digits going on to 32 and 64 bytes: the seeds
// of the RFCs.
constexpr std::string_view kSeed20 = "GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ";
constexpr std::string_view kSeed32 = "GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZA";
constexpr std::string_view kSeed64 =
    "GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ"
    "GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZDGNA";

std::string address(std::string_view seed, std::string_view rest = "") {
  return "otpauth://totp/RFC:test?secret=" + std::string(seed) + std::string(rest);
}

/// The code, or the cause for which there is none.
std::string codeAt(std::optional<std::int64_t> timestamp, std::string_view text) {
  const auto result = LTTOTP::totp(QNTOTPGeneratorRequest(timestamp, text));
  return result.ok() ? std::string(result.value().code.reveal()) : result.error().message;
}

std::uint32_t secondsLeftAt(std::int64_t timestamp, std::string_view text) {
  const auto result = LTTOTP::totp(QNTOTPGeneratorRequest(timestamp, text));
  return result.ok() ? result.value().secondsLeft : 0;
}

// RFC 6238, appendix B.
TEST(LTTOTP, GivesThePublishedCodesOfTheThreeHashes) {
  const struct {
    std::int64_t timestamp;
    const char* sha1;
    const char* sha256;
    const char* sha512;
  } rows[] = {
      {59, "94287082", "46119246", "90693936"},
      {1111111109, "07081804", "68084774", "25091201"},
      {1111111111, "14050471", "67062674", "99943326"},
      {1234567890, "89005924", "91819424", "93441116"},
      {2000000000, "69279037", "90698825", "38618901"},
      {20000000000, "65353130", "77737706", "47863826"},
  };
  for (const auto& row : rows) {
    const std::int64_t at = row.timestamp;
    EXPECT_EQ(codeAt(at, address(kSeed20, "&digits=8")), row.sha1) << at;
    EXPECT_EQ(codeAt(at, address(kSeed20, "&digits=8&algorithm=SHA1")), row.sha1) << at;
    EXPECT_EQ(codeAt(at, address(kSeed32, "&digits=8&algorithm=SHA256")), row.sha256) << at;
    EXPECT_EQ(codeAt(at, address(kSeed64, "&digits=8&algorithm=SHA512")), row.sha512) << at;
  }
}

// RFC 4226, appendix D: the code of 6 digits, and the whole truncated number, which ten show.
TEST(LTTOTP, GivesThePublishedCodesOfTenCounts) {
  const struct {
    const char* code;
    const char* number;
  } rows[] = {
      {"755224", "1284755224"}, {"287082", "1094287082"}, {"359152", "0137359152"},
      {"969429", "1726969429"}, {"338314", "1640338314"}, {"254676", "0868254676"},
      {"287922", "1918287922"}, {"162583", "0082162583"}, {"399871", "0673399871"},
      {"520489", "0645520489"},
  };
  std::int64_t count = 0;
  for (const auto& row : rows) {
    EXPECT_EQ(codeAt(count * 30, kSeed20), row.code) << count;
    EXPECT_EQ(codeAt(count * 30, address(kSeed20, "&digits=10")), row.number) << count;
    EXPECT_EQ(codeAt(count, address(kSeed20, "&period=1")), row.code) << count;
    ++count;
  }
}

TEST(LTTOTP, CutsTheNumberToItsLastDigits) {
  EXPECT_EQ(codeAt(59, address(kSeed20, "&digits=6")), "287082");
  EXPECT_EQ(codeAt(59, address(kSeed20, "&digits=7")), "4287082");
  EXPECT_EQ(codeAt(59, address(kSeed20, "&digits=8")), "94287082");
  EXPECT_EQ(codeAt(59, address(kSeed20, "&digits=9")), "094287082");
  EXPECT_EQ(codeAt(59, address(kSeed20, "&digits=10")), "1094287082");
}

TEST(LTTOTP, GivesOneCodeForOneSeedHoweverItIsSpelt) {
  for (const char* const text :
       {"GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ", "gezd gnbv gy3t qojq gezd gnbv gy3t qojq",
        "GEZDGNBV-GY3TQOJQ-GEZDGNBV-GY3TQOJQ", " GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ\n",
        "otpauth://totp/?secret=gezdgnbvgy3tqojq%20gezdgnbvgy3tqojq",
        "OTPAUTH://TOTP/A?SECRET=GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ"}) {
    EXPECT_EQ(codeAt(1111111109, text), "081804") << text;
  }
}

// The same seeds, computed with another program.
TEST(LTTOTP, CountsInTheAddresssPeriod) {
  EXPECT_EQ(codeAt(1111111109, address(kSeed20, "&period=1")), "510233");
  EXPECT_EQ(codeAt(1111111109, address(kSeed20, "&period=60")), "360094");
  EXPECT_EQ(codeAt(1111111109, address(kSeed20, "&period=300")), "080717");
}

TEST(LTTOTP, HoldsACodeForItsPeriodAndTellsWhatIsLeft) {
  EXPECT_EQ(codeAt(29, kSeed20), "755224");
  EXPECT_EQ(codeAt(30, kSeed20), "287082");
  EXPECT_EQ(secondsLeftAt(0, kSeed20), 30u);
  EXPECT_EQ(secondsLeftAt(1, kSeed20), 29u);
  EXPECT_EQ(secondsLeftAt(29, kSeed20), 1u);
  EXPECT_EQ(secondsLeftAt(30, kSeed20), 30u);
  EXPECT_EQ(secondsLeftAt(7, address(kSeed20, "&period=1")), 1u);
  EXPECT_EQ(secondsLeftAt(299, address(kSeed20, "&period=300")), 1u);
}

TEST(LTTOTP, TellsPeriodAndDigits) {
  const auto result =
      LTTOTP::totp(QNTOTPGeneratorRequest(59, address(kSeed20, "&digits=8&period=60")));

  ASSERT_TRUE(result.ok());
  EXPECT_EQ(result.value().period, 60u);
  EXPECT_EQ(result.value().digits, 8u);
  EXPECT_EQ(result.value().code.size(), 8u);
}

// Counts below 0 are hashed as 64 bits of two's complement. Computed with another program.
TEST(LTTOTP, GivesACodeBefore1970) {
  EXPECT_EQ(codeAt(-1, kSeed20), "094451");
  EXPECT_EQ(codeAt(-30, kSeed20), "094451");
  EXPECT_NE(codeAt(-31, kSeed20), "094451");
  EXPECT_EQ(secondsLeftAt(-1, kSeed20), 1u);
  EXPECT_EQ(secondsLeftAt(-30, kSeed20), 30u);
  EXPECT_EQ(secondsLeftAt(-31, kSeed20), 1u);
}

TEST(LTTOTP, GivesACodeAtBothEndsOfTime) {
  constexpr std::int64_t first = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max();

  EXPECT_EQ(codeAt(first, kSeed20), "971429");
  EXPECT_EQ(codeAt(first, address(kSeed20, "&period=1")), "959616");
  EXPECT_EQ(codeAt(last, kSeed20), "451934");
  EXPECT_EQ(codeAt(last, address(kSeed20, "&period=1")), "181742");
  EXPECT_EQ(secondsLeftAt(first, kSeed20), 8u);
  EXPECT_EQ(secondsLeftAt(last, kSeed20), 23u);
}

TEST(LTTOTP, TakesTheClockForAnAbsentTimestamp) {
  const QNScopedClock clock(1111111109);

  EXPECT_EQ(codeAt(std::nullopt, kSeed20), "081804");
}

// Computed with another program.
TEST(LTTOTP, WritesSteamsCodesInItsOwnLetters) {
  EXPECT_EQ(codeAt(0, "steam://BASE32SECRET3232"), "2TC8B");
  EXPECT_EQ(codeAt(30, "steam://BASE32SECRET3232"), "YKKK4");
  EXPECT_EQ(codeAt(60, address("BASE32SECRET3232", "&issuer=Steam")), "M4HQB");
  EXPECT_EQ(codeAt(59, address(kSeed20, "&encoder=steam&digits=5")), "PV9M4");
  EXPECT_EQ(codeAt(1111111109, address(kSeed20, "&issuer=Steam&digits=6")), "PY4YB");
}

TEST(LTTOTP, TellsFiveDigitsForSteam) {
  const auto result =
      LTTOTP::totp(QNTOTPGeneratorRequest(0, address(kSeed20, "&issuer=Steam&digits=6")));

  ASSERT_TRUE(result.ok());
  EXPECT_EQ(result.value().digits, 5u);
  EXPECT_EQ(result.value().period, 30u);
}

TEST(LTTOTP, TellsTheCauseOfEachFailureInItsDomain) {
  const struct {
    const char* text;
    TOTPError cause;
  } rows[] = {
      {"otpauth://totp/?secret=MZXW6YTBOI&digits=5", TOTPError::InvalidDigits},
      {"otpauth://hotp/?secret=MZXW6YTBOI", TOTPError::InvalidUriHost},
      {"otpauth://totp/?secret=MZXW6YTBOI&period=0", TOTPError::InvalidPeriod},
      {"otpauth://totp/?secret=MZXW6YTBOI&algorithm=MD5", TOTPError::InvalidAlgorithm},
      {"https://totp/?secret=MZXW6YTBOI", TOTPError::InvalidScheme},
      {"otpauth://totp/", TOTPError::NoSecret},
      {"otpauth://totp/?secret=MZXW6YQ", TOTPError::SecretTooShort},
      {"otpauth://totp/?secret=MZXW1YTBOI", TOTPError::SecretNotBase32},
      {"otpauth://totp/?secret=MZXW6YTBO", TOTPError::SecretFailedDecoding},
  };
  for (const auto& row : rows) {
    const auto result = LTTOTP::totp(QNTOTPGeneratorRequest(0, row.text));
    ASSERT_FALSE(result.ok()) << row.text;
    EXPECT_EQ(TOTPError::fromError(result.error()), row.cause) << row.text;
    EXPECT_EQ(result.error().message, row.cause.rawValue()) << row.text;
  }
}

TEST(LTTOTP, LogsNothing) {
  const MRCapturingSink log;

  EXPECT_EQ(codeAt(59, kSeed20), "287082");
  EXPECT_EQ(codeAt(59, "otpauth://totp/?secret=1"), "SecretNotBase32");

  EXPECT_THAT(log.records(), IsEmpty());
}

constexpr std::string_view kWatched = "otpauth://totp/Big:x?secret=ORUGS4ZANFZSAYJAONSWG4TFOQ";
constexpr std::string_view kWatchedSpelling = "ORUGS4ZANFZSAYJAONSWG4TFOQ";
constexpr std::string_view kWatchedSeed = "this is a secret";

TEST(LTTOTP, LeavesNoSeedInFreedMemory) {
  const QNFreedBlockWatch spelling(kWatchedSpelling);
  const QNFreedBlockWatch seed(kWatchedSeed);

  EXPECT_EQ(codeAt(59, kWatched).size(), 6u);
  EXPECT_EQ(codeAt(59, "ORUGS4ZANFZSAYJAONSWG4TFOQ======").size(), 6u);
  EXPECT_EQ(codeAt(59, "steam://ORUGS4ZANFZSAYJAONSWG4TFOQ").size(), 5u);
  EXPECT_EQ(codeAt(59, "otpauth://totp/?digits=x&secret=ORUGS4ZANFZSAYJAONSWG4TFOQ"),
            "InvalidDigits");
  EXPECT_EQ(codeAt(59, "otpauth://totp/?secret=ORUGS4ZANFZSAYJAONSWG4TFOQ1"), "SecretNotBase32");
  EXPECT_EQ(codeAt(59, "otpauth://totp/?secret=ORUGS4ZANFZSAYJAONSWG4TFOQM"),
            "SecretFailedDecoding");

  EXPECT_EQ(spelling.found(), 0u);
  EXPECT_EQ(seed.found(), 0u);
}

TEST(LTTOTP, LeavesNoSeedOnTheStack) {
  std::size_t size = 0;
  const auto work = [&] { size = codeAt(59, kWatched).size(); };

  const std::size_t spelling = remainsOnStack(kWatchedSpelling, work);
  const std::size_t seed = remainsOnStack(kWatchedSeed, work);

  EXPECT_EQ(spelling, 0u);
  EXPECT_EQ(seed, 0u);
  EXPECT_EQ(size, 6u);
}

}  // namespace
}  // namespace quillon
