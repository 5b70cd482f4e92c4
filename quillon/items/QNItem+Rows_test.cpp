#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> keysOf(const JsonObject& object) {
  std::vector<std::string> keys;
  for (const auto& member : object) keys.emplace_back(member.key());
  return keys;
}

// Everything that a row dictionary has a key for.
QNSampleItemRef filledItem(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = newItem(vault);
  item->setCategoryUUID("003");
  item->setTitle("Träger");
  item->setTags({"home"});
  item->setScope("Never");
  item->setCreatedAt(1'600'000'000);
  item->setUpdatedAt(1'700'000'000);
  item->setNotesPlain("the notes");
  item->addURLString("https://a.example/", "A");
  item->addURLString("https://b.example/");
  return item;
}

// Writing

TEST(QNItemRows, HaveTheirKeysInTheStoredOrder) {
  const auto item = filledItem(localVault());

  EXPECT_THAT(keysOf(item->allAttributes()),
              ElementsAre("overview", "categoryUUID", "uuid", "updatedAt", "createdAt", "scope",
                          "sectionName", "details", "URLs"));
}

TEST(QNItemRows, HoldWhatTheItemHolds) {
  const auto item = filledItem(localVault());

  const JsonObject row = item->allAttributes();

  EXPECT_EQ(row.at("overview").at("title"), Json("Träger"));
  EXPECT_EQ(row.at("overview").at("tags"), jsonValue(R"(["home"])"));
  EXPECT_EQ(row.at("categoryUUID"), Json("003"));
  EXPECT_EQ(row.at("uuid"), Json(*item->uuid()));
  EXPECT_EQ(row.at("updatedAt"), Json(1'700'000'000u));
  EXPECT_EQ(row.at("createdAt"), Json(1'600'000'000u));
  EXPECT_EQ(row.at("scope"), Json("Never"));
  EXPECT_EQ(row.at("sectionName"), Json("T"));
  EXPECT_EQ(row.at("details").at("notesPlain"), Json("the notes"));
  EXPECT_EQ(row.at("details").at("backupKeys").get_array().size(), 1u);
  EXPECT_EQ(jsonText(&row.at("URLs")), R"([{"overview":{"url":"https://a.example/","label":"A"}},)"
                                       R"({"overview":{"url":"https://b.example/"}}])");
}

TEST(QNItemRows, KeepTimesOfAllSixtyFourBits) {
  const auto item = newItem(localVault());
  item->setUpdatedAt(18'446'744'073'709'551'615u);

  EXPECT_EQ(item->allAttributes().at("updatedAt"), Json(18'446'744'073'709'551'615u));
}

TEST(QNItemRows, LeaveOutWhatTheItemHasNot) {
  const auto item = std::make_shared<QNSampleItem>(initNew);

  EXPECT_THAT(keysOf(item->allAttributes()),
              ElementsAre("overview", "updatedAt", "createdAt", "sectionName", "details"));
}

TEST(QNItemRows, HoldNeitherFolderNorFavouriteNorTrashNorKey) {
  const auto item = filledItem(localVault());
  item->setFolderUUID("F");
  item->setFaveIndex(5);
  item->setTrashed(true);
  save(*item);

  EXPECT_EQ(keysOf(item->allAttributes()), keysOf(filledItem(localVault())->allAttributes()));
}

TEST(QNItemRows, OfDetailsThatArentLoadedSaySoAndGoOn) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  const MRCapturingSink sink;

  const JsonObject attributes = item->allAttributes();

  EXPECT_THAT(assertions(sink), ElementsAre("Item details must be loaded"));
  EXPECT_THAT(keysOf(attributes), Not(Contains("details")));
  EXPECT_THAT(keysOf(attributes), Not(Contains("URLs")));
  EXPECT_EQ(attributes.at("overview").at("title"), Json("Träger"));
}

TEST(QNItemRows, LeaveOutWhatDoesNotOpen) {
  const auto vault = localVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  vault->lock();
  const MRCapturingSink sink;

  const JsonObject attributes = item->allAttributes();

  EXPECT_THAT(keysOf(attributes), Not(Contains("overview")));
  EXPECT_THAT(keysOf(attributes), Not(Contains("details")));
  EXPECT_EQ(attributes.at("uuid"), Json(*row->uuid()));
}

TEST(QNItemRows, LeaveOutAllAddressesWhereOneDoesNotOpen) {
  const auto item = filledItem(localVault());
  item->URLAtIndex(1)->setOverviewData(localVault()->encryptOverview(bytesOf("{}")));
  const MRCapturingSink sink;

  const JsonObject attributes = item->allAttributes();

  EXPECT_THAT(keysOf(attributes), Not(Contains("URLs")));
  EXPECT_THAT(keysOf(attributes), Contains("details"));
  EXPECT_FALSE(assertions(sink).empty());
}

TEST(QNItemRows, NeverShowAnIconThatWaitsForItsUpload) {
  const auto vault = accountVault();
  const auto item = newItem(vault);
  item->setOverviewText("aWNvbg==", kPendingCustomIcon);
  item->setTitle("T");

  const JsonObject attributes = item->allAttributes();

  EXPECT_THAT(keysOf(attributes.at("overview").get_object()), Not(Contains("pendingCustomIcon")));
  EXPECT_EQ(attributes.at("overview").at("title"), Json("T"));
  EXPECT_NE(item->overviewObjectForKey(kPendingCustomIcon), nullptr);
}

TEST(QNItemRows, NeverShowAWaitingIconOfDetailsThatArentLoadedEither) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{7});
  item->setProfile(accountVault());
  item->setOverviewText("aWNvbg==", kPendingCustomIcon);
  const MRCapturingSink sink;

  EXPECT_TRUE(item->allAttributes().at("overview").get_object().empty());
}

TEST(QNItemRows, WithoutAnOverviewLoseNoIcon) {
  JsonObject attributes = jsonObject(R"({"overview":7,"pendingCustomIcon":1})");

  QNItem::removePendingIconFromAttributesDictionary(attributes);

  EXPECT_EQ(jsonText(&attributes.at("overview")), "7");
  EXPECT_EQ(attributes.size(), 2u);
}

// Reading

TEST(QNItemRows, AreReadWithEveryKey) {
  const auto item = newItem(localVault());

  item->setAllAttributes(filledItem(localVault())->allAttributes());

  EXPECT_EQ(item->title(), "Träger");
  EXPECT_THAT(item->tags(), ElementsAre("home"));
  EXPECT_EQ(item->categoryUUID(), "003");
  EXPECT_EQ(item->createdAt(), 1'600'000'000u);
  EXPECT_EQ(item->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(item->scope(), "Never");
  EXPECT_EQ(item->sectionName(), "T");
  EXPECT_EQ(item->notesPlain(), "the notes");
  ASSERT_EQ(item->numberOfURLs(), 2u);
  EXPECT_EQ(item->URLAtIndex(0)->URLString(), "https://a.example/");
  EXPECT_EQ(item->URLAtIndex(0)->label(), "A");
  EXPECT_EQ(item->URLAtIndex(0)->item(), item);
  EXPECT_EQ(item->URLAtIndex(0)->profile(), item->profile());
  EXPECT_EQ(item->URLAtIndex(1)->displayOrder(), 200u);
  EXPECT_TRUE(item->detailsLoaded());
  EXPECT_FALSE(item->loadingDetails());
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemRows, WrittenAndReadAreTheSameRow) {
  const auto vault = localVault();
  const auto item = filledItem(vault);
  const auto other = newItem(vault);
  other->clearBackupKeys();
  const JsonObject row = item->allAttributes();

  other->setAllAttributes(row);

  EXPECT_EQ(jsonText(other->detailsObjectForKey("backupKeys")),
            jsonText(&row.at("details").at("backupKeys")));
  EXPECT_EQ(mr_JSONStringWithError(other->allAttributes()), mr_JSONStringWithError(row));
}

TEST(QNItemRows, GiveTheirUuidToALocalItemOnly) {
  const JsonObject row = jsonObject(R"({"uuid":"THEIRS"})");
  const auto local = newItem(localVault());
  const auto account = newItem(accountVault());
  const auto own = *account->uuid();

  local->setAllAttributes(row);
  account->setAllAttributes(row);

  EXPECT_EQ(*local->uuid(), "THEIRS");
  EXPECT_EQ(*account->uuid(), own);
}

TEST(QNItemRows, WithAnEmptyOrForeignUuidLeaveTheUuid) {
  const auto item = newItem(localVault());
  const auto own = *item->uuid();

  for (const auto* const row : {R"({"uuid":""})", R"({"uuid":7})", R"({"uuid":null})", "{}"}) {
    item->setAllAttributes(jsonObject(row));
    EXPECT_EQ(*item->uuid(), own) << row;
  }
}

TEST(QNItemRows, TakeAwayWhatTheyDontHave) {
  const auto item = filledItem(localVault());
  item->setSectionName("Z");

  item->setAllAttributes(JsonObject());

  EXPECT_EQ(item->categoryUUID(), std::nullopt);
  EXPECT_EQ(item->updatedAt(), 0u);
  EXPECT_EQ(item->createdAt(), 0u);
  EXPECT_EQ(item->scope(), std::nullopt);
  EXPECT_EQ(item->sectionName(), "T");  // of the title
  EXPECT_EQ(item->numberOfURLs(), 0u);
}

TEST(QNItemRows, WithoutOverviewOrDetailsLeaveBoth) {
  const auto item = filledItem(localVault());

  item->setAllAttributes(jsonObject(R"({"overview":[],"details":"x","URLs":{}})"));

  EXPECT_EQ(item->title(), "Träger");
  EXPECT_EQ(item->notesPlain(), "the notes");
}

TEST(QNItemRows, OfWrongKindsReadAsMissing) {
  const auto item = newItem(localVault());
  item->setSectionName("Z");

  item->setAllAttributes(
      jsonObject(R"({"categoryUUID":3,"updatedAt":"5","createdAt":-5,"scope":[],"sectionName":{},)"
                 R"("URLs":["x",null,{"overview":{"url":"https://a.example/"}},{"overview":7}]})"));

  EXPECT_EQ(item->categoryUUID(), std::nullopt);
  EXPECT_EQ(item->updatedAt(), 0u);
  EXPECT_EQ(item->createdAt(), 0u);
  EXPECT_EQ(item->scope(), std::nullopt);
  EXPECT_EQ(item->sectionName(), "U");  // of "Unnamed"
  ASSERT_EQ(item->numberOfURLs(), 2u);
  EXPECT_EQ(item->URLAtIndex(0)->URLString(), "https://a.example/");
  EXPECT_EQ(item->URLAtIndex(1)->URLString(), std::nullopt);
}

TEST(QNItemRows, ReplaceTheAddressesWithoutDeletingRows) {
  const auto item = filledItem(localVault());
  item->URLAtIndex(0)->_setOid(4);
  item->URLAtIndex(1)->_setOid(5);
  item->removeURLAtIndex(1);

  item->setAllAttributes(jsonObject(R"({"URLs":[{"overview":{"url":"https://c.example/"}}]})"));

  ASSERT_EQ(item->numberOfURLs(), 1u);
  EXPECT_EQ(item->URLString(), "https://c.example/");
  EXPECT_THAT(item->deletedURLs(), IsEmpty());
}

TEST(QNItemRows, WithoutAddressesLeaveNoDomainOfAFormerOne) {
  const auto item = filledItem(localVault());
  ASSERT_TRUE(item->nakedDomain());
  ASSERT_TRUE(item->derivedDomain());

  item->setAllAttributes(JsonObject());

  EXPECT_EQ(item->nakedDomain(), std::nullopt);
  EXPECT_EQ(item->derivedDomain(), std::nullopt);
}

TEST(QNItemRows, WithAddressesNeedAnItemThatIsShared) {
  QNSampleItem item(initNew);
  item.setProfile(localVault());
  const MRCapturingSink sink;

  item.setAllAttributes(jsonObject(R"({"URLs":[]})"));
  EXPECT_THAT(assertions(sink), IsEmpty());
  item.setAllAttributes(jsonObject(R"({"URLs":[{"overview":{"url":"https://a.example/"}}]})"));

  EXPECT_THAT(assertions(sink), ElementsAre("An item with URLs is made with std::make_shared"));
  EXPECT_EQ(item.numberOfURLs(), 0u);
}

TEST(QNItemRows, OfAnEarlierStateTakeBackEveryUnsavedEdit) {
  const auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(localVault());
  login->copyDetails(jsonObject(
      R"({"sections":[{"name":"s","fields":[{"n":"1","k":"string","t":"","v":"former"}]}]})"));
  login->setUsername("ann");
  const JsonObject before = login->allAttributes();
  login->setUsername("changed");
  login->setStringFieldValue("changed", "1");

  login->setAllAttributes(before);

  EXPECT_EQ(login->username(), "ann");
  EXPECT_EQ(login->allAttributes(), before);
}

TEST(QNItemRows, LeaveDetailsThatDontOpenAsTheyAre) {
  const Bytes overviewKey = mr_randomData(OVERVIEW_KEY_SIZE);
  const Bytes masterKey = mr_randomData(MASTER_KEY_SIZE);
  const auto vault = localVault();
  const auto unlock = [&] {
    vault->setOverviewKey(overviewKey);
    vault->setMasterKey(masterKey);
  };
  unlock();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  vault->lock();
  const MRCapturingSink sink;

  item->setAllAttributes(jsonObject(
      R"({"categoryUUID":"003","overview":{"title":"new"},"details":{"notesPlain":"new"},)"
      R"("URLs":[{"overview":{"url":"https://c.example/"}}]})"));

  EXPECT_EQ(item->detailsData(), row->detailsData());
  EXPECT_TRUE(item->detailsLoaded());
  EXPECT_EQ(item->title(), "new");
  EXPECT_EQ(item->URLString(), "https://c.example/");
  unlock();
  EXPECT_EQ(item->notesPlain(), "the notes");
  EXPECT_EQ(item->backupKeysBase64Encoded().size(), 1u);
}

TEST(QNItemRows, LeaveDetailsOfALockedAccountAsTheyAre) {
  const auto vault = accountVault();
  const auto row = filledItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  vault->lock();
  const MRCapturingSink sink;

  item->setAllAttributes(jsonObject(R"({"details":{"notesPlain":"new"}})"));

  vault->setLocked(false);
  EXPECT_EQ(item->notesPlain(), "the notes");
}

TEST(QNItemRows, WithoutBackupKeysLeaveThemInPlace) {
  const auto item = newItem(localVault());
  const auto before = item->backupKeysBase64Encoded();
  ASSERT_EQ(before.size(), 1u);

  item->setAllAttributes(jsonObject(R"({"details":{"notesPlain":"new"}})"));

  EXPECT_EQ(item->notesPlain(), "new");
  const auto after = item->backupKeysBase64Encoded();
  ASSERT_EQ(after.size(), 1u);
  EXPECT_TRUE(after.begin()->equals(*before.begin()));
}

TEST(QNItemRows, LeaveBackupKeysInPlaceThatNobodyHasReadYet) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  const MRCapturingSink sink;

  item->setAllAttributes(jsonObject(R"({"details":{"backupKeys":["b3RoZXI="]}})"));

  EXPECT_EQ(item->backupKeysBase64Encoded().size(), 2u);
  EXPECT_THAT(assertions(sink), IsEmpty());
}

TEST(QNItemRows, MakeAShellLoadedWithoutAReport) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{7});
  item->setProfile(localVault());
  const MRCapturingSink sink;

  item->setAllAttributes(jsonObject(R"({"details":{"notesPlain":"n"}})"));

  EXPECT_TRUE(item->detailsLoaded());
  EXPECT_FALSE(item->attachmentsLoaded());
  EXPECT_EQ(item->notesPlain(), "n");
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemRows, AreWhereARowsFormerPasswordIsNoted) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{7});
  item->setProfile(localVault());
  item->setAllAttributes(jsonObject(R"({"details":{"fields":[{"value":"first"}]}})"));

  item->setPassword("second");
  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

// Items from rows

TEST(QNItemRows, WithoutARowIdMakeANewItem) {
  const auto vault = localVault();

  const auto item = QNItem::itemWithAttributes(
      jsonObject(R"({"oid":0,"categoryUUID":"001","uuid":"U","overview":{"title":"T"},)"
                 R"("createdAt":5,"updatedAt":6})"),
      vault);

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), "QNLogin");
  EXPECT_FALSE(item->hasOid());
  EXPECT_EQ(item->profile(), vault);
  EXPECT_EQ(*item->uuid(), "U");
  EXPECT_EQ(item->title(), "T");
  EXPECT_EQ(item->createdAt(), 5u);
  EXPECT_EQ(item->updatedAt(), 6u);
  EXPECT_NE(item->key(), nullptr);
}

TEST(QNItemRows, WithARowIdMakeTheShellOfThatRow) {
  const auto item = QNItem::itemWithAttributes(
      jsonObject(R"({"oid":7,"categoryUUID":"005","overview":{"title":"T"},"createdAt":5})"),
      localVault());

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), "QNPassword");
  EXPECT_EQ(item->oid(), 7u);
  EXPECT_EQ(item->title(), "T");
  EXPECT_EQ(item->createdAt(), 5u);
}

TEST(QNItemRows, WithARowIdOfAnotherKindMakeANewItem) {
  for (const auto* const oid : {R"("7")", "-1", "null", "[7]"}) {
    const auto item = QNItem::itemWithAttributes(
        jsonObject(fmt::format(R"({{"oid":{},"categoryUUID":"001"}})", oid)), localVault());

    ASSERT_NE(item, nullptr) << oid;
    EXPECT_FALSE(item->hasOid()) << oid;
  }
}

TEST(QNItemRows, WithARowIdMayNameTheCategoryByItsTemplate) {
  const auto item =
      QNItem::itemWithAttributes(jsonObject(R"({"oid":7,"templateUuid":"005"})"), localVault());

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), "QNPassword");
  EXPECT_EQ(item->oid(), 7u);
  EXPECT_EQ(item->categoryUUID(), "005");
}

TEST(QNItemRows, OfANewItemWithoutTimesHaveNone) {
  const auto item =
      QNItem::itemWithAttributes(jsonObject(R"({"categoryUUID":"001"})"), localVault());

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->createdAt(), 0u);
  EXPECT_EQ(item->updatedAt(), 0u);
}

TEST(QNItemRows, MayNameTheCategoryByItsTemplate) {
  const auto vault = localVault();

  const auto item = QNItem::itemWithAttributes(jsonObject(R"({"templateUuid":"003"})"), vault);
  const auto both = QNItem::itemWithAttributes(
      jsonObject(R"({"templateUuid":"003","categoryUUID":"005"})"), vault);

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), "QNSecureNote");
  EXPECT_EQ(item->categoryUUID(), "003");
  ASSERT_NE(both, nullptr);
  EXPECT_EQ(both->className(), "QNPassword");
}

TEST(QNItemRows, MakeNothingWithoutACategoryOrAVault) {
  EXPECT_EQ(QNItem::itemWithAttributes(jsonObject(R"({"oid":7,"uuid":"U"})"), localVault()),
            nullptr);
  EXPECT_EQ(QNItem::itemWithAttributes(jsonObject(R"({"uuid":"U"})"), localVault()), nullptr);
  EXPECT_EQ(QNItem::itemWithAttributes(jsonObject(R"({"categoryUUID":"001"})"), nullptr), nullptr);
}

TEST(QNItemRows, MakeNothingWhereTheVaultMakesNothing) {
  EXPECT_EQ(QNItem::itemWithAttributes(jsonObject(R"({"categoryUUID":"001"})"), accountVault()),
            nullptr);
}

TEST(QNItemRows, OfALoginBringItsFormAlong) {
  const auto vault = localVault();
  const auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(vault);
  login->setUsername("ann");
  login->setPassword("secret");

  const auto read = QNItem::itemWithAttributes(login->allAttributes(), vault);

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->username(), "ann");
  EXPECT_TRUE(read->password()->equals("secret"));
}

