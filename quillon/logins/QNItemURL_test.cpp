#include "quillon/logins/QNItemURL.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/items/QNItem.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/urls/QNURLTools.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class QNItemURLTest : public testing::Test {
 protected:
  void SetUp() override {
    QNLocalization::sharedLocalization().setLanguage("en");
    _item->setProfile(_vault);
  }
  // A clean one of the item's vault, not in the item's list.
  std::shared_ptr<QNItemURL> url(std::optional<std::string_view> address = std::nullopt) {
    auto made = std::make_shared<QNItemURL>(initNew);
    made->setItem(_item);
    made->setProfile(_vault);
    made->setURLString(address);
    made->didLoad();
    return made;
  }

  std::shared_ptr<QNProfile> _vault = QNProfile::initNewWithPassword(DEMO_PASSWORD);
  std::shared_ptr<QNItem> _item = std::make_shared<QNItem>(initNew);
};

TEST(QNItemURLSearchString, IsTheHostInLowerCase) {
  const auto extracted = [](std::string_view text) {
    return QNItemURL::extractSearchStringFromURLString(text);
  };

  EXPECT_EQ(extracted("HTTPS://Example.COM:8443/a?b"), "example.com");
  EXPECT_EQ(extracted("Example.com/path"), "example.com");
  EXPECT_EQ(extracted("example.com?q=a/b"), "example.com");
  EXPECT_EQ(extracted("http://"), "");
  EXPECT_EQ(extracted("/path"), "");
  EXPECT_EQ(extracted(""), "");
}

TEST(QNItemURLSearchString, BeginsBehindASchemeWhereverItStands) {
  EXPECT_EQ(QNItemURL::extractSearchStringFromURLString("example.com/?next=http://other.example/"),
            "other.example");
}

TEST(QNItemURLSearchString, EndsAtTheFirstColonWithoutAScheme) {
  EXPECT_EQ(QNItemURL::extractSearchStringFromURLString("mailto:ann@example.com"), "mailto");
}

TEST(QNItemURLSearchString, LowersInternationalHosts) {
  EXPECT_EQ(QNItemURL::extractSearchStringFromURLString("https://BÜCHER.example/"),
            "bücher.example");
}

TEST(QNItemURLSearchString, LowersPlainLettersAlikeInEveryLocale) {
  const QNScopedLocale turkish("tr-TR");

  EXPECT_EQ(QNItemURL::extractSearchStringFromURLString("https://EXAMPLE.IT/"), "example.it");
  EXPECT_EQ(QNItemURL::extractSearchStringFromURLString("https://BÜCHERKISTE.IT/"),
            "bücherkiste.it");
}

