#include <array>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

TEST(QNStoreSave, GivesBackEverythingOfAnItem) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "Bank", "https://bank.example/start", "s3cret");
  item->addURLString("https://bank.example/second", "second");
  item->setNotesPlain("mind the gap");
  item->setFaveIndex(7);
  item->setScope("Never");
  item->setFolderUUID("folder-uuid");
  item->setNumberOfTimesUsed(3);
  item->setLastUsedTimestamp(1'700'000'000);
  item->setInboxItem(true);
  item->setNumberOfAttachments(2);
  ASSERT_TRUE(session.store->save(item).ok());

  const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();

  EXPECT_EQ(read->className(), "QNLogin");
  EXPECT_EQ(read->oid(), item->oid());
  EXPECT_EQ(*read->uuid(), *item->uuid());
  EXPECT_EQ(read->title(), "Bank");
  EXPECT_EQ(read->username(), "ada");
  EXPECT_TRUE(read->password()->equals("s3cret"));
  EXPECT_EQ(read->notesPlain(), "mind the gap");
  EXPECT_EQ(read->categoryUUID(), QNCategoryUUIDLogin);
  EXPECT_EQ(read->faveIndex(), 7u);
  EXPECT_EQ(read->scope(), "Never");
  EXPECT_EQ(read->folderUUID(), "folder-uuid");
  EXPECT_EQ(read->createdAt(), item->createdAt());
  EXPECT_EQ(read->updatedAt(), item->updatedAt());
  EXPECT_EQ(read->txTimestamp(), item->txTimestamp());
  EXPECT_EQ(read->numberOfTimesUsed(), 3);
  EXPECT_EQ(read->lastUsedTimestamp(), 1'700'000'000u);
  EXPECT_TRUE(read->inboxItem());
  EXPECT_EQ(read->numberOfAttachments(), 2);
  ASSERT_EQ(read->numberOfURLs(), 2u);
  EXPECT_EQ(read->URLAtIndex(0)->URLString(), "https://bank.example/start");
  EXPECT_EQ(read->URLAtIndex(1)->label(), "second");
  EXPECT_EQ(read->URLAtIndex(1)->displayOrder(), item->URLAtIndex(1)->displayOrder());
  EXPECT_EQ(read->URLAtIndex(1)->oid(), item->URLAtIndex(1)->oid());
  EXPECT_EQ(read->detailsCopy(), item->detailsCopy());
  EXPECT_TRUE(read->loaded());
  EXPECT_FALSE(read->dirtyRow());
  EXPECT_FALSE(read->URLAtIndex(0)->dirtyRow());
}

TEST(QNStoreSave, WithTheirTimesKeepsThemAndStillCountsAsAChange) {
  const TemporaryFolder folder;
  const QNScopedClock clock(1'700'000'000);
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "Bank", "https://bank.example", "s3cret");
  item->setCreatedAt(1'500'000'000);
  item->setUpdatedAt(1'600'000'000);
  const std::shared_ptr<QNItem> items[] = {item};
  ASSERT_TRUE(session.store->saveAllWithTheirTimes(items).ok());

  const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();

  EXPECT_EQ(read->createdAt(), 1'500'000'000u);
  EXPECT_EQ(read->updatedAt(), 1'600'000'000u);
  EXPECT_GE(read->txTimestamp(), 1'700'000'000u);
  EXPECT_FALSE(item->dirtyRow());
  read->setTitle("Other");
  ASSERT_TRUE(session.store->saveAll(std::array{std::shared_ptr<QNItem>(read)}).ok());
  EXPECT_EQ(read->updatedAt(), 1'700'000'000u);
}

TEST(QNStoreSave, KeepsNumbersThatFillTheirFields) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "a");
  item->setDisplayOrder(std::numeric_limits<std::uint64_t>::max());
  item->setNumberOfTimesUsed(-1);
  item->setLastUsedTimestamp(std::numeric_limits<std::uint64_t>::max());
  ASSERT_TRUE(session.store->save(item).ok());

  const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();

  EXPECT_EQ(read->faveIndex(), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(read->numberOfTimesUsed(), -1);
  EXPECT_EQ(read->lastUsedTimestamp(), std::numeric_limits<std::uint64_t>::max());
}

TEST(QNStoreSave, SetsTheTimeOfTheChangeAndARevisionThatGrows) {
  const TemporaryFolder folder;
  QNScopedClock clock(1'700'000'000);
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  const auto second = savedLogin(session, "b");
  EXPECT_EQ(item->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(item->txTimestamp(), 1'700'000'000u);
  EXPECT_EQ(second->txTimestamp(), 1'700'000'001u);

  clock.setSeconds(1'800'000'000);
  item->setTitle("a2");
  ASSERT_TRUE(session.store->save(item).ok());
  clock.setSeconds(1'600'000'000);  // a clock that was set back
  second->setTitle("b2");
  ASSERT_TRUE(session.store->save(second).ok());

  EXPECT_EQ(item->updatedAt(), 1'800'000'000u);
  EXPECT_EQ(item->txTimestamp(), 1'800'000'000u);
  EXPECT_EQ(second->updatedAt(), 1'600'000'000u);
  EXPECT_EQ(second->txTimestamp(), 1'800'000'001u);
}

TEST(QNStoreSave, WritesNothingForACleanItem) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  const std::uint64_t revision = item->txTimestamp();
  const auto overview = item->overviewData();

  ASSERT_TRUE(session.store->save(item).ok());

  EXPECT_EQ(item->txTimestamp(), revision);
  EXPECT_EQ(item->overviewData(), overview);
}

TEST(QNStoreSave, SavesAnItemOfWhichOnlyAnAddressChanged) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  item->URLAtIndex(0)->setLabel("work");
  ASSERT_FALSE(item->dirtyRow());

  ASSERT_TRUE(session.store->save(item).ok());

  const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();
  EXPECT_EQ(read->URLAtIndex(0)->label(), "work");
  EXPECT_FALSE(item->URLAtIndex(0)->dirtyRow());
}

TEST(QNStoreSave, AChangedFieldAloneIsSaved) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "a");
  const auto field = QNItemStringField::fieldWithIdentifier("pin");
  field->setValue("1234");
  item->fieldSectionWithName("s", "Section")->addField(field);
  ASSERT_TRUE(session.store->save(item).ok());
  const auto pinRead = [&] {
    const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();
    const auto found = read->findFieldWithIdentifier("pin");
    return found == nullptr ? std::string("(no field)")
                            : std::string(found->displayStringValue().reveal());
  };
  ASSERT_EQ(pinRead(), "1234");

  item->setStringFieldValue("5678", "pin");
  ASSERT_FALSE(item->dirtyRow());
  ASSERT_TRUE(session.store->save(item).ok());
  EXPECT_EQ(pinRead(), "5678");
  item->setStringFieldValue("9012", "pin");
  const std::array items{item};
  ASSERT_TRUE(session.store->saveAll(items).ok());
  EXPECT_EQ(pinRead(), "9012");

  const std::uint64_t revision = item->txTimestamp();
  ASSERT_TRUE(session.store->save(item).ok());
  EXPECT_EQ(item->txTimestamp(), revision);
}

TEST(QNStoreSave, SavesAnItemOfWhichOnlyTheOrderChanged) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  item->setDisplayOrder(12);
  ASSERT_FALSE(item->dirtyRow());

  ASSERT_TRUE(session.store->save(item).ok());

  const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();
  EXPECT_EQ(read->displayOrder(), 12u);
  EXPECT_FALSE(item->dirtyDisplayOrder());
}

TEST(QNStoreSave, KeepsTheOrderOfAddressesAndDropsRemovedOnes) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "a", "https://one.example");
  item->addURLString("https://two.example");
  item->addURLString("https://three.example");
  item->addURLString("https://four.example");
  ASSERT_TRUE(session.store->save(item).ok());
  item->removeURLAtIndex(1);
  item->moveURL(item->URLAtIndex(2), 0);
  item->URLAtIndex(2)->setDisplayOrder(1);  // the same as the first one's

  ASSERT_TRUE(session.store->save(item).ok());

  const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();
  ASSERT_EQ(read->numberOfURLs(), 3u);
  EXPECT_EQ(read->URLAtIndex(0)->URLString(), "https://four.example");
  EXPECT_EQ(read->URLAtIndex(1)->URLString(), "https://one.example");
  EXPECT_EQ(read->URLAtIndex(2)->URLString(), "https://three.example");
  EXPECT_TRUE(item->deletedURLs().empty());
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreSave, PutsARetiredPasswordIntoTheHistory) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const std::string uuid = *savedLogin(session, "a", "", "first")->uuid();
  const auto item = std::move(session.store->item(session.vault, uuid)).value();
  item->setPassword("second");

  ASSERT_TRUE(session.store->save(item).ok());

  const auto read = reread(folder / "a.quillon", uuid);
  ASSERT_EQ(read->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_TRUE(read->containsPasswordValue("first"));
}

TEST(QNStoreSave, GivesANewItemNoHistory) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "a", "", "first");
  item->setPassword("second");

  ASSERT_TRUE(session.store->save(item).ok());

  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 0u);
}

TEST(QNStoreSave, SavesAListedShellWithoutReadingItsDetails) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const std::string uuid = *savedLogin(session, "before")->uuid();
  std::shared_ptr<QNItem> shell;
  ASSERT_TRUE(
      session.store
          ->list(session.vault, QNStore::Which::all, [&shell](const auto& item) { shell = item; })
          .ok());
  shell->setTitle("after");

  ASSERT_TRUE(session.store->save(shell).ok());

  EXPECT_FALSE(shell->dirtyRow());
  EXPECT_EQ(session.store->detailsRead(), 0u);
  const auto read = std::move(session.store->item(session.vault, uuid)).value();
  EXPECT_EQ(read->title(), "after");
  EXPECT_TRUE(read->password()->equals("correct horse"));
  EXPECT_EQ(read->numberOfURLs(), 1u);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreSave, TrashesAndRestores) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  item->setTrashed(true);
  ASSERT_TRUE(session.store->save(item).ok());
  EXPECT_TRUE(titlesIn(session).empty());
  EXPECT_EQ(titlesIn(session, QNStore::Which::trashed), std::vector<std::string>{"a"});
  EXPECT_TRUE(reread(folder / "a.quillon", *item->uuid())->trashed());

  item->setTrashed(false);
  ASSERT_TRUE(session.store->save(item).ok());

  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
  EXPECT_TRUE(titlesIn(session, QNStore::Which::trashed).empty());
}

TEST(QNStoreSave, DeletesForGood) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  savedLogin(session, "b");

  ASSERT_TRUE(session.store->deleteItem(item).ok());

  EXPECT_EQ(titlesIn(session, QNStore::Which::all), std::vector<std::string>{"b"});
  EXPECT_EQ(errorOf(session.store->item(session.vault, *item->uuid())),
            codeText(QNStoreErrorCode::notFound));
  EXPECT_FALSE(item->hasOid());
  EXPECT_TRUE(item->deleted());
  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreSave, DoesNotBringADeletedItemBackByItself) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  ASSERT_TRUE(session.store->deleteItem(item).ok());

  EXPECT_EQ(errorOf(session.store->save(item)), "");
  EXPECT_TRUE(titlesIn(session, QNStore::Which::all).empty());
  EXPECT_EQ(errorOf(session.store->deleteItem(item)), codeText(QNStoreErrorCode::notFound));

  item->setTrashed(false);
  ASSERT_TRUE(session.store->save(item).ok());
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

// Races

TEST(QNStoreSave, TellsTheSecondOfTwoWritersAndOverwritesNothing) {
  const TemporaryFolder folder;
  Session first = makeSession(folder / "a.quillon");
  const std::string uuid = *savedLogin(first, "a")->uuid();
  Session second = openSession(folder / "a.quillon");
  const auto mine = std::move(first.store->item(first.vault, uuid)).value();
  const auto theirs = std::move(second.store->item(second.vault, uuid)).value();
  theirs->setTitle("theirs");
  ASSERT_TRUE(second.store->save(theirs).ok());
  mine->setTitle("mine");
  const std::uint64_t revision = mine->txTimestamp();
  const std::uint64_t updated = mine->updatedAt();

  const auto saved = first.store->save(mine);

  EXPECT_EQ(errorOf(saved), codeText(QNStoreErrorCode::lostRace));
  EXPECT_EQ(reread(folder / "a.quillon", uuid)->title(), "theirs");
  EXPECT_TRUE(mine->dirtyRow());
  EXPECT_EQ(mine->txTimestamp(), revision);
  EXPECT_EQ(mine->updatedAt(), updated);
  EXPECT_EQ(problemsIn(first), std::vector<std::string>());
}

TEST(QNStoreSave, LosesTheRaceAgainstADeletionToo) {
  const TemporaryFolder folder;
  Session first = makeSession(folder / "a.quillon");
  const auto mine = savedLogin(first, "a");
  Session second = openSession(folder / "a.quillon");
  ASSERT_TRUE(
      second.store->deleteItem(std::move(second.store->item(second.vault, *mine->uuid())).value())
          .ok());
  savedLogin(second, "b");  // may take the row's place in the file
  mine->setTitle("mine");

  EXPECT_EQ(errorOf(first.store->save(mine)), codeText(QNStoreErrorCode::lostRace));
  EXPECT_EQ(errorOf(first.store->deleteItem(mine)), codeText(QNStoreErrorCode::lostRace));
  EXPECT_EQ(titlesIn(first), std::vector<std::string>{"b"});
}

TEST(QNStoreSave, TwoWritersOfDifferentItemsDoNotDisturbEachOther) {
  const TemporaryFolder folder;
  Session first = makeSession(folder / "a.quillon");
  Session second = openSession(folder / "a.quillon");
  for (int i = 0; i < 20; ++i) {
    savedLogin(first, "first");
    savedLogin(second, "second");
  }

  EXPECT_EQ(titlesIn(first).size(), 40u);
  EXPECT_EQ(problemsIn(second), std::vector<std::string>());
}

// What isn't saved

TEST(QNStoreSave, DoesNotSaveIntoALockedVault) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  item->setTitle("b");
  session.vault->lock();

  EXPECT_EQ(errorOf(session.store->save(item)), codeText(QNStoreErrorCode::locked));
  EXPECT_EQ(errorOf(session.store->deleteItem(item)), codeText(QNStoreErrorCode::locked));
  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(reread(folder / "a.quillon", *item->uuid())->title(), "a");
}

TEST(QNStoreSave, DoesNotSaveBackAnItemWhoseOverviewDoesNotOpen) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  item->setOverviewData(toBytes(bytesOf("no overview at all, but some bytes that are long")));
  item->setFaveIndex(3);

  EXPECT_EQ(errorOf(session.store->save(item)), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_EQ(reread(folder / "a.quillon", *item->uuid())->title(), "a");
}

TEST(QNStoreSave, DoesNotSaveBackAnItemWhoseDetailsDoNotOpen) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  item->setDetailsData(toBytes(bytesOf("no details at all, but some bytes that are long enough")));
  item->setFaveIndex(3);

  EXPECT_EQ(errorOf(session.store->save(item)), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_TRUE(reread(folder / "a.quillon", *item->uuid())->password()->equals("correct horse"));
}

TEST(QNStoreSave, DoesNotSaveBackAnItemWithAnAddressThatDoesNotOpen) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a", "https://a.example");
  item->URLAtIndex(0)->setOverviewData(toBytes(bytesOf("no overview, but bytes that are long")));
  item->setFaveIndex(3);

  EXPECT_EQ(errorOf(session.store->save(item)), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_EQ(reread(folder / "a.quillon", *item->uuid())->URLString(), "https://a.example");
}

// willSave reports such a text and leaves the former bytes: writing those would lose the edit in
// silence.
TEST(QNStoreSave, DoesNotCallAnEditSavedThatCannotBeEncoded) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  Session session = makeSession(folder / "a.quillon");
  const auto title = savedLogin(session, "a");
  title->setTitle("\xff\xfe");
  const auto notes = savedLogin(session, "b");
  notes->setNotesPlain("\xff\xfe");
  const auto fresh = makeLogin(session.vault, "\xff\xfe");

  for (const auto& item : {title, notes, fresh}) {
    EXPECT_EQ(errorOf(session.store->save(item)), codeText(QNStoreErrorCode::unreadableItem));
    EXPECT_TRUE(item->dirtyRow());
  }
  EXPECT_FALSE(fresh->hasOid());
  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"a", "b"}));
}

