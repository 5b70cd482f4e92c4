#include <set>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/sync/QNSyncState.h"
#include "store/internal/QNMergeFixture.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Nothing to do

TEST_F(QNStoreMerge, OpensNothingOfACopiedFile) {
  copyFile();

  const QNMergeReport report = merged();

  EXPECT_THAT(report.items, IsEmpty());
  EXPECT_EQ(report.compared, 1u);
  EXPECT_EQ(report.opened, 0u);
}

TEST_F(QNStoreMerge, RemembersOnBothSidesHowFarTheOtherWas) {
  copyFile();
  ASSERT_TRUE(tryMerge().ok());

  const auto own = std::move(mine.store->syncSources(mine.vault)).value().at(0);
  const auto other = std::move(theirs.store->syncSources(theirs.vault)).value().at(0);

  EXPECT_EQ(own->keychainIdentifier(), "theirs");
  EXPECT_EQ(other->keychainIdentifier(), "mine");
  EXPECT_EQ(own->keychainType(), "store");
  EXPECT_EQ(own->remoteProfileUUID(), *theirs.vault->uuid());
  ASSERT_EQ(own->itemStates().size(), 1u);
  EXPECT_EQ(own->itemStates()[0]->objectUUID(), uuidOfFirst());
  EXPECT_EQ(own->itemStates()[0]->objectType(), 1);
  EXPECT_EQ(own->itemStates()[0]->localTimestamp(), other->itemStates()[0]->sourceTimestamp());
}

TEST_F(QNStoreMerge, OpensOnlyWhatHasChanged) {
  for (int i = 0; i < 10; ++i) savedLogin(mine, "other");
  copyFile();
  ASSERT_TRUE(tryMerge().ok());
  edit(mine, uuidOfFirst(), [](QNItem& item) { item.setTitle("changed"); });
  const std::uint64_t readBefore = theirs.store->detailsRead();

  const auto report = std::move(tryMerge()).value();

  EXPECT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.opened, 2u);
  EXPECT_EQ(theirs.store->detailsRead(), readBefore + 1);
  merged();
}

TEST_F(QNStoreMerge, RemembersAnewOnlyWhatWasOutOfStep) {
  for (int i = 0; i < 3; ++i) savedLogin(mine, "other");
  copyFile();
  ASSERT_TRUE(tryMerge().ok());
  const std::uint64_t first = secondsNow();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setTitle("changed"); });
  savedLogin(theirs, "new");

  ASSERT_TRUE(tryMerge().ok());

  for (Session* const session : {&mine, &theirs}) {
    const auto source = std::move(session->store->syncSources(session->vault)).value().at(0);
    ASSERT_EQ(source->itemStates().size(), 5u);
    for (const auto& state : source->itemStates()) {
      const auto item = itemIn(*session, *state->objectUUID());
      EXPECT_EQ(state->localTimestamp(), item->txTimestamp());
      EXPECT_EQ(state->objectID(), item->oid());
      const bool isNews = item->title() == "changed" || item->title() == "new";
      EXPECT_EQ(state->syncedAt() > first, isNews) << item->title();
    }
  }
}

TEST_F(QNStoreMerge, LeavesWhatElseIsRememberedOfThePartner) {
  copyFile();
  ASSERT_TRUE(tryMerge().ok());
  const auto source = std::move(mine.store->syncSources(mine.vault)).value().at(0);
  const auto folderState = std::make_shared<QNSyncState>();
  folderState->setObjectType(2);
  folderState->setObjectUUID("folder");
  source->setFolderStates({folderState});
  source->setRemoteProfileAttributesEncryptedWithLocal(Bytes{1, 2});
  ASSERT_EQ(errorOf(mine.store->saveSyncSource(source)), "");
  savedLogin(mine, "new");

  merged();

  const auto again = std::move(mine.store->syncSources(mine.vault)).value().at(0);
  EXPECT_EQ(again->itemStates().size(), 2u);
  ASSERT_EQ(again->folderStates().size(), 1u);
  EXPECT_EQ(again->folderStates()[0]->objectUUID(), "folder");
  EXPECT_EQ(again->remoteProfileAttributesEncryptedWithLocal(), (Bytes{1, 2}));
}

