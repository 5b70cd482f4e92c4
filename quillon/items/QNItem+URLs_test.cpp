#include "quillon/items/internal/QNMergeTesting.h"
#include "quillon/platform/urls/QNURLTools.h"

namespace quillon {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

QNSampleItemRef itemWithURLs(std::initializer_list<std::string_view> urls) {
  auto item = newItem(localVault());
  for (const auto url : urls) item->addURLString(url);
  item->didSave();
  return item;
}

TEST(QNItemURLs, MustBeLoaded) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setOverviewText("https://a.example", kOverviewURLString);
  save(*row);
  const auto item = listed(*row, vault);
  const auto url = std::make_shared<QNItemURL>(initNew);
  const MRCapturingSink sink;

  EXPECT_THAT(item->URLs(), IsEmpty());
  EXPECT_THAT(item->deletedURLs(), IsEmpty());
  EXPECT_FALSE(item->hasURLs());
  EXPECT_EQ(item->numberOfURLs(), 0u);
  EXPECT_EQ(item->URLAtIndex(0), nullptr);
  EXPECT_EQ(item->URLWithLabel("l"), nullptr);
  EXPECT_EQ(item->URLWithURLString("u"), nullptr);
  EXPECT_FALSE(item->hasURLWithString("u"));
  EXPECT_THAT(item->URLStringsForSearch(), IsEmpty());
  item->setURLString("https://b.example");
  item->addURL(url);
  item->addURLString("https://b.example");
  item->removeURL(url);
  item->removeURLAtIndex(0);
  item->moveURL(url, 0);
  item->removeDuplicateURLs();

  EXPECT_THAT(assertions(sink), SizeIs(16));
  EXPECT_THAT(assertions(sink), Each("Item URLs must be loaded"));
  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(item->URLString(), "https://a.example");
}

TEST(QNItemURLs, MayBeAddedWhileLoading) {
  const auto vault = localVault();
  const auto item = std::make_shared<QNSampleItem>(QNExisting{1});
  item->setProfile(vault);
  item->markLoadingDetails();

  item->addURLString("https://a.example");
  item->markDetailsLoaded();

  EXPECT_THAT(addressesOf(*item), ElementsAre("https://a.example"));
}

TEST(QNItemURLs, TheAddressMayBeSetChangedAndRemovedWhileLoading) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{1});
  item->setProfile(localVault());
  item->didLoad();
  item->markLoadingDetails();
  const MRCapturingSink sink;

  item->setURLString("https://a.example");
  EXPECT_THAT(addressesOf(*item), ElementsAre("https://a.example"));
  EXPECT_TRUE(item->dirtyRow());
  item->setURLString("https://b.example");
  EXPECT_THAT(addressesOf(*item), ElementsAre("https://b.example"));
  item->setURLString(std::nullopt);

  EXPECT_FALSE(item->hasURLs());
  EXPECT_THAT(assertions(sink), IsEmpty());
}

TEST(QNItemURLs, TheFirstIsTheMainAddress) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});

  EXPECT_EQ(item->URLString(), "https://a.example");
  EXPECT_EQ(newItem(localVault())->URLString(), std::nullopt);
}

TEST(QNItemURLs, WithoutDetailsTheOverviewHasTheMainAddress) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->addURLString("https://a.example");
  save(*row);

  EXPECT_EQ(listed(*row, vault)->URLString(), "https://a.example");
}

TEST(QNItemURLs, WithDetailsTheOverviewsAddressDoesntCount) {
  const auto item = newItem(localVault());
  item->setOverviewText("https://a.example", kOverviewURLString);

  EXPECT_EQ(item->URLString(), std::nullopt);
}

TEST(QNItemURLs, SettingTheAddressAddsTheFirstURL) {
  const auto item = itemWithURLs({});

  item->setURLString("https://a.example");

  EXPECT_THAT(addressesOf(*item), ElementsAre("https://a.example"));
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemURLs, SettingTheAddressChangesTheFirstURL) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});
  const auto first = item->URLAtIndex(0);

  item->setURLString("https://c.example");

  EXPECT_EQ(item->URLAtIndex(0), first);
  EXPECT_THAT(addressesOf(*item), ElementsAre("https://c.example", "https://b.example"));
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemURLs, SettingAnEqualAddressDirtiesTheItem) {
  const auto item = itemWithURLs({"https://a.example"});

  item->setURLString("https://a.example");

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_THAT(addressesOf(*item), ElementsAre("https://a.example"));
}

