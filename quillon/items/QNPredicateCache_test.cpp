#include "quillon/items/QNPredicateCache.h"

#include <thread>

#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

TEST(QNPredicateCache, GivesTheSameTestForTheSameText) {
  QNPredicateCache cache;

  const auto first = cache.predicateForString("bank");

  EXPECT_EQ(cache.predicateForString("bank"), first);
  EXPECT_NE(cache.predicateForString("Bank"), first);
  EXPECT_EQ(first->searched(), "bank");
  EXPECT_EQ(cache.count(), 2u);
}

TEST(QNPredicateCache, KeepsTenAndPutsOutTheOneLongestUnasked) {
  QNPredicateCache cache;
  const auto first = cache.predicateForString("0");
  const auto second = cache.predicateForString("1");
  for (int i = 2; i < 10; ++i) cache.predicateForString(std::to_string(i));
  EXPECT_EQ(cache.predicateForString("0"), first);

  cache.predicateForString("10");

  EXPECT_EQ(cache.count(), 10u);
  EXPECT_EQ(cache.predicateForString("0"), first);
  EXPECT_NE(cache.predicateForString("1"), second);
}

TEST(QNPredicateCache, ATestThatWasPutOutStillWorks) {
  QNPredicateCache cache;
  const auto test = cache.predicateForString("bank");

  cache.removeAllObjects();

  EXPECT_EQ(cache.count(), 0u);
  EXPECT_TRUE(test->matches("My Bank"));
}

TEST(QNPredicateCache, MayBeUsedFromAnyThread) {
  QNPredicateCache cache;
  const auto work = [&cache] {
    for (int i = 0; i < 2000; ++i) {
      const std::string text = std::to_string(i % 15);
      ASSERT_EQ(cache.predicateForString(text)->searched(), text);
      if (i % 100 == 0) cache.removeAllObjects();
    }
  };

  std::thread one(work);
  std::thread two(work);
  one.join();
  two.join();

  EXPECT_LE(cache.count(), QNPredicateCache::kCountLimit);
}

}  // namespace
}  // namespace quillon
