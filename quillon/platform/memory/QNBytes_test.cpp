#include "quillon/platform/memory/QNBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>

#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

constexpr std::string_view kNeedle = "correct horse battery staple";

// What the observer saw since the start of the test.
struct Released {
  static inline std::size_t blocks;
  static inline bool allZero;
  static void observe(const void* block, std::size_t size) {
    const auto* const bytes = static_cast<const unsigned char*>(block);
    ++blocks;
    allZero = allZero && std::all_of(bytes, bytes + size, [](unsigned char b) { return b == 0; });
  }
};

class QNBytes : public testing::Test {
 protected:
  QNBytes() {
    Released::blocks = 0;
    Released::allZero = true;
    setReleasedBlockObserver(Released::observe);
  }
  ~QNBytes() override { setReleasedBlockObserver(nullptr); }
};

TEST_F(QNBytes, AreZerosWhenTheirBlockIsReleased) {
  { const Bytes bytes = toBytes(bytesOf(kNeedle)); }

  EXPECT_EQ(Released::blocks, 1u);
  EXPECT_TRUE(Released::allZero);
}

TEST_F(QNBytes, AreZerosInEveryBlockThatTheyOutgrow) {
  const QNFreedBlockWatch watch(kNeedle);
  {
    Bytes bytes;
    for (int i = 0; i < 200; ++i) bytes.insert(bytes.end(), kNeedle.begin(), kNeedle.end());
    EXPECT_GT(Released::blocks, 3u);
  }

  EXPECT_TRUE(Released::allZero);
  EXPECT_EQ(watch.found(), 0u);
}

TEST_F(QNBytes, AreSeenByTheWatchWhenAnotherBufferHoldsThem) {
  const QNFreedBlockWatch watch(kNeedle);

  void* const unwiped = ::operator new(64);
  std::memcpy(unwiped, kNeedle.data(), kNeedle.size());
  ::operator delete(unwiped);

  EXPECT_EQ(watch.found(), 1u);
}

TEST_F(QNBytes, AreLeftAloneWhenMadeOfACertainLength) {
  // A block is taken that lies where another was: nothing may be written into it.
  alignas(16) std::uint8_t place[4] = {1, 2, 3, 4};

  for (std::uint8_t& byte : place) QNWipingAllocator<std::uint8_t>().construct(&byte);

  EXPECT_EQ(std::accumulate(std::begin(place), std::end(place), 0), 10);
}

TEST_F(QNBytes, BelongToTextAndBack) {
  const std::string_view text("a\0b", 3);

  const Bytes bytes = toBytes(bytesOf(text));

  EXPECT_EQ(bytes, (Bytes{'a', 0, 'b'}));
  EXPECT_EQ(textOf(bytes), text);
}

TEST(wipe, OverwritesExactlyTheBlock) {
  std::array<char, 6> block{'a', 'b', 'c', 'd', 'e', 'f'};

  wipe(block.data() + 1, 4);
  wipe(nullptr, 0);

  EXPECT_EQ(block, (std::array<char, 6>{'a', 0, 0, 0, 0, 'f'}));
}

TEST(equalInConstantTime, ComparesLengthAndEveryByte) {
  const Bytes bytes{1, 2, 3};

  EXPECT_TRUE(equalInConstantTime(bytes, Bytes{1, 2, 3}));
  EXPECT_TRUE(equalInConstantTime({}, {}));
  EXPECT_FALSE(equalInConstantTime(bytes, Bytes{9, 2, 3}));
  EXPECT_FALSE(equalInConstantTime(bytes, Bytes{1, 2, 9}));
  EXPECT_FALSE(equalInConstantTime(bytes, Bytes{1, 2}));
  EXPECT_FALSE(equalInConstantTime(bytes, {}));
}

}  // namespace
}  // namespace quillon