TEST(QNItemURLs, SettingAnEmptyAddressEmptiesTheFirstURLAndAddsNone) {
  const auto with = itemWithURLs({"https://a.example", "https://b.example"});
  const auto without = itemWithURLs({});

  with->setURLString("");
  without->setURLString("");

  EXPECT_THAT(addressesOf(*with), ElementsAre("", "https://b.example"));
  EXPECT_FALSE(without->hasURLs());
}

TEST(QNItemURLs, SettingNoAddressLeavesTheSecondURLAsTheFirst) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});

  item->setURLString(std::nullopt);

  EXPECT_THAT(addressesOf(*item), ElementsAre("https://b.example"));
}

TEST(QNItemURLs, SettingNoAddressOnAnItemWithoutOneDirtiesNothing) {
  const auto item = itemWithURLs({});

  item->setURLString(std::nullopt);

  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemURLs, SettingTheAddressIsSeenByTheDomains) {
  const auto item = itemWithURLs({"https://www.a.example"});
  ASSERT_EQ(item->nakedDomain(), "a.example");
  ASSERT_EQ(item->derivedDomain(), "www.a.example");

  item->setURLString("https://www.b.example");

  EXPECT_EQ(item->nakedDomain(), "b.example");
  EXPECT_EQ(item->derivedDomain(), "www.b.example");
}

TEST(QNItemURLs, ANewListIsSeenByTheDomains) {
  const auto item = itemWithURLs({"https://www.a.example", "https://www.b.example"});
  ASSERT_EQ(item->nakedDomain(), "a.example");

  item->moveURL(item->URLAtIndex(1), 0);
  EXPECT_EQ(item->nakedDomain(), "b.example");
  item->removeURLAtIndex(0);

  EXPECT_EQ(item->nakedDomain(), "a.example");
}

TEST(QNItemURLs, WithoutAnAddressThereIsNoDomain) {
  const auto item = itemWithURLs({});

  EXPECT_EQ(item->nakedDomain(), std::nullopt);
  EXPECT_EQ(item->derivedDomain(), std::nullopt);
}

TEST(QNItemURLs, AnAddressNeedsAProfile) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  const MRCapturingSink sink;

  item->addURLString("https://a.example", "label");

  EXPECT_FALSE(item->hasURLs());
  EXPECT_THAT(assertions(sink), ElementsAre("Profile is not set"));
}

TEST(QNItemURLs, AnEmptyAddressAddsNothing) {
  const auto item = itemWithURLs({});

  item->addURLString("");
  item->addURLString("", "label");

  EXPECT_FALSE(item->hasURLs());
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemURLs, AnAddedOneBelongsToTheItemAndItsVault) {
  const auto item = itemWithURLs({});

  item->addURLString("https://a.example", "label");

  const auto url = item->URLAtIndex(0);
  ASSERT_NE(url, nullptr);
  EXPECT_EQ(url->item(), item);
  EXPECT_EQ(url->profile(), item->profile());
  EXPECT_EQ(url->label(), "label");
  EXPECT_EQ(url->URLString(), "https://a.example");
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemURLs, AddedOnesAreOrderedInSteps) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});
  EXPECT_EQ(item->URLAtIndex(0)->displayOrder(), 100u);
  EXPECT_EQ(item->URLAtIndex(1)->displayOrder(), 200u);
  const auto placed = std::make_shared<QNItemURL>(initNew);
  placed->setDisplayOrder(7);

  item->addURL(placed);

  EXPECT_EQ(placed->displayOrder(), 7u);
}

TEST(QNItemURLs, AnAddedOneIsOrderedAStepBehindTheLast) {
  const auto item = itemWithURLs({});
  const auto placed = std::make_shared<QNItemURL>(initNew);
  placed->setDisplayOrder(7);
  item->addURL(placed);

  item->addURLString("https://a.example");

  EXPECT_EQ(item->URLAtIndex(1)->displayOrder(), 107u);
}