TEST_F(QNStoreMerge, LeavesEqualContentUnderOtherKeysAlone) {
  makeAnother();
  merged();
  for (Session* session : {&mine, &theirs}) {
    const auto item = itemIn(*session, uuidOfFirst());
    item->markRowDirty();
    ASSERT_TRUE(session->store->save(item).ok());
  }

  const auto report = std::move(tryMerge()).value();

  EXPECT_THAT(report.items, IsEmpty());
  EXPECT_EQ(report.opened, 2u);
}

// One side has changed

TEST_F(QNStoreMerge, WhatOnlyMineChangedReplacesTheirs) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) {
    item.setTitle("new title");
    item.setPassword("pass 2");
    item.setURLString("https://moved.example");
    item.setTags({"work"});
  });

  const QNMergeReport report = merged();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].uuid, uuid);
  EXPECT_EQ(report.items[0].kind, Kind::replacedTheirs);
  const auto fields = fieldsOf(report.items[0]);
  for (const char* const name : {"overview.title", "password", "tags", "overview.urls"}) {
    ASSERT_TRUE(fields.contains(name)) << name;
    EXPECT_EQ(fields.at(name), Outcome::taken) << name;
  }
  const auto item = itemIn(theirs, uuid);
  EXPECT_EQ(item->title(), "new title");
  EXPECT_TRUE(item->password()->equals("pass 2"));
  EXPECT_EQ(item->URLString(), "https://moved.example");
}

TEST_F(QNStoreMerge, WhatOnlyTheirsChangedReplacesMine) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("theirs"); });

  const QNMergeReport report = merged();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::replacedMine);
  EXPECT_EQ(fieldsOf(report.items[0]),
            (std::map<std::string, Outcome>{{"notesPlain", Outcome::taken}}));
  EXPECT_EQ(itemIn(mine, uuid)->notesPlain(), "theirs");
}

TEST_F(QNStoreMerge, TrashGoesOver) {
  copyFile();
  merged();
  edit(mine, uuidOfFirst(), [](QNItem& item) { item.setTrashed(true); });

  merged();

  EXPECT_EQ(titlesIn(theirs, QNStore::Which::trashed), std::vector<std::string>{"first"});
}

// Both have changed

TEST_F(QNStoreMerge, WhatBothChangedIsJoinedOnBothSides) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) {
    item.setPassword("mine");
    item.setNotesPlain("my notes");
  });
  edit(theirs, uuid, [](QNItem& item) {
    item.setPassword("theirs");
    item.setNotesPlain("their notes");
    item.addURLString("https://second.example");
  });

  const QNMergeReport report = merged();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::joined);
  const auto fields = fieldsOf(report.items[0]);
  ASSERT_TRUE(fields.contains("password"));
  EXPECT_EQ(fields.at("password"), Outcome::taken);
  EXPECT_EQ(fields.at("notesPlain"), Outcome::joined);
  EXPECT_EQ(fields.at("overview.urls"), Outcome::taken);
  for (Session* session : {&mine, &theirs}) {
    const auto item = itemIn(*session, uuid);
    EXPECT_TRUE(item->password()->equals("theirs"));
    // Retired here and there, at different times.
    EXPECT_THAT(historyOf(*item), testing::UnorderedElementsAre("pass 1", "pass 1", "mine"));
    EXPECT_EQ(item->notesPlain(), "their notes\n\n===\n\nmy notes");
    EXPECT_EQ(item->numberOfURLs(), 2u);
  }
}

TEST_F(QNStoreMerge, AFieldThatBothChangedIsKeptAmongTheConflicts) {
  const std::string uuid = uuidOfSections();
  copyFile();
  merged();
  edit(theirs, uuid, [](QNItem& other) {
    other.setStringFieldValue("theirs", "pin");
    other.setStringFieldValue("after", "code");
    other.setUsername("theirs@example.com");
  });
  edit(mine, uuid, [](QNItem& own) {
    own.setStringFieldValue("mine", "pin");
    own.setUsername("mine@example.com");
  });

  const QNMergeReport report = merged();

  const auto fields = fieldsOf(report.items.at(0));
  EXPECT_EQ(fields.at("s.pin"), Outcome::conflictCopy);
  EXPECT_EQ(fields.at("username"), Outcome::conflictCopy);
  EXPECT_EQ(itemIn(theirs, uuid)->findFieldWithIdentifier("pin")->displayStringValue().reveal(),
            "mine");
}

