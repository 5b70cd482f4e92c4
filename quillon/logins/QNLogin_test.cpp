#include "quillon/logins/QNLogin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "quillon/fields/QNItemField.h"
#include "quillon/items/internal/QNQuickAccessTesting.h"
#include "quillon/logins/internal/QNTestRows.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {
namespace {

using testing::HasSubstr;

JsonObject object(std::string_view json) {
  auto parsed = mr_objectFromJSONStringWithError(json);
  EXPECT_TRUE(parsed) << json;
  return parsed ? *std::move(parsed) : JsonObject();
}

class QNLoginTest : public testing::Test {
 protected:
  void SetUp() override { QNLocalization::sharedLocalization().setLanguage("en"); }

  // A clean login of the vault with these details.
  std::shared_ptr<QNLogin> loginWithDetails(std::string_view json) {
    auto login = std::make_shared<QNLogin>(initNew);
    login->setProfile(_vault);
    login->copyDetails(object(json));
    login->didLoad();
    return login;
  }
  std::shared_ptr<QNLogin> loginWithFields(std::string_view fields) {
    return loginWithDetails(R"({"fields":)" + std::string(fields) + "}");
  }
  std::string storedFields(QNLogin& login) {
    login.willSerialize();
    return mr_JSONStringWithError(*login.detailsObjectForKey("fields")).value_or("none");
  }

