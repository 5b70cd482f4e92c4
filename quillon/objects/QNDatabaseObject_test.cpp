#include "quillon/objects/QNDatabaseObject.h"

#include <fmt/format.h>

#include "quillon/objects/internal/QNObjectsTesting.h"

namespace quillon {
namespace {

// Numbers that a synchronisation layer knows.
static_assert(static_cast<std::uint32_t>(QNObjectType::item) == 1);
static_assert(static_cast<std::uint32_t>(QNObjectType::folder) == 2);
static_assert(static_cast<std::uint32_t>(QNObjectType::attachment) == 3);

// Construction and identity

TEST(QNDatabaseObject, ANewOneIsDirtyAndHasNothingToLoad) {
  const QNTestRecord record(initNew);

  EXPECT_EQ(record.intValue(), 0x129u);
  EXPECT_TRUE(record.dirtyRow());
  EXPECT_TRUE(record.loaded());
  EXPECT_TRUE(record.authentic());
  EXPECT_FALSE(record.hasOid());
}

TEST(QNDatabaseObject, AnExistingOneIsACleanShell) {
  const QNTestRecord record(QNExisting{42});

  EXPECT_EQ(record.intValue(), 0x100u);
  EXPECT_EQ(record.oid(), 42u);
  EXPECT_TRUE(record.hasOid());
  EXPECT_FALSE(record.dirtyRow());
  EXPECT_FALSE(record.detailsLoaded());
  EXPECT_FALSE(record.attachmentsLoaded());
}

TEST(QNDatabaseObject, SettingTheRowDirtiesNothing) {
  QNTestRecord record(QNExisting{0});

  record._setOid(42);

  EXPECT_EQ(record.oid(), 42u);
  EXPECT_FALSE(record.dirtyRow());
}

TEST(QNDatabaseObject, DescribesItselfByClassRowAndAddress) {
  const QNTestRecord record(QNExisting{42});

  EXPECT_EQ(record.description(), fmt::format("<QNTestRecord-42 {}>", fmt::ptr(&record)));
}

TEST(QNDatabaseObject, DescribesTheRowAsASignedNumber) {
  const QNTestRecord record(QNExisting{kPseudoProfileOid});

  EXPECT_EQ(record.description(), fmt::format("<QNTestRecord--1 {}>", fmt::ptr(&record)));
}

// Flags

struct FlagCase {
  const char* name;
  void (*mark)(QNTestRecord&);
  std::uint32_t word;  // what it makes of the word 0
};
class QNDatabaseObjectFlags : public testing::TestWithParam<FlagCase> {};

TEST_P(QNDatabaseObjectFlags, StandWhereArchivesHaveThem) {
  QNTestRecord record(QNExisting{1});
  record.setAuthentic(false);
  ASSERT_EQ(record.intValue(), 0u);

  GetParam().mark(record);

  EXPECT_EQ(record.intValue(), GetParam().word);
}

INSTANTIATE_TEST_SUITE_P(
    Bits, QNDatabaseObjectFlags,
    testing::Values(
        FlagCase{"dirtyRow", [](QNTestRecord& it) { it.markRowDirty(); }, 1},
        FlagCase{"dirtyDisplayOrder", [](QNTestRecord& it) { it.markDisplayOrderDirty(); }, 2},
        FlagCase{"loadingDetails", [](QNTestRecord& it) { it.markLoadingDetails(); }, 4},
        FlagCase{"detailsLoaded", [](QNTestRecord& it) { it.markDetailsLoaded(); }, 8},
        FlagCase{"loadingAttachments", [](QNTestRecord& it) { it.markLoadingAttachments(); }, 16},
        FlagCase{"attachmentsLoaded", [](QNTestRecord& it) { it.markAttachmentsLoaded(); }, 32},
        FlagCase{"trashed", [](QNTestRecord& it) { it.setTrashed(true); }, 64 + 1},
        FlagCase{"deleted", [](QNTestRecord& it) { it.markDeleted(); }, 128 + 1},
        FlagCase{"authentic", [](QNTestRecord& it) { it.setAuthentic(true); }, 256}),
    [](const auto& flag) { return flag.param.name; });

TEST(QNDatabaseObject, LoadingDetailsAndLoadedDetailsExcludeEachOther) {
  QNTestRecord record(QNExisting{1});

  record.markLoadingDetails();
  EXPECT_TRUE(record.loadingDetails());
  EXPECT_FALSE(record.detailsLoaded());
  record.markDetailsLoaded();
  EXPECT_FALSE(record.loadingDetails());
  EXPECT_TRUE(record.detailsLoaded());
  record.markLoadingDetails();
  EXPECT_TRUE(record.loadingDetails());
  EXPECT_FALSE(record.detailsLoaded());
}

TEST(QNDatabaseObject, LoadingAttachmentsAndLoadedAttachmentsExcludeEachOther) {
  QNTestRecord record(QNExisting{1});

  record.markLoadingAttachments();
  EXPECT_TRUE(record.loadingAttachments());
  EXPECT_FALSE(record.attachmentsLoaded());
  record.markAttachmentsLoaded();
  EXPECT_FALSE(record.loadingAttachments());
  EXPECT_TRUE(record.attachmentsLoaded());
  record.markLoadingAttachments();
  EXPECT_TRUE(record.loadingAttachments());
  EXPECT_FALSE(record.attachmentsLoaded());
}

TEST(QNDatabaseObject, IsLoadedWithDetailsAndAttachmentsOnly) {
  QNTestRecord record(QNExisting{1});

  record.markDetailsLoaded();
  EXPECT_FALSE(record.loaded());
  record.markAttachmentsLoaded();
  EXPECT_TRUE(record.loaded());
  record.markLoadingDetails();
  EXPECT_FALSE(record.loaded());
}

TEST(QNDatabaseObject, SettingAuthenticDirtiesNothing) {
  QNTestRecord record(QNExisting{1});

  record.setAuthentic(false);
  EXPECT_FALSE(record.authentic());
  record.setAuthentic(true);
  EXPECT_TRUE(record.authentic());
  EXPECT_FALSE(record.dirtyRow());
}

// Status

struct StatusCase {
  std::uint32_t from;
  std::string operation;
  std::uint32_t to;
  bool dirty;
};
class QNDatabaseObjectStatus : public testing::TestWithParam<StatusCase> {};

void applyTo(QNTestRecord& record, std::string_view operation) {
  if (operation == "trash") record.setTrashed(true);
  if (operation == "restore") record.setTrashed(false);
  if (operation == "delete") record.markDeleted();
}

TEST_P(QNDatabaseObjectStatus, MovesAndDirtiesOnlyOnAChange) {
  QNTestRecord record(QNExisting{1});
  applyTo(record, GetParam().from == 1 ? "trash" : GetParam().from == 2 ? "delete" : "");
  record.didSave();
  ASSERT_EQ(record.status(), GetParam().from);

  applyTo(record, GetParam().operation);

  EXPECT_EQ(record.status(), GetParam().to);
  EXPECT_EQ(record.trashed(), GetParam().to == 1);
  EXPECT_EQ(record.deleted(), GetParam().to == 2);
  EXPECT_EQ(record.dirtyRow(), GetParam().dirty);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, QNDatabaseObjectStatus,
    testing::Values(StatusCase{0, "restore", 0, false}, StatusCase{0, "trash", 1, true},
                    StatusCase{0, "delete", 2, true}, StatusCase{1, "restore", 0, true},
                    StatusCase{1, "trash", 1, false}, StatusCase{1, "delete", 2, true},
                    StatusCase{2, "restore", 0, true}, StatusCase{2, "trash", 1, true},
                    StatusCase{2, "delete", 2, false}));

// Nothing stores status 3: it can only come from an archive.
TEST(QNDatabaseObject, AnUnknownStatusIsNeitherTrashedNorDeletedAndCanBeLeft) {
  const std::pair<std::string, std::uint32_t> moves[] = {
      {"restore", 0}, {"trash", 1}, {"delete", 2}};
  for (const auto& move : moves) {
    const auto record = unarchived<QNTestRecord>(
        "QNTestRecord",
        R"({"quillon-archive":1,"root":{"$class":"QNTestRecord","objectFlags":192}})");
    ASSERT_EQ(record->status(), 3u);
    ASSERT_FALSE(record->trashed());
    ASSERT_FALSE(record->deleted());

    applyTo(*record, move.first);

    EXPECT_EQ(record->status(), move.second) << move.first;
    EXPECT_TRUE(record->dirtyRow()) << move.first;
  }
}

TEST(QNDatabaseObject, AChangeOfStatusLeavesTheOtherFlagsAlone) {
  QNTestRecord record(initNew);
  record.markDisplayOrderDirty();
  const std::uint32_t before = record.intValue();

  record.setTrashed(true);
  record.markDeleted();
  record.setTrashed(false);

  EXPECT_EQ(record.intValue(), before);
}

// Lifecycle

TEST(QNDatabaseObject, DidSaveCleansTheRowAndTheDisplayOrder) {
  QNTestRecord record(initNew);
  record.markDisplayOrderDirty();

  record.didSave();

  EXPECT_FALSE(record.dirtyRow());
  EXPECT_FALSE(record.dirtyDisplayOrder());
  EXPECT_TRUE(record.loaded());
}

TEST(QNDatabaseObject, DidLoadCleansTheRowAndTheDisplayOrder) {
  QNTestRecord record(QNExisting{1});
  record.markRowDirty();
  record.markDisplayOrderDirty();

  record.didLoad();

  EXPECT_FALSE(record.dirtyRow());
  EXPECT_FALSE(record.dirtyDisplayOrder());
}

TEST(QNDatabaseObject, SerializesBeforeASave) {
  QNTestRecord record(initNew);

  record.willSave();

  EXPECT_EQ(record.serializations, 1);
  EXPECT_TRUE(record.dirtyRow());
}

TEST(QNDatabaseObject, RefusesToMergeWhereNoClassSaysHow) {
  const auto record = std::make_shared<QNTestRecord>(initNew);
  const MRCapturingSink sink;

  const auto merged = record->mergeWithConflict(std::make_shared<QNTestRecord>(initNew));

  EXPECT_EQ(merged, nullptr);
  EXPECT_EQ(reportsOf(sink),
            std::vector<std::string>{"assertion of mergeWithConflict: Must be implemented"});
}

TEST(QNDatabaseObject, HasNothingToRepair) {
  QNTestRecord record(initNew);

  EXPECT_TRUE(record.validateAndRepairImportedProperties());
}

// Attributes

TEST(QNDatabaseObject, SerializesALoadedObjectForItsAttributes) {
  QNTestRecord record(initNew);

  EXPECT_EQ(jsonText(record.allAttributes()), R"({"calls":1})");
}

TEST(QNDatabaseObject, DoesNotSerializeAShellForItsAttributes) {
  QNTestRecord record(QNExisting{1});

  EXPECT_EQ(jsonText(record.allAttributes()), R"({"calls":0})");
}

TEST(QNDatabaseObject, HandsAttributesOverToBeRestored) {
  QNTestRecord record(QNExisting{1});

  record.setAllAttributes(jsonObject(R"({"a":1})"));

  EXPECT_EQ(jsonText(record.restored), R"({"a":1})");
}

TEST(QNDatabaseObject, KeepsAttributesInTheWipingResource) {
  QNTestRecord record(initNew);

  EXPECT_EQ(*record.allAttributes().storage(), *jsonStorage());
}

// Owning profile

TEST(QNDatabaseObject, AFirstProfileIsStoredAndDirtiesNothing) {
  QNTestRecord record(QNExisting{1});
  const auto vault = openLocalVault(3);

  record.setProfile(vault);

  EXPECT_EQ(record.profile(), vault);
  EXPECT_EQ(record.profileId(), 3u);
  EXPECT_EQ(record.profileType(), kProfileTypeLocalVault);
  EXPECT_FALSE(record.dirtyRow());
}

TEST(QNDatabaseObject, AProfileOfAnotherRowDirties) {
  QNTestRecord record(QNExisting{1});
  record.setProfile(openLocalVault(3));

  record.setProfile(std::make_shared<QNTestServerProfile>(7));

  EXPECT_EQ(record.profileId(), 7u);
  EXPECT_EQ(record.profileType(), kProfileTypeAccountVault);
  EXPECT_TRUE(record.dirtyRow());
}

TEST(QNDatabaseObject, TwoVaultsWithoutARowCountAsOneRow) {
  QNTestRecord record(QNExisting{1});
  record.setProfile(openLocalVault(0));
  const auto other = openLocalVault(0);

  record.setProfile(other);

  EXPECT_EQ(record.profile(), other);
  EXPECT_EQ(record.profileId(), 0u);
  EXPECT_FALSE(record.dirtyRow());
}

TEST(QNDatabaseObject, AProfileOfTheSameRowIsStoredWithItsTypeAndDirtiesNothing) {
  QNTestRecord record(QNExisting{1});
  record.setProfile(openLocalVault(3));
  const auto account = std::make_shared<QNTestServerProfile>(3);

  record.setProfile(account);

  EXPECT_EQ(record.profile(), account);
  EXPECT_EQ(record.profileType(), kProfileTypeAccountVault);
  EXPECT_FALSE(record.dirtyRow());
}

TEST(QNDatabaseObject, TheSameProfileAgainChangesNothing) {
  QNTestRecord record(QNExisting{1});
  const auto vault = openLocalVault(3);
  record.setProfile(vault);
  vault->_setOid(4);

  record.setProfile(vault);

  EXPECT_EQ(record.profileId(), 3u);
  EXPECT_FALSE(record.dirtyRow());
}

TEST(QNDatabaseObject, LosingTheProfileDirtiesAndClearsItsTraces) {
  QNTestRecord record(QNExisting{1});
  record.setProfile(openLocalVault(3));

  record.setProfile(nullptr);

  EXPECT_EQ(record.profile(), nullptr);
  EXPECT_EQ(record.profileId(), 0u);
  EXPECT_EQ(record.profileType(), 0u);
  EXPECT_TRUE(record.dirtyRow());
}

TEST(QNDatabaseObject, AFirstProfileThatHasNoRowYetTakesThePlaceOfTheArchivedRow) {
  QNTestRecord archived(QNExisting{1});
  archived.setProfile(openLocalVault(3));
  archived.didSave();
  const auto record = unarchived<QNTestRecord>("QNTestRecord", archiveOf(archived));
  ASSERT_EQ(record->profileId(), 3u);

  record->setProfile(openLocalVault(0));

  EXPECT_EQ(record->profileId(), 0u);
  EXPECT_FALSE(record->dirtyRow());
}

TEST(QNDatabaseObject, TheProfileTypeCanBeSetAlone) {
  QNTestRecord record(QNExisting{1});

  record.setProfileType(kProfileTypeAccountVault);

  EXPECT_EQ(record.profileType(), kProfileTypeAccountVault);
  EXPECT_FALSE(record.dirtyRow());
}

// Archive

TEST(QNDatabaseObject, ArchivesUnderItsFourKeys) {
  QNTestRecord record(QNExisting{18446744073709551615u});
  record.setProfile(openLocalVault(3));
  record.markDetailsLoaded();

  const std::string archive = archiveOf(record);

  EXPECT_EQ(archive,
            R"({"quillon-archive":1,"root":{"$class":"QNTestRecord","oid":18446744073709551615,)"
            R"("objectFlags":264,"profileID":3,"profileType":2}})");
}

TEST(QNDatabaseObject, SavesADirtyRowBeforeItIsArchived) {
  QNTestRecord record(initNew);

  archiveOf(record);

  EXPECT_EQ(record.serializations, 1);
  EXPECT_TRUE(record.dirtyRow());
}

TEST(QNDatabaseObject, DoesNotSaveACleanRowToArchiveIt) {
  QNTestRecord record(QNExisting{1});

  archiveOf(record);

  EXPECT_EQ(record.serializations, 0);
}

TEST(QNDatabaseObject, ComesBackFromItsArchiveWithoutItsProfile) {
  QNTestRecord record(QNExisting{42});
  record.setProfile(openLocalVault(3));
  record.markDeleted();

  const auto decoded = unarchived<QNTestRecord>("QNTestRecord", archiveOf(record));

  EXPECT_EQ(decoded->oid(), 42u);
  EXPECT_EQ(decoded->intValue(), record.intValue());
  EXPECT_EQ(decoded->profileId(), 3u);
  EXPECT_EQ(decoded->profileType(), kProfileTypeLocalVault);
  EXPECT_EQ(decoded->profile(), nullptr);
}

TEST(QNDatabaseObject, ReadsAnArchiveWithoutKeysAsZeros) {
  const auto decoded = unarchived<QNTestRecord>(
      "QNTestRecord", R"({"quillon-archive":1,"root":{"$class":"QNTestRecord"}})");

  EXPECT_EQ(decoded->oid(), 0u);
  EXPECT_EQ(decoded->intValue(), 0u);
  EXPECT_EQ(decoded->profileId(), 0u);
  EXPECT_EQ(decoded->profileType(), 0u);
}

TEST(QNDatabaseObject, TheArchivedProfileAfterDecodingChangesNothing) {
  const auto decoded = unarchived<QNTestRecord>(
      "QNTestRecord",
      R"({"quillon-archive":1,"root":{"$class":"QNTestRecord","profileID":3,"profileType":2}})");
  const auto vault = openLocalVault(3);

  decoded->setProfile(vault);

  EXPECT_EQ(decoded->profile(), vault);
  EXPECT_EQ(decoded->profileId(), 3u);
  EXPECT_EQ(decoded->profileType(), kProfileTypeLocalVault);
  EXPECT_FALSE(decoded->dirtyRow());
}

TEST(QNDatabaseObject, AProfileAfterDecodingIsAFirstOne) {
  const auto decoded = unarchived<QNTestRecord>(
      "QNTestRecord",
      R"({"quillon-archive":1,"root":{"$class":"QNTestRecord","profileID":3,"profileType":2}})");

  decoded->setProfile(std::make_shared<QNTestServerProfile>(7));

  EXPECT_EQ(decoded->profileId(), 7u);
  EXPECT_EQ(decoded->profileType(), kProfileTypeAccountVault);
  EXPECT_FALSE(decoded->dirtyRow());
}

}  // namespace
}  // namespace quillon
