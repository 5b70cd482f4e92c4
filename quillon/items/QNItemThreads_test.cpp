#include <atomic>
#include <thread>

#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"

// What may overlap: reading overview and details, and a save. Worth its time under the thread
// sanitizer.

namespace quillon {
namespace {

void readBesideSaves(const std::shared_ptr<QNGenericProfile>& vault) {
  constexpr int kSaves = 60;
  const auto row = newItem(vault);
  row->setTitle("A title that is longer than what lies inside a value");
  row->setNotesPlain("the notes");
  row->setPassword("first");
  row->setTags({"a", "b"});
  save(*row);
  const auto item = opened(*row, vault);
  item->addURLString("https://www.a.example");
  item->setDetailsData(row->detailsData());  // sealed again: the threads open them
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0};
  const auto read = [&] {
    while (!done) {
      wrong += item->title() != "A title that is longer than what lies inside a value";
      wrong += item->details() == nullptr;
      wrong += item->notesPlain() != "the notes";
      wrong += item->tags().size() != 2;
      wrong += !item->password()->equals("first");
      wrong += item->additionalInformation().value_or("") != "";
      wrong += item->numberOfPreviouslyUsedPasswords() != 0;
      wrong += item->itemSpecifier() == nullptr;
      wrong += item->sectionName() != "A";
      wrong += item->nakedDomain() != "a.example";
      wrong += item->passwordStrength() < 0;
      wrong += item->lastPasswordChange() == 0;
      wrong += item->derivedDomain() != "www.a.example";
      wrong += item->URLString() != "https://www.a.example";
      wrong += item->containsPasswordValue("no such password");
    }
  };

  std::thread one(read);
  std::thread two(read);
  for (int i = 0; i < kSaves; ++i) item->willSave();
  done = true;
  one.join();
  two.join();

  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(opened(*item, vault)->notesPlain(), "the notes");
}

TEST(QNItemThreads, ReadingMayOverlapWithSavingInALocalVault) {
  readBesideSaves(localVault());
}

TEST(QNItemThreads, ReadingMayOverlapWithSavingInAnAccount) {
  readBesideSaves(accountVault());
}

TEST(QNItemThreads, TwoThreadsMayNeedTheKeyAtOnce) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  QNAESKeyRef first;
  QNAESKeyRef second;

  std::thread one([&] { first = item->key(); });
  std::thread two([&] { second = item->key(); });
  one.join();
  two.join();

  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(first->rawKeyData(), second->rawKeyData());
}

template <class One, class Two>
void runTogether(const One& first, const Two& second) {
  std::atomic<int> started{0};
  const auto waitForBoth = [&started] {
    ++started;
    while (started < 2) std::this_thread::yield();
  };
  std::thread one([&] {
    waitForBoth();
    first();
  });
  std::thread two([&] {
    waitForBoth();
    second();
  });
  one.join();
  two.join();
}

TEST(QNItemThreads, TwoThreadsThatAskFirstGetOneSpecifier) {
  const auto item = newItem(localVault());
  std::shared_ptr<const QNItemSpecifier> first;
  std::shared_ptr<const QNItemSpecifier> second;

  runTogether([&] { first = item->itemSpecifier(); }, [&] { second = item->itemSpecifier(); });

  EXPECT_NE(first, nullptr);
  EXPECT_EQ(first, second);
}

constexpr int kTags = 100;

TEST(QNItemThreads, TwoThreadsThatAddTagsLoseNone) {
  const auto item = newItem(localVault());
  const auto add = [&item](const std::string& first) {
    for (int i = 0; i < kTags; ++i) item->addTag(first + std::to_string(i));
  };

  runTogether([&] { add("a"); }, [&] { add("b"); });

  EXPECT_EQ(item->numberOfTags(), 2u * kTags);
}

TEST(QNItemThreads, TwoThreadsThatRemoveAndToggleTagsUndoNothing) {
  const auto item = newItem(localVault());
  std::set<std::string> tags;
  for (int i = 0; i < kTags; ++i) {
    tags.insert("a" + std::to_string(i));
    tags.insert("b" + std::to_string(i) + "/x");
  }
  item->setTags(tags);
  const auto remove = [&item] {
    for (int i = 0; i < kTags; ++i) item->removeTag("a" + std::to_string(i));
  };
  const auto removeAndToggle = [&item] {
    for (int i = 0; i < kTags; ++i) {
      item->removeTagsWithPrefix("b" + std::to_string(i) + "/");
      item->toggleTagForAppleWatch();
      item->toggleTagFor2FA();
    }
    item->toggleTagForHttp();
  };

  runTogether(remove, removeAndToggle);

  EXPECT_THAT(item->tags(), testing::ElementsAre(QNHttpTag));
}

TEST(QNItemThreads, TwoThreadsMayNeedTheSectionsAtOnceBesideASave) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setDetailsObject(jsonValue(R"([{"name":"a","fields":[{"n":"1","k":"string","t":""}]}])"),
                        kDetailsSections);
  save(*row);
  const auto item = opened(*row, vault);
  std::shared_ptr<QNFieldSection> first;
  std::shared_ptr<QNFieldSection> second;

  std::thread one([&] { first = item->findSectionWithName("a"); });
  std::thread two([&] { second = item->fieldSectionAtIndex(0); });
  for (int i = 0; i < 20; ++i) item->willSave();
  one.join();
  two.join();

  EXPECT_NE(first, nullptr);
  EXPECT_EQ(first, second);
}

}  // namespace
}  // namespace quillon
