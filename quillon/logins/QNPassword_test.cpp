#include "quillon/logins/QNPassword.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNItemConstants.h"
#include "quillon/items/internal/QNQuickAccessTesting.h"
#include "quillon/logins/internal/QNTestRows.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

std::shared_ptr<QNPassword> passwordIn(const std::shared_ptr<QNProfile>& vault) {
  auto item = std::make_shared<QNPassword>(initNew);
  item->setProfile(vault);
  item->didLoad();
  return item;
}

class QNPasswordTest : public testing::Test {
 protected:
  std::shared_ptr<QNProfile> _vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
};

TEST_F(QNPasswordTest, HasItsCategoryAndItsFillContextFromItsCreation) {
  const auto item = std::make_shared<QNPassword>(initNew);

  EXPECT_EQ(item->className(), "QNPassword");
  EXPECT_EQ(item->categoryUUID(), "005");
  EXPECT_EQ(item->fillObjectContext(), "new-password");
}

TEST_F(QNPasswordTest, HasItsCategoryAndItsFillContextAsAShell) {
  const auto item = std::make_shared<QNPassword>(QNExisting{21});

  EXPECT_EQ(item->categoryUUID(), "005");
  EXPECT_EQ(item->fillObjectContext(), "new-password");
  EXPECT_EQ(item->oid(), 21u);
}

TEST_F(QNPasswordTest, HasNoPasswordAtFirst) {
  const auto item = passwordIn(_vault);

  EXPECT_FALSE(item->password());
  EXPECT_FALSE(item->clipboardValue());
  EXPECT_FALSE(item->hasPassword());
}

TEST_F(QNPasswordTest, KeepsItsPasswordInItsDetails) {
  const auto item = passwordIn(_vault);

  item->setPassword("pw");

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(*item->detailsObjectForKey("password"), Json("pw"));
  EXPECT_TRUE(item->password()->equals("pw"));
  EXPECT_TRUE(item->clipboardValue()->equals("pw"));
}

TEST_F(QNPasswordTest, DirtiesNothingForAnEqualPassword) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");
  item->didSave();

  item->setPassword("pw");

  EXPECT_FALSE(item->dirtyRow());
}

TEST_F(QNPasswordTest, RemovesItsPasswordForNothing) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");

  item->setPassword(std::nullopt);

  EXPECT_EQ(item->detailsObjectForKey("password"), nullptr);
  EXPECT_FALSE(item->password());
}

TEST_F(QNPasswordTest, ReadsAPasswordThatIsNoTextAsNone) {
  const auto item = passwordIn(_vault);

  item->setDetailsObject(Json(1234), "password");

  EXPECT_FALSE(item->password());
}

TEST_F(QNPasswordTest, ComesBackFromItsRow) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");

  const auto reloaded = itemFromTestRow(saveInTestRow(*item), _vault);

  EXPECT_EQ(reloaded->className(), "QNPassword");
  ASSERT_TRUE(reloaded->password());
  EXPECT_TRUE(reloaded->password()->equals("pw"));
}

// Search

TEST_F(QNPasswordTest, ASearchGetsThePasswordFirst) {
  const auto item = passwordIn(_vault);
  item->setTitle("T");
  item->setNotesPlain("note");
  EXPECT_THAT(revealed(item->allValuesForSearch()), testing::ElementsAre("T", "note"));

  item->setPassword("");
  EXPECT_THAT(revealed(item->allValuesForSearch()), testing::ElementsAre("T", "note"));
  item->setPassword("pw");

  EXPECT_THAT(revealed(item->allValuesForSearch()), testing::ElementsAre("pw", "T", "note"));
}

TEST_F(QNPasswordTest, ASearchOfContentsFindsThePassword) {
  const auto item = passwordIn(_vault);

  item->setPassword("Grün");

  EXPECT_TRUE(item->contentsMatchesLowercaseString("grun"));
  EXPECT_FALSE(item->overviewMatchesLowercaseString("grun"));
}

// Quick access

TEST_F(QNPasswordTest, OffersPasswordAndOneTimePasswordToQuickAccess) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");
  item->setDetailsObject(jsonValue(R"([{"fields":[{"k":"string","n":"s","v":"x"},)"
                                   R"({"k":"concealed","n":"TOTP_1","v":"otpauth://a"}]}])"),
                         kDetailsSections);

  const auto offered = item->quickAccessFields();

  EXPECT_THAT(shown(offered), testing::ElementsAre("password 1", "TOTP 3"));
  EXPECT_TRUE(offered[0].field()->isValueEqualTo("pw"));
  EXPECT_TRUE(passwordIn(_vault)->quickAccessFields().empty());
}