TEST_F(QNStoreMerge, WhatBothChangedInOneSecondIsJoinedIntoMine) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setTitle("mine"); });
  clock.setSeconds(secondsNow() - 10);
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("theirs"); });

  const QNMergeReport report = merged();

  EXPECT_EQ(fieldsOf(report.items.at(0)).at("overview.title"), Outcome::conflictCopy);
  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"mine"});
}

TEST_F(QNStoreMerge, ATitleThatLosesIsKeptAmongTheConflicts) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setTitle("earlier"); });
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("later"); });
  merged();

  EXPECT_THAT(conflictsIn(mine, uuid), ElementsAre("overview.title_conflict_1 earlier"));
  edit(mine, uuid, [](QNItem& item) { item.setTitle("mine"); });
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("theirs"); });
  merged();

  EXPECT_THAT(conflictsIn(theirs, uuid),
              ElementsAre("overview.title_conflict_1 earlier", "overview.title_conflict_2 mine"));
  edit(mine, uuid, [](QNItem& item) { item.setTitle("earlier"); });
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("notes"); });
  merged();

  EXPECT_EQ(conflictsIn(theirs, uuid).size(), 2u);
}

TEST_F(QNStoreMerge, MembersThatOnlyTheEarlierOneHasStay) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) {
    item.setDetailsObject(Json("details"), "ofANewerVersion");
    item.setDetailsObject(Json("mine"), "ofBoth");
    item.setOverviewObject(Json("overview"), "ofANewerVersion");
    item.setOverviewObject(Json("icon"), kCustomIcon);
  });
  edit(theirs, uuid, [](QNItem& item) { item.setDetailsObject(Json("theirs"), "ofBoth"); });

  EXPECT_EQ(merged().items.at(0).kind, Kind::joined);

  const auto item = itemIn(theirs, uuid);
  EXPECT_EQ(item->overviewTextForKey("ofANewerVersion"), "overview");
  EXPECT_EQ(item->overviewTextForKey(kCustomIcon), "icon");
  ASSERT_NE(item->detailsObjectForKey("ofANewerVersion"), nullptr);
  EXPECT_EQ(*item->detailsObjectForKey("ofANewerVersion"), Json("details"));
  EXPECT_EQ(*item->detailsObjectForKey("ofBoth"), Json("theirs"));
}

TEST_F(QNStoreMerge, EachSideKeepsThePlaceAmongItsFavourites) {
  savedLogin(mine, "second");
  copyFile();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setFaveIndex(3); });
  edit(theirs, uuid, [](QNItem& item) { item.setFaveIndex(7); });
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("notes"); });
  merged();
  EXPECT_EQ(itemIn(mine, uuid)->faveIndex(), 3u);
  EXPECT_EQ(itemIn(theirs, uuid)->faveIndex(), 7u);
  edit(mine, uuid, [](QNItem& item) { item.setFaveIndex(0); });
  merged();

  EXPECT_EQ(itemIn(theirs, uuid)->faveIndex(), 0u);
}

// What isn't compared is lost at the next replacement.
TEST_F(QNStoreMerge, AnIconIsAChange) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setOverviewObject(Json("icon"), kCustomIcon); });

  EXPECT_EQ(merged().items.at(0).kind, Kind::replacedTheirs);

  EXPECT_EQ(itemIn(theirs, uuid)->overviewTextForKey(kCustomIcon), "icon");
}

