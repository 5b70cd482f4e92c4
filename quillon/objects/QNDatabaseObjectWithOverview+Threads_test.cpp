// Worth most under the thread sanitizer.

#include <atomic>
#include <thread>

#include "quillon/objects/internal/QNObjectsTesting.h"

namespace quillon {
namespace {

// Runs both at once, as near as threads allow.
void atOnce(const std::function<void()>& first, const std::function<void()>& second) {
  std::atomic<int> ready{0};
  const auto run = [&ready](const std::function<void()>& work) {
    ++ready;
    while (ready < 2) std::this_thread::yield();
    work();
  };
  std::thread other(run, second);
  run(first);
  other.join();
}

class QNOverviewThreads : public testing::TestWithParam<std::uint64_t> {
 protected:
  std::shared_ptr<QNGenericProfile> vault() const {
    if (GetParam() == kProfileTypeLocalVault) return openLocalVault();
    return std::make_shared<QNTestServerProfile>();
  }
};

TEST_P(QNOverviewThreads, ShareOneFirstParse) {
  const auto owner = vault();
  const auto data = owner->encryptOverview(bytesOf(R"({"title":"a"})"));

  for (int round = 0; round < 200; ++round) {
    const auto page = storedPage(owner, data);
    const Json* seen[2] = {};

    atOnce([&] { seen[0] = page->overviewObjectForKey("title"); },
           [&] { seen[1] = page->overviewObjectForKey("title"); });

    ASSERT_NE(seen[0], nullptr);
    ASSERT_EQ(seen[0], seen[1]);
    ASSERT_EQ(page->parses, 1);
  }
}

TEST_P(QNOverviewThreads, LoseNoMemberThatTheyWrite) {
  const auto page = storedPage(vault(), std::nullopt);
  const auto writing = [&page](std::string_view prefix) {
    return [&page, prefix] {
      for (int i = 0; i < 200; ++i) {
        page->setOverviewText("x", std::string(prefix) + std::to_string(i));
        page->overviewCopy();
      }
    };
  };

  atOnce(writing("a"), writing("b"));

  EXPECT_EQ(page->overviewCopy()->size(), 400u);
}

INSTANTIATE_TEST_SUITE_P(Generations, QNOverviewThreads,
                         testing::Values(kProfileTypeLocalVault, kProfileTypeAccountVault));

}  // namespace
}  // namespace quillon