  std::shared_ptr<QNProfile> _vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

TEST_F(QNLoginTest, HasItsCategoryFromItsCreation) {
  const auto login = std::make_shared<QNLogin>(initNew);

  EXPECT_EQ(login->className(), "QNLogin");
  EXPECT_EQ(login->categoryUUID(), "001");
}

TEST_F(QNLoginTest, HasItsCategoryAsAShell) {
  const auto login = std::make_shared<QNLogin>(QNExisting{21});

  EXPECT_EQ(login->categoryUUID(), "001");
  EXPECT_EQ(login->oid(), 21u);
}

TEST_F(QNLoginTest, ReadsTheDesignatedEntries) {
  const auto login = loginWithFields(
      R"([{"name":"x","value":"other"},{"name":"u","value":"ann","designation":"username"},)"
      R"({"name":"p","value":"pw","type":"P","designation":"password"}])");

  EXPECT_EQ(login->username(), "ann");
  ASSERT_TRUE(login->password());
  EXPECT_TRUE(login->password()->equals("pw"));
  EXPECT_TRUE(login->hasUsernameOrPassword());
}

TEST_F(QNLoginTest, HasNeitherUsernameNorPasswordWithoutADesignation) {
  const auto login = loginWithFields(
      R"([{"name":"username","value":"ann"},{"name":"password","value":"pw","type":"P"}])");

  EXPECT_EQ(login->username(), std::nullopt);
  EXPECT_FALSE(login->password());
  EXPECT_TRUE(login->hasLoginFields());
  EXPECT_EQ(login->_additionalInformation(), "—");
}

TEST_F(QNLoginTest, HasNoLoginFieldsWithoutDetails) {
  const auto login = loginWithDetails("{}");

  EXPECT_FALSE(login->hasLoginFields());
  EXPECT_EQ(login->username(), std::nullopt);
  EXPECT_FALSE(login->password());
}

TEST_F(QNLoginTest, SkipsElementsThatHoldNothing) {
  const auto login = loginWithFields(
      R"([{},null,"text",7,[],{"name":"u","value":"ann","designation":"username"}])");

  EXPECT_EQ(login->loginFields().count(), 1u);
  EXPECT_EQ(login->username(), "ann");
}

TEST_F(QNLoginTest, ReadsFieldsThatAreNoListAsNone) {
  const auto login = loginWithFields(R"({"name":"u"})");

  EXPECT_FALSE(login->hasLoginFields());
}

TEST_F(QNLoginTest, ReadsAnEmptyPasswordAsNone) {
  const auto login = loginWithFields(R"([{"name":"p","value":"","designation":"password"}])");

  EXPECT_FALSE(login->password());
  EXPECT_FALSE(login->hasPassword());
}

TEST_F(QNLoginTest, ReadsAnEmptyUsernameAsAnEmptyText) {
  const auto login = loginWithFields(R"([{"name":"u","value":"","designation":"username"}])");

  EXPECT_EQ(login->username(), "");
  EXPECT_FALSE(login->hasUsername());
}

TEST_F(QNLoginTest, ReadsANumberAsPassword) {
  const auto login = loginWithFields(R"([{"value":1234,"designation":"password"}])");

  ASSERT_TRUE(login->password());
  EXPECT_TRUE(login->password()->equals("1234"));
}

TEST_F(QNLoginTest, ReadsItsListOnce) {
  const auto login = loginWithFields(R"([{"name":"u"}])");

  EXPECT_EQ(&login->loginFields(), &login->loginFields());
}

TEST_F(QNLoginTest, KeepsItsListObjectWhenItsDetailsAreReplaced) {
  const auto login = loginWithFields(R"([{"name":"u"},{"name":"p"}])");
  const QNLoginFieldList& fields = login->loginFields();
  ASSERT_EQ(fields.count(), 2u);

  login->copyDetails(object(R"({"fields":[{"name":"u"}]})"));
  EXPECT_EQ(fields.count(), 0u);
  ASSERT_TRUE(login->hasLoginFields());

  EXPECT_EQ(fields.count(), 1u);
  EXPECT_EQ(&login->loginFields(), &fields);
}

TEST_F(QNLoginTest, KeepsAndEmptiesItsListObjectWhileItsDetailsCannotBeRead) {
  const MRCapturingSink log;
  const auto shell = std::make_shared<QNLogin>(QNExisting{5});
  QNLoginFieldList& fields = shell->loginFields();
  fields.addDesignatedUsername("ann");

  EXPECT_FALSE(shell->hasLoginFields());

  EXPECT_EQ(&shell->loginFields(), &fields);
  EXPECT_EQ(fields.count(), 0u);
}

TEST_F(QNLoginTest, ChangesTheUsernameOfItsEntry) {
  const auto login =
      loginWithFields(R"([{"x":1,"value":"ann","designation":"username","name":"u"}])");

  login->setUsername("bob");

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_EQ(storedFields(*login), R"([{"x":1,"value":"bob","designation":"username","name":"u"}])");
}

TEST_F(QNLoginTest, DirtiesNothingForAnEqualUsernameOrPassword) {
  const auto login = loginWithFields(
      R"([{"value":"ann","designation":"username"},{"value":"pw","designation":"password"}])");

  login->setUsername("ann");
  login->setPassword("pw");

  EXPECT_FALSE(login->dirtyRow());
}

TEST_F(QNLoginTest, AddsAnEntryForAUsernameWithoutOne) {
  const auto login = loginWithFields(R"([{"name":"username","value":"not designated"}])");

  login->setUsername("ann");

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_EQ(login->username(), "ann");
  EXPECT_EQ(login->loginFields().count(), 2u);
}

TEST_F(QNLoginTest, AddsAnEmptyEntryForNoUsername) {
  const auto login = loginWithDetails("{}");

  login->setUsername(std::nullopt);

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_EQ(storedFields(*login),
            R"([{"name":"username","value":"","type":"T","designation":"username"}])");
}

TEST_F(QNLoginTest, AddsAnEmptyEntryForNoPassword) {
  const auto login = loginWithDetails("{}");

  login->setPassword(std::nullopt);

  EXPECT_EQ(storedFields(*login),
            R"([{"name":"password","value":"","type":"P","designation":"password"}])");
  EXPECT_FALSE(login->password());
}

TEST_F(QNLoginTest, StoresAnEmptyTextForNoUsernameOrPasswordInTheirEntries) {
  const auto login = loginWithFields(
      R"([{"value":"ann","designation":"username"},{"value":"pw","designation":"password"}])");

  login->setUsername(std::nullopt);
  login->setPassword(std::nullopt);

  EXPECT_EQ(storedFields(*login),
            R"([{"value":"","designation":"username"},{"value":"","designation":"password"}])");
}

TEST_F(QNLoginTest, TakesNeitherUsernameNorPasswordWhileItsDetailsCannotBeRead) {
  const MRCapturingSink log;
  const auto shell = std::make_shared<QNLogin>(QNExisting{5});
  shell->didLoad();

  shell->setUsername("ann");
  shell->setPassword("pw");

  EXPECT_FALSE(shell->dirtyRow());
  EXPECT_FALSE(shell->hasLoginFields());
}

TEST_F(QNLoginTest, ChangesThePasswordOfItsEntry) {
  const auto login = loginWithFields(R"([{"value":"one","designation":"password"}])");

  login->setPassword("two");

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_TRUE(login->password()->equals("two"));
  EXPECT_EQ(storedFields(*login), R"([{"value":"two","designation":"password"}])");
}

TEST_F(QNLoginTest, PutsItsListBackBeforeASave) {
  const auto login = loginWithFields(R"([{},{"name":"u"}])");
  ASSERT_TRUE(login->hasLoginFields());

  EXPECT_EQ(storedFields(*login), R"([{"name":"u"}])");
}

TEST_F(QNLoginTest, LeavesADesignationToTheLaterOfTwoEntriesInMemoryAndInWhatItSaves) {
  const auto login =
      loginWithFields(R"([{"name":"a","value":"ann","designation":"username"},)"
                      R"({"name":"b","value":"bob","designation":"username","type":"E"}])");

  EXPECT_EQ(login->username(), "bob");
  EXPECT_FALSE(login->loginFields().fields()[0]->designation());
  EXPECT_EQ(storedFields(*login),
            R"([{"name":"a","value":"ann"},)"
            R"({"name":"b","value":"bob","designation":"username","type":"E"}])");
}

TEST_F(QNLoginTest, CanBeReadWhileAnotherThreadReplacesItsDetails) {
  constexpr std::string_view fields = R"([{"value":"ann","designation":"username"},)"
                                      R"({"value":"pw","designation":"password"}])";
  const auto login = loginWithFields(fields);
  const JsonObject plain = object(R"({"fields":)" + std::string(fields) + "}");
  const JsonObject noted = object(R"({"notesPlain":"x","fields":)" + std::string(fields) + "}");
  std::atomic<bool> isDone{false};
  std::thread writer([&] {
    while (!isDone) {  // equal ones would replace nothing
      login->copyDetails(noted);
      login->copyDetails(plain);
    }
  });

  int others = 0;
  for (int round = 0; round < 10000; ++round) {
    if (login->username() != "ann" || !login->hasLoginFields()) ++others;
    const auto password = login->password();
    if (!password || !password->equals("pw")) ++others;
  }
  isDone = true;
  writer.join();

  EXPECT_EQ(others, 0);
}

TEST_F(QNLoginTest, LetsItsFieldsBeGoneThroughWhileAnotherThreadChangesThem) {
  const JsonObject details = object(R"({"fields":[{"value":"ann","designation":"username"},)"
                                    R"({"value":"pw","designation":"password"}]})");
  const auto login = loginWithDetails(mr_JSONStringWithError(details).value_or(""));
  std::atomic<bool> isDone{false};
  std::thread writer([&] {
    while (!isDone) {
      login->withLoginFields([](QNLoginFieldList& fields) {
        fields.removeLoginFieldAtIndex(0);
        fields.addDesignatedUsername("ann");
      });
      login->setPassword("another");
      login->copyDetails(details);
    }
  });

  int others = 0;
  for (int round = 0; round < 10000; ++round) {
    const std::string read = login->withLoginFields([](const QNLoginFieldList& fields) {
      std::string values;
      for (const auto& field : fields.fields()) values += field->value()->reveal();
      return values;
    });
    if (read != "annpw" && read != "pwann" && read != "anotherann") ++others;
  }
  isDone = true;
  writer.join();

  EXPECT_EQ(others, 0);
}

TEST_F(QNLoginTest, LeavesADirtyRowToWhoChangesItsList) {
  const auto login = loginWithFields("[]");

  login->withLoginFields([](QNLoginFieldList& fields) { fields.addDesignatedUsername("ann"); });

  EXPECT_FALSE(login->dirtyRow());
  EXPECT_EQ(login->username(), "ann");
}

TEST_F(QNLoginTest, SavesItsLoadedListOverWhatWasWrittenToItsDetails) {
  const auto login = loginWithFields(R"([{"name":"loaded"}])");
  ASSERT_TRUE(login->hasLoginFields());

  login->setDetailsObject(Json(JsonArray{JsonObject{{"name", "written"}}}), "fields");

  EXPECT_EQ(storedFields(*login), R"([{"name":"loaded"}])");
}

TEST_F(QNLoginTest, CanBeReadWhileAnotherThreadReplacesItsDetailsData) {
  const auto login = loginWithFields(R"([{"value":"ann","designation":"username"},)"
                                     R"({"value":"pw","designation":"password"}])");
  const auto row = saveInTestRow(*login);
  std::atomic<bool> isDone{false};
  std::thread writer([&] {
    while (!isDone) login->setDetailsData(row.details);
  });

  int others = 0;
  for (int round = 0; round < 1000; ++round) {
    if (login->username() != "ann" || !login->hasLoginFields()) ++others;
    const auto password = login->password();
    if (!password || !password->equals("pw")) ++others;
  }
  isDone = true;
  writer.join();

  EXPECT_EQ(others, 0);
}

TEST_F(QNLoginTest, CanBeReadWhileAnotherThreadEditsAndSavesIt) {
  constexpr int kSaves = 40;
  const auto login = loginWithFields(R"([{"value":"ann","designation":"username"},)"
                                     R"({"value":"b","designation":"password"}])");
  std::atomic<bool> isDone{false};
  std::atomic<int> others{0};
  const auto read = [&] {
    while (!isDone) {
      if (login->username() != "ann") ++others;
      const auto password = login->password();
      if (!password || !(password->equals("a") || password->equals("b"))) ++others;
    }
  };

  std::thread one(read);
  std::thread two(read);
  for (int save = 0; save < kSaves; ++save) {
    login->setPassword("a");
    login->setPassword("b");
    login->willSave();
  }
  isDone = true;
  one.join();
  two.join();

  EXPECT_EQ(others, 0);
  EXPECT_TRUE(login->password()->equals("b"));
}

TEST_F(QNLoginTest, StoresAnEmptyListOnceFieldsWereReadThatWereNone) {
  const auto login = loginWithDetails("{}");
  ASSERT_FALSE(login->hasLoginFields());

  EXPECT_EQ(storedFields(*login), "[]");
}

TEST_F(QNLoginTest, LeavesItsDetailsAloneBeforeASaveWhileTheyAreLoading) {
  const auto login = loginWithFields(R"([{},{"name":"u"}])");
  ASSERT_TRUE(login->hasLoginFields());
  login->markLoadingDetails();
  ASSERT_FALSE(login->detailsLoaded());

  login->willSerialize();

  EXPECT_EQ(mr_JSONStringWithError(*login->detailsObjectForKey("fields")), R"([{},{"name":"u"}])");
}

TEST_F(QNLoginTest, LeavesFieldsThatWereNeverReadAsTheyAre) {
  const auto login = loginWithFields(R"([{},{"name":"u"}])");

  EXPECT_EQ(storedFields(*login), R"([{},{"name":"u"}])");
}

TEST_F(QNLoginTest, ReparsesAfterItsDetailsWereReplaced) {
  const auto login = loginWithFields(R"([{"value":"ann","designation":"username"}])");
  ASSERT_EQ(login->username(), "ann");

  login->copyDetails(object(R"({"fields":[{"value":"bob","designation":"username"}]})"));

  EXPECT_EQ(login->username(), "bob");
}

TEST_F(QNLoginTest, ReparsesAfterItsDetailsDataWereReplaced) {
  const auto login = loginWithFields(R"([{"value":"ann","designation":"username"}])");
  const auto row = saveInTestRow(*login);
  login->setUsername("not saved");

  login->setDetailsData(row.details);

  EXPECT_EQ(login->username(), "ann");
}

TEST_F(QNLoginTest, TriesAgainToReadFieldsThatCouldNotBeOpened) {
  const auto row = saveInTestRow(*loginWithFields(R"([{"value":"ann","designation":"username"}])"));
  const auto stored = itemFromTestRow(row, _vault);
  {
    const MRCapturingSink log;
    _vault->lock();
    ASSERT_EQ(stored->username(), std::nullopt);
  }

  ASSERT_TRUE(_vault->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_EQ(stored->username(), "ann");
}

TEST_F(QNLoginTest, NeverSavesAListThatWasReadWithoutItsDetails) {
  const auto row = saveInTestRow(*loginWithFields(R"([{"value":"ann","designation":"username"}])"));
  const auto stored = itemFromTestRow(row, _vault);
  {
    const MRCapturingSink log;
    _vault->lock();
    ASSERT_FALSE(stored->hasLoginFields());
    ASSERT_TRUE(_vault->_unlockWithPassword(DEMO_PASSWORD));
  }

  const auto saved = saveInTestRow(*stored);

  EXPECT_EQ(itemFromTestRow(saved, _vault)->username(), "ann");
}

TEST_F(QNLoginTest, ReadsTheValuesOfItsWebForm) {
  const auto login = loginWithDetails(
      R"({"htmlForm":{"htmlName":"n","htmlMethod":"post","htmlID":"i","htmlAction":"/go"}})");

  EXPECT_EQ(login->htmlName(), "n");
  EXPECT_EQ(login->htmlMethod(), "post");
  EXPECT_EQ(login->htmlID(), "i");
  EXPECT_EQ(login->htmlAction(), "/go");
}

TEST_F(QNLoginTest, StoresTheValuesOfItsWebForm) {
  const auto login = loginWithDetails("{}");

  login->setHtmlName("n");
  login->setHtmlMethod("post");
  login->setHtmlID("i");
  login->setHtmlAction("/go");

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_EQ(mr_JSONStringWithError(*login->detailsObjectForKey("htmlForm")),
            R"({"htmlName":"n","htmlMethod":"post","htmlID":"i","htmlAction":"/go"})");
}

TEST_F(QNLoginTest, DirtiesNothingForAnEqualValueOfItsWebForm) {
  const auto login = loginWithDetails(R"({"htmlForm":{"htmlName":"n"}})");

  login->setHtmlName("n");
  login->setHtmlID(std::nullopt);

  EXPECT_FALSE(login->dirtyRow());
}

TEST_F(QNLoginTest, RemovesOneValueOfItsWebForm) {
  const auto login = loginWithDetails(R"({"htmlForm":{"htmlName":"n","x":1,"htmlID":"i"}})");

  login->setHtmlName(std::nullopt);

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_EQ(mr_JSONStringWithError(*login->detailsObjectForKey("htmlForm")),
            R"({"x":1,"htmlID":"i"})");
}

TEST_F(QNLoginTest, RemovesItsWebFormWithItsLastValue) {
  const auto login = loginWithDetails(R"({"htmlForm":{"htmlName":"n"},"fields":[]})");

  login->setHtmlFormValue(std::nullopt, "htmlName");

  EXPECT_EQ(login->detailsObjectForKey("htmlForm"), nullptr);
  EXPECT_NE(login->detailsObjectForKey("fields"), nullptr);
}

TEST_F(QNLoginTest, RemovesAnEmptyWebFormWithAnyValue) {
  const auto login = loginWithDetails(R"({"htmlForm":{},"fields":[]})");

  login->setHtmlName(std::nullopt);

  EXPECT_TRUE(login->dirtyRow());
  EXPECT_EQ(login->detailsObjectForKey("htmlForm"), nullptr);
}

TEST_F(QNLoginTest, ReplacesAWebFormThatIsNoObject) {
  const auto login = loginWithDetails(R"({"htmlForm":"broken"})");
  ASSERT_EQ(login->htmlName(), std::nullopt);

  login->setHtmlName("n");

  EXPECT_EQ(login->htmlName(), "n");
}

TEST_F(QNLoginTest, ShowsItsUsernameAsSubtitle) {
  const auto login = loginWithFields(R"([{"value":"ann","designation":"username"}])");

  EXPECT_EQ(login->_additionalInformation(), "ann");
}

TEST_F(QNLoginTest, ShowsADashForAnEmptyUsername) {
  const auto login = loginWithFields(R"([{"value":"","designation":"username"}])");

  EXPECT_EQ(login->_additionalInformation(), "—");
}

TEST_F(QNLoginTest, PutsItsSubtitleIntoTheOverviewBeforeASave) {
  const auto login = loginWithFields(R"([{"value":"ann","designation":"username"}])");

  login->willSerialize();

  EXPECT_EQ(login->additionalInformation(), "ann");
}

TEST_F(QNLoginTest, GivesItsPasswordToTheClipboard) {
  const auto login = loginWithFields(R"([{"value":"pw","designation":"password"}])");

  ASSERT_TRUE(login->clipboardValue());
  EXPECT_TRUE(login->clipboardValue()->equals("pw"));
}

TEST_F(QNLoginTest, ComesFromABrowserWithAWebForm) {
  EXPECT_TRUE(loginWithDetails(R"({"htmlForm":{"htmlName":"n"}})")->isCreatedByBrowserExtension());
}

TEST_F(QNLoginTest, ComesFromABrowserWithAWebFormThatIsAnObjectOnly) {
  EXPECT_TRUE(loginWithDetails(R"({"htmlForm":{}})")->isCreatedByBrowserExtension());
  EXPECT_FALSE(loginWithDetails(R"({"htmlForm":null})")->isCreatedByBrowserExtension());
  EXPECT_FALSE(loginWithDetails(R"({"htmlForm":"form"})")->isCreatedByBrowserExtension());
}

TEST_F(QNLoginTest, ComesFromABrowserWithAnHtmlIdOnADesignatedEntry) {
  EXPECT_TRUE(
      loginWithFields(R"([{"id":"u","designation":"username"}])")->isCreatedByBrowserExtension());
  EXPECT_TRUE(
      loginWithFields(R"([{"id":"p","designation":"password"}])")->isCreatedByBrowserExtension());
}

TEST_F(QNLoginTest, ComesFromABrowserWithAnEmptyHtmlIdToo) {
  EXPECT_TRUE(
      loginWithFields(R"([{"id":"","designation":"username"}])")->isCreatedByBrowserExtension());
  EXPECT_TRUE(
      loginWithFields(R"([{"id":"","designation":"password"}])")->isCreatedByBrowserExtension());
}

TEST_F(QNLoginTest, ComesFromAPersonWithAnHtmlIdThatIsNull) {
  EXPECT_FALSE(
      loginWithFields(R"([{"id":null,"designation":"username"}])")->isCreatedByBrowserExtension());
}

TEST_F(QNLoginTest, ComesFromAPersonOtherwise) {
  EXPECT_FALSE(loginWithDetails("{}")->isCreatedByBrowserExtension());
  EXPECT_FALSE(
      loginWithFields(R"([{"id":"x"},{"designation":"username"}])")->isCreatedByBrowserExtension());
}

TEST_F(QNLoginTest, KeepsAutosubmitForCompatibilityOnly) {
  const auto login = loginWithDetails("{}");

  login->setAutosubmit("always");

  EXPECT_EQ(login->autosubmit(), "always");
  EXPECT_FALSE(login->defaultAutosubmit() || login->alwaysAutosubmit() || login->neverAutosubmit());
  EXPECT_EQ(login->localizedAutosubmitDescription(), std::nullopt);
  EXPECT_FALSE(login->dirtyRow());
}

TEST_F(QNLoginTest, RetiresTheFormerPasswordOfASavedLogin) {
  const auto login = loginWithFields(R"([{"value":"one","designation":"password"}])");
  login->_setOid(5);

  login->setPassword("two");
  login->setPassword("three");
  login->willSerialize();

  ASSERT_EQ(login->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(login->previouslyUsedPasswordAtIndex(0)->value()->equals("one"));
}

TEST_F(QNLoginTest, RetiresNothingWhenItsDetailsWereReplacedAndReadBeforeASave) {
  const auto login = loginWithFields(R"([{"value":"one","designation":"password"}])");
  login->_setOid(5);
  ASSERT_TRUE(login->password()->equals("one"));

  login->copyDetails(object(R"({"fields":[{"value":"two","designation":"password"}]})"));
  ASSERT_TRUE(login->password()->equals("two"));
  login->willSerialize();

  EXPECT_EQ(login->numberOfPreviouslyUsedPasswords(), 0u);
}

TEST_F(QNLoginTest, RetiresNothingOfALoginWithoutARow) {
  const auto login = loginWithFields(R"([{"value":"one","designation":"password"}])");

  login->setPassword("two");
  login->willSerialize();

  EXPECT_EQ(login->numberOfPreviouslyUsedPasswords(), 0u);
}

TEST_F(QNLoginTest, KeepsItsFieldsInAnAccountVault) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(vault);
  login->setUsername("ann");
  login->setPassword("pw");
  login->willSave();

  const auto reloaded = std::make_shared<QNLogin>(QNExisting{5});
  reloaded->setProfile(vault);
  reloaded->setOverviewData(login->overviewData());
  reloaded->setDetailsData(login->detailsData());
  reloaded->markDetailsLoaded();

  EXPECT_EQ(reloaded->username(), "ann");
  ASSERT_TRUE(reloaded->password());
  EXPECT_TRUE(reloaded->password()->equals("pw"));
  EXPECT_EQ(reloaded->additionalInformation(), "ann");
}

TEST_F(QNLoginTest, ReportsAReadBeforeItsDetailsAreLoaded) {
  const MRCapturingSink log;
  const auto shell = std::make_shared<QNLogin>(QNExisting{5});

  EXPECT_EQ(shell->username(), std::nullopt);

  const auto assertions = log.texts(MRLogKind::assertion);
  ASSERT_FALSE(assertions.empty());
  EXPECT_THAT(assertions.front(), HasSubstr("is not loaded"));
}

TEST(QNPrivacyComLogin, IsMarkedAsMadeThroughTheService) {
  const auto login = std::make_shared<QNPrivacyComLogin>(initNew);

  EXPECT_EQ(login->className(), "QNPrivacyComLogin");
  EXPECT_EQ(login->categoryUUID(), "800");
  EXPECT_EQ(login->overviewTextForKey("integration"), "privacy");
}

TEST(QNPrivacyComLogin, TakesItsCategoryFromItsRowAsAShell) {
  const auto item = QNProfile::initExistingWithID(1)->existingItemWithID(5, "800");

  ASSERT_NE(std::dynamic_pointer_cast<QNPrivacyComLogin>(item), nullptr);
  EXPECT_EQ(item->categoryUUID(), "800");
  EXPECT_EQ(item->oid(), 5u);
}

// Sections

constexpr std::string_view kSectionsWithAlias =
    R"({"sections":[{"fields":[{"k":"email","n":"a","t":"mail","v":"alias@example.com",)"
    R"("a":{"provider":"f"}},{"k":"concealed","n":"password","t":"pin","v":"1234"}]}]})";

TEST_F(QNLoginTest, WithoutAUsernameShowsTheMailAliasAsSubtitle) {
  const auto login = loginWithDetails(kSectionsWithAlias);
  EXPECT_EQ(login->_additionalInformation(), "alias@example.com");

  login->setUsername("ann");

  EXPECT_EQ(login->_additionalInformation(), "ann");
}

TEST_F(QNLoginTest, APasswordInASectionIsNotThatOfTheForm) {
  const auto login = loginWithDetails(kSectionsWithAlias);

  EXPECT_EQ(login->password(), std::nullopt);
  EXPECT_EQ(login->itemFieldForPassword(), nullptr);
  EXPECT_TRUE(login->hasRevealableFields());
}

TEST_F(QNLoginTest, UsernameAndPasswordAreGivenAsFields) {
  const auto login = loginWithFields(
      R"([{"value":"ann","designation":"username"},{"value":"p","designation":"password"}])");

  const auto username = login->itemFieldForUsername();
  const auto password = login->itemFieldForPassword();

  ASSERT_NE(username, nullptr);
  EXPECT_EQ(username->className(), "QNItemStringField");
  EXPECT_EQ(username->identifier(), "username");
  EXPECT_EQ(username->title(), "username");
  EXPECT_TRUE(username->isValueEqualTo("ann"));
  EXPECT_EQ(password->className(), "QNItemConcealedField");
  EXPECT_TRUE(password->isValueEqualTo("p"));
  EXPECT_EQ(login->numberOfFieldSections(), 0u);
  EXPECT_EQ(loginWithDetails("{}")->itemFieldForUsername(), nullptr);
}

constexpr std::string_view kWithOneTimePassword =
    R"({"fields":[{"name":"u","value":"ann","designation":"username"},)"
    R"({"name":"p","value":"pw","type":"P","designation":"password"}],)"
    R"("sections":[{"fields":[{"k":"string","n":"s","v":"x"},)"
    R"({"k":"concealed","n":"TOTP_1","v":"otpauth://a"}]}]})";

TEST_F(QNLoginTest, OffersUsernamePasswordAndOneTimePasswordToQuickAccess) {
  const auto login = loginWithDetails(kWithOneTimePassword);

  const auto offered = login->quickAccessFields();

  EXPECT_THAT(shown(offered), testing::ElementsAre("username 2", "password 1", "TOTP 3"));
  EXPECT_TRUE(offered[0].field()->isValueEqualTo("ann"));
  EXPECT_TRUE(offered[1].field()->isValueEqualTo("pw"));
  EXPECT_EQ(offered[2].field(), login->firstTOTPField());
}

TEST_F(QNLoginTest, OffersQuickAccessWhatItHas) {
  EXPECT_THAT(shown(loginWithDetails("{}")->quickAccessFields()), testing::IsEmpty());
  EXPECT_THAT(shown(loginWithFields(R"([{"value":"","designation":"username"},)"
                                    R"({"value":"pw","designation":"password"}])")
                        ->quickAccessFields()),
              testing::ElementsAre("password 1"));
}

TEST_F(QNLoginTest, OffersItsPasswordToThoseWhoMayRevealIt) {
  const auto login = loginWithDetails(kWithOneTimePassword);

  login->setProfile(vaultWithoutRevealing());

  EXPECT_THAT(shown(login->quickAccessFields()), testing::ElementsAre("username 2", "TOTP 3"));
}

TEST_F(QNLoginTest, SectionsReadAsFormFieldsByTitle) {
  const Json sections = Json(*mr_valueFromJSONDataWithError(bytesOf(
      R"([{"fields":[{"k":"string","n":"1","t":"a","v":"x"},{"k":"concealed","n":"2","t":"b",)"
      R"("v":"y"},{"k":"string","n":"3","t":"none"}]},)"
      R"({"fields":[{"k":"concealed","n":"TOTP_1","t":"a","v":"u"},{"k":"monthYear","n":"4",)"
      R"("v":202407}]}])")));

  EXPECT_EQ(mr_JSONStringWithError(
                QNLogin::fieldSectionsAsLoginFields(QNItem::fieldSectionsFromJSON(&sections))),
            R"({"a":{"value":"u","type":"P","name":"a"},"b":{"value":"y","type":"P","name":"b"},)"
            R"("":{"value":"07/2024","type":"T","name":""}})");
}

TEST_F(QNLoginTest, ASearchGetsEntriesOfTheFormFirst) {
  const auto login = loginWithDetails(
      R"({"fields":[{"name":"user","value":"ann","designation":"username"},)"
      R"({"name":"word","value":"horse","designation":"password"},)"
      R"({"name":"pin","value":"77","type":"P"}],"notesPlain":"note",)"
      R"("sections":[{"name":"s","fields":[{"k":"concealed","n":"c","t":"code","v":"99"}]}]})");
  login->setTitle("T");

  EXPECT_THAT(revealed(login->allValuesForSearch()),
              testing::ElementsAre("ann", "horse", "77", "T", "note", "99"));
  EXPECT_THAT(revealed(login->allPasswordsForSearch()),
              testing::ElementsAre("horse", "77", "horse", "99"));
  EXPECT_THAT(revealed(login->allFieldTitlesForSearch()),
              testing::ElementsAre("user", "word", "pin", "code"));
}

TEST_F(QNLoginTest, ASearchOfContentsLooksIntoTheForm) {
  const auto login = loginWithFields(R"([{"name":"pin","value":"Grün"}])");

  EXPECT_TRUE(login->contentsMatchesLowercaseString("grun"));
  EXPECT_TRUE(login->contentsMatchesLowercaseString("pin"));
  EXPECT_FALSE(login->overviewMatchesLowercaseString("grun"));
}

TEST_F(QNLoginTest, ASearchOfAnEmptyFormGetsWhatAnyItemHas) {
  const auto login = loginWithFields("[]");
  login->setTitle("T");

  EXPECT_THAT(revealed(login->allValuesForSearch()), testing::ElementsAre("T"));
  EXPECT_TRUE(login->allPasswordsForSearch().empty());
  EXPECT_TRUE(login->allFieldTitlesForSearch().empty());
}

}  // namespace
}  // namespace quillon