// Repairs of imported items

TEST(QNItemRepair, LeavesASoundItemAlone) {
  const auto item = filledItem(localVault());
  const JsonObject before = item->allAttributes();
  const MRCapturingSink sink;

  EXPECT_TRUE(item->validateAndRepairImportedProperties());

  EXPECT_EQ(item->allAttributes(), before);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemRepair, RefusesAnItemWithoutCategoryAndRepairsNothingOfIt) {
  const auto item = newItem(localVault());
  item->setCreatedAt(0);
  item->setUuid(nullptr);
  item->setDetailsObject(Json(nullptr), "k");

  EXPECT_FALSE(item->validateAndRepairImportedProperties());

  EXPECT_EQ(item->createdAt(), 0u);
  EXPECT_EQ(item->updatedAt(), 0u);
  EXPECT_EQ(item->uuid(), nullptr);
  EXPECT_TRUE(item->details()->contains("k"));
}

TEST(QNItemRepair, FillsInMissingTimesAndLeavesOthers) {
  const QNScopedClock clock(1'800'000'000);
  const auto item = newItem(localVault());
  item->setCategoryUUID("001");
  item->setCreatedAt(0);
  item->setUpdatedAt(0);
  const auto dated = newItem(localVault());
  dated->setCategoryUUID("001");
  dated->setCreatedAt(5);
  dated->setUpdatedAt(6);

  EXPECT_TRUE(item->validateAndRepairImportedProperties());
  EXPECT_TRUE(dated->validateAndRepairImportedProperties());

  EXPECT_EQ(item->createdAt(), 1'800'000'000u);
  EXPECT_EQ(item->updatedAt(), 1'800'000'000u);
  EXPECT_EQ(dated->createdAt(), 5u);
  EXPECT_EQ(dated->updatedAt(), 6u);
}

TEST(QNItemRepair, DrawsAMissingUuidInTheFormOfTheVault) {
  const auto local = newItem(localVault());
  const auto account = newItem(accountVault());
  const auto empty = newItem(localVault());
  local->setUuid(nullptr);
  account->setUuid(nullptr);
  empty->setUuid(sharedString(""));
  for (const auto& item : {local, account, empty}) item->setCategoryUUID("001");

  for (const auto& item : {local, account, empty}) {
    EXPECT_TRUE(item->validateAndRepairImportedProperties());
  }

  EXPECT_EQ(local->uuid()->size(), 36u);
  EXPECT_EQ(account->uuid()->size(), 22u);
  EXPECT_EQ(empty->uuid()->size(), 36u);
}

TEST(QNItemRepair, LeavesAnItemWithoutVaultWithoutUuid) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  item->setCategoryUUID("001");
  const MRCapturingSink sink;

  EXPECT_TRUE(item->validateAndRepairImportedProperties());

  EXPECT_EQ(item->uuid(), nullptr);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemRepair, TakesNullsOutOfOverviewAndDetails) {
  const auto item = newItem(localVault());
  item->setAllAttributes(jsonObject(
      R"({"categoryUUID":"001","overview":{"title":"T","x":null},)"
      R"("details":{"a":null,"sections":[{"t":null,"fields":[null,{"v":null,"n":"i"}]}]}})"));
  item->clearBackupKeys();

  EXPECT_TRUE(item->validateAndRepairImportedProperties());

  EXPECT_EQ(mr_JSONStringWithError(*item->overviewCopy()), R"({"title":"T"})");
  EXPECT_EQ(mr_JSONStringWithError(*item->detailsCopy()),
            R"({"sections":[{"fields":[{"n":"i"}]}]})");
}

TEST(QNItemRepair, OfNullsStaysDoneInASave) {
  const auto item = QNItem::itemWithAttributes(
      jsonObject(
          R"({"categoryUUID":"001","details":{"fields":[{"name":"u","value":"ann","id":null,)"
          R"("designation":"username"},{"name":"p","value":null,"designation":"password"}],)"
          R"("sections":[{"name":"s","title":null,"fields":[{"n":"i","k":"string","v":null}]}]}})"),
      localVault());
  ASSERT_NE(item, nullptr);
  ASSERT_EQ(item->numberOfFieldSections(), 1u);

  EXPECT_TRUE(item->validateAndRepairImportedProperties());
  item->willSerialize();

  EXPECT_THAT(*mr_JSONStringWithError(*item->detailsCopy()), Not(HasSubstr("null")));
  EXPECT_EQ(item->username(), "ann");
}

TEST(QNItemRepair, KeepsEditsThatNoSaveHasWrittenYet) {
  const auto item = QNItem::itemWithAttributes(
      jsonObject(R"({"categoryUUID":"001","details":{"x":null,"sections":[{"name":"s","fields":)"
                 R"([{"n":"1","k":"string","t":"","v":"former"}]}]}})"),
      localVault());
  ASSERT_NE(item, nullptr);
  item->setUsername("ann");
  item->setStringFieldValue("changed", "1");

  EXPECT_TRUE(item->validateAndRepairImportedProperties());

  EXPECT_EQ(item->username(), "ann");
  EXPECT_EQ(item->detailsObjectForKey("x"), nullptr);
  EXPECT_THAT(jsonText(item->detailsObjectForKey(kDetailsSections)), HasSubstr("changed"));
}

}  // namespace
}  // namespace quillon
