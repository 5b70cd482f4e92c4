#include "quillon/organisation/QNFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/organisation/internal/QNFolderTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/images/QNImageOperations.h"

namespace quillon {
namespace {

using testing::IsEmpty;
using testing::MatchesRegex;

constexpr std::string_view kSVG =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="8"><path fill="#ff0000" d="M0 0h8v8H0z"/></svg>)";

std::shared_ptr<const QNImage> picture(double side = 8) {
  return QNImage::imageWithData(bytesOf(kSVG))->imageWithSize({side, side});
}

// Identity

TEST(QNFolder, BeginsWithAUuidOfItsOwn) {
  const QNFolder first(initNew);
  const QNFolder second(initNew);

  EXPECT_EQ(first.uuid()->size(), 36u);
  EXPECT_NE(*first.uuid(), *second.uuid());
  EXPECT_EQ(QNFolder(QNExisting{7}).uuid(), nullptr);
}

TEST(QNFolder, IsAFolder) {
  const QNFolder folder(initNew);

  EXPECT_EQ(folder.objectType(), QNObjectType::folder);
  EXPECT_EQ(static_cast<int>(folder.objectType()), 2);
  EXPECT_TRUE(folder.isFolder());
  EXPECT_FALSE(folder.isTombstone());
  EXPECT_EQ(folder.className(), "QNFolder");
}

TEST(QNFolder, DescribesItselfByUuidAndRow) {
  QNFolder folder(QNExisting{7});
  folder.setUuid(sharedString("UUID"));

  EXPECT_THAT(folder.description(), MatchesRegex("<QNFolder 0x[0-9a-f]+: UUID/\\(7\\)>"));
}

// Title

TEST(QNFolder, KeepsItsTitleInTheOverview) {
  const auto folder = cleanFolder("Über uns");

  EXPECT_EQ(folder->title(), "Über uns");
  EXPECT_EQ(folder->lowercaseTitle(), "über uns");
  EXPECT_EQ(jsonText(folder->overviewObjectForKey("title")), "\"Über uns\"");
  EXPECT_FALSE(folder->dirtyRow());
  folder->setTitle("Über uns");
  EXPECT_FALSE(folder->dirtyRow());
  folder->setTitle("Other");
  EXPECT_TRUE(folder->dirtyRow());
}

TEST(QNFolder, WithoutATitleHasNone) {
  QNFolder folder(initNew);
  folder.setProfile(localVault());

  EXPECT_EQ(folder.title(), std::nullopt);
  EXPECT_EQ(folder.lowercaseTitle(), std::nullopt);
}

// Columns

TEST(QNFolder, AnotherParentDirtiesTheRow) {
  const auto folder = cleanFolder();

  folder->setParentUUID(std::nullopt);
  EXPECT_FALSE(folder->dirtyRow());
  folder->setParentUUID("P");
  EXPECT_TRUE(folder->dirtyRow());
  folder->didSave();
  folder->setParentUUID("P");
  EXPECT_FALSE(folder->dirtyRow());
  folder->setParentUUID(std::nullopt);
  EXPECT_TRUE(folder->dirtyRow());
  EXPECT_EQ(folder->parentUUID(), std::nullopt);
}

TEST(QNFolder, AnotherPlaceDirtiesTheOrderButTheFirstDoesNot) {
  const auto folder = cleanFolder();

  folder->setDisplayOrder(5);
  EXPECT_FALSE(folder->dirtyDisplayOrder());
  EXPECT_EQ(folder->displayOrder(), 5u);
  folder->setDisplayOrder(5);
  EXPECT_FALSE(folder->dirtyDisplayOrder());
  folder->setDisplayOrder(6);
  EXPECT_TRUE(folder->dirtyDisplayOrder());
  EXPECT_EQ(folder->displayOrder(), 6u);
  EXPECT_FALSE(folder->dirtyRow());
}

TEST(QNFolder, IsAModifiedCopyByItsCountsAndTitleAlone) {
  const auto folder = cleanFolder("Work");
  const auto other = cleanFolder("Work");

  other->setUpdatedAt(5);
  other->setParentUUID("P");
  EXPECT_FALSE(folder->isModifiedCopyOf(*other));
  other->setNumberOfItems(1);
  EXPECT_TRUE(folder->isModifiedCopyOf(*other));
  other->setNumberOfItems(0);
  other->setNumberOfChildren(1);
  EXPECT_TRUE(folder->isModifiedCopyOf(*other));
  other->setNumberOfChildren(0);
  other->setTitle("work");
  EXPECT_TRUE(folder->isModifiedCopyOf(*other));
}

// Trash

TEST(QNFolder, InTheTrashIsAHusk) {
  const auto folder = cleanFolder("Work");
  folder->setSmartFolder(true);
  folder->setOverviewText("old", "predicate_b64");
  folder->setSmartFolderPredicate(predicate("title == \"x\""));
  folder->didSave();

  folder->setTrashed(true);

  EXPECT_TRUE(folder->dirtyRow());
  EXPECT_TRUE(folder->trashed());
  EXPECT_EQ(folder->title(), "");
  EXPECT_FALSE(folder->smartFolder());
  EXPECT_EQ(folder->overviewObjectForKey("predicate_b64"), nullptr);
  EXPECT_NE(folder->overviewObjectForKey("predicate_b64_v4"), nullptr);
  EXPECT_EQ(folder->smartFolderVersion(), 4u);
}

TEST(QNFolder, OutOfTheTrashStaysAHusk) {
  const auto folder = cleanFolder("Work");
  folder->setTrashed(true);
  folder->didSave();

  folder->setTrashed(false);

  EXPECT_FALSE(folder->trashed());
  EXPECT_TRUE(folder->dirtyRow());
  EXPECT_EQ(folder->title(), "");
}

TEST(QNFolder, NotTrashedBeforeKeepsItsTitle) {
  const auto folder = cleanFolder("Work");

  folder->setTrashed(false);

  EXPECT_EQ(folder->title(), "Work");
  EXPECT_FALSE(folder->dirtyRow());
}

// Icon

TEST(QNFolder, KeepsItsIconAsPNG) {
  const auto folder = cleanFolder();

  folder->setIcon(picture());

  EXPECT_TRUE(folder->dirtyRow());
  EXPECT_EQ(folder->iconData(), QNImagePNGRepresentation(picture()));
  EXPECT_EQ(folder->icon()->pixelWidth(), 8u);
}

TEST(QNFolder, TheSamePictureTwiceDirtiesTheRowOnce) {
  const auto folder = cleanFolder();
  folder->setIcon(picture());
  folder->didSave();

  folder->setIcon(picture());

  EXPECT_FALSE(folder->dirtyRow());
  folder->setIcon(picture(16));
  EXPECT_TRUE(folder->dirtyRow());
}

TEST(QNFolder, AnAbsentPictureTakesTheIconAway) {
  const auto folder = cleanFolder();

  folder->setIcon(nullptr);
  EXPECT_FALSE(folder->dirtyRow());
  folder->setIcon(picture());
  folder->didSave();
  folder->setIcon(nullptr);

  EXPECT_TRUE(folder->dirtyRow());
  EXPECT_EQ(folder->iconData(), std::nullopt);
}

TEST(QNFolder, WithAnIconThatIsNoPictureShowsThatOfEveryFolder) {
  const auto folder = cleanFolder();
  folder->setIconData(Bytes{1, 2, 3});

  ASSERT_NE(folder->icon(), nullptr);
  EXPECT_EQ(folder->icon(), mr_imageNamed("type-folder-list"));
}

TEST(QNFolder, APictureThatCannotBeDrawnChangesNothing) {
  const MRCapturingSink sink;
  const auto folder = cleanFolder();
  folder->setIcon(picture());
  folder->didSave();
  const auto before = folder->iconData();
  Bytes damaged = *before;
  damaged.resize(damaged.size() - 20);

  folder->setIcon(QNImage::imageWithData(damaged));

  EXPECT_EQ(folder->iconData(), before);
  EXPECT_FALSE(folder->dirtyRow());
}

TEST(QNFolder, WithoutAnIconShowsThatOfEveryFolder) {
  const QNFolder folder(initNew);

  ASSERT_NE(folder.icon(), nullptr);
  EXPECT_EQ(folder.icon(), mr_imageNamed("type-folder-list"));
}

// Merging

TEST(QNFolder, KeepsItsValuesInAConflict) {
  const auto folder = cleanFolder("Mine");
  const auto other = cleanFolder("Theirs");
  other->_setOid(9);

  EXPECT_EQ(folder->mergeWithConflict(other), folder);

  EXPECT_EQ(folder->title(), "Mine");
  EXPECT_EQ(folder->oid(), 9u);
  EXPECT_TRUE(folder->dirtyRow());
}

TEST(QNFolder, KeepsItsOwnRowInAConflict) {
  const auto folder = cleanFolder("Mine");
  folder->_setOid(3);
  const auto other = cleanFolder("Theirs");
  other->_setOid(9);

  folder->mergeWithConflict(other);

  EXPECT_EQ(folder->oid(), 3u);
  EXPECT_FALSE(folder->dirtyRow());
}

TEST(QNFolder, TakesAllOfItsReplacement) {
  const auto folder = cleanFolder("Mine");
  const std::string uuid = *folder->uuid();
  folder->setTxTimestamp(1);
  folder->setNumberOfItems(2);
  folder->setNumberOfChildren(3);
  const auto other = cleanFolder("Theirs");
  other->setCreatedAt(11);
  other->setUpdatedAt(12);
  other->setTxTimestamp(13);
  other->setParentId(14);
  other->setParentUUID("P");
  other->setSmartFolder(true);
  other->setDisplayOrder(15);
  other->setIcon(picture());
  other->setNumberOfItems(16);
  other->setOverviewText("kept", "unknown");

  EXPECT_EQ(folder->objectByReplacingWith(other), folder);

  EXPECT_EQ(folder->title(), "Theirs");
  EXPECT_EQ(folder->createdAt(), 11u);
  EXPECT_EQ(folder->updatedAt(), 12u);
  EXPECT_EQ(folder->parentId(), 14u);
  EXPECT_EQ(folder->parentUUID(), "P");
  EXPECT_TRUE(folder->smartFolder());
  EXPECT_EQ(folder->displayOrder(), 15u);
  EXPECT_EQ(folder->iconData(), other->iconData());
  EXPECT_EQ(folder->overviewCopy(), other->overviewCopy());
  EXPECT_EQ(*folder->uuid(), uuid);
  EXPECT_EQ(folder->txTimestamp(), 1u);
  EXPECT_EQ(folder->numberOfItems(), 2u);
  EXPECT_EQ(folder->numberOfChildren(), 3u);
  EXPECT_TRUE(folder->dirtyRow());
}

struct ReplacedValue {
  const char* name;
  void (*set)(QNFolder& folder);
};
std::ostream& operator<<(std::ostream& out, const ReplacedValue& it) {
  return out << it.name;
}
class QNFolderReplacedValue : public testing::TestWithParam<ReplacedValue> {};

TEST_P(QNFolderReplacedValue, DirtiesTheRow) {
  const auto folder = cleanFolder("Work");
  const auto other = cleanFolder("Work");
  GetParam().set(*other);

  folder->objectByReplacingWith(other);

  EXPECT_TRUE(folder->dirtyRow());
}

INSTANTIATE_TEST_SUITE_P(
    Values, QNFolderReplacedValue,
    testing::Values(ReplacedValue{"createdAt", [](QNFolder& it) { it.setCreatedAt(1); }},
                    ReplacedValue{"updatedAt", [](QNFolder& it) { it.setUpdatedAt(1); }},
                    ReplacedValue{"parentId", [](QNFolder& it) { it.setParentId(1); }},
                    ReplacedValue{"parentUUID", [](QNFolder& it) { it.setParentUUID("P"); }},
                    ReplacedValue{"smartFolder", [](QNFolder& it) { it.setSmartFolder(true); }},
                    ReplacedValue{"displayOrder", [](QNFolder& it) { it.setDisplayOrder(1); }},
                    ReplacedValue{"iconData", [](QNFolder& it) { it.setIconData(Bytes{1}); }},
                    ReplacedValue{"trashed", [](QNFolder& it) { it.setTrashed(true); }},
                    ReplacedValue{"title", [](QNFolder& it) { it.setTitle("Other"); }}));

TEST(QNFolder, ReplacedByAnEqualVersionStaysClean) {
  const auto versions = {cleanFolder("Work"), cleanFolder("Work")};
  for (const auto& version : versions) {
    version->setCreatedAt(11);
    version->setUpdatedAt(12);
    version->setParentId(14);
    version->setParentUUID("P");
    version->setSmartFolder(true);
    version->setDisplayOrder(15);
    version->setIcon(picture());
    version->didSave();
  }
  const auto& folder = *versions.begin();

  folder->objectByReplacingWith(*(versions.end() - 1));

  EXPECT_FALSE(folder->dirtyRow());
  EXPECT_FALSE(folder->dirtyDisplayOrder());
}

TEST(QNFolder, ReplacedByATrashedOneIsTrashedWithTheOthersOverview) {
  const auto folder = cleanFolder("Mine");
  const auto other = cleanFolder("Theirs");
  other->setTrashed(true);
  other->setTitle("Named in the trash");

  folder->objectByReplacingWith(other);

  EXPECT_TRUE(folder->trashed());
  EXPECT_EQ(folder->title(), "Named in the trash");
}

TEST(QNFolder, MergedWithWhatIsNoFolderStaysAsItIs) {
  const MRCapturingSink sink;
  const auto folder = cleanFolder("Mine");

  EXPECT_EQ(folder->mergeWithConflict(newItem(localVault())), folder);
  EXPECT_EQ(folder->objectByReplacingWith(nullptr), folder);

  EXPECT_FALSE(folder->dirtyRow());
  ASSERT_EQ(errors(sink).size(), 2u);
  EXPECT_THAT(errors(sink)[1], MatchesRegex("Attempted to merge \\(null\\) into <QNFolder .*>. "
                                            "Avoiding that as it doesn't make sense to do so."));
}

TEST(QNFolder, ReplacedByOneThatDoesNotOpenStaysAsItIs) {
  const MRCapturingSink sink;
  const auto folder = cleanFolder("Mine");
  const auto other = std::make_shared<QNFolder>(QNExisting{5});
  other->setUuid(sharedString("UUID"));

  EXPECT_EQ(folder->objectByReplacingWith(other), folder);

  EXPECT_EQ(folder->title(), "Mine");
  EXPECT_FALSE(folder->dirtyRow());
  ASSERT_EQ(errors(sink).size(), 1u);
  EXPECT_THAT(errors(sink)[0],
              MatchesRegex("The overview of <QNFolder .*> doesn't open. It replaces nothing."));
}

TEST(QNFolder, CopiesARowsIdOnce) {
  const auto folder = cleanFolder();
  const auto other = cleanFolder();
  other->_setOid(4);

  folder->copyOidFrom(other);
  EXPECT_TRUE(folder->dirtyRow());
  EXPECT_EQ(folder->oid(), 4u);
  folder->didSave();
  folder->copyOidFrom(other);
  EXPECT_FALSE(folder->dirtyRow());
}

TEST(QNFolder, TakesARowsIdFromAFolderAlone) {
  const MRCapturingSink sink;
  const auto folder = cleanFolder();
  const auto item = newItem(localVault());
  item->_setOid(9);

  folder->copyOidFrom(item);
  folder->copyOidFrom(nullptr);

  EXPECT_EQ(folder->oid(), 0u);
  EXPECT_FALSE(folder->dirtyRow());
  EXPECT_EQ(errors(sink).size(), 2u);
}

}  // namespace
}  // namespace quillon