TEST(QNStoreSave, DoesNotSaveAnItemWithoutACategoryOrAVault) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto plain = makeLogin(session.vault, "a");
  plain->setCategoryUUID(std::nullopt);
  const auto homeless = std::make_shared<QNLogin>(initNew);

  EXPECT_EQ(errorOf(session.store->save(plain)), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_EQ(errorOf(session.store->save(homeless)), codeText(QNStoreErrorCode::notFound));
}

TEST(QNStoreSave, RefusesASecondItemOfOneUuid) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  const auto twin = makeLogin(session.vault, "twin");
  twin->setUuid(item->uuid());

  EXPECT_EQ(errorOf(session.store->save(twin)), codeText(QNStoreErrorCode::exists));
  EXPECT_FALSE(twin->hasOid());
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
}

// Transactions

TEST(QNStoreSave, SavesAllOrNone) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  Session session = makeSession(folder / "a.quillon");
  const auto old = savedLogin(session, "old");
  const std::uint64_t revision = old->txTimestamp();
  old->setTitle("newer");
  const auto fresh = makeLogin(session.vault, "fresh");
  const auto bad = makeLogin(session.vault, "\xff");
  const std::vector<std::shared_ptr<QNItem>> items = {old, fresh, bad};

  const auto saved = session.store->saveAll(items);

  EXPECT_EQ(errorOf(saved), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_EQ(titlesIn(session, QNStore::Which::all), std::vector<std::string>{"old"});
  EXPECT_TRUE(old->dirtyRow());
  EXPECT_EQ(old->txTimestamp(), revision);
  EXPECT_FALSE(fresh->hasOid());
  EXPECT_FALSE(fresh->URLAtIndex(0)->hasOid());
  bad->setTitle("good");
  EXPECT_EQ(errorOf(session.store->saveAll(items)), "");
  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"newer", "fresh", "good"}));
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreSave, RollsEverythingBackThatATransactionDid) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto kept = savedLogin(session, "kept");
  const auto changed = savedLogin(session, "changed");
  changed->setTitle("changed 2");

  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    EXPECT_TRUE(session.store->save(changed).ok());
    EXPECT_TRUE(session.store->deleteItem(kept).ok());
    savedLogin(session, "new");
    EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"changed 2", "new"}));
    return QNError{"test", 5, "stop"};
  });

  EXPECT_EQ(errorOf(done), "test 5");
  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"kept", "changed"}));
  EXPECT_TRUE(changed->dirtyRow());
  EXPECT_TRUE(kept->hasOid());
  EXPECT_FALSE(kept->deleted());
  EXPECT_EQ(errorOf(session.store->save(changed)), "");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreSave, AnErrorInsideATransactionEndsItEvenIfItIsIgnored) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  Session session = makeSession(folder / "a.quillon");

  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    savedLogin(session, "a");
    EXPECT_FALSE(session.store->save(makeLogin(session.vault, "\xff")).ok());
    EXPECT_FALSE(session.store->save(makeLogin(session.vault, "later")).ok());
    return QNDone{};
  });

  EXPECT_EQ(errorOf(done), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_TRUE(titlesIn(session).empty());
}