// Without a memory, as after a restored or copied file, one of both must win.
TEST_F(QNStoreMerge, WithoutAMemoryTheLaterTitleAndPasswordWinAndTagsAreUnited) {
  for (const bool isMineLater : {true, false}) {
    SCOPED_TRACE(isMineLater);
    const std::string uuid = *savedLogin(mine, "one", "https://one.example", "old")->uuid();
    std::filesystem::remove(theirFile);
    copyFile();
    Session& later = isMineLater ? mine : theirs;
    edit(isMineLater ? theirs : mine, uuid, [](QNItem& item) { item.setTags({"home", "shop"}); });
    edit(later, uuid, [](QNItem& item) {
      item.setTitle("later");
      item.setPassword("new");
      item.setTags({"home", "work"});
    });

    const QNMergeReport report = merged();

    ASSERT_EQ(report.items.size(), 1u);
    EXPECT_EQ(report.items[0].kind, Kind::joined);
    for (Session* const session : {&mine, &theirs}) {
      const auto item = itemIn(*session, uuid);
      EXPECT_EQ(item->title(), "later");
      EXPECT_TRUE(item->password()->equals("new"));
      EXPECT_EQ(item->tags(), (std::set<std::string>{"home", "shop", "work"}));
      EXPECT_EQ(historyOf(*item).at(0), "old");
    }
    theirs = Session();
    mine = Session();
    for (const auto& each : {myFile, theirFile}) std::filesystem::remove(each);
    mine = makeSession(myFile);
  }
}

TEST_F(QNStoreMerge, WithoutAMemoryBothHaveChanged) {
  copyFile();
  const std::string uuid = uuidOfFirst();
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("theirs"); });

  const QNMergeReport report = merged();

  EXPECT_EQ(report.items.at(0).kind, Kind::joined);
  EXPECT_EQ(itemIn(mine, uuid)->notesPlain(), "theirs");
}

TEST_F(QNStoreMerge, ARenamedSectionIsAChange) {
  const std::string uuid = uuidOfSections();
  copyFile();
  merged();
  edit(mine, uuid, [](QNItem& item) { item.fieldSectionWithName("s", "")->setTitle("renamed"); });

  const QNMergeReport report = merged();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::replacedTheirs);
  EXPECT_EQ(fieldsOf(report.items[0]), (std::map<std::string, Outcome>{{"s", Outcome::taken}}));
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("theirs"); });
  merged();
  EXPECT_EQ(itemIn(mine, uuid)->fieldSectionWithName("s", "")->title(), "renamed");
}

TEST_F(QNStoreMerge, AnotherOrderOfFieldsIsAChange) {
  const std::string uuid = uuidOfSections();
  copyFile();
  merged();
  edit(mine, uuid, [](QNItem& item) {
    const auto section = item.fieldSectionWithName("s", "");
    const auto first = section->fields().at(0);
    section->removeField(first);
    section->addField(first);
  });

  const QNMergeReport report = merged();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::replacedTheirs);
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("theirs"); });
  merged();
  const auto fields = itemIn(mine, uuid)->fieldSectionWithName("s", "")->fields();
  EXPECT_EQ(fields.at(0)->identifier(), "code");
}

// Passwords in fields: the side that is replaced must not retire what it had once more.
TEST_F(QNStoreMerge, PasswordsOfOtherCategoriesHaveOneHistory) {
  for (const std::string_view category : {QNCategoryUUIDPassword, QNCategoryUUIDServer}) {
    SCOPED_TRACE(category);
    theirs = Session();
    mine = Session();
    for (const auto& each : {myFile, theirFile}) std::filesystem::remove(each);
    mine = makeSession(myFile);
    const auto made = mine.vault->newItemForCategoryUUID(std::string(category));
    made->setProfile(mine.vault);
    made->setTitle("one");
    setPasswordOf(*made, "first");
    ASSERT_EQ(errorOf(mine.store->save(made)), "");
    const std::string uuid = *made->uuid();
    copyFile();
    merged();
    edit(mine, uuid, [](QNItem& item) { setPasswordOf(item, "second"); });

    EXPECT_EQ(merged().items.at(0).kind, Kind::replacedTheirs);

    EXPECT_THAT(historyOf(*itemIn(theirs, uuid)), ElementsAre("first"));
    edit(mine, uuid, [](QNItem& item) { setPasswordOf(item, "mine"); });
    edit(theirs, uuid, [](QNItem& item) { setPasswordOf(item, "theirs"); });

    EXPECT_EQ(merged().items.at(0).kind, Kind::joined);

    EXPECT_TRUE(itemIn(mine, uuid)->password()->equals("theirs"));
  }
}

