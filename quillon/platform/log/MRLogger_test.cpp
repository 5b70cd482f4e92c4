#include "quillon/platform/log/MRLogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

MRLogger& logger() {
  return MRLogger::sharedLogger();
}

/// Status logs are let through for its lifetime.
struct AllowingStatus {
  explicit AllowingStatus(std::uint32_t subsystems) { logger().allowStatus(subsystems); }
  ~AllowingStatus() { logger().allowStatus(0); }
};

TEST(MRLogger, ReportsAnAssertionWithItsPlace) {
  const MRCapturingSink sink;

  const int line = __LINE__ + 1;
  logger().assertion(DEBUG_DATABASE, "<Item-1>", "Profile is missing");

  const auto records = sink.records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].kind, MRLogKind::assertion);
  EXPECT_EQ(records[0].subsystem, DEBUG_DATABASE);
  EXPECT_EQ(records[0].object, "<Item-1>");
  EXPECT_EQ(records[0].text, "Profile is missing");
  EXPECT_THAT(records[0].file, EndsWith("MRLogger_test.cpp"));
  EXPECT_EQ(records[0].line, line);
  EXPECT_EQ(records[0].method, "TestBody");
}

TEST(MRLogger, FormatsItsArguments) {
  const MRCapturingSink sink;

  logger().error(DEBUG_CRYPTO, {}, "{} of {} failed", 2, std::string("keys"));
  log_error(DEBUG_H9, "code {}", std::uint64_t{7});

  EXPECT_THAT(sink.texts(MRLogKind::error), ElementsAre("2 of keys failed", "code 7"));
}

TEST(MRLogger, ReportsATextThatDoesNotFormatAsItStands) {
  const MRCapturingSink sink;

  log_error(DEBUG_APP, "{} and {}", 1);
  log_error(DEBUG_APP, "an open {");

  EXPECT_THAT(sink.texts(MRLogKind::error), ElementsAre("{} and {}", "an open {"));
}

TEST(MRLogger, DropsStatusUnlessItsSubsystemIsAllowed) {
  const MRCapturingSink sink;

  logger().status(DEBUG_CRYPTO, {}, "dropped");
  {
    const AllowingStatus allowing(DEBUG_CRYPTO | DEBUG_UI);
    logger().status(DEBUG_CRYPTO, {}, "size {}", 3);
    logger().status(DEBUG_DATABASE, {}, "dropped");
    EXPECT_TRUE(LOGGER_ALLOW_LOG_STATUS(DEBUG_UI));
    EXPECT_FALSE(LOGGER_ALLOW_LOG_STATUS(DEBUG_APP));
  }

  EXPECT_THAT(sink.texts(MRLogKind::status), ElementsAre("size 3"));
  EXPECT_EQ(sink.records().size(), 1u);
}

TEST(MRLogger, ReportsEntryAndExitWhileStatusIsAllowed) {
  const MRCapturingSink sink;
  logger().enter(DEBUG_UI, "list", "dropped");
  logger().exit(DEBUG_UI, "list", 1, "dropped");
  const AllowingStatus allowing(DEBUG_UI);

  logger().enter(DEBUG_UI, "list", "in {");
  logger().exit(DEBUG_UI, "list", 0.25, "out");

  const auto records = sink.records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].kind, MRLogKind::enter);
  EXPECT_EQ(records[0].text, "in {");
  EXPECT_EQ(records[1].kind, MRLogKind::exit);
  EXPECT_EQ(records[1].object, "list");
  EXPECT_EQ(records[1].elapsedSeconds, 0.25);
}

TEST(MRLogger, PrintsErrorsAndAssertionsUnlessTold) {
  const auto sink = logger().setSink(nullptr);
  logger().setSink(sink);
  const AllowingStatus allowing(DEBUG_APP);

  testing::internal::CaptureStderr();
  logger().error(DEBUG_APP, "item", "failed {}", 1);
  logger().assertion(DEBUG_APP, {}, "odd");
  logger().status(DEBUG_APP, {}, "quiet");
  const std::string printed = testing::internal::GetCapturedStderr();

  EXPECT_EQ(printed, "quillon: item: failed 1\nquillon: odd\n");
}

TEST(MRLogger, DropsEverythingWithoutASink) {
  auto sink = logger().setSink(nullptr);

  testing::internal::CaptureStderr();
  log_error(DEBUG_APP, "failed");
  const std::string printed = testing::internal::GetCapturedStderr();
  logger().setSink(std::move(sink));

  EXPECT_THAT(printed, IsEmpty());
}

TEST(MRLogger, LetsASinkLog) {
  std::vector<std::string> texts;
  auto before = logger().setSink([&](const MRLogRecord& record) {
    texts.push_back(record.text);
    if (texts.size() == 1) log_error(DEBUG_APP, "from the sink");
  });

  log_error(DEBUG_APP, "first");
  logger().setSink(std::move(before));

  EXPECT_THAT(texts, ElementsAre("first", "from the sink"));
}

TEST(MRLogger, CallsItsSinkForOneThreadAtATime) {
  const MRCapturingSink sink;
  const auto work = [] {
    for (int i = 0; i < 200; ++i) log_error(DEBUG_APP, "number {}", i);
  };

  std::thread first(work), second(work);
  first.join();
  second.join();

  EXPECT_EQ(sink.records().size(), 400u);
}

TEST(MRCapturingSink, GivesWayToAnInnerOneAndComesBack) {
  MRCapturingSink outer;
  log_error(DEBUG_APP, "one");
  {
    const MRCapturingSink inner;
    log_error(DEBUG_APP, "two");
    EXPECT_THAT(inner.texts(MRLogKind::error), ElementsAre("two"));
  }
  log_error(DEBUG_APP, "three");

  EXPECT_THAT(outer.texts(MRLogKind::error), ElementsAre("one", "three"));
  outer.clear();
  EXPECT_THAT(outer.records(), IsEmpty());
}

}  // namespace
}  // namespace quillon
