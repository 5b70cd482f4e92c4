// A program of its own: the resource folder, whose German table has a broken second line, is asked
// for once in a process, and a table is read once.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

using testing::Each;
using testing::ElementsAre;

class BrokenTable final : public testing::Environment {
  void SetUp() override { setenv("QUILLON_RESOURCES", QUILLON_TESTDATA "/broken-line", 1); }
};
[[maybe_unused]] testing::Environment* const kBrokenTable =
    testing::AddGlobalTestEnvironment(new BrokenTable);

TEST(QNLocalizationReports, MayBeLocalizedByTheSinkThatGetsThem) {
  constexpr std::size_t kThreads = 4;
  std::vector<std::string> reports;  // a sink is called on one thread at a time
  auto before = MRLogger::sharedLogger().setSink([&reports](const MRLogRecord& record) {
    reports.push_back(record.text + ": " + QNLocalizedString("Login"));
  });
  QNLocalization::sharedLocalization().setLanguage("de");
  std::vector<std::string> texts(kThreads);

  std::vector<std::thread> threads;
  for (std::string& text : texts) {
    threads.emplace_back([&text] { text = QNLocalizedString("Password"); });
  }
  for (std::thread& thread : threads) thread.join();
  MRLogger::sharedLogger().setSink(std::move(before));

  EXPECT_THAT(texts, Each("Passwort"));
  EXPECT_THAT(reports, ElementsAre("Unable to read localization table de: line 2: Anmeldung"));
}

}  // namespace
}  // namespace quillon