TEST_F(QNStoreMerge, AnAddressThatStandsTwiceStandsOnceOnBothSides) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) {
    item.addURLString("https://two.example", "one label");
    item.addURLString("https://two.example", "another");
  });

  merged();

  EXPECT_EQ(itemIn(mine, uuid)->numberOfURLs(), 2u);
  EXPECT_EQ(itemIn(theirs, uuid)->numberOfURLs(), 2u);
}

class QNStoreMergeApart : public QNStoreMerge {
 protected:
  void makeNoteOfTheSameUUID() {
    makeAnother();
    const auto note = theirs.vault->newItemForCategoryUUID(QNCategoryUUIDSecureNote);
    note->setProfile(theirs.vault);
    note->setTitle("note");
    note->setUuid(sharedString(uuidOfFirst()));
    ASSERT_TRUE(theirs.store->save(note).ok());
  }
};

TEST_F(QNStoreMergeApart, TheDeletionOfOneLeavesTheOtherThatItNeverMet) {
  const MRCapturingSink silence;
  makeNoteOfTheSameUUID();
  const std::string uuid = uuidOfFirst();
  ASSERT_TRUE(tryMerge().ok());
  clock.setSeconds(1'700'009'000);
  remove(mine, uuid);

  const auto report = std::move(tryMerge()).value();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::deletionRefused);
  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"note"});
  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"note"});
}

TEST_F(QNStoreMergeApart, ItemsOfDifferentCategoriesStayAsTheyAre) {
  const MRCapturingSink silence;
  makeNoteOfTheSameUUID();

  const auto report = std::move(tryMerge()).value();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::notJoined);
  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"first"});
  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"note"});
  EXPECT_EQ(problemsIn(mine), std::vector<std::string>());
  EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
}

// Only one side has it

TEST_F(QNStoreMerge, NewItemsGoBothWays) {
  copyFile();
  merged();
  clock.setSeconds(1'700'000'100);
  const std::string own = *savedLogin(mine, "mine", "https://mine.example", "pass m")->uuid();
  const std::string other = *savedLogin(theirs, "theirs")->uuid();

  const QNMergeReport report = merged();

  std::map<std::string, Kind> kinds;
  for (const auto& item : report.items) kinds.emplace(item.uuid, item.kind);
  EXPECT_EQ(kinds, (std::map<std::string, Kind>{{own, Kind::copiedToTheirs},
                                                {other, Kind::copiedToMine}}));
  const auto copied = itemIn(theirs, own);
  EXPECT_EQ(copied->title(), "mine");
  EXPECT_TRUE(copied->password()->equals("pass m"));
  EXPECT_EQ(copied->updatedAt(), 1'700'000'100u);
  EXPECT_EQ(titlesIn(mine).size(), 3u);
}

TEST_F(QNStoreMerge, GoesOverIntoAVaultOfOtherKeys) {
  makeAnother();
  savedLogin(theirs, "theirs");
  const std::string uuid = uuidOfFirst();

  const QNMergeReport report = merged();

  EXPECT_EQ(report.items.size(), 2u);
  const auto copied = itemIn(theirs, uuid);
  EXPECT_EQ(copied->title(), "first");
  EXPECT_TRUE(copied->password()->equals("pass 1"));
  const auto set =
      std::move(theirs.store->itemSetForURL(theirs.vault, "https://first.example")).value();
  EXPECT_EQ(set->derivedLogins.size(), 1u);
}

TEST_F(QNStoreMerge, JoinsAndReplacesUnderOtherKeysToo) {
  makeAnother();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.addURLString("https://mine.example"); });
  EXPECT_EQ(merged().items.at(0).kind, Kind::replacedTheirs);
  edit(theirs, uuid, [](QNItem& item) { item.addURLString("https://theirs.example"); });
  edit(mine, uuid, [](QNItem& item) { item.setPassword("pass 2"); });

  EXPECT_EQ(merged().items.at(0).kind, Kind::joined);

  EXPECT_EQ(itemIn(mine, uuid)->numberOfURLs(), 3u);
  EXPECT_TRUE(itemIn(theirs, uuid)->password()->equals("pass 2"));
}