TEST(QNItemURLs, AreFoundByLabelAndByAddress) {
  const auto item = itemWithURLs({"https://a.example"});
  item->addURLString("https://b.example", "Work");

  EXPECT_EQ(item->URLWithLabel("Work"), item->URLAtIndex(1));
  EXPECT_EQ(item->URLWithLabel("work"), nullptr);
  EXPECT_EQ(item->URLWithURLString("https://a.example"), item->URLAtIndex(0));
  EXPECT_TRUE(item->hasURLWithString("https://b.example"));
  EXPECT_FALSE(item->hasURLWithString("https://B.example"));
  EXPECT_EQ(item->URLAtIndex(2), nullptr);
}

TEST(QNItemURLs, ARemovedOneWithARowAwaitsItsDeletion) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});
  const auto stored = item->URLAtIndex(0);
  stored->_setOid(3);
  const auto unstored = item->URLAtIndex(1);

  item->removeURL(unstored);
  EXPECT_TRUE(item->dirtyRow());
  item->removeURL(stored);

  EXPECT_THAT(item->deletedURLs(), ElementsAre(stored));
  EXPECT_FALSE(item->hasURLs());
}

TEST(QNItemURLs, RemovingIsByIdentity) {
  const auto item = itemWithURLs({"https://a.example"});
  const auto twin = std::make_shared<QNItemURL>(initNew);
  twin->setURLString("https://a.example");

  item->removeURL(twin);
  item->removeURLAtIndex(1);

  EXPECT_EQ(item->numberOfURLs(), 1u);
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemURLs, ARemovedOneThatIsAddedAgainIsNotDeleted) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});
  const auto url = item->URLAtIndex(0);
  const auto other = item->URLAtIndex(1);
  url->_setOid(3);
  other->_setOid(4);
  item->removeURL(url);
  item->removeURL(other);
  ASSERT_THAT(item->deletedURLs(), ElementsAre(url, other));

  item->addURL(url);

  EXPECT_THAT(item->URLs(), ElementsAre(url));
  EXPECT_THAT(item->deletedURLs(), ElementsAre(other));
  EXPECT_EQ(url->oid(), 3u);
}

TEST(QNItemURLs, AnotherOneWithTheSameAddressUndoesNoRemoval) {
  const auto item = itemWithURLs({"https://a.example"});
  const auto url = item->URLAtIndex(0);
  url->_setOid(3);
  item->removeURL(url);

  item->addURLString("https://a.example");

  EXPECT_THAT(item->deletedURLs(), ElementsAre(url));
}

TEST(QNItemURLs, OneThatIsInTheListIsNotAddedTwice) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});

  item->addURL(item->URLAtIndex(0));

  EXPECT_THAT(addressesOf(*item), ElementsAre("https://a.example", "https://b.example"));
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemURLs, MovingRenumbersThemAll) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example", "https://c.example"});

  item->moveURL(item->URLAtIndex(2), 0);

  EXPECT_THAT(addressesOf(*item),
              ElementsAre("https://c.example", "https://a.example", "https://b.example"));
  EXPECT_TRUE(item->dirtyRow());
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(item->URLAtIndex(i)->displayOrder(), i + 1);
}

TEST(QNItemURLs, MovingToItsPlaceOrOutsideOrAStrangerChangesNothing) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example"});

  item->moveURL(item->URLAtIndex(1), 1);
  item->moveURL(item->URLAtIndex(0), 2);
  item->moveURL(std::make_shared<QNItemURL>(initNew), 0);

  EXPECT_THAT(addressesOf(*item), ElementsAre("https://a.example", "https://b.example"));
  EXPECT_EQ(item->URLAtIndex(0)->displayOrder(), 100u);
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemURLs, MovingForwardsRenumbersAllInTheNewOrder) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example", "https://c.example"});

  item->moveURL(item->URLAtIndex(0), 2);

  EXPECT_THAT(addressesOf(*item),
              ElementsAre("https://b.example", "https://c.example", "https://a.example"));
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(item->URLAtIndex(i)->displayOrder(), i + 1);
    EXPECT_TRUE(item->URLAtIndex(i)->dirtyDisplayOrder());
  }
  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItemURLs, OnesThatCannotBeReadAreNoDuplicates) {
  const MRCapturingSink sink;
  const auto item = itemWithURLs({"https://a.example"});
  for (const std::uint64_t oid : {3u, 4u}) {
    const auto sealed = std::make_shared<QNItemURL>(QNExisting{oid});
    sealed->setProfile(item->profile());
    sealed->setOverviewData(toBytes(bytesOf("sealed by a vault that isn't this one")));
    item->addURL(sealed);
  }
  ASSERT_EQ(item->URLAtIndex(2)->URLString(), std::nullopt);

  item->removeDuplicateURLs();

  EXPECT_EQ(item->numberOfURLs(), 3u);
  EXPECT_THAT(item->deletedURLs(), IsEmpty());
}

