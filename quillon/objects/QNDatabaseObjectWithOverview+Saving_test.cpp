#include <fmt/format.h>

#include <limits>

#include "quillon/objects/internal/QNObjectsTesting.h"

namespace quillon {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::shared_ptr<QNTestPage> newPage(const std::shared_ptr<QNGenericProfile>& vault) {
  auto page = std::make_shared<QNTestPage>(initNew);
  page->setProfile(vault);
  page->setOverviewText("a", "title");
  return page;
}

// Saving

TEST(QNDatabaseObjectSaving, IsRefusedWithoutAProfile) {
  QNTestPage page(initNew);
  const MRCapturingSink sink;

  page.willSave();

  EXPECT_EQ(reportsOf(sink), std::vector<std::string>{"assertion of willSave: Profile is missing"});
  EXPECT_EQ(page.serializations, 0);
  EXPECT_EQ(page.overviewData(), std::nullopt);
}

TEST(QNDatabaseObjectSaving, SealsTheOverviewUnderALocalVault) {
  const auto vault = openLocalVault();
  const auto page = newPage(vault);

  page->willSave();

  ASSERT_TRUE(isQNProfileEncrypted(page->overviewData().value()));
  EXPECT_EQ(textOf(vault->decryptOverview(*page->overviewData()).value()), R"({"title":"a"})");
}

TEST(QNDatabaseObjectSaving, StoresTheEnvelopeOfAnAccountVaultAsJson) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = newPage(vault);

  page->willSave();

  const auto envelope = mr_objectFromJSONDataWithError(page->overviewData().value());
  ASSERT_TRUE(envelope.has_value());
  EXPECT_EQ(textOf(vault->decryptWithMasterSymmetricKey(*envelope).value()), R"({"title":"a"})");
}

TEST(QNDatabaseObjectSaving, TakesInWhatTheClassSerializes) {
  const auto vault = openLocalVault();
  const auto page = newPage(vault);
  page->derivedTitle = "derived";

  page->willSave();

  EXPECT_EQ(page->serializations, 1);
  EXPECT_EQ(textOf(vault->decryptOverview(*page->overviewData()).value()),
            R"({"title":"derived"})");
}

TEST(QNDatabaseObjectSaving, InALockedAccountVaultKeepsTheDataWithoutAReport) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = newPage(vault);
  page->willSave();
  const auto before = page->overviewData();
  page->setOverviewText("b", "title");
  vault->lock();
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(page->overviewData(), before);
  EXPECT_TRUE(sink.records().empty());
}

// Who saves with a locked vault loses the row's stored form: the database layer must not.
TEST(QNDatabaseObjectSaving, InALockedLocalVaultReportsAndEmptiesTheData) {
  const auto vault = openLocalVault();
  const auto page = newPage(vault);
  page->willSave();
  vault->lock();
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(reportsOf(sink),
            std::vector<std::string>{"assertion of encryptOverview: profile must be unlocked"});
  EXPECT_EQ(page->overviewData(), std::nullopt);
  EXPECT_EQ(page->overviewTextForKey("title"), "a");
}

TEST(QNDatabaseObjectSaving, ReportsAnOverviewWithoutAJsonForm) {
  const auto page = newPage(openLocalVault());
  page->willSave();
  const auto before = page->overviewData();
  page->setOverviewObject(Json(kInfinity), "n");
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(reportsOf(sink),
            std::vector<std::string>{
                "assertion of willSave: Unable to convert overview to JSON: MRErrorDomain 114"});
  EXPECT_EQ(page->overviewData(), before);
}

TEST(QNDatabaseObjectSaving, ReportsAnOverviewThatIsNestedTooDeepToBeReadBack) {
  const auto page = newPage(openLocalVault());
  page->willSave();
  const auto before = page->overviewData();
  Json nested(1);
  for (std::size_t i = 0; i < kMaxJsonDepth; ++i) nested = JsonArray{nested};
  page->setOverviewObject(nested, "n");
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(reportsOf(sink),
            std::vector<std::string>{
                "assertion of willSave: Unable to convert overview to JSON: MRErrorDomain 114"});
  EXPECT_EQ(page->overviewData(), before);
}

TEST(QNDatabaseObjectSaving, NeverReplacesAnOverviewThatDoesNotOpen) {
  const Bytes foreign = openLocalVault()->encryptOverview(bytesOf("{}")).value();
  const auto page = storedPage(openLocalVault(), foreign);
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(page->overviewData(), foreign);
  EXPECT_EQ(reportsOf(sink).back(),
            "assertion of willSave: Unable to convert overview to JSON: MRErrorDomain 114");
}

TEST(QNDatabaseObjectSaving, ReportsAnAccountVaultThatCannotSeal) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = newPage(vault);
  page->willSave();
  const auto before = page->overviewData();
  vault->setFails(true);
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(
      reportsOf(sink),
      std::vector<std::string>{"error of willSave: Failed to encrypt overview: MRErrorDomain 114"});
  EXPECT_EQ(page->overviewData(), before);
}

