#include "quillon/organisation/predicates/QNItemKeyPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/organisation/predicates/internal/QNPredicateTesting.h"

namespace quillon {
namespace {

// A login that has something at each key path.
std::shared_ptr<QNLogin> filledLogin() {
  auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(localVault());
  login->setCategoryUUID("001");
  login->setTitle("Zürich Bank");
  login->setUsername("wendy");
  login->setPassword("correct horse");
  login->setNotesPlain("a note");
  login->addURLString("https://www.bank.example/login");
  login->setTags({"money", "Travel/Tickets"});
  login->setFolderUUID("FOLDER");
  login->setNumberOfAttachments(2);
  login->setCreatedAt(1'600'000'000);
  login->setUpdatedAt(1'700'000'000);
  login->setOverviewObject(Json(57), QNItemOverviewPasswordStrengthKey);
  return login;
}

std::string answerOf(QNItem& item, std::string_view format) {
  QNItemKeyPathSource source(item);
  return answer(source, format);
}

TEST(QNItemKeyPaths, AreThoseThatQuestionsMayName) {
  std::vector<std::string_view> names;
  for (const QNItemKeyPath& it : itemKeyPaths()) names.push_back(it.name);

  EXPECT_THAT(names, testing::UnorderedElementsAre("title", "username", "tagsForSearch",
                                                   "allValuesForSearch", "URLStringsForSearch",
                                                   "password", "createdAtAsDate", "updatedAtAsDate",
                                                   "notesPlain", "categoryUUID", "passwordStrength",
                                                   "numberOfAttachments", "folderUUID"));
}

TEST(QNItemKeyPaths, AreAnsweredByAnItem) {
  const auto login = filledLogin();
  for (const char* const question :
       {"title == \"Zürich Bank\"", "title ==[cd] \"ZURICH bank\"", "username == \"wendy\"",
        "ANY tagsForSearch BEGINSWITH[cd] \"travel/\"", "tagsForSearch CONTAINS \"money\"",
        "ANY allValuesForSearch CONTAINS \"correct\"",
        "ANY URLStringsForSearch CONTAINS \"bank.example\"", "password == \"correct horse\"",
        "createdAtAsDate == DATE \"2020-09-13T12:26:40Z\"", "updatedAtAsDate > createdAtAsDate",
        "notesPlain == \"a note\"", "categoryUUID == \"001\"", "passwordStrength == 57",
        "numberOfAttachments == 2", "folderUUID == \"FOLDER\""}) {
    EXPECT_EQ(answerOf(*login, question), "yes") << question;
    EXPECT_EQ(answerOf(*login, "NOT (" + std::string(question) + ")"), "no") << question;
  }
}

TEST(QNItemKeyPaths, OfAGeneratedPasswordHaveItAmongAllValues) {
  const auto item = std::make_shared<QNPassword>(initNew);
  item->setProfile(localVault());
  item->setPassword("correct horse");

  EXPECT_EQ(answerOf(*item, "ANY allValuesForSearch == \"correct horse\""), "yes");
  EXPECT_EQ(answerOf(*item, "ANY allValuesForSearch == \"horse\""), "no");
}

TEST(QNItemKeyPaths, OfAnEmptyItemAreAbsentOrEmpty) {
  const auto item = newItem(localVault());
  for (const char* const question :
       {"title == \"Unnamed\"", "username == NIL", "tagsForSearch == {}", "password == NIL",
        "notesPlain == NIL", "categoryUUID == NIL", "passwordStrength == 0",
        "numberOfAttachments == 0", "folderUUID == NIL", "URLStringsForSearch == {}"}) {
    EXPECT_EQ(answerOf(*item, question), "yes") << question;
  }
}

TEST(QNItemKeyPaths, OfWrongKindsAreTakenForNothing) {
  const auto item = newItem(localVault());
  item->setOverviewObject(Json(5), kOverviewTitle);
  item->setOverviewObject(Json("money"), kTags);

  EXPECT_EQ(answerOf(*item, "title == \"Unnamed\""), "yes");
  EXPECT_EQ(answerOf(*item, "ANY tagsForSearch == \"money\""), "no");
}

TEST(QNItemKeyPaths, TellANameThatItemsDoNotHave) {
  const auto item = newItem(localVault());

  EXPECT_EQ(answerOf(*item, "colour == 1"), "there is no key path colour");
  EXPECT_EQ(itemKeyPathNamed("Title"), nullptr);
}

TEST(QNItemKeyPaths, OpenNoDetailsForWhatTheOverviewTells) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setTitle("Bank");
  row->setPassword("hidden");
  save(*row);
  const auto item = opened(*row, vault);
  QNItemKeyPathSource source(*item);
  QNPredicateBudget budget;
  const auto question = predicate(
      "title == \"Bank\" AND passwordStrength >= 0 AND ANY tagsForSearch == \"x\" AND "
      "numberOfAttachments == 0 AND folderUUID == NIL AND password == \"hidden\"");

  const auto truth = question->evaluateWithoutDetails(source, budget);

  EXPECT_EQ(truth.value(), QNTruth::no);
  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), 0u);
}

TEST(QNItemKeyPaths, OpenDetailsWhereTheyAreAskedFor) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setPassword("hidden");
  save(*row);
  const auto item = opened(*row, vault);

  EXPECT_EQ(answerOf(*item, "password == \"hidden\""), "yes");
  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), 1u);
}

TEST(QNItemKeyPaths, AreAskedWhileNobodyElseChangesTheItem) {
  const auto item = filledLogin();
  const auto isFreeForOthers = [&item] {
    bool isFree = false;
    std::thread([&] {
      isFree = item->monitor().try_lock();
      if (isFree) item->monitor().unlock();
    }).join();
    return isFree;
  };
  {
    const QNItemKeyPathSource source(*item);
    EXPECT_FALSE(isFreeForOthers());
  }
  EXPECT_TRUE(isFreeForOthers());
}

TEST(QNItemKeyPaths, CountFilesInTheDetailsOfAnAccountsItem) {
  const auto local = newItem(localVault());
  const auto hosted = newItem(accountVault());
  const auto keyPath = *QNKeyPath::named("numberOfAttachments");

  EXPECT_FALSE(QNItemKeyPathSource(*local).needsDetails(keyPath));
  EXPECT_TRUE(QNItemKeyPathSource(*hosted).needsDetails(keyPath));
}

}  // namespace
}  // namespace quillon