// Deletions

TEST_F(QNStoreMerge, ADeletionGoesOver) {
  copyFile();
  merged();
  remove(mine, uuidOfFirst());

  const QNMergeReport report = merged();

  EXPECT_EQ(report.items.at(0).kind, Kind::deletedTheirs);
  EXPECT_TRUE(titlesIn(theirs, QNStore::Which::all).empty());
  EXPECT_EQ(report.opened, 0u);
}

TEST_F(QNStoreMerge, ADeletionComesOver) {
  copyFile();
  merged();
  remove(theirs, uuidOfFirst());

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletedMine);

  EXPECT_TRUE(titlesIn(mine, QNStore::Which::all).empty());
}

TEST_F(QNStoreMerge, ADeletionOfWhatWasChangedLaterIsRefusedAndUndone) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  remove(mine, uuid);
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("needed"); });

  const QNMergeReport report = merged();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::deletionRefused);
  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"needed"});
}

TEST_F(QNStoreMerge, ADeletionOfWhatTheOtherHadChangedUnseenIsRefused) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("needed"); });
  remove(mine, uuid);

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletionRefused);

  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"needed"});
}

TEST_F(QNStoreMerge, WithoutAMemoryALaterDeletionRemovesAnItem) {
  copyFile();
  remove(mine, uuidOfFirst());

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletedTheirs);
}

TEST_F(QNStoreMerge, WithoutAMemoryAnEarlierDeletionRemovesNothing) {
  copyFile();
  const std::string uuid = uuidOfFirst();
  remove(mine, uuid);
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("later"); });

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletionRefused);

  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"later"});
}

TEST_F(QNStoreMerge, ADeletionThatTheOtherNeverHadIsTold) {
  makeAnother();
  remove(mine, uuidOfFirst());
  const std::string uuid = uuidOfFirst();

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletedTheirs);

  const auto feed = std::move(theirs.store->changesSince(theirs.vault, 0)).value();
  ASSERT_EQ(feed.changes.size(), 1u);
  EXPECT_EQ(feed.changes[0].uuid, uuid);
  EXPECT_EQ(feed.changes[0].kind, QNStoredChange::Kind::deleted);
}

TEST_F(QNStoreMerge, WithoutAMemoryADeletionInTheSecondOfAChangeRemovesNothing) {
  copyFile();
  const std::string uuid = uuidOfFirst();
  remove(mine, uuid);
  clock.setSeconds(secondsNow() - 10);
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("of that second"); });

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletionRefused);

  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"of that second"});
}

// The item was seen, so the deletion came after it.
TEST_F(QNStoreMerge, WithAMemoryADeletionInTheSecondOfTheLastChangeGoesOver) {
  copyFile();
  merged();
  clock.setSeconds(secondsNow() - 10);
  remove(mine, uuidOfFirst());

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletedTheirs);
}

TEST_F(QNStoreMerge, WhatBothDeletedHasTheLaterTime) {
  copyFile();
  const std::string uuid = uuidOfFirst();
  remove(mine, uuid);
  remove(theirs, uuid);
  const std::uint64_t later = secondsNow();

  EXPECT_THAT(merged().items, IsEmpty());

  EXPECT_EQ(deletionOf(myFile, uuid), later);
  EXPECT_EQ(deletionOf(theirFile, uuid), later);
}

