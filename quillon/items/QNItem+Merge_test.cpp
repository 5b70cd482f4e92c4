#include "quillon/items/internal/QNMergeTesting.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class QNItemMerge : public testing::Test {
 protected:
  std::shared_ptr<QNProfile> _vault = localVault();
  QNSampleItemRef _mine = versionIn(_vault);
  QNSampleItemRef _theirs = versionIn(_vault);
};

// What may be merged

TEST_F(QNItemMerge, GivesTheItemItself) {
  EXPECT_EQ(_mine->mergeWithConflict(_theirs), _mine);
}

TEST_F(QNItemMerge, OfWhatIsNoItemChangesNothing) {
  const MRCapturingSink sink;

  EXPECT_EQ(_mine->mergeWithConflict(noItem()), _mine);

  EXPECT_FALSE(_mine->dirtyRow());
  EXPECT_FALSE(_mine->hasOid());
  ASSERT_EQ(errors(sink).size(), 1u);
  EXPECT_THAT(errors(sink)[0], testing::StartsWith("Attempted to merge <QNItemURL-77 "));
  EXPECT_THAT(errors(sink)[0], HasSubstr(" into " + _mine->description() +
                                         ". Avoiding that as it doesn't make sense to do so."));
  EXPECT_EQ(sink.records()[0].method, "mergeWithConflict");
}

TEST_F(QNItemMerge, OfNothingChangesNothing) {
  const MRCapturingSink sink;

  EXPECT_EQ(_mine->mergeWithConflict(nullptr), _mine);

  EXPECT_FALSE(_mine->dirtyRow());
  EXPECT_THAT(errors(sink), ElementsAre("Attempted to merge (null) into " + _mine->description() +
                                        ". Avoiding that as it doesn't make sense to do so."));
}

TEST_F(QNItemMerge, OfAnotherCategoryGivesNothingAndChangesNothing) {
  _theirs->setCategoryUUID("004");
  _theirs->setTitle("theirs");
  _theirs->_setOid(9);
  const MRCapturingSink sink;

  EXPECT_EQ(_mine->mergeWithConflict(_theirs), nullptr);

  EXPECT_FALSE(_mine->dirtyRow());
  EXPECT_FALSE(_mine->hasOid());
  EXPECT_THAT(assertions(sink), ElementsAre("Attempt to merge item " + _mine->description() +
                                            " (003) with item from different category " +
                                            _theirs->description() + " (004)"));
}

TEST_F(QNItemMerge, NamesACategoryThatIsNone) {
  _theirs->setCategoryUUID(std::nullopt);
  const MRCapturingSink sink;

  EXPECT_EQ(_mine->mergeWithConflict(_theirs), nullptr);

  ASSERT_EQ(assertions(sink).size(), 1u);
  EXPECT_THAT(assertions(sink)[0], testing::EndsWith(_theirs->description() + " ((null))"));
}

TEST_F(QNItemMerge, WithItselfLeavesTheRowClean) {
  _mine->setNotesPlain("notes");
  _mine->addURLString("https://a.example");
  _mine->addPreviouslyUsedPassword({QNSecret("old"), 5});
  addField(*_mine, "s", "x", "value");
  save(*_mine);
  const auto before = detailsTextOf(*_mine);

  EXPECT_EQ(_mine->mergeWithConflict(_mine), _mine);

  EXPECT_FALSE(_mine->dirtyRow());
  _mine->willSerialize();
  EXPECT_EQ(detailsTextOf(*_mine), before);
}

TEST_F(QNItemMerge, WithAnEqualVersionLeavesTheRowClean) {
  _mine->setNotesPlain("notes");
  _mine->setTitle("title");
  _mine->addPreviouslyUsedPassword({QNSecret("old"), 5});
  addField(*_mine, "s", "x", "value");
  addField(*_mine, "s", "TOTP_1", "seed", "concealed");
  save(*_mine);
  const auto one = opened(*_mine, _vault);
  const auto other = opened(*_mine, _vault);
  ASSERT_EQ(other->title(), "title");

  EXPECT_EQ(one->mergeWithConflict(other), one);

  EXPECT_FALSE(one->dirtyRow());
}

// Tombstones

TEST_F(QNItemMerge, ALiveItemBeatsATombstone) {
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->setProfile(_vault);

  EXPECT_EQ(_mine->mergeWithConflict(tombstone), _mine);

  EXPECT_TRUE(_mine->dirtyRow());
  EXPECT_EQ(_mine->categoryUUID(), "003");
  EXPECT_FALSE(_mine->trashed());
}

TEST_F(QNItemMerge, TakesTheRowOfATombstoneAndKeepsItsKey) {
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->setProfile(_vault);
  const auto key = _mine->key();

  _mine->mergeWithConflict(tombstone);

  EXPECT_EQ(_mine->oid(), 9u);
  EXPECT_EQ(_mine->key(), key);
}

