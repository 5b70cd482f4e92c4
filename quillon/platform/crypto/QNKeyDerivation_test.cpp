#include "quillon/platform/crypto/internal/QNKeyDerivation.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "quillon/platform/crypto/internal/QNCryptoTesting.h"
#include "quillon/platform/internal/QNSanitizers.h"

namespace quillon {
namespace {

using namespace cryptotesting;

Bytes plainBytes(const QNKeyBytes& key) {
  return toBytes(key);
}

TEST(QNKeyDerivation, ExpandsAsPublished) {
  for (const auto& each : published().at("HKDF").as_array()) {
    const Bytes wanted = hexAt(each, "derived");

    const QNKeyBytes derived = hkdf(each.at("hash").as_string().c_str(), hexAt(each, "keyMaterial"),
                                    hexAt(each, "salt"), hexAt(each, "info"), wanted.size());

    EXPECT_EQ(plainBytes(derived), wanted) << each.at("source");
  }
}

TEST(QNKeyDerivation, ExpandsWithSHA512AsWorkedOutElsewhere) {
  const auto& wanted = frozen().at("HKDF-SHA512");

  const QNKeyBytes derived = hkdf("SHA512", hexAt(wanted, "keyMaterial"), hexAt(wanted, "salt"),
                                  hexAt(wanted, "info"), hexAt(wanted, "derived").size());

  EXPECT_EQ(plainBytes(derived), hexAt(wanted, "derived"));
}

TEST(QNKeyDerivation, ExpandsNothingWithoutKeyMaterial) {
  const QNKeyBytes derived = hkdf("SHA512", {}, {}, bytesOf("info"), 64);

  EXPECT_TRUE(derived.empty());
}

TEST(QNKeyDerivation, ExpandsNoMoreThanTheHashAllows) {
  const Bytes material = patterned(64);  // and 255 hashes of 64 bytes are the most

  EXPECT_EQ(hkdf("SHA512", material, {}, {}, 16'320).size(), 16'320u);
  EXPECT_TRUE(hkdf("SHA512", material, {}, {}, 16'321).empty());
}

// Ends the process: with 512 MiB of data, 64 MiB can be had for a key and 1 GiB can't.
[[noreturn]] void deriveWithinALimit() {
  const rlimit limit{std::size_t{512} << 20, std::size_t{512} << 20};
  if (setrlimit(RLIMIT_DATA, &limit) != 0) std::_Exit(2);
  const bool some = !argon2id("password", patterned(16), 65'536, 64).empty();
  const bool none = argon2id("password", patterned(16), 1'048'576, 64).empty();
  std::_Exit(some && none ? 0 : 1);
}

TEST(QNKeyDerivation, GivesNoKeyWhereItsMemoryCantBeHad) {
  if (runsUnderSanitizer()) GTEST_SKIP() << "the sanitizer needs the memory";
  EXPECT_EXIT(deriveWithinALimit(), testing::ExitedWithCode(0), "");
}

TEST(QNKeyDerivation, CalibratesInProportionToHalfASecond) {
  EXPECT_EQ(calibratedIterations(0.25), 131'072u);
  EXPECT_EQ(calibratedIterations(0.3), 108'544u);  // 109,226 down to whole MiB
}

TEST(QNKeyDerivation, CalibratesWithinTheBoundsOnASlowAndAFastMachine) {
  EXPECT_EQ(calibratedIterations(60), 65'536u);
  EXPECT_EQ(calibratedIterations(0.5), 65'536u);
  EXPECT_EQ(calibratedIterations(0.001), 262'144u);
  EXPECT_EQ(calibratedIterations(0), 262'144u);
}

}  // namespace
}  // namespace quillon