TEST_F(QNStoreMerge, AKeyThatIsAnothersDoesNotGoOverWithADeletion) {
  const MRCapturingSink silence;
  savedLogin(mine, "second");
  makeAnother();
  const auto feed = std::move(mine.store->changesSince(mine.vault, 0)).value();
  for (const auto& change : feed.changes) remove(mine, change.uuid);
  auto database = std::move(QNDatabase::open(myFile, QNDatabase::Mode::readWrite)).value();
  database->run(
      "CREATE TEMP TABLE keys AS SELECT item_id, wrapped_key FROM details;"
      "UPDATE details SET wrapped_key = (SELECT wrapped_key FROM keys WHERE keys.item_id != "
      "details.item_id)");
  ASSERT_FALSE(database->failed());
  database.reset();

  ASSERT_TRUE(tryMerge().ok());

  database = std::move(QNDatabase::open(theirFile, QNDatabase::Mode::readOnly)).value();
  EXPECT_EQ(database->number("SELECT count(*) FROM details"), 2u);
  EXPECT_EQ(database->number("SELECT count(*) FROM details WHERE length(wrapped_key) > 0"), 0u);
  EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
}

// Dry runs and failures

TEST_F(QNStoreMerge, ADryRunTellsTheSameAndChangesNothing) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setNotesPlain("mine"); });
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("theirs"); });
  savedLogin(mine, "new");
  const auto own = itemsOf(mine, myFile);
  const auto other = itemsOf(theirs, theirFile);

  const auto dry = std::move(tryMerge(QNStore::MergeMode::dryRun)).value();

  EXPECT_EQ(itemsOf(mine, myFile), own);
  EXPECT_EQ(itemsOf(theirs, theirFile), other);
  EXPECT_EQ(itemIn(mine, uuid)->notesPlain(), "mine");
  EXPECT_EQ(itemIn(theirs, uuid)->notesPlain(), "theirs");
  EXPECT_EQ(problemsIn(mine), std::vector<std::string>());
  EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
  const QNMergeReport real = merged();
  ASSERT_EQ(dry.items.size(), real.items.size());
  for (std::size_t i = 0; i < real.items.size(); ++i) {
    EXPECT_EQ(dry.items[i].uuid, real.items[i].uuid);
    EXPECT_EQ(dry.items[i].kind, real.items[i].kind);
    EXPECT_EQ(fieldsOf(dry.items[i]), fieldsOf(real.items[i]));
  }
}

TEST_F(QNStoreMerge, ChangesNeitherSideIfOneIsDamaged) {
  const MRCapturingSink silence;
  copyFile();
  savedLogin(mine, "new");
  theirs = Session();
  auto database = std::move(QNDatabase::open(theirFile, QNDatabase::Mode::readWrite)).value();
  database->run("UPDATE items SET fave_index = 9");
  database.reset();
  theirs = openSession(theirFile);

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::damaged));

  EXPECT_EQ(titlesIn(mine), (std::vector<std::string>{"first", "new"}));
  EXPECT_TRUE(mine.store->syncSources(mine.vault).value().empty());
}

TEST_F(QNStoreMerge, ChangesNeitherSideIfAnUnchangedRowWasAltered) {
  savedLogin(mine, "second");
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setTitle("mine"); });
  auto database = std::move(QNDatabase::open(theirFile, QNDatabase::Mode::readWrite)).value();
  database->run("UPDATE items SET fave_index = 9 WHERE oid = 2");
  database.reset();

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::damaged));

  EXPECT_EQ(itemIn(theirs, uuid)->title(), "first");
}

TEST_F(QNStoreMerge, ChangesNeitherSideIfWhatItRemembersWasAltered) {
  copyFile();
  merged();
  edit(mine, uuidOfFirst(), [](QNItem& item) { item.setTitle("mine"); });
  auto database = std::move(QNDatabase::open(theirFile, QNDatabase::Mode::readWrite)).value();
  database->run("UPDATE sync_states SET local_timestamp = local_timestamp + 1");
  database.reset();

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::damaged));

  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"first"});
}

TEST_F(QNStoreMerge, ChangesNeitherSideIfARowIsMissing) {
  copyFile();
  auto database = std::move(QNDatabase::open(theirFile, QNDatabase::Mode::readWrite)).value();
  database->run("DELETE FROM items");
  database.reset();
  const auto before = itemsOf(mine, myFile);

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::damaged));

  EXPECT_EQ(itemsOf(mine, myFile), before);
  EXPECT_TRUE(mine.store->syncSources(mine.vault).value().empty());
}