TEST_F(QNItemMerge, ATombstoneGivesWayToALiveItemWithItsRow) {
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->setProfile(_vault);

  EXPECT_EQ(tombstone->mergeWithConflict(_mine), _mine);

  EXPECT_TRUE(_mine->dirtyRow());
  EXPECT_EQ(_mine->oid(), 9u);
}

TEST_F(QNItemMerge, ATombstoneWithoutARowLeavesALiveItemItsOwn) {
  const auto tombstone = std::make_shared<QNTombstone>(initNew);
  tombstone->setProfile(_vault);
  _mine->_setOid(4);

  EXPECT_EQ(tombstone->mergeWithConflict(_mine), _mine);

  EXPECT_EQ(_mine->oid(), 4u);
}

TEST_F(QNItemMerge, OfTwoTombstonesTheFirstStays) {
  const auto mine = std::make_shared<QNTombstone>(initNew);
  mine->setProfile(_vault);
  mine->didSave();
  const auto theirs = std::make_shared<QNTombstone>(QNExisting{9});
  theirs->setProfile(_vault);

  EXPECT_EQ(mine->mergeWithConflict(theirs), mine);

  EXPECT_EQ(mine->oid(), 9u);
}

TEST_F(QNItemMerge, OfTwoTombstonesOfOneRowNothingChanges) {
  const auto mine = std::make_shared<QNTombstone>(QNExisting{9});
  mine->didSave();
  const auto theirs = std::make_shared<QNTombstone>(QNExisting{9});

  EXPECT_EQ(mine->mergeWithConflict(theirs), mine);

  EXPECT_FALSE(mine->dirtyRow());
}

TEST_F(QNItemMerge, ATombstoneRefusesWhatIsNoItem) {
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->didSave();
  const MRCapturingSink sink;

  EXPECT_EQ(tombstone->mergeWithConflict(nullptr), tombstone);

  EXPECT_FALSE(tombstone->dirtyRow());
  EXPECT_THAT(errors(sink),
              ElementsAre("Attempted to merge (null) into " + tombstone->description() +
                          ". Avoiding that as it doesn't make sense to do so."));
}

// What isn't joined

TEST_F(QNItemMerge, KeepsItsTitleAndDirtiesTheRow) {
  _mine->setTitle("mine");
  const auto theirs = twinOf(*_mine, _vault);
  theirs->setTitle("theirs");

  _mine->mergeWithConflict(theirs);

  EXPECT_EQ(_mine->title(), "mine");
  EXPECT_TRUE(_mine->dirtyRow());
}

struct ColumnCase {
  std::string_view name;
  void (*change)(QNItem& theirs);
  bool (*isKept)(QNItem& mine);
};

const ColumnCase kColumns[] = {
    {"createdAt", [](QNItem& theirs) { theirs.setCreatedAt(7); },
     [](QNItem& mine) { return mine.createdAt() != 7; }},
    {"updatedAt", [](QNItem& theirs) { theirs.setUpdatedAt(7); },
     [](QNItem& mine) { return mine.updatedAt() == 0; }},
    {"folderUUID", [](QNItem& theirs) { theirs.setFolderUUID("f"); },
     [](QNItem& mine) { return !mine.folderUUID(); }},
    {"scope", [](QNItem& theirs) { theirs.setScope("Never"); },
     [](QNItem& mine) { return !mine.scope(); }},
    {"trashed", [](QNItem& theirs) { theirs.setTrashed(true); },
     [](QNItem& mine) { return !mine.trashed(); }},
};

TEST_F(QNItemMerge, KeepsEachOfItsColumnsAndDirtiesTheRow) {
  for (const ColumnCase& column : kColumns) {
    const auto mine = versionIn(_vault);
    const auto theirs = twinOf(*mine, _vault);
    column.change(*theirs);
    ASSERT_FALSE(mine->dirtyRow());

    mine->mergeWithConflict(theirs);

    EXPECT_TRUE(mine->dirtyRow()) << column.name;
    EXPECT_TRUE(column.isKept(*mine)) << column.name;
  }
}

TEST_F(QNItemMerge, LooksNeitherAtFavouritesNorAtTagsNorAtAttachments) {
  const auto theirs = twinOf(*_mine, _vault);
  theirs->setFaveIndex(3);
  theirs->setTags({"t"});
  theirs->setAdditionalInformation("theirs");
  theirs->setNumberOfAttachments(5);

  _mine->mergeWithConflict(theirs);

  EXPECT_FALSE(_mine->isFavorite());
  EXPECT_THAT(_mine->tags(), IsEmpty());
  EXPECT_NE(_mine->additionalInformation(), "theirs");
  EXPECT_EQ(_mine->numberOfAttachments(), 0);
  EXPECT_FALSE(_mine->dirtyRow());
}

