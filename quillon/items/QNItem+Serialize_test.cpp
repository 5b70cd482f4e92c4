#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::IsEmpty;

QNSampleItemRef savedItem(const std::shared_ptr<QNGenericProfile>& vault,
                          std::string_view password) {
  auto item = newItem(vault);
  item->setPassword(password);
  save(*item);
  return item;
}

std::string historyOf(QNItem& item) {
  return jsonText(item.detailsObjectForKey(kDetailsPasswordHistory));
}

TEST(QNItemSerialize, NamesTheSection) {
  const auto item = newItem(localVault());
  item->setTitle("\xC3\xA9t\xC3\xA9");

  item->willSerialize();

  EXPECT_EQ(item->sectionName(), "\xC3\x89");
}

TEST(QNItemSerialize, MirrorsTheFirstURL) {
  const auto item = newItem(localVault());
  item->addURLString("https://a.example");
  item->addURLString("https://b.example");

  item->willSerialize();
  EXPECT_EQ(item->overviewTextForKey("url"), "https://a.example");
  item->removeURLAtIndex(0);
  item->willSerialize();
  EXPECT_EQ(item->overviewTextForKey("url"), "https://b.example");
  item->removeURLAtIndex(0);
  item->willSerialize();

  EXPECT_EQ(item->overviewObjectForKey("url"), nullptr);
}

TEST(QNItemSerialize, LeavesTheMirroredURLOfAnItemThatNeverHadAList) {
  const auto item = newItem(localVault());
  item->setOverviewText("https://a.example", kOverviewURLString);

  item->willSerialize();

  EXPECT_EQ(item->overviewTextForKey("url"), "https://a.example");
}

TEST(QNItemSerialize, LeavesTheMirroredURLWhileTheFirstOneDoesntOpen) {
  const MRCapturingSink sink;
  const auto item = newItem(localVault());
  item->setOverviewText("https://a.example", kOverviewURLString);
  const auto damaged = std::make_shared<QNItemURL>(QNExisting{3});
  damaged->setOverviewData(toBytes(bytesOf("no bytes that this vault has sealed")));
  item->addURL(damaged);
  item->addURLString("https://b.example");
  ASSERT_EQ(damaged->URLString(), std::nullopt);

  item->willSerialize();

  EXPECT_EQ(item->overviewTextForKey("url"), "https://a.example");
}

TEST(QNItemSerialize, RemovesTheMirroredURLWhenTheFirstOneHasNoAddress) {
  const auto item = newItem(localVault());
  item->setOverviewText("https://a.example", kOverviewURLString);
  item->addURL(std::make_shared<QNItemURL>(initNew));

  item->willSerialize();

  EXPECT_EQ(item->overviewObjectForKey("url"), nullptr);
}

TEST(QNItemSerialize, WritesTheSubtitleOnlyWithDetails) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->willSerialize();
  EXPECT_EQ(row->overviewTextForKey("ainfo"), "");
  row->setOverviewObject(std::nullopt, "ainfo");
  row->_setOid(3);

  const auto item = listed(*row, vault);
  item->willSerialize();

  EXPECT_EQ(item->overviewObjectForKey("ainfo"), nullptr);
}

// How a password retires

TEST(QNItemSerialize, APasswordOfANewItemEntersNoHistory) {
  const auto item = newItem(localVault());
  item->setPassword("first");
  item->setPassword("second");

  save(*item);

  EXPECT_EQ(historyOf(*item), "(none)");
}

TEST(QNItemSerialize, AChangedPasswordEntersTheHistoryAtTheNextSave) {
  const QNScopedClock clock(1'600'000'000);
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault, "first"), vault);

  item->setPassword("second");
  EXPECT_EQ(historyOf(*item), "(none)");
  save(*item);

  EXPECT_EQ(historyOf(*item), R"([{"time":1600000000,"value":"first"}])");
  EXPECT_EQ(historyOf(*opened(*item, vault)), R"([{"time":1600000000,"value":"first"}])");
}

TEST(QNItemSerialize, SoItDoesInAnAccount) {
  const QNScopedClock clock(1'600'000'000);
  const auto vault = accountVault();
  const auto item = opened(*savedItem(vault, "first"), vault);

  item->setPassword("second");
  save(*item);

  EXPECT_EQ(historyOf(*opened(*item, vault)), R"([{"time":1600000000,"value":"first"}])");
}

TEST(QNItemSerialize, TwoChangesBetweenTwoSavesLeaveOneEntry) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault, "first"), vault);

  item->setPassword("second");
  item->setPassword("third");
  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

TEST(QNItemSerialize, AChangeAndItsUndoingLeaveNoEntry) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault, "first"), vault);

  item->setPassword("second");
  item->setPassword("first");
  save(*item);

  EXPECT_EQ(historyOf(*item), "(none)");
}

TEST(QNItemSerialize, EachSavedPasswordRetiresAtItsOwnTime) {
  QNScopedClock clock(100);
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault, "first"), vault);

  item->setPassword("second");
  save(*item);
  clock.setSeconds(200);
  item->setPassword("third");
  save(*item);

  EXPECT_EQ(historyOf(*item), R"([{"time":100,"value":"first"},{"time":200,"value":"second"}])");
}

TEST(QNItemSerialize, AClearedPasswordEntersTheHistory) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault, "first"), vault);

  item->setPassword(std::nullopt);
  save(*item);
  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

TEST(QNItemSerialize, AnEmptyPasswordRetiresWithoutAnEntry) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault, ""), vault);

  item->setPassword("first");
  save(*item);

  EXPECT_EQ(historyOf(*item), "(none)");
}

