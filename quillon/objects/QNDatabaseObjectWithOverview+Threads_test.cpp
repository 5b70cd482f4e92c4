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

TEST_P(QNOverviewThreads, ReadTheOldOverviewOrTheNewOneWhileAnotherIsStored) {
  const auto owner = vault();
  const auto before = owner->encryptOverview(bytesOf(R"({"title":"a"})"));
  const auto after = owner->encryptOverview(bytesOf(R"({"title":"b"})"));

  for (int round = 0; round < 200; ++round) {
    const auto page = storedPage(owner, before);
    std::optional<JsonObject> seen;

    atOnce([&] { page->setOverviewData(after); }, [&] { seen = page->overviewCopy(); });

    ASSERT_TRUE(seen.has_value());
    ASSERT_THAT(jsonText(*seen), testing::AnyOf(R"({"title":"a"})", R"({"title":"b"})"));
    ASSERT_EQ(jsonText(page->overviewCopy().value()), R"({"title":"b"})");
  }
}

TEST_P(QNOverviewThreads, SeeARepairAsAWhole) {
  constexpr std::string_view broken = R"({"a":null,"b":{"c":null,"d":1},"e":null})";
  const auto owner = vault();
  const auto data = owner->encryptOverview(bytesOf(broken));

  for (int round = 0; round < 200; ++round) {
    const auto page = storedPage(owner, data);
    std::optional<JsonObject> seen;

    atOnce([&] { page->validateAndRepairImportedProperties(); },
           [&] { seen = page->overviewCopy(); });

    ASSERT_TRUE(seen.has_value());
    ASSERT_THAT(jsonText(*seen), testing::AnyOf(std::string(broken), R"({"b":{"d":1}})"));
    ASSERT_EQ(jsonText(page->overviewCopy().value()), R"({"b":{"d":1}})");
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

struct LockedCase {
  const char* name;
  std::string_view during;  // what the base calls meanwhile
  void (*operation)(QNTestPage&);
};
class QNOverviewLock : public testing::TestWithParam<LockedCase> {};

TEST_P(QNOverviewLock, IsHeldDuringTheWholeDecision) {
  const auto vault = openLocalVault();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf(R"({"title":"a"})")));
  page->markRowDirty();
  std::vector<bool> locked;
  page->whileCalled = [&](std::string_view operation) {
    if (operation == GetParam().during) locked.push_back(isLockedForOthers(*page));
  };

  GetParam().operation(*page);

  EXPECT_EQ(locked, std::vector<bool>{true});
  EXPECT_FALSE(isLockedForOthers(*page));
}

INSTANTIATE_TEST_SUITE_P(
    Operations, QNOverviewLock,
    testing::Values(LockedCase{"SettingAnObject", "markRowDirty",
                               [](QNTestPage& it) { it.setOverviewObject(Json(5), "n"); }},
                    LockedCase{"RemovingAnObject", "markRowDirty",
                               [](QNTestPage& it) { it.setOverviewObject(std::nullopt, "title"); }},
                    LockedCase{"SettingAText", "markRowDirty",
                               [](QNTestPage& it) { it.setOverviewText("b", "title"); }},
                    LockedCase{"ReplacingTheWhole", "markRowDirty",
                               [](QNTestPage& it) { it.copyOverview(jsonObject(R"({"n":5})")); }},
                    LockedCase{"Saving", "willSerialize", [](QNTestPage& it) { it.willSave(); }},
                    // Before it saves, which takes the lock by itself.
                    LockedCase{"Archiving", "dirtyRow", [](QNTestPage& it) { archiveOf(it); }}),
    [](const auto& operation) { return operation.param.name; });

INSTANTIATE_TEST_SUITE_P(Generations, QNOverviewThreads,
                         testing::Values(kProfileTypeLocalVault, kProfileTypeAccountVault));

}  // namespace
}  // namespace quillon