TEST(QNDatabaseObjectSaving, ReportsAnAccountTypeWithoutAnAccountVault) {
  const auto page = newPage(openLocalVault());
  page->setProfileType(kProfileTypeAccountVault);
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(
      reportsOf(sink),
      std::vector<std::string>{"error of willSave: Failed to encrypt overview: MRErrorDomain 114"});
  EXPECT_EQ(page->overviewData(), std::nullopt);
}

TEST(QNDatabaseObjectSaving, ReportsAProfileTypeThatHoldsNoObjects) {
  const auto page = newPage(openLocalVault());
  page->setProfileType(kProfileTypeUnion);
  const MRCapturingSink sink;

  page->willSave();

  EXPECT_EQ(reportsOf(sink),
            std::vector<std::string>{"assertion of willSave: Unsupported profile type: 1"});
  EXPECT_EQ(page->overviewData(), std::nullopt);
}

// A change of vault

TEST(QNDatabaseObjectSaving, AMoveBringsTheOverviewIntoTheClearFirst) {
  const auto local = openLocalVault();
  const auto page = storedPage(local, local->encryptOverview(bytesOf(R"({"title":"a"})")));
  const auto account = std::make_shared<QNTestServerProfile>();

  page->setProfile(account);
  ASSERT_TRUE(page->overviewIsParsed());
  local->lock();
  page->willSave();

  const auto moved = storedPage(account, page->overviewData());
  EXPECT_EQ(moved->overviewTextForKey("title"), "a");
}

TEST(QNDatabaseObjectSaving, AMoveKeepsAnOverviewThatDoesNotOpen) {
  const Bytes foreign = openLocalVault()->encryptOverview(bytesOf("{}")).value();
  const auto page = storedPage(openLocalVault(), foreign);
  const auto account = std::make_shared<QNTestServerProfile>();
  const MRCapturingSink sink;

  page->setProfile(account);

  EXPECT_EQ(reportsOf(sink),
            std::vector<std::string>{fmt::format("assertion of mutableOverview: Decrypted overview "
                                                 "for object {} is nil. Overview data is not nil. "
                                                 "Profile is not locked.",
                                                 page->descriptionForLogging())});
  EXPECT_EQ(page->profile(), account);
  EXPECT_TRUE(page->dirtyRow());
  EXPECT_FALSE(page->overviewIsParsed());
  EXPECT_EQ(page->overviewData(), foreign);
}

TEST(QNDatabaseObjectSaving, AFirstProfileLeavesTheOverviewSealed) {
  const auto vault = openLocalVault();
  QNTestPage page(QNExisting{1});
  page.setOverviewData(vault->encryptOverview(bytesOf("{}")));
  const MRCapturingSink sink;

  page.setProfile(vault);

  EXPECT_TRUE(sink.records().empty());
  EXPECT_FALSE(page.overviewIsParsed());
}

TEST(QNDatabaseObjectSaving, TheSameProfileAgainLeavesTheOverviewSealed) {
  const auto vault = openLocalVault();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf("{}")));

  page->setProfile(vault);

  EXPECT_FALSE(page->overviewIsParsed());
}

// Attributes

TEST(QNDatabaseObjectSaving, GivesTheOverviewAsAnAttributeAndNotTheRow) {
  const auto page = newPage(openLocalVault());

  EXPECT_EQ(jsonText(page->allAttributes()), R"({"overview":{"title":"a"}})");
  EXPECT_EQ(page->serializations, 1);
}

TEST(QNDatabaseObjectSaving, GivesNoAttributeForAnOverviewThatDoesNotOpen) {
  QNTestPage page(QNExisting{1});
  const MRCapturingSink sink;

  EXPECT_EQ(jsonText(page.allAttributes()), "{}");
}

TEST(QNDatabaseObjectSaving, TakesTheOverviewFromTheAttributes) {
  const auto page = newPage(openLocalVault());
  page->didSave();

  page->setAllAttributes(jsonObject(R"({"overview":{"title":"b"},"other":1})"));

  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"title":"b"})");
  EXPECT_TRUE(page->dirtyRow());
}

class QNDatabaseObjectForeignAttributes : public testing::TestWithParam<const char*> {};

TEST_P(QNDatabaseObjectForeignAttributes, LeaveTheOverviewAsItIs) {
  const auto page = newPage(openLocalVault());
  page->didSave();

  page->setAllAttributes(jsonObject(GetParam()));

  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"title":"a"})");
  EXPECT_FALSE(page->dirtyRow());
}

INSTANTIATE_TEST_SUITE_P(Attributes, QNDatabaseObjectForeignAttributes,
                         testing::Values("{}", R"({"overview":null})", R"({"overview":"text"})",
                                         R"({"overview":[]})"));

