#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <thread>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

QNScopedRandom::Source filling(std::uint8_t with) {
  return [with](std::span<std::uint8_t> out) { std::fill(out.begin(), out.end(), with); };
}

TEST(mr_randomData, HasTheLengthThatWasAskedFor) {
  for (const std::size_t length : {0u, 1u, 256u, 257u, 1024u, 100'000u}) {
    EXPECT_EQ(mr_randomData(length).size(), length);
  }
}

TEST(mr_randomData, NeverComesTwice) {
  std::set<std::string> seen;

  for (int i = 0; i < 10'000; ++i) seen.insert(hexText(mr_randomData(16)));

  EXPECT_EQ(seen.size(), 10'000u);
}

TEST(mr_randomData, HasAsManyOnesAsZeros) {
  std::size_t ones = 0;
  for (int i = 0; i < 1'000; ++i) {
    for (std::uint8_t byte : mr_randomData(100)) {
      for (; byte != 0; byte = static_cast<std::uint8_t>(byte & (byte - 1))) ++ones;
    }
  }

  // 800,000 bits: eight standard deviations around a half.
  EXPECT_NEAR(static_cast<double>(ones), 400'000, 3'600);
}

TEST(mr_randomData, DiffersBetweenThreads) {
  Bytes first, second;
  std::thread one([&] { first = mr_randomData(32); });
  std::thread two([&] { second = mr_randomData(32); });
  one.join();
  two.join();

  EXPECT_NE(first, second);
}

TEST(mr_randomData, DiffersInAForkedChild) {
  mr_randomData(16);  // so that there is a batch to inherit
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);

  const pid_t child = fork();
  if (child == 0) {
    const Bytes drawn = mr_randomData(32);
    _exit(write(ends[1], drawn.data(), drawn.size()) == 32 ? 0 : 1);
  }
  const Bytes own = mr_randomData(32);
  Bytes childs(32);
  const auto count = read(ends[0], childs.data(), childs.size());
  int status = 1;
  waitpid(child, &status, 0);

  EXPECT_EQ(status, 0);
  EXPECT_EQ(count, 32);
  EXPECT_NE(childs, own);
  close(ends[0]);
  close(ends[1]);
}

TEST(fillRandomKey, FillsTheWholeAndNeverComesTwice) {
  std::set<std::string> seen;
  std::array<bool, 64> changed{};

  for (int i = 0; i < 1'000; ++i) {
    std::array<std::uint8_t, 64> key{};
    fillRandomKey(key);
    seen.insert(hexText(key));
    for (std::size_t at = 0; at < key.size(); ++at) changed[at] |= key[at] != 0;
  }
  fillRandomKey({});

  EXPECT_EQ(seen.size(), 1'000u);
  EXPECT_THAT(changed, testing::Each(true));
}

TEST(fillRandomKey, TakesItsBytesFromTheSourceThatIsSet) {
  const QNScopedRandom ones(filling(0xff));
  std::array<std::uint8_t, 3> key{};

  fillRandomKey(key);

  EXPECT_EQ(key, (std::array<std::uint8_t, 3>{0xff, 0xff, 0xff}));
}

TEST(randomBelow, StaysInRange) {
  for (const std::uint32_t bound : {1u, 2u, 3u, 58u, 0x80000001u, 0xffffffffu}) {
    for (int i = 0; i < 1'000; ++i) EXPECT_LT(randomBelow(bound), bound);
  }
}

TEST(randomBelow, ReachesBothEnds) {
  const QNScopedRandom zeros(filling(0x00));
  EXPECT_EQ(randomBelow(10), 0u);

  // Above the largest multiple of 7, a number is thrown away and another drawn.
  std::uint8_t next = 0xff;
  const QNScopedRandom falling([&](std::span<std::uint8_t> out) {
    std::fill(out.begin(), out.end(), next);
    next = 0x00;
  });
  EXPECT_EQ(randomBelow(7), 0u);
  EXPECT_EQ(next, 0x00);
}

TEST(randomBelow, KeepsTheLargestNumberWhereItDoesNotBias) {
  const QNScopedRandom ones(filling(0xff));

  EXPECT_EQ(randomBelow(16), 15u);
}

TEST(randomBelow, GivesEachNumberAsOften) {
  // A repeatable source. Without a second draw, numbers in the lower two thirds of this range
  // would come in three cases of four.
  std::mt19937 generator(7);
  const QNScopedRandom source([&](std::span<std::uint8_t> out) {
    for (std::uint8_t& byte : out) byte = static_cast<std::uint8_t>(generator());
  });
  int low = 0;
  constexpr int kDraws = 30'000;

  for (int i = 0; i < kDraws; ++i) low += randomBelow(0x60000000u) < 0x40000000u ? 1 : 0;

  // Five standard deviations around two thirds of the draws.
  EXPECT_NEAR(low, 20'000, 408);
}

TEST(mr_uuid, HasVersionFourAndItsVariant) {
  {
    const QNScopedRandom zeros(filling(0x00));
    EXPECT_EQ(mr_uuid(), "00000000-0000-4000-8000-000000000000");
  }
  const QNScopedRandom ones(filling(0xff));

  EXPECT_EQ(mr_uuid(), "ffffffff-ffff-4fff-bfff-ffffffffffff");
}

TEST(mr_uuid, NeverComesTwice) {
  std::set<std::string> seen;

  for (int i = 0; i < 10'000; ++i) {
    const std::string uuid = mr_uuid();
    ASSERT_THAT(uuid, testing::MatchesRegex(
                          "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
    seen.insert(uuid);
  }

  EXPECT_EQ(seen.size(), 10'000u);
}

TEST(mr_shortUUID, IsANumberOf128BitsInBase58) {
  // Worked out with Python's whole numbers.
  {
    const QNScopedRandom zeros(filling(0x00));
    EXPECT_EQ(mr_shortUUID(), "1111111111111111111111");
  }
  {
    const QNScopedRandom ones(filling(0xff));
    EXPECT_EQ(mr_shortUUID(), "YcVfxkQb6JRzqk5kF2tNLv");
  }
  const QNScopedRandom counting([](std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<std::uint8_t>(i);
  });
  EXPECT_EQ(mr_shortUUID(), "112drXXUifSrRnXLGbXg8E");
}

TEST(mr_shortUUID, NeverComesTwice) {
  std::set<std::string> seen;

  for (int i = 0; i < 10'000; ++i) {
    const std::string uuid = mr_shortUUID();
    ASSERT_EQ(uuid.size(), 22u);
    ASSERT_EQ(uuid.find_first_not_of("123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz"),
              std::string::npos);
    seen.insert(uuid);
  }

  EXPECT_EQ(seen.size(), 10'000u);
}

}  // namespace
}  // namespace quillon
