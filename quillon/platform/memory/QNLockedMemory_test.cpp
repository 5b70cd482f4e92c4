#include "quillon/platform/memory/QNLockedMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <thread>

namespace quillon {
namespace {

class QNLockedMemorySizes : public testing::TestWithParam<std::size_t> {};

TEST_P(QNLockedMemorySizes, AreWholeAndCounted) {
  const std::size_t size = GetParam();
  const std::size_t before = lockedBytesInUse();

  auto* const block = static_cast<unsigned char*>(lockedAllocate(size));
  std::memset(block, 0xa5, size);

  EXPECT_TRUE(std::all_of(block, block + size, [](unsigned char b) { return b == 0xa5; }));
  EXPECT_EQ(lockedBytesInUse(), before + size);
  lockedFree(block, size);
  EXPECT_EQ(lockedBytesInUse(), before);
}

INSTANTIATE_TEST_SUITE_P(AroundABlock, QNLockedMemorySizes, testing::Values(1, 64, 65, 256, 20000));

TEST(QNLockedMemory, IsWipedWhenFreed) {
  auto* const block = static_cast<unsigned char*>(lockedAllocate(64));
  std::memset(block, 0xa5, 64);

  lockedFree(block, 64);

  // A small block stays ours: only its first bytes are used, to find the next free one.
  EXPECT_TRUE(
      std::all_of(block + sizeof(void*), block + 64, [](unsigned char b) { return b == 0; }));
}

TEST(QNLockedMemory, GivesAFreedBlockAgain) {
  void* const first = lockedAllocate(64);
  lockedFree(first, 64);

  void* const second = lockedAllocate(64);

  EXPECT_EQ(second, first);
  lockedFree(second, 64);
}

TEST(QNLockedMemory, KeepsManyBlocksApart) {
  constexpr std::size_t kCount = 1000;  // several slabs
  const std::size_t before = lockedBytesInUse();
  std::vector<unsigned char*> blocks;
  for (std::size_t i = 0; i < kCount; ++i) {
    blocks.push_back(static_cast<unsigned char*>(lockedAllocate(64)));
    std::memset(blocks.back(), static_cast<int>(i % 251), 64);
  }

  bool intact = true;
  for (std::size_t i = 0; i < kCount; ++i) {
    intact = intact &&
             std::all_of(blocks[i], blocks[i] + 64, [&](unsigned char b) { return b == i % 251; });
  }

  EXPECT_TRUE(intact);
  EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()).size(), kCount);
  for (unsigned char* const block : blocks) lockedFree(block, 64);
  EXPECT_EQ(lockedBytesInUse(), before);
}

TEST(QNLockedMemory, MayBeUsedFromManyThreads) {
  const std::size_t before = lockedBytesInUse();
  const auto work = [] {
    for (int i = 0; i < 500; ++i) {
      const QNKeyBytes raw(64, static_cast<std::uint8_t>(i));
      QNKeyBytes copy = raw;
      copy[0] = 1;
    }
  };

  std::thread first(work), second(work);
  first.join();
  second.join();

  EXPECT_EQ(lockedBytesInUse(), before);
}

TEST(QNKeyBytes, CountWhileTheyLive) {
  const std::size_t before = lockedBytesInUse();
  {
    const QNKeyBytes raw(64, 7);
    EXPECT_EQ(lockedBytesInUse(), before + 64);
  }

  EXPECT_EQ(lockedBytesInUse(), before);
}

}  // namespace
}  // namespace quillon
