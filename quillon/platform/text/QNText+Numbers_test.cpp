#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

struct NumberCase {
  const char* locale;
  const char* small;
  const char* large;  // 1234567
};
class QNTextNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(QNTextNumber, IsWrittenAsTheLocaleDoes) {
  const QNScopedLocale locale(GetParam().locale);

  EXPECT_EQ(qn_formatNumber(12), GetParam().small);
  EXPECT_EQ(qn_formatNumber(1'234'567), GetParam().large);
}

// As the CLDR's tables of numbers have it.
INSTANTIATE_TEST_SUITE_P(Locales, QNTextNumber,
                         testing::Values(NumberCase{"en-US", "12", "1,234,567"},
                                         NumberCase{"de-DE", "12", "1.234.567"},
                                         NumberCase{"de-CH", "12", "1’234’567"},
                                         NumberCase{"fr-FR", "12", "1\u202F234\u202F567"},
                                         NumberCase{"en-IN", "12", "12,34,567"},
                                         NumberCase{"ja-JP", "12", "1,234,567"},
                                         NumberCase{"ar-EG", "١٢", "١٬٢٣٤٬٥٦٧"},
                                         NumberCase{"no such locale!", "12", "1,234,567"}));

TEST(QNTextNumbers, ReachFromZeroToTheEndOf64Bits) {
  const QNScopedLocale locale("en-US");

  EXPECT_EQ(qn_formatNumber(0), "0");
  EXPECT_EQ(qn_formatNumber(std::numeric_limits<std::uint64_t>::max()),
            "18,446,744,073,709,551,615");
}

TEST(QNTextNumbers, ManyThreadsWriteThemAtOnce) {
  const QNScopedLocale locale("de-DE");
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};

  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&wrong] {
      for (int k = 0; k < 1000; ++k) wrong += qn_formatNumber(1234) != "1.234";
    });
  }
  for (auto& thread : threads) thread.join();

  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace quillon