TEST_F(QNItemURLTest, KeepsAddressAndLabelInItsOverview) {
  const auto made = url("https://example.com");
  made->setLabel("Work");

  EXPECT_EQ(made->URLString(), "https://example.com");
  EXPECT_EQ(made->label(), "Work");
  EXPECT_EQ(mr_JSONStringWithError(*made->overviewCopy()),
            R"({"url":"https://example.com","label":"Work"})");
  EXPECT_TRUE(made->dirtyRow());
}

TEST_F(QNItemURLTest, HasNeitherAddressNorLabelAtFirst) {
  EXPECT_EQ(url()->URLString(), std::nullopt);
  EXPECT_EQ(url()->label(), std::nullopt);
}

TEST_F(QNItemURLTest, DropsItsHashesForANewAddress) {
  const auto made = url("https://example.com");
  made->setNakedHash("n");
  made->setDerivedHash("d");

  made->setURLString("https://example.org");

  EXPECT_EQ(made->nakedHash(), std::nullopt);
  EXPECT_EQ(made->derivedHash(), std::nullopt);
}

TEST_F(QNItemURLTest, DropsItsAddressAndHashesForNoAddress) {
  const auto made = url("https://example.com");
  made->setLabel("Work");
  made->setNakedHash("n");
  made->setDerivedHash("d");

  made->setURLString(std::nullopt);

  EXPECT_EQ(mr_JSONStringWithError(*made->overviewCopy()), R"({"label":"Work"})");
  EXPECT_EQ(made->nakedHash(), std::nullopt);
  EXPECT_EQ(made->derivedHash(), std::nullopt);
}

TEST_F(QNItemURLTest, DirtiesNothingForAnEqualLabel) {
  const auto made = url();
  made->setLabel("Work");
  ASSERT_TRUE(made->dirtyRow());
  made->didSave();

  made->setLabel("Work");

  EXPECT_FALSE(made->dirtyRow());
}

TEST_F(QNItemURLTest, KeepsItsHashesForAnEqualAddress) {
  const auto made = url("https://example.com");
  made->setNakedHash("n");
  made->setDerivedHash("d");
  made->didSave();

  made->setURLString("https://example.com");

  EXPECT_EQ(made->nakedHash(), "n");
  EXPECT_EQ(made->derivedHash(), "d");
  EXPECT_FALSE(made->dirtyRow());
}

TEST_F(QNItemURLTest, ChangesNothingForNoLabel) {
  const auto made = url();
  made->setLabel("Work");
  made->didSave();

  made->setLabel(std::nullopt);
  made->setLabelObject(Json(nullptr));

  EXPECT_EQ(made->label(), "Work");
  EXPECT_FALSE(made->dirtyRow());
}

TEST_F(QNItemURLTest, StoresAnEmptyLabelForOneThatIsNoText) {
  const MRCapturingSink log;
  const auto made = url();

  made->setLabelObject(Json(7));

  EXPECT_EQ(made->label(), "");
  EXPECT_EQ(log.texts(MRLogKind::assertion).size(), 1u);
}

TEST_F(QNItemURLTest, TakesALabelFromJson) {
  const auto made = url();

  made->setLabelObject(Json("Work"));

  EXPECT_EQ(made->label(), "Work");
}

TEST_F(QNItemURLTest, ShowsItsLabelAtAnyIndex) {
  const auto made = url();
  made->setLabel("Work");

  EXPECT_EQ(made->labelShownAtIndex(0), "Work");
  EXPECT_EQ(made->labelShownAtIndex(1), "Work");
}

TEST_F(QNItemURLTest, ShowsItsPlaceWithoutALabel) {
  const auto made = url();
  made->setLabel("");

  EXPECT_EQ(made->labelShownAtIndex(0), "website");
  EXPECT_EQ(made->labelShownAtIndex(1), "website 2");
  EXPECT_EQ(made->labelShownAtIndex(9), "website 10");
}

TEST_F(QNItemURLTest, ShowsItsPlaceInTheUsersLanguage) {
  QNLocalization::sharedLocalization().setLanguage("de");

  EXPECT_EQ(url()->labelShownAtIndex(1), "Website 2");
}

TEST_F(QNItemURLTest, CalculatesItsLabelFromItsPlaceInTheItem) {
  _item->addURLString("https://example.com");
  _item->addURLString("https://example.org");
  _item->addURLString("https://example.net", "Work");

  EXPECT_EQ(_item->URLAtIndex(0)->calculatedLabel(), "website");
  EXPECT_EQ(_item->URLAtIndex(1)->calculatedLabel(), "website 2");
  EXPECT_EQ(_item->URLAtIndex(2)->calculatedLabel(), "Work");
}

TEST_F(QNItemURLTest, CalculatesItsLabelByItselfNotByItsAddress) {
  _item->addURLString("https://example.com");
  _item->addURLString("https://example.com");
  const auto unlisted = url("https://example.com");
  ASSERT_TRUE(unlisted->isEqualToItemURL(*_item->URLAtIndex(0)));

  EXPECT_EQ(_item->URLAtIndex(0)->calculatedLabel(), "website");
  EXPECT_EQ(_item->URLAtIndex(1)->calculatedLabel(), "website 2");
  EXPECT_EQ(unlisted->calculatedLabel(), "");
}

TEST_F(QNItemURLTest, HasNoCalculatedLabelOutsideAnItem) {
  EXPECT_EQ(url()->calculatedLabel(), "");
  EXPECT_EQ(std::make_shared<QNItemURL>(initNew)->calculatedLabel(), "");
}

TEST_F(QNItemURLTest, HasNoCalculatedLabelWhileItsItemIsAShell) {
  const MRCapturingSink log;
  const auto shell = std::make_shared<QNItem>(QNExisting{5});
  const auto made = url("https://example.com");
  made->setItem(shell);

  EXPECT_EQ(made->calculatedLabel(), "");
  EXPECT_THAT(log.texts(MRLogKind::assertion), ElementsAre("Item URLs must be loaded"));
}

TEST_F(QNItemURLTest, LeavesOutAWebSchemeAndTouchesNothingElse) {
  EXPECT_EQ(url("http://Example.com/A")->URLStringWithoutScheme(), "Example.com/A");
  EXPECT_EQ(url("HTTPS://Example.com")->URLStringWithoutScheme(), "Example.com");
  EXPECT_EQ(url("http://https://a")->URLStringWithoutScheme(), "https://a");
  EXPECT_EQ(url("example.com")->URLStringWithoutScheme(), "example.com");
  EXPECT_EQ(url("http:/")->URLStringWithoutScheme(), "http:/");
  EXPECT_EQ(url()->URLStringWithoutScheme(), std::nullopt);
}

TEST_F(QNItemURLTest, KeepsAnyOtherScheme) {
  EXPECT_EQ(url("ftp://x")->URLStringWithoutScheme(), "ftp://x");
}

TEST_F(QNItemURLTest, CutsBeforeTheFirstQuestionMark) {
  EXPECT_EQ(url("https://example.com/a?b?c")->URLStringWithoutSchemeAndQueryString(),
            "example.com/a");
  EXPECT_EQ(url("example.com/a")->URLStringWithoutSchemeAndQueryString(), "example.com/a");
  EXPECT_EQ(url()->URLStringWithoutSchemeAndQueryString(), std::nullopt);
}

TEST_F(QNItemURLTest, DirtiesItsRowForAChangedHashOrVersionOnly) {
  const auto made = url();

  made->setNakedHash(std::nullopt);
  made->setDerivedHash(std::nullopt);
  made->setHashVersion(0);
  EXPECT_FALSE(made->dirtyRow());

  made->setNakedHash("n");
  EXPECT_TRUE(made->dirtyRow());
  made->didSave();
  made->setDerivedHash("d");
  EXPECT_TRUE(made->dirtyRow());
  made->didSave();
  made->setHashVersion(1);
  EXPECT_TRUE(made->dirtyRow());
}

TEST_F(QNItemURLTest, DoesNotDirtyTheOrderForTheFirstOne) {
  const auto made = url();

  made->setDisplayOrder(100);

  EXPECT_EQ(made->displayOrder(), 100u);
  EXPECT_FALSE(made->dirtyDisplayOrder());
  EXPECT_FALSE(made->dirtyRow());
}

TEST_F(QNItemURLTest, DirtiesOnlyTheOrderForAnotherOne) {
  const auto made = url();
  made->setDisplayOrder(100);

  made->setDisplayOrder(100);
  EXPECT_FALSE(made->dirtyDisplayOrder());

  made->setDisplayOrder(1);
  EXPECT_TRUE(made->dirtyDisplayOrder());
  EXPECT_FALSE(made->dirtyRow());
}

TEST_F(QNItemURLTest, CopiesEverythingThatItIsReplacedWith) {
  const auto other = url("https://example.org");
  other->setLabel("Work");
  other->setNakedHash("n");
  other->setDerivedHash("d");
  other->setHashVersion(3);
  other->setDisplayOrder(300);
  const auto made = url("https://example.com");

  made->replaceWith(*other);

  EXPECT_TRUE(made->dirtyRow());
  EXPECT_TRUE(made->isEqualToItemURL(*other));
  EXPECT_EQ(made->nakedHash(), "n");
  EXPECT_EQ(made->derivedHash(), "d");
  EXPECT_EQ(made->hashVersion(), 3u);
  EXPECT_EQ(made->displayOrder(), 300u);
}

TEST_F(QNItemURLTest, StaysAsItIsWhenItsReplacementCannotBeOpened) {
  const MRCapturingSink log;
  QNItemURL unreadable(QNExisting{3});
  unreadable.setNakedHash("n");
  const auto made = url("https://example.com");

  made->replaceWith(unreadable);

  EXPECT_FALSE(made->dirtyRow());
  EXPECT_EQ(made->URLString(), "https://example.com");
  EXPECT_EQ(made->nakedHash(), std::nullopt);
}

TEST_F(QNItemURLTest, EqualsOneWithEqualLabelAndAddress) {
  const auto one = url("https://example.com");
  const auto other = url("https://example.com");
  other->setDisplayOrder(7);
  other->setNakedHash("n");
  other->setItem(nullptr);

  EXPECT_TRUE(one->isEqualToItemURL(*other));
  EXPECT_TRUE(one->isEqual(*other));
  EXPECT_EQ(one->hash(), other->hash());
}

TEST_F(QNItemURLTest, DiffersByLabelOrAddress) {
  const auto one = url("https://example.com");
  const auto labelled = url("https://example.com");
  labelled->setLabel("Work");

  EXPECT_FALSE(one->isEqualToItemURL(*labelled));
  EXPECT_FALSE(one->isEqualToItemURL(*url("https://example.org")));
  EXPECT_FALSE(one->isEqual(*labelled));
  EXPECT_FALSE(one->isEqual(*url("https://example.org")));
}

TEST_F(QNItemURLTest, HashesToTheExclusiveOrOfItsTexts) {
  const auto made = url("https://example.com");
  made->setLabel("Work");
  const std::hash<std::string> hashOf;

  EXPECT_EQ(made->hash(), hashOf("Work") ^ hashOf("https://example.com"));
}

TEST_F(QNItemURLTest, IsMadeForAnItemFromItsAttributes) {
  const auto row = mr_objectFromJSONStringWithError(
      R"({"overview":{"url":"https://example.com","label":"Work","x":1}})");

  const auto made = QNItemURL::urlForItem(_item, *row);

  EXPECT_EQ(made->item(), _item);
  EXPECT_EQ(made->profile(), _vault);
  EXPECT_EQ(made->URLString(), "https://example.com");
  EXPECT_EQ(made->label(), "Work");
  EXPECT_TRUE(made->dirtyRow());
  EXPECT_EQ(made->allAttributes(), *row);
}

TEST_F(QNItemURLTest, IsMadeEmptyFromAttributesWithoutAnOverview) {
  const auto made = QNItemURL::urlForItem(_item, JsonObject());

  EXPECT_EQ(made->item(), _item);
  EXPECT_EQ(made->profile(), _vault);
  EXPECT_EQ(made->URLString(), std::nullopt);
  EXPECT_EQ(made->label(), std::nullopt);
}

TEST_F(QNItemURLTest, IsNotMadeWithoutAnItem) {
  const auto row = mr_objectFromJSONStringWithError(R"({"overview":{"url":"https://a.example"}})");

  EXPECT_EQ(QNItemURL::urlForItem(nullptr, *row), nullptr);
}

TEST_F(QNItemURLTest, HoldsItsItemWeakly) {
  auto item = std::make_shared<QNItem>(initNew);
  const auto made = std::make_shared<QNItemURL>(initNew);
  made->setItem(item);

  item = nullptr;

  EXPECT_EQ(made->item(), nullptr);
}

TEST_F(QNItemURLTest, ComputesItsHashesWithTheVaultsUuidBeforeASave) {
  const auto made = url("https://www.example.com/login");

  made->willSave();

  const QNURLTools& tools = QNURLTools::shared();
  EXPECT_EQ(made->nakedHash(), tools.nakedHashWithSalt(*_vault->uuid(), "example.com"));
  EXPECT_EQ(made->derivedHash(), tools.derivedHashWithSalt(*_vault->uuid(), "www.example.com"));
  EXPECT_EQ(made->hashVersion(), tools.hashVersion());
  EXPECT_TRUE(made->nakedHash());
  EXPECT_NE(made->nakedHash(), made->derivedHash());
}

TEST_F(QNItemURLTest, SealsItsOverviewInASave) {
  const auto made = url("https://example.com");

  made->willSave();

  ASSERT_TRUE(made->overviewData());
  const auto clear = _vault->decryptOverview(*made->overviewData());
  ASSERT_TRUE(clear);
  EXPECT_EQ(textOf(*clear), R"({"url":"https://example.com"})");
}

TEST_F(QNItemURLTest, HasNoHashesForAnAddressWithoutAHost) {
  const auto made = url("mailto:ann@example.com");
  made->setNakedHash("stale");
  made->setDerivedHash("stale too");

  made->willSave();

  EXPECT_EQ(made->nakedHash(), std::nullopt);
  EXPECT_EQ(made->derivedHash(), std::nullopt);
  EXPECT_EQ(made->hashVersion(), QNURLTools::shared().hashVersion());
}

TEST_F(QNItemURLTest, HasNoHashesWithoutAnAddress) {
  const auto made = url();
  made->setNakedHash("stale");
  made->setDerivedHash("stale too");

  made->willSave();

  EXPECT_EQ(made->nakedHash(), std::nullopt);
  EXPECT_EQ(made->derivedHash(), std::nullopt);
}

TEST_F(QNItemURLTest, ReportsASaveWithoutAProfile) {
  const MRCapturingSink log;
  QNItemURL stray(initNew);

  stray.willSave();

  EXPECT_THAT(log.texts(MRLogKind::assertion), ElementsAre("Profile is missing"));
  EXPECT_FALSE(stray.overviewData());
  EXPECT_EQ(stray.nakedHash(), std::nullopt);
}

TEST_F(QNItemURLTest, IsSaltedByTheAccountVaultToo) {
  const auto account = std::make_shared<QNTestServerProfile>();
  const auto item = std::make_shared<QNItem>(initNew);
  item->setProfile(account);
  item->addURLString("https://example.com");
  const auto made = item->URLAtIndex(0);

  made->willSave();

  EXPECT_EQ(made->nakedHash(),
            QNURLTools::shared().nakedHashWithSalt(*account->uuid(), "https://example.com"));
  EXPECT_THAT(std::string(textOf(*made->overviewData())), HasSubstr("sealed"));
}

TEST_F(QNItemURLTest, IsSaltedByTheVaultOfItsItemNotByItsOwn) {
  const auto made = url("https://example.com");
  made->setProfile(QNProfile::initNewWithPassword(DEMO_PASSWORD));

  made->willSave();

  EXPECT_EQ(made->derivedHash(),
            QNURLTools::shared().derivedHashWithSalt(*_vault->uuid(), "https://example.com"));
}

TEST_F(QNItemURLTest, GetsNoHashesWithoutAnItemAndKeepsThoseThatItHas) {
  const auto made = url("https://example.com");
  made->setItem(nullptr);

  made->willSave();
  EXPECT_EQ(made->nakedHash(), std::nullopt);
  EXPECT_EQ(made->derivedHash(), std::nullopt);
  EXPECT_EQ(made->hashVersion(), 0u);

  made->setNakedHash("n");
  made->setDerivedHash("d");
  made->setHashVersion(7);
  made->willSave();

  EXPECT_EQ(made->nakedHash(), "n");
  EXPECT_EQ(made->derivedHash(), "d");
  EXPECT_EQ(made->hashVersion(), 7u);
}

TEST_F(QNItemURLTest, KeepsItsStoredOverviewAndHashesInASaveThatCannotOpenIt) {
  const MRCapturingSink log;
  const auto made = std::make_shared<QNItemURL>(QNExisting{3});
  made->setItem(_item);
  made->setProfile(_vault);
  const Bytes sealed = toBytes(bytesOf("sealed by another vault, which this one can't open"));
  made->setOverviewData(sealed);
  made->setNakedHash("n");
  made->setDerivedHash("d");
  made->setHashVersion(7);
  made->didLoad();

  made->willSave();

  EXPECT_EQ(made->overviewData(), sealed);
  EXPECT_EQ(made->nakedHash(), "n");
  EXPECT_EQ(made->derivedHash(), "d");
  EXPECT_EQ(made->hashVersion(), 7u);
  EXPECT_FALSE(made->dirtyRow());
}

TEST_F(QNItemURLTest, KeepsItsHashesInASaveWhileItsVaultIsLocked) {
  const auto saved = url("https://example.com");
  saved->willSave();
  const auto made = std::make_shared<QNItemURL>(QNExisting{3});
  made->setItem(_item);
  made->setProfile(_vault);
  made->setOverviewData(saved->overviewData());
  made->setNakedHash(saved->nakedHash());
  made->setDerivedHash(saved->derivedHash());
  made->setHashVersion(saved->hashVersion());
  made->didLoad();
  const MRCapturingSink log;
  _vault->lock();

  made->willSave();

  EXPECT_EQ(made->overviewData(), saved->overviewData());
  EXPECT_TRUE(made->nakedHash());
  EXPECT_EQ(made->nakedHash(), saved->nakedHash());
  EXPECT_EQ(made->derivedHash(), saved->derivedHash());
  EXPECT_FALSE(made->dirtyRow());
}

std::shared_ptr<QNItemURL> readFrom(ByteView archive) {
  const QNDecodableClass itemURL = {
      "QNItemURL", [](QNDecoder& coder) {
        return std::shared_ptr<QNCoding>(std::make_shared<QNItemURL>(coder));
      }};
  const auto root =
      QNKeyedUnarchiver::unarchivedObjectOfClasses(std::span(&itemURL, std::size_t{1}), archive);
  return root.ok() ? std::dynamic_pointer_cast<QNItemURL>(root.value()) : nullptr;
}

TEST_F(QNItemURLTest, ComesBackFromAnArchiveWithItsOrder) {
  const auto original = url("https://example.com");
  original->_setOid(9);
  original->setDisplayOrder(200);
  original->markRowDirty();

  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(*original);
  ASSERT_TRUE(archive.ok());
  const auto decoded = readFrom(archive.value());
  ASSERT_NE(decoded, nullptr);
  decoded->setProfile(_vault);

  EXPECT_NE(textOf(archive.value()).find(R"("kDisplayOrder":200)"), std::string_view::npos);
  EXPECT_EQ(decoded->displayOrder(), 200u);
  EXPECT_EQ(decoded->oid(), 9u);
  EXPECT_EQ(decoded->URLString(), "https://example.com");
}

TEST_F(QNItemURLTest, WritesNoOrderOfZeroIntoAnArchive) {
  const auto original = url("https://example.com");

  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(*original);

  ASSERT_TRUE(archive.ok());
  EXPECT_EQ(textOf(archive.value()).find("kDisplayOrder"), std::string_view::npos);
  EXPECT_EQ(readFrom(archive.value())->displayOrder(), 0u);
}

}  // namespace
}  // namespace quillon