TEST(QNDatabaseObjectSaving, RepairsNullsAtEveryDepth) {
  const auto page = newPage(openLocalVault());
  page->copyOverview(jsonObject(R"({"a":null,"b":{"c":null,"d":[null,1]}})"));

  EXPECT_TRUE(page->validateAndRepairImportedProperties());

  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"b":{"d":[1]}})");
}

TEST(QNDatabaseObjectSaving, RepairsAStoredOverviewThatWasNeverOpened) {
  const auto vault = openLocalVault();
  const auto page =
      storedPage(vault, vault->encryptOverview(bytesOf(R"({"a":null,"b":{"c":null,"d":1}})")));

  EXPECT_TRUE(page->validateAndRepairImportedProperties());

  EXPECT_EQ(page->parses, 1);
  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"b":{"d":1}})");
}

TEST(QNDatabaseObjectSaving, HasNothingToRepairInAnOverviewThatDoesNotOpen) {
  const Bytes foreign = openLocalVault()->encryptOverview(bytesOf(R"({"a":null})")).value();
  const auto page = storedPage(openLocalVault(), foreign);
  const MRCapturingSink sink;

  EXPECT_TRUE(page->validateAndRepairImportedProperties());

  EXPECT_FALSE(sink.records().empty());
  EXPECT_EQ(page->overviewData(), foreign);
  EXPECT_FALSE(page->overviewIsParsed());
  EXPECT_FALSE(page->dirtyRow());
}

// Archive

TEST(QNDatabaseObjectSaving, ArchivesTheSealedFormAndNothingInClear) {
  const auto page = newPage(openLocalVault());

  const std::string archive = archiveOf(*page);

  EXPECT_EQ(archive, fmt::format(R"({{"quillon-archive":1,"root":{{"$class":"QNTestPage","oid":0,)"
                                 R"("objectFlags":297,"profileID":3,"profileType":2,)"
                                 R"("kOverviewData":{{"$bytes":"{}"}}}}}})",
                                 mr_base64encode(page->overviewData().value())));
}

TEST(QNDatabaseObjectSaving, ArchivesNoDataWhereThereIsNone) {
  QNTestPage page(QNExisting{1});

  EXPECT_EQ(archiveOf(page),
            R"({"quillon-archive":1,"root":{"$class":"QNTestPage","oid":1,"objectFlags":256,)"
            R"("profileID":0,"profileType":0}})");
}

TEST(QNDatabaseObjectSaving, DataThatIsPresentAndEmptyStaysSoInAnArchive) {
  QNTestPage page(QNExisting{1});
  page.setOverviewData(Bytes());

  const std::string archive = archiveOf(page);

  EXPECT_EQ(archive,
            R"({"quillon-archive":1,"root":{"$class":"QNTestPage","oid":1,"objectFlags":256,)"
            R"("profileID":0,"profileType":0,"kOverviewData":{"$bytes":""}}})");
  EXPECT_EQ(unarchived<QNTestPage>("QNTestPage", archive)->overviewData(), Bytes());
}

TEST(QNDatabaseObjectSaving, ADirtyRowOfALockedLocalVaultIsArchivedWithoutItsOverview) {
  const auto vault = openLocalVault();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf(R"({"title":"a"})")));
  page->setOverviewText("b", "title");
  vault->lock();
  const MRCapturingSink sink;

  const std::string archive = archiveOf(*page);

  EXPECT_EQ(reportsOf(sink),
            std::vector<std::string>{"assertion of encryptOverview: profile must be unlocked"});
  EXPECT_EQ(archive,
            R"({"quillon-archive":1,"root":{"$class":"QNTestPage","oid":42,"objectFlags":257,)"
            R"("profileID":3,"profileType":2}})");
}

TEST(QNDatabaseObjectSaving, ADirtyRowWithoutAProfileIsArchivedWithTheDataThatItHas) {
  const Bytes sealed{1, 2, 3};
  QNTestPage page(QNExisting{1});
  page.setOverviewData(sealed);
  page.markRowDirty();
  const MRCapturingSink sink;

  const std::string archive = archiveOf(page);

  EXPECT_EQ(reportsOf(sink), std::vector<std::string>{"assertion of willSave: Profile is missing"});
  EXPECT_EQ(page.serializations, 0);
  EXPECT_EQ(archive,
            R"({"quillon-archive":1,"root":{"$class":"QNTestPage","oid":1,"objectFlags":257,)"
            R"("profileID":0,"profileType":0,"kOverviewData":{"$bytes":"AQID"}}})");
}

TEST(QNDatabaseObjectSaving, AnArchivedOverviewOpensOnceItsProfileIsBack) {
  const auto vault = openLocalVault();
  const auto decoded = unarchived<QNTestPage>("QNTestPage", archiveOf(*newPage(vault)));
  ASSERT_FALSE(decoded->overviewIsParsed());

  decoded->setProfile(vault);

  EXPECT_EQ(decoded->overviewTextForKey("title"), "a");
}

}  // namespace
}  // namespace quillon