TEST(QNStoreSave, RollsBackWhenTheWorkThrows) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = savedLogin(session, "a");
  item->setTitle("b");

  EXPECT_THROW(static_cast<void>(session.store->inTransaction([&]() -> QNResult<QNDone> {
                 EXPECT_TRUE(session.store->save(item).ok());
                 throw 1;
               })),
               int);

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
  EXPECT_EQ(errorOf(session.store->save(item)), "");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreSave, SavesOneItemTwiceInOneTransaction) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "a");

  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    EXPECT_TRUE(session.store->save(item).ok());
    item->setTitle("b");
    return session.store->save(item);
  });

  EXPECT_TRUE(done.ok());
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"b"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST(QNStoreSave, SavesAnItemOnceThatAListNamesTwice) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "Bank", "https://bank.example", "s3cret");
  const auto other = makeLogin(session.vault, "Post", "https://post.example", "s3cret");

  ASSERT_TRUE(session.store->saveAll(std::array{item, other, item}).ok());

  EXPECT_EQ(item->oid(), 1u);
  EXPECT_EQ(other->oid(), 2u);
  EXPECT_TRUE(session.store->item(session.vault, *item->uuid()).ok());
}

TEST(QNStoreSave, OfTwoObjectsOfOneRowInAListTheSecondLosesTheRace) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto item = makeLogin(session.vault, "Bank", "https://bank.example", "s3cret");
  ASSERT_TRUE(session.store->save(item).ok());
  const auto again = session.store->item(session.vault, *item->uuid()).value();
  item->setTitle("First");
  again->setTitle("Second");

  const auto saved = session.store->saveAll(std::array{item, again});

  ASSERT_FALSE(saved.ok());
  EXPECT_EQ(saved.error().code, static_cast<int>(QNStoreErrorCode::lostRace));
  EXPECT_EQ(session.store->item(session.vault, *item->uuid()).value()->title(), "Bank");
}