TEST(QNItemSerialize, AnItemThatStaysOpenAfterItsFirstSaveRetiresItsPassword) {
  const auto item = savedItem(localVault(), "first");

  item->setPassword("second");
  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

TEST(QNItemSerialize, ReplacedDetailsRetireThePasswordThatWasInThem) {
  const auto vault = localVault();
  const auto item = opened(*savedItem(vault, "first"), vault);

  item->copyDetails(jsonObject(R"({"fields":[{"value":"second"}]})"));
  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

TEST(QNItemSerialize, AnUnchangedPasswordLeavesTheStoredHistoryAsItIs) {
  const auto vault = localVault();
  const auto row = savedItem(vault, "first");
  row->setDetailsObject(jsonValue(R"([{"value":"old","time":"7","more":true}])"),
                        kDetailsPasswordHistory);
  save(*row);
  const auto item = opened(*row, vault);

  item->setTitle("T");
  save(*item);

  EXPECT_EQ(historyOf(*opened(*item, vault)), R"([{"value":"old","time":"7","more":true}])");
}

TEST(QNItemSerialize, DirtyingTheRowNotesThePasswordOnlyOnceTheDetailsHoldOne) {
  const auto item = newItem(localVault());
  item->_setOid(5);
  item->setTitle("T");
  item->setPassword("first");  // the row is dirtied before the fields are there
  item->setPassword("second");

  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

TEST(QNItemSerialize, SectionsCountAsAPlaceOfAPassword) {
  const auto item = newItem(localVault());
  item->_setOid(5);
  item->setDetailsObject(jsonValue("[]"), kDetailsSections);
  item->setTitle("T");  // there is no password to note yet
  item->setPassword("first");

  save(*item);
  EXPECT_EQ(historyOf(*item), "(none)");
  item->setPassword("second");
  save(*item);

  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
}

TEST(QNItemSerialize, DirtyingAListedItemOpensNothing) {
  const auto vault = localVault();
  const auto item = listed(*savedItem(vault, "first"), vault);
  const auto before = vault->numberOfItemKeysUnwrapped();
  const MRCapturingSink sink;

  item->markRowDirty();

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), before);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemSerialize, ASaveForgetsTheDeletedURLs) {
  const auto item = newItem(localVault());
  item->addURLString("https://a.example");
  item->URLAtIndex(0)->_setOid(3);
  item->removeURLAtIndex(0);
  ASSERT_EQ(item->deletedURLs().size(), 1u);

  item->willSave();
  EXPECT_EQ(item->deletedURLs().size(), 1u);
  item->didSave();

  EXPECT_THAT(item->deletedURLs(), IsEmpty());
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemSerialize, AnEmptyPasswordIsNoPasswordToKeepInMind) {
  const auto item = newItem(localVault());
  item->setPassword("");
  save(*item);
  item->setPassword("first");
  save(*item);

  item->setPassword("second");
  save(*item);

  EXPECT_NE(item->previouslyUsedPasswordWithValue("first"), nullptr);
}

// An item that keeps its password in details "password", as the kind without form fields does.
class QNPlainItem final : public QNItem {
 public:
  using QNItem::QNItem;
  std::optional<QNSecret> password() override {
    const std::lock_guard lock(monitor());
    const Json* const text = detailsObjectForKey(kDetailsPassword);
    return text == nullptr ? std::nullopt : std::optional<QNSecret>(text->get_string());
  }
  void setPassword(std::optional<std::string_view> password) override {
    setDetailsText(password, kDetailsPassword);
  }
  std::optional<std::string> _additionalInformation() override {
    const auto present = password();
    return present ? "has a password" : "-";
  }
};

std::shared_ptr<QNPlainItem> plainItem() {
  auto item = std::make_shared<QNPlainItem>(initNew);
  item->setProfile(localVault());
  item->_setOid(5);
  return item;
}

TEST(QNItemSerialize, WithoutFieldsOrSectionsNoPasswordIsNotedOnDirtying) {
  const auto item = plainItem();
  item->setPassword("first");
  save(*item);

  item->setPassword("second");
  save(*item);

  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 0u);
}

TEST(QNItemSerialize, WithSectionsAloneAPasswordIsNotedOnDirtying) {
  const auto item = plainItem();
  item->setDetailsObject(jsonValue("[]"), kDetailsSections);
  item->setPassword("first");
  save(*item);

  item->setPassword("second");
  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

TEST(QNItemSerialize, ParsingNewDetailsKeepsThePasswordThatWasNotedBefore) {
  const auto vault = localVault();
  const auto row = savedItem(vault, "first");
  const auto item = opened(*row, vault);
  ASSERT_TRUE(item->password()->equals("first"));
  row->setPassword("second");
  row->willSave();

  item->setDetailsData(row->detailsData());
  ASSERT_TRUE(item->password()->equals("second"));
  item->setDetailsObject(std::nullopt, kDetailsPasswordHistory);
  save(*item);

  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(item->previouslyUsedPasswordAtIndex(0)->value()->equals("first"));
}

TEST(QNItemSerialize, DetailsThatDontOpenLeaveWhatWasDerivedFromThem) {
  const auto item = plainItem();
  item->setDetailsObject(jsonValue("[]"), kDetailsSections);
  item->setPassword("a good long password");
  item->markRowDirty();
  save(*item);
  const Bytes stored = *item->detailsData();
  const std::string strength = jsonText(item->overviewObjectForKey("ps"));
  item->setDetailsData(Bytes(60, 1));

  item->json();
  item->willSave();

  EXPECT_EQ(item->additionalInformation(), "has a password");
  EXPECT_EQ(jsonText(item->overviewObjectForKey("ps")), strength);
  item->setDetailsData(stored);
  item->setPassword("another");
  save(*item);
  EXPECT_NE(item->previouslyUsedPasswordWithValue("a good long password"), nullptr);
}

}  // namespace
}  // namespace quillon
