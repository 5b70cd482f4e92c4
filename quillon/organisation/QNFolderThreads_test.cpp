#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "quillon/organisation/internal/QNFolderTesting.h"

// What may overlap: reading a question, and giving the folder another one. Worth its time under the
// thread sanitizer.

namespace quillon {
namespace {

TEST(QNFolderThreads, NobodySeesAQuestionWithTheVersionOfAnotherOne) {
  constexpr int kRounds = 2'000;
  const auto folder = cleanFolder();
  folder->setSmartFolder(true);
  folder->setOverviewText(mr_base64encode(predicate("tags == \"old\"")->archivedData().value()),
                          "predicate_b64");
  const QNPredicateRef present = predicate("tags == \"new\"");
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0};
  const auto read = [&] {
    while (!done) {
      const std::string text = textOf(folder->smartFolderPredicate());
      wrong += text != "ANY tagsForSearch == \"old\"" && text != "tags == \"new\"";
    }
  };

  std::thread one(read);
  std::thread two(read);
  for (int i = 0; i < kRounds; ++i) {
    folder->setSmartFolderPredicate(present);
    const std::lock_guard lock(folder->monitor());
    folder->setOverviewObject(std::nullopt, "predicate_b64_v4");
    folder->setSmartFolderVersion(3);
  }
  done = true;
  one.join();
  two.join();

  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace quillon