TEST_F(QNPasswordTest, OffersItsPasswordToThoseWhoMayRevealIt) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");
  item->setDetailsObject(
      jsonValue(R"([{"fields":[{"k":"concealed","n":"TOTP_1","v":"otpauth://a"}]}])"),
      kDetailsSections);

  item->setProfile(vaultWithoutRevealing());

  EXPECT_THAT(shown(item->quickAccessFields()), testing::ElementsAre("TOTP 3"));
}

// Subtitle

TEST_F(QNPasswordTest, ShowsWhenItWasMade) {
  const QNScopedLocale locale("de-DE");
  const QNScopedTimeZone zone("UTC");
  const auto item = passwordIn(_vault);
  item->setCreatedAt(1720051200 + 54245);

  EXPECT_EQ(item->_additionalInformation(), "04.07.2024, 15:04:05");

  item->willSerialize();

  EXPECT_EQ(item->additionalInformation(), "04.07.2024, 15:04:05");
}

TEST_F(QNPasswordTest, FormatsADateByTheUsersLanguageAndZone) {
  const QNScopedTimeZone zone("Asia/Tokyo");
  const QNScopedLocale locale("de-DE");

  EXPECT_EQ(QNPassword::dateFormatter(std::chrono::sys_seconds(std::chrono::seconds(0))),
            "01.01.1970, 09:00:00");
}

// Changes by hand

TEST_F(QNPasswordTest, IsNotModifiedWhenItIsFresh) {
  const auto item = passwordIn(_vault);
  item->setPassword("pw");
  item->setTitle("example.com");
  item->addURLString("https://example.com/");
  item->setUpdatedAt(item->createdAt());

  EXPECT_FALSE(item->isModifedByUser());
}

struct ChangeCase {
  std::string_view name;
  void (*change)(QNPassword& item);
};

const ChangeCase kChanges[] = {
    {"updatedAt", [](QNPassword& item) { item.setUpdatedAt(item.createdAt() + 1); }},
    {"notes", [](QNPassword& item) { item.setNotesPlain("n"); }},
    {"tags", [](QNPassword& item) { item.setTags({"t"}); }},
    {"second URL",
     [](QNPassword& item) {
       item.addURLString("https://a.example");
       item.addURLString("https://b.example");
     }},
    {"section", [](QNPassword& item) { item.fieldSectionWithName("s", ""); }},
    {"local icon", [](QNPassword& item) { item.setOverviewText("aWNvbg==", kCustomIcon); }},
    {"server icon",
     [](QNPassword& item) {
       item.setOverviewObject(Json(JsonObject{{"a", 1}}), kCustomIconAttributes);
     }},
    {"pending icon",
     [](QNPassword& item) {
       item.setOverviewObject(Json(JsonObject{{"a", 1}}), kPendingCustomIcon);
     }},
    {"attachments", [](QNPassword& item) { item.setNumberOfAttachments(1); }},
};

TEST_F(QNPasswordTest, IsModifiedByEachOfTheseChanges) {
  for (const ChangeCase& each : kChanges) {
    const auto item = passwordIn(_vault);
    item->setUpdatedAt(item->createdAt());
    ASSERT_FALSE(item->isModifedByUser());

    each.change(*item);

    EXPECT_TRUE(item->isModifedByUser()) << each.name;
  }
}

// Retirement

TEST_F(QNPasswordTest, RetiresNothingBeforeItsFirstSave) {
  const auto item = passwordIn(_vault);
  item->setPassword("first");
  item->setPassword("second");

  saveInTestRow(*item);

  EXPECT_FALSE(item->hasPreviouslyUsedPasswords());
}

TEST_F(QNPasswordTest, RetiresAPasswordThatIsCleared) {
  const auto row = passwordIn(_vault);
  row->setPassword("first");
  const auto item = itemFromTestRow(saveInTestRow(*row), _vault);
  const QNScopedClock clock(1000);

  item->setPassword(std::nullopt);
  saveInTestRow(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
  EXPECT_EQ(item->previouslyUsedPasswordAtIndex(0)->retiredAt(), 1000u);
}

TEST_F(QNPasswordTest, RetiresTheLoadedPasswordAfterManyChanges) {
  const auto row = passwordIn(_vault);
  row->setPassword("first");
  const auto item = itemFromTestRow(saveInTestRow(*row), _vault);

  item->setPassword("second");
  item->setPassword("third");
  saveInTestRow(*item);

  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_NE(item->previouslyUsedPasswordWithValue("first"), nullptr);
}

}  // namespace
}  // namespace quillon
