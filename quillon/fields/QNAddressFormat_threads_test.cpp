// Threads that meet before anything was read: the formats, the names and the codes. In a program
// of its own, since what is read once stays.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <latch>
#include <thread>

#include "quillon/fields/QNAddressFormat.h"
#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::Each;
using testing::ElementsAre;

[[maybe_unused]] const int kResources =
    setenv("QUILLON_RESOURCES", QUILLON_TESTDATA "/addresses", 1);
constexpr std::size_t kThreads = 8;

struct Seen {
  std::string displayed;
  std::string name;
  std::vector<std::string> codes;
};

Seen look() {
  QNAddressValue address;
  address.setStreet("s");
  address.setCountry("de");
  return {std::string(address.stringValue().reveal()),
          QNAddressFormat::localizedCountryForCode("us"), QNAddressFormat::countryCodes()};
}

TEST(QNAddressFormatThreads, ThatMeetBeforeAnythingWasReadSeeTheSame) {
  const QNScopedLocale locale("en-US");
  const QNScopedTemplates templates{
      R"({"uuid":"004","localizedStrings":{"menu.country.de":"Germany",)"
      R"("menu.country.us":"United States","menu.country.jp":"Japan",)"
      R"("menu.country.at":"Austria"}})"};
  const MRCapturingSink sink;
  std::latch start(static_cast<std::ptrdiff_t>(kThreads));
  std::vector<Seen> seen(kThreads);
  std::vector<std::thread> threads;

  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&start, &mine = seen[i]] {
      start.arrive_and_wait();
      mine = look();
    });
  }
  for (std::thread& thread : threads) thread.join();

  for (const Seen& each : seen) {
    EXPECT_EQ(each.displayed, "s\n \nGermany");
    EXPECT_EQ(each.name, "United States");
    EXPECT_THAT(each.codes, ElementsAre("at", "de", "jp", "us"));
  }
  EXPECT_THAT(errors(sink), Each("No localized country name for xx"));
  EXPECT_GE(errors(sink).size(), 1u);
  EXPECT_LE(errors(sink).size(), kThreads);
}

}  // namespace
}  // namespace quillon