// Row and keys

TEST_F(QNItemMerge, TakesTheOthersRowIfItHasNone) {
  save(*_theirs);

  _mine->mergeWithConflict(_theirs);

  EXPECT_EQ(_mine->oid(), _theirs->oid());
  EXPECT_EQ(_mine->key(), _theirs->key());
  EXPECT_TRUE(_mine->dirtyRow());
}

TEST_F(QNItemMerge, KeepsItsOwnRow) {
  _mine->_setOid(4);
  _theirs->_setOid(9);
  const auto key = _mine->key();

  _mine->mergeWithConflict(_theirs);

  EXPECT_EQ(_mine->oid(), 4u);
  EXPECT_EQ(_mine->key(), key);
}

TEST_F(QNItemMerge, KeepsTheKeysOfBoth) {
  const std::string mine = mr_base64encode(_mine->key()->rawKeyData());
  const std::string theirs = mr_base64encode(_theirs->key()->rawKeyData());
  _theirs->_setOid(9);

  _mine->mergeWithConflict(_theirs);

  std::vector<std::string> kept;
  for (const QNSecret& key : _mine->backupKeysBase64Encoded()) kept.emplace_back(key.reveal());
  EXPECT_THAT(kept, UnorderedElementsAre(mine, theirs));
}

TEST_F(QNItemMerge, CanBeSavedAndOpenedAfterwards) {
  save(*_theirs);
  _theirs->setNotesPlain("theirs");
  _mine->setNotesPlain("mine");

  _mine->mergeWithConflict(_theirs);
  save(*_mine);

  EXPECT_EQ(opened(*_mine, _vault)->notesPlain(), "mine\n\n===\n\ntheirs");
}

// Notes

struct NotesCase {
  std::optional<std::string_view> mine, theirs, merged;
  bool dirties;
};

const NotesCase kNotes[] = {
    {"a", "ab", "ab", true},
    {"ab", "a", "ab", true},
    {"a", "b", "a\n\n===\n\nb", true},
    {"a", "a", "a", false},
    {"", "b", "b", true},
    {std::nullopt, "b", "b", true},
    {"a", "", "a", true},
    {"a", std::nullopt, "a", true},
    {std::nullopt, std::nullopt, std::nullopt, false},
    {"b\n\n===\n\na", "a", "b\n\n===\n\na", true},
    {"line\nline 2", "line 2", "line\nline 2", true},
    {"A", "a", "A\n\n===\n\na", true},
};

TEST_F(QNItemMerge, JoinsNotes) {
  for (const NotesCase& notes : kNotes) {
    const auto mine = versionIn(_vault);
    mine->setNotesPlain(notes.mine);
    mine->didSave();

    mine->mergeNotesWithConflict(notes.theirs);

    EXPECT_EQ(mine->notesPlain(), notes.merged) << shown(notes.mine) << ", " << shown(notes.theirs);
    EXPECT_EQ(mine->dirtyRow(), notes.dirties) << shown(notes.mine) << ", " << shown(notes.theirs);
  }
}

TEST_F(QNItemMerge, JoinsTheNotesOfBothItems) {
  _mine->setNotesPlain("a");
  _theirs->setNotesPlain("b");

  _mine->mergeWithConflict(_theirs);

  EXPECT_EQ(_mine->notesPlain(), "a\n\n===\n\nb");
  EXPECT_EQ(_theirs->notesPlain(), "b");
}

TEST_F(QNItemMerge, AddsTheSameNotesOnce) {
  _mine->setNotesPlain("a");
  _theirs->setNotesPlain("b");

  _mine->mergeWithConflict(_theirs);
  _mine->mergeWithConflict(_theirs);

  EXPECT_EQ(_mine->notesPlain(), "a\n\n===\n\nb");
}

// History

std::vector<QNPreviouslyUsedPassword> entries(
    std::initializer_list<std::pair<std::string_view, std::uint64_t>> of) {
  std::vector<QNPreviouslyUsedPassword> made;
  for (const auto& [value, time] : of) made.emplace_back(QNSecret(value), time);
  return made;
}

TEST_F(QNItemMerge, AppendsTheOthersHistoryInItsOrder) {
  _mine->addPreviouslyUsedPassword({QNSecret("a"), 5});
  _theirs->addPreviouslyUsedPassword({QNSecret("c"), 9});
  _theirs->addPreviouslyUsedPassword({QNSecret("b"), 1});
  _mine->didSave();

  _mine->mergeWithConflict(_theirs);

  EXPECT_THAT(historyOf(*_mine), ElementsAre("a@5", "c@9", "b@1"));
  EXPECT_TRUE(_mine->dirtyRow());
}

