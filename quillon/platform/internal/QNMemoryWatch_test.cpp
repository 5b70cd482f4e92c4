#include "quillon/platform/internal/QNMemoryWatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace quillon {
namespace {

constexpr std::string_view kNeedle = "seen once in a haystack";

TEST(QNFreedBlockWatch, SeesABlockThatWasAskedForWithoutThrowing) {
  const QNFreedBlockWatch watch(kNeedle);

  void* const block = ::operator new(kNeedle.size(), std::nothrow);
  ASSERT_NE(block, nullptr);
  std::memcpy(block, kNeedle.data(), kNeedle.size());
  ::operator delete(block, std::nothrow);

  EXPECT_EQ(watch.found(), 1u);
}

// Its memory comes from one form of the operators and goes back to another: the address sanitizer
// wants them replaced together.
TEST(QNFreedBlockWatch, StandsAStableSort) {
  std::vector<std::unique_ptr<int>> numbers;
  for (int i = 0; i < 100; ++i) numbers.push_back(std::make_unique<int>(99 - i));

  std::stable_sort(numbers.begin(), numbers.end(),
                   [](const auto& a, const auto& b) { return *a < *b; });

  EXPECT_EQ(*numbers.front(), 0);
  EXPECT_EQ(*numbers.back(), 99);
}

}  // namespace
}  // namespace quillon