TEST(QNItemURLs, TheFirstOfEachAddressStays) {
  const auto item = itemWithURLs({"https://a.example", "https://b.example", "https://a.example",
                                  "https://A.example", "https://b.example"});
  const auto first = item->URLAtIndex(0);

  item->removeDuplicateURLs();

  EXPECT_THAT(addressesOf(*item),
              ElementsAre("https://a.example", "https://b.example", "https://A.example"));
  EXPECT_EQ(item->URLAtIndex(0), first);
}

TEST(QNItemURLs, AnEmptyAddressIsOneLikeAnyOther) {
  const auto item = itemWithURLs({});
  addLabel(*item, "first")->setURLString("");
  addLabel(*item, "second")->setURLString("");
  addLabel(*item, "no text");
  addLabel(*item, "no text");

  item->removeDuplicateURLs();

  ASSERT_THAT(addressesOf(*item), ElementsAre("", "(none)", "(none)"));
  EXPECT_EQ(item->URLAtIndex(0)->label(), "first");
}

TEST(QNItemURLs, HostsAreForSearch) {
  const auto item = itemWithURLs({"HTTPS://Example.COM:8443/a?b", "/path", "b.example/x"});

  EXPECT_THAT(item->URLStringsForSearch(), ElementsAre("example.com", "b.example"));
}

TEST(QNItemURLs, GoAndFillNamesTheItemAndTheVault) {
  const auto item = itemWithURLs({"https://a.example/x"});

  EXPECT_EQ(item->goAndFillURLString(),
            QNURLTools::shared().generateGoAndFillURLStringForString(
                "https://a.example/x", *item->uuid(), *item->profile()->uuid()));
  ASSERT_TRUE(item->goAndFillURLString());

  EXPECT_EQ(itemWithURLs({})->goAndFillURLString(), std::nullopt);
}

TEST(QNItemURLs, AShellAnswersFromItsOverviewAndKnowsNoOtherURLs) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->addURLString("https://www.a.example/x");
  save(*row);
  const auto shell = listed(*row, vault);
  const MRCapturingSink sink;

  EXPECT_EQ(shell->nakedDomain(), "a.example");
  EXPECT_EQ(shell->derivedDomain(), "www.a.example");
  EXPECT_EQ(shell->goAndFillURLString(),
            QNURLTools::shared().generateGoAndFillURLStringForString("https://www.a.example/x",
                                                                     *row->uuid(), *vault->uuid()));
  EXPECT_THAT(assertions(sink), IsEmpty());
  EXPECT_EQ(shell->defaultLabelForNewURL(), "website");
  EXPECT_THAT(assertions(sink), ElementsAre("Item URLs must be loaded"));
}

TEST(QNItemURLs, AreHashedUnderTheNewVaultWhenTheirItemMovesToAnAccount) {
  const auto account = accountVault();
  const auto item = itemWithURLs({"https://www.a.example"});
  const auto url = item->URLAtIndex(0);
  save(*item);
  url->willSave();
  const auto before = url->derivedHash();

  item->setProfile(account);
  save(*item);
  url->willSave();

  const QNURLTools& tools = QNURLTools::shared();
  EXPECT_NE(url->derivedHash(), before);
  EXPECT_EQ(url->derivedHash(),
            tools.derivedHashWithSalt(*account->uuid(), "https://www.a.example"));
  EXPECT_EQ(url->nakedHash(), tools.nakedHashWithSalt(*account->uuid(), "https://www.a.example"));
}

TEST(QNItemURLs, ANewOnesLabelCountsThePresentOnes) {
  EXPECT_EQ(itemWithURLs({})->defaultLabelForNewURL(), "website");
  EXPECT_EQ(itemWithURLs({"a.example"})->defaultLabelForNewURL(), "website 2");
  EXPECT_EQ(itemWithURLs({"a.example", "b.example"})->defaultLabelForNewURL(), "website 3");
}

}  // namespace
}  // namespace quillon