TEST_F(QNStoreMerge, ChangesNeitherSideIfOneIsInUse) {
  copyFile();
  merged();
  edit(mine, uuidOfFirst(), [](QNItem& item) { item.setTitle("mine"); });
  savedLogin(theirs, "theirs");
  const auto own = itemsOf(mine, myFile);
  const auto other = itemsOf(theirs, theirFile);
  for (const auto& file : {myFile, theirFile}) {
    auto writer = std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
    const QNTransaction writing(*writer, QNTransaction::Kind::write);

    EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::busy));

    EXPECT_EQ(itemsOf(mine, myFile), own);
    EXPECT_EQ(itemsOf(theirs, theirFile), other);
  }
  merged();
}

TEST_F(QNStoreMerge, ChangesNeitherSideIfOneMayOnlyBeRead) {
  copyFile();
  savedLogin(mine, "new");
  theirs = openSession(theirFile, QNStore::Access::readOnly);
  const auto own = itemsOf(mine, myFile);
  const auto other = itemsOf(theirs, theirFile);

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::notWritable));

  EXPECT_EQ(itemsOf(mine, myFile), own);
  EXPECT_EQ(itemsOf(theirs, theirFile), other);
  EXPECT_TRUE(mine.store->syncSources(mine.vault).value().empty());
}

TEST_F(QNStoreMerge, MergesNoFileWithItself) {
  const std::string before = bytesOfFile(myFile) + bytesOfFile(myFile.string() + "-wal");
  const QNMergeSide own = {mine.store.get(), mine.vault, "mine"};
  std::filesystem::create_symlink(myFile, folder / "link");
  Session again = openSession(myFile), linked = openSession(folder / "link");

  for (Session* const other : {&mine, &again, &linked}) {
    EXPECT_EQ(errorOf(QNStore::merge(own, {other->store.get(), other->vault, "theirs"})),
              codeText(QNStoreErrorCode::sameFile));
  }

  EXPECT_TRUE(bytesOfFile(myFile) + bytesOfFile(myFile.string() + "-wal") == before);
}

TEST_F(QNStoreMerge, NeedsTwoStoresAndTwoVaults) {
  copyFile();
  const QNMergeSide own = {mine.store.get(), mine.vault, "mine"};

  for (const QNMergeSide& none : {QNMergeSide{nullptr, theirs.vault, "theirs"},
                                  QNMergeSide{theirs.store.get(), nullptr, "theirs"}}) {
    EXPECT_EQ(errorOf(QNStore::merge(own, none)), codeText(QNStoreErrorCode::notFound));
    EXPECT_EQ(errorOf(QNStore::merge(none, own)), codeText(QNStoreErrorCode::notFound));
  }
}

TEST_F(QNStoreMerge, IsNoPartOfAnotherTransaction) {
  copyFile();
  for (Session* const session : {&mine, &theirs}) {
    std::string inside;
    const auto done = session->store->inTransaction([&]() -> QNResult<QNDone> {
      inside = errorOf(tryMerge());
      return QNDone{};
    });
    EXPECT_EQ(errorOf(done), "");
    EXPECT_EQ(inside, codeText(QNStoreErrorCode::busy));
  }
}

TEST_F(QNStoreMerge, MergesNoLockedVault) {
  copyFile();
  theirs.vault->lock();
  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::locked));

  theirs = openSession(theirFile);
  merged();
  theirs.vault->lock();

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::locked));
}

TEST_F(QNStoreMerge, TakesEverythingBackIfOneItemDoesNotOpen) {
  const MRCapturingSink silence;
  copyFile();
  merged();
  savedLogin(mine, "new 1");
  const std::string broken = *savedLogin(mine, "new 2")->uuid();
  auto database = std::move(QNDatabase::open(myFile, QNDatabase::Mode::readWrite)).value();
  database->run(
      "UPDATE details SET details = x'00' WHERE item_id = (SELECT oid FROM items WHERE uuid = '" +
      broken + "')");
  database.reset();

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::damaged));

  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"first"});
  EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
}

}  // namespace
}  // namespace quillon