TEST_F(QNItemMerge, KeepsEqualValuesOfDifferentTimesInTheHistory) {
  _mine->addPreviouslyUsedPassword({QNSecret("a"), 5});

  _mine->mergePreviouslyUsedPasswordsWithConflict(entries({{"a", 5}, {"a", 6}}));

  EXPECT_THAT(historyOf(*_mine), ElementsAre("a@5", "a@6"));
}

TEST_F(QNItemMerge, KeepsEqualTimesOfDifferentValuesInTheHistory) {
  _mine->addPreviouslyUsedPassword({QNSecret("a"), 5});

  _mine->mergePreviouslyUsedPasswordsWithConflict(entries({{"b", 5}}));

  EXPECT_THAT(historyOf(*_mine), ElementsAre("a@5", "b@5"));
}

TEST_F(QNItemMerge, DirtiesTheRowForHistoriesOfDifferentLength) {
  _mine->addPreviouslyUsedPassword({QNSecret("a"), 5});
  _mine->addPreviouslyUsedPassword({QNSecret("b"), 6});
  _mine->didSave();

  _mine->mergePreviouslyUsedPasswordsWithConflict(entries({{"a", 5}}));

  EXPECT_TRUE(_mine->dirtyRow());
  EXPECT_THAT(historyOf(*_mine), ElementsAre("a@5", "b@6"));
}

TEST_F(QNItemMerge, DirtiesNothingForAnEqualHistory) {
  _mine->addPreviouslyUsedPassword({QNSecret("a"), 5});
  _mine->didSave();

  _mine->mergePreviouslyUsedPasswordsWithConflict(entries({{"a", 5}}));

  EXPECT_FALSE(_mine->dirtyRow());
}

TEST_F(QNItemMerge, DirtiesTheRowForAHistoryOfTheSameLength) {
  _mine->addPreviouslyUsedPassword({QNSecret("a"), 5});
  _mine->didSave();

  _mine->mergePreviouslyUsedPasswordsWithConflict(entries({{"b", 5}}));

  EXPECT_TRUE(_mine->dirtyRow());
}

TEST_F(QNItemMerge, AHistoryThatIsMergedIsSaved) {
  _mine->mergePreviouslyUsedPasswordsWithConflict(entries({{"b", 5}}));

  save(*_mine);

  EXPECT_THAT(historyOf(*opened(*_mine, _vault)), ElementsAre("b@5"));
}

TEST_F(QNItemMerge, ALoadedPasswordStaysAndThePresentOneOfTheOtherIsNoHistory) {
  _mine->setPassword("mine");
  _theirs->setPassword("theirs");

  _mine->mergeWithConflict(_theirs);

  EXPECT_TRUE(_mine->password()->equals("mine"));
  EXPECT_THAT(historyOf(*_mine), IsEmpty());
}

// What can't be read

TEST_F(QNItemMerge, GivesNothingAndChangesNothingIfEitherDoesNotOpen) {
  _mine->setNotesPlain("mine");
  save(*_mine);
  const auto noOverview = opened(*_mine, _vault);
  noOverview->setOverviewData(Bytes(64, 1));
  const auto noDetails = opened(*_mine, _vault);
  noDetails->setDetailsData(Bytes(64, 1));
  const auto notLoaded = listed(*_mine, _vault);
  _theirs->setNotesPlain("theirs");
  addField(*_theirs, "s", "x", "value");
  save(*_theirs);
  for (const auto& broken : {noOverview, noDetails, notLoaded}) {
    broken->didSave();
    for (const auto& [into, from] : {std::pair(broken, _theirs), std::pair(_theirs, broken)}) {
      const MRCapturingSink sink;

      EXPECT_EQ(into->mergeWithConflict(from), nullptr);

      EXPECT_FALSE(into->dirtyRow());
      EXPECT_FALSE(from->dirtyRow());
      EXPECT_THAT(errors(sink), Contains("Attempted to merge " + from->description() + " into " +
                                         into->description() + ", which don't both open"));
    }
  }
  EXPECT_EQ(_theirs->notesPlain(), "theirs");
}

TEST_F(QNItemMerge, WithATombstoneNeedsNoContent) {
  const auto broken = damagedTwinOf<QNSampleItem>(*_mine, _vault);
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->setProfile(_vault);
  const MRCapturingSink sink;

  EXPECT_EQ(broken->mergeWithConflict(tombstone), broken);
  EXPECT_EQ(broken->mergeWithConflict(broken), broken);

  EXPECT_THAT(errors(sink), IsEmpty());
}

}  // namespace
}  // namespace quillon