TEST(QNStoreSave, ImportsTenThousandItemsInOneTransaction) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");

  const auto done = session.store->inTransaction([&session]() -> QNResult<QNDone> {
    for (int i = 0; i < 10'000; ++i) {
      const auto item = session.vault->newItemForCategoryUUID(QNCategoryUUIDSecureNote);
      item->setProfile(session.vault);
      item->setTitle(std::to_string(i));
      const auto saved = session.store->save(item);
      if (!saved.ok()) return saved.error();
    }
    return QNDone{};
  });

  ASSERT_TRUE(done.ok()) << done.error().message;
  std::uint64_t inOrder = 0;
  const auto listed =
      session.store->list(session.vault, QNStore::Which::normal, [&inOrder](const auto& item) {
        if (item->title() == std::to_string(inOrder)) ++inOrder;
      });
  EXPECT_EQ(listed.value().listed, 10'000u);
  EXPECT_EQ(inOrder, 10'000u);
  EXPECT_FALSE(listed.value().ledgerBroken);
}

// Moves

TEST(QNStoreSave, MovesAnItemToAnotherVaultOfTheStore) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  Session other = {nullptr, QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt)};
  ASSERT_TRUE(session.store->saveVault(*other.vault).ok());
  savedLogin(session, "stays");
  const auto item = savedLogin(session, "moves");
  item->setProfile(other.vault);

  ASSERT_TRUE(session.store->save(item).ok());

  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"stays"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  std::swap(session.vault, other.vault);
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"moves"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  const auto read = std::move(session.store->item(session.vault, *item->uuid())).value();
  EXPECT_TRUE(read->password()->equals("correct horse"));
  EXPECT_EQ(read->numberOfURLs(), 1u);
}

TEST(QNStoreSave, DoesNotMoveAnItemOutOfALockedVault) {
  const TemporaryFolder folder;
  Session session = makeSession(folder / "a.quillon");
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  const auto item = savedLogin(session, "a");
  item->setProfile(other);
  session.vault->lock();

  EXPECT_EQ(errorOf(session.store->save(item)), codeText(QNStoreErrorCode::locked));

  ASSERT_TRUE(session.store->unlock(*session.vault, DEMO_PASSWORD).value());
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
}

TEST(QNStoreSave, DoesNotMoveAShell) {
  const TemporaryFolder folder;
  const MRCapturingSink silence;
  Session session = makeSession(folder / "a.quillon");
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  savedLogin(session, "a");
  std::shared_ptr<QNItem> shell;
  ASSERT_TRUE(
      session.store
          ->list(session.vault, QNStore::Which::all, [&shell](const auto& item) { shell = item; })
          .ok());
  shell->setProfile(other);

  EXPECT_EQ(errorOf(session.store->save(shell)), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
}

}  // namespace
}  // namespace quillon
