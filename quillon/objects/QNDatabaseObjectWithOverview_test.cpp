#include "quillon/objects/QNDatabaseObjectWithOverview.h"

#include <fmt/format.h>

#include "quillon/objects/internal/QNObjectsTesting.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

std::shared_ptr<QNTestPage> pageHolding(std::string_view overview) {
  const auto vault = openLocalVault();
  return storedPage(vault, vault->encryptOverview(bytesOf(overview)));
}

// Identity

TEST(QNDatabaseObjectWithOverview, DescribesItselfForLogsByClassUuidRowAndAddress) {
  const QNTestPage page(QNExisting{42});

  EXPECT_EQ(page.descriptionForLogging(),
            fmt::format("<QNTestPage-no_uuid-42 {}>", fmt::ptr(&page)));
}

TEST(QNDatabaseObjectWithOverview, DescribesAnAbsentUuid) {
  const auto vault = QNProfile::initExistingWithID(5);

  EXPECT_EQ(vault->descriptionForLogging(),
            fmt::format("<QNProfile-(null)-5 {}>", fmt::ptr(vault.get())));
}

// Reading

TEST(QNDatabaseObjectWithOverview, ANewOneHasAnEmptyOverviewBeforeItHasAProfile) {
  QNTestPage page(initNew);

  ASSERT_NE(page.mutableOverview(), nullptr);
  EXPECT_TRUE(page.mutableOverview()->empty());
  EXPECT_EQ(page.overviewData(), std::nullopt);
}

class QNDatabaseObjectWithOverviewShortData
    : public testing::TestWithParam<std::optional<std::string>> {};

TEST_P(QNDatabaseObjectWithOverviewShortData, IsAnEmptyOverviewAndNoFailure) {
  const auto data = GetParam() ? std::optional(toBytes(bytesOf(*GetParam()))) : std::nullopt;
  const auto page = storedPage(openLocalVault(), data);
  const MRCapturingSink sink;

  const JsonObject* const overview = page->mutableOverview();

  ASSERT_NE(overview, nullptr);
  EXPECT_TRUE(overview->empty());
  EXPECT_EQ(page->parses, 0);
  EXPECT_TRUE(sink.records().empty());
}

INSTANTIATE_TEST_SUITE_P(Data, QNDatabaseObjectWithOverviewShortData,
                         testing::Values(std::nullopt, "", "x"));

TEST(QNDatabaseObjectWithOverview, OpensWhatALocalVaultSealed) {
  const auto page = pageHolding(R"({"title":"a"})");

  EXPECT_EQ(page->overviewTextForKey("title"), "a");
}

TEST(QNDatabaseObjectWithOverview, OpensWhatAnAccountVaultSealed) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf(R"({"title":"a"})")));

  EXPECT_EQ(page->overviewTextForKey("title"), "a");
}

TEST(QNDatabaseObjectWithOverview, DecryptsOnceAndOnFirstUse) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf(R"({"title":"a"})")));
  ASSERT_EQ(vault->numberOfOpenings(), 0u);
  ASSERT_FALSE(page->overviewIsParsed());

  page->overviewCopy();
  page->overviewObjectForKey("title");
  page->setOverviewText("b", "title");

  EXPECT_TRUE(page->overviewIsParsed());
  EXPECT_EQ(vault->numberOfOpenings(), 1u);
  EXPECT_EQ(page->parses, 1);
}

TEST(QNDatabaseObjectWithOverview, CallsTheHookInsideTheLockWithTheOverviewInPlace) {
  const auto page = pageHolding(R"({"title":"a"})");
  bool lockedForOthers = false;
  std::optional<std::string> title;
  page->whileParsing = [&] {
    lockedForOthers = isLockedForOthers(*page);
    title = page->overviewTextForKey("title");
  };

  page->mutableOverview();

  EXPECT_TRUE(lockedForOthers);
  EXPECT_EQ(title, "a");
}

TEST(QNDatabaseObjectWithOverview, LeavesNoTextInMemoryThatItFreed) {
  auto page = pageHolding(R"({"title":"a kestrel in the clear","list":["a kestrel, again"]})");
  const QNFreedBlockWatch read("a kestrel in the clear");
  const QNFreedBlockWatch nested("a kestrel, again");
  const QNFreedBlockWatch written("a buzzard in the clear");

  page->overviewCopy();
  page->setOverviewText("a buzzard in the clear", "title");
  page->setOverviewText(std::nullopt, "list");
  page->willSave();
  page->setOverviewData(page->overviewData());
  page->overviewTextForKey("title");
  page->copyOverview(jsonObject("{}"));
  page.reset();

  EXPECT_EQ(read.found(), 0u);
  EXPECT_EQ(nested.found(), 0u);
  EXPECT_EQ(written.found(), 0u);
}

TEST(QNDatabaseObjectWithOverview, ReadsAMemberByKey) {
  const auto page = pageHolding(R"({"n":5})");

  ASSERT_NE(page->overviewObjectForKey("n"), nullptr);
  EXPECT_EQ(*page->overviewObjectForKey("n"), Json(5));
  EXPECT_EQ(page->overviewObjectForKey("m"), nullptr);
}

TEST(QNDatabaseObjectWithOverview, ReadsAJsonNullAsNothingAndCopiesIt) {
  const auto page = pageHolding(R"({"n":null})");

  EXPECT_EQ(page->overviewObjectForKey("n"), nullptr);
  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"n":null})");
}

TEST(QNDatabaseObjectWithOverview, ReadsAMemberOfAnotherKindAsNoText) {
  const auto page = pageHolding(R"({"n":5})");

  EXPECT_EQ(page->overviewTextForKey("n"), std::nullopt);
  EXPECT_EQ(page->overviewTextForKey("m"), std::nullopt);
}

TEST(QNDatabaseObjectWithOverview, ACopySharesNothingWithTheOverview) {
  const auto page = pageHolding(R"({"a":[1]})");

  auto copy = page->overviewCopy().value();
  copy["a"].get_array().push_back(2);

  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"a":[1]})");
}

// Reading fails

struct FailureReports {
  std::vector<std::string> reports;
  bool dataIsUntouched = false;
};

// What a read of the page reports; every way of reading gives nothing.
FailureReports failedRead(QNTestPage& page) {
  const auto before = page.overviewData();
  const MRCapturingSink sink;
  EXPECT_EQ(page.mutableOverview(), nullptr);
  FailureReports failure{reportsOf(sink), page.overviewData() == before};
  EXPECT_EQ(page.overviewCopy(), std::nullopt);
  EXPECT_EQ(page.overviewObjectForKey("title"), nullptr);
  EXPECT_EQ(page.overviewTextForKey("title"), std::nullopt);
  EXPECT_FALSE(page.overviewIsParsed());
  EXPECT_EQ(page.parses, 0);
  return failure;
}

TEST(QNDatabaseObjectWithOverview, ReportsAMissingProfile) {
  QNTestPage page(QNExisting{42});

  const auto failure = failedRead(page);

  EXPECT_EQ(failure.reports,
            std::vector<std::string>{"assertion of mutableOverview: Profile is missing"});
}

TEST(QNDatabaseObjectWithOverview, ReportsWithItsSubsystemAndItsPlaceInTheSource) {
  QNTestPage page(QNExisting{42});
  const MRCapturingSink sink;

  page.mutableOverview();

  ASSERT_EQ(sink.records().size(), 1u);
  const MRLogRecord report = sink.records()[0];
  EXPECT_EQ(report.subsystem, DEBUG_DATABASE);
  EXPECT_EQ(report.object, page.descriptionForLogging());
  EXPECT_EQ(report.method, "mutableOverview");
  EXPECT_THAT(report.file, testing::EndsWith("QNDatabaseObjectWithOverview.cpp"));
  EXPECT_GT(report.line, 0);
}

TEST(QNDatabaseObjectWithOverview, GivesNothingIfTheHookDropsWhatWasParsed) {
  const auto page = pageHolding(R"({"title":"a"})");
  page->whileParsing = [&page] { page->setOverviewData(page->overviewData()); };

  EXPECT_EQ(page->mutableOverview(), nullptr);
  EXPECT_EQ(page->parses, 1);
  page->whileParsing = nullptr;

  EXPECT_EQ(page->overviewTextForKey("title"), "a");
}

TEST(QNDatabaseObjectWithOverview, ReportsDataThatALocalVaultCannotOpen) {
  const auto page = storedPage(openLocalVault(), openLocalVault()->encryptOverview(bytesOf("{}")));

  const auto failure = failedRead(*page);

  EXPECT_EQ(failure.reports,
            std::vector<std::string>{fmt::format("assertion of mutableOverview: Decrypted overview "
                                                 "for object {} is nil. Overview data is not nil. "
                                                 "Profile is not locked.",
                                                 page->descriptionForLogging())});
  EXPECT_TRUE(failure.dataIsUntouched);
}

TEST(QNDatabaseObjectWithOverview, ReportsALockedLocalVault) {
  const auto page = pageHolding("{}");
  page->profile()->lock();

  const auto failure = failedRead(*page);

  EXPECT_EQ(failure.reports,
            (std::vector<std::string>{"assertion of decryptOverview: profile must be unlocked",
                                      fmt::format("assertion of mutableOverview: Decrypted "
                                                  "overview for object {} is nil. Overview data is "
                                                  "not nil. Profile is locked.",
                                                  page->descriptionForLogging())}));
  EXPECT_TRUE(failure.dataIsUntouched);
}

TEST(QNDatabaseObjectWithOverview, TriesAgainAfterAnUnlock) {
  const auto vault = openLocalVault();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf(R"({"title":"a"})")));
  vault->lock();
  failedRead(*page);

  ASSERT_TRUE(vault->_unlockWithPassword(DEMO_PASSWORD));

  EXPECT_EQ(page->overviewTextForKey("title"), "a");
}

TEST(QNDatabaseObjectWithOverview, TriesAgainAfterAnUnlockOfAnAccountVault) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf(R"({"title":"a"})")));
  vault->lock();
  failedRead(*page);

  vault->setLocked(false);

  EXPECT_EQ(page->overviewTextForKey("title"), "a");
}

TEST(QNDatabaseObjectWithOverview, ReportsAnAccountRowThatIsNotJson) {
  const auto page =
      storedPage(std::make_shared<QNTestServerProfile>(), toBytes(bytesOf("not json")));

  const auto failure = failedRead(*page);

  EXPECT_EQ(failure.reports, std::vector<std::string>{
                                 fmt::format("assertion of mutableOverview: Error serializing "
                                             "object {}. EncrytpedDataDictionary:MRErrorDomain 114",
                                             page->descriptionForLogging())});
  EXPECT_TRUE(failure.dataIsUntouched);
}

TEST(QNDatabaseObjectWithOverview, ReportsAnEnvelopeThatAnAccountVaultCannotOpen) {
  const auto page =
      storedPage(std::make_shared<QNTestServerProfile>(), toBytes(bytesOf(R"({"sealed":"AAAA"})")));

  const auto failure = failedRead(*page);

  EXPECT_EQ(failure.reports,
            (std::vector<std::string>{
                fmt::format("error of mutableOverview: Failed to decrypt details for object {}",
                            page->descriptionForLogging()),
                fmt::format("assertion of mutableOverview: Decrypted overview for object {} is "
                            "nil. Overview data is "
                            "not nil. Profile is not locked.",
                            page->descriptionForLogging())}));
  EXPECT_TRUE(failure.dataIsUntouched);
}

TEST(QNDatabaseObjectWithOverview, ReportsALockedAccountVault) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf("{}")));
  vault->lock();

  const auto failure = failedRead(*page);

  EXPECT_EQ(failure.reports,
            (std::vector<std::string>{
                fmt::format("error of mutableOverview: Failed to decrypt details for object {}",
                            page->descriptionForLogging()),
                fmt::format("assertion of mutableOverview: Decrypted overview for object {} is "
                            "nil. Overview data is "
                            "not nil. Profile is locked.",
                            page->descriptionForLogging())}));
  EXPECT_TRUE(failure.dataIsUntouched);
}

TEST(QNDatabaseObjectWithOverview, TellsALocalRowInAnAccountVaultByName) {
  const auto page = storedPage(std::make_shared<QNTestServerProfile>(),
                               openLocalVault()->encryptOverview(bytesOf("{}")));

  const auto failure = failedRead(*page);

  EXPECT_EQ(failure.reports, (std::vector<std::string>{
                                 fmt::format("assertion of mutableOverview: Error serializing "
                                             "object {}. EncrytpedDataDictionary:MRErrorDomain 114",
                                             page->descriptionForLogging()),
                                 fmt::format("assertion of mutableOverview: Overview data for "
                                             "object {} is encrypted by an QNProfile, not a "
                                             "H9Profile.",
                                             page->descriptionForLogging())}));
  EXPECT_TRUE(failure.dataIsUntouched);
}

TEST(QNDatabaseObjectWithOverview, ReportsAnAccountTypeWithoutAnAccountVault) {
  const auto page = pageHolding("{}");
  page->setOverviewData(toBytes(bytesOf(R"({"sealed":"AAAA"})")));
  page->setProfileType(kProfileTypeAccountVault);

  const auto failure = failedRead(*page);

  EXPECT_THAT(failure.reports,
              testing::Contains(
                  fmt::format("error of mutableOverview: Failed to decrypt details for object {}",
                              page->descriptionForLogging())));
}

TEST(QNDatabaseObjectWithOverview, ReportsAProfileTypeThatHoldsNoObjects) {
  const auto page = pageHolding("{}");
  page->setProfileType(kProfileTypeMasterUnlock);

  const auto failure = failedRead(*page);

  EXPECT_EQ(
      failure.reports,
      (std::vector<std::string>{
          fmt::format("assertion of mutableOverview: Unsupported profile type: 4 for item: {}",
                      page->descriptionForLogging()),
          fmt::format("assertion of mutableOverview: Decrypted overview for object {} is nil. "
                      "Overview data is "
                      "not nil. Profile is not locked.",
                      page->descriptionForLogging())}));
  EXPECT_TRUE(failure.dataIsUntouched);
}

class QNDatabaseObjectWithOverviewForeignText : public testing::TestWithParam<const char*> {};

TEST_P(QNDatabaseObjectWithOverviewForeignText, IsReportedAsUnparsed) {
  const auto page = pageHolding(GetParam());

  const auto failure = failedRead(*page);

  EXPECT_EQ(
      failure.reports,
      std::vector<std::string>{fmt::format(
          "assertion of mutableOverview: Failed to parse overview: {} for object MRErrorDomain 114",
          page->descriptionForLogging())});
  EXPECT_TRUE(failure.dataIsUntouched);
}

INSTANTIATE_TEST_SUITE_P(Texts, QNDatabaseObjectWithOverviewForeignText,
                         testing::Values("", "not json", "[1]", "\"text\"", "{\"a\":1"));

// Writing

TEST(QNDatabaseObjectWithOverview, StoresANewValueAndDirtiesTheRow) {
  const auto page = pageHolding("{}");

  EXPECT_TRUE(page->setOverviewObject(Json(5), "n"));

  EXPECT_TRUE(page->dirtyRow());
  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"n":5})");
}

struct EqualCase {
  const char* overview;
  std::optional<Json> object;
};
class QNDatabaseObjectWithOverviewEqualValues : public testing::TestWithParam<EqualCase> {};

TEST_P(QNDatabaseObjectWithOverviewEqualValues, ChangeNothingAndMarkNothing) {
  const auto page = pageHolding(GetParam().overview);

  EXPECT_FALSE(page->setOverviewObject(GetParam().object, "n"));

  EXPECT_FALSE(page->dirtyRow());
  EXPECT_EQ(jsonText(page->overviewCopy().value()), GetParam().overview);
}

INSTANTIATE_TEST_SUITE_P(
    Values, QNDatabaseObjectWithOverviewEqualValues,
    testing::Values(EqualCase{R"({"n":5})", Json(5)}, EqualCase{R"({"n":5})", Json(5u)},
                    EqualCase{R"({"n":40})", Json(40.0)},
                    EqualCase{R"({"n":[1,{"a":2}]})", Json{1.0, JsonObject{{"a", 2.0}}}},
                    EqualCase{R"({"n":"5"})", Json("5")}, EqualCase{R"({"n":null})", Json(nullptr)},
                    EqualCase{R"({"n":[1,{"a":2}]})", Json{1, JsonObject{{"a", 2}}}},
                    EqualCase{R"({"m":1})", std::nullopt}));

struct ChangedCase {
  const char* overview;
  std::optional<Json> object;
  const char* result;
};
class QNDatabaseObjectWithOverviewChangedValues : public testing::TestWithParam<ChangedCase> {};

TEST_P(QNDatabaseObjectWithOverviewChangedValues, AreStoredAndDirtyTheRow) {
  const auto page = pageHolding(GetParam().overview);

  EXPECT_TRUE(page->setOverviewObject(GetParam().object, "n"));

  EXPECT_TRUE(page->dirtyRow());
  EXPECT_EQ(jsonText(page->overviewCopy().value()), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Values, QNDatabaseObjectWithOverviewChangedValues,
                         testing::Values(ChangedCase{R"({"n":5})", Json(6), R"({"n":6})"},
                                         ChangedCase{R"({"n":40})", Json(40.5), R"({"n":4.05E1})"},
                                         ChangedCase{R"({"n":5})", Json("5"), R"({"n":"5"})"},
                                         ChangedCase{R"({"n":5})", Json(nullptr), R"({"n":null})"},
                                         ChangedCase{R"({"n":null})", Json(5), R"({"n":5})"},
                                         ChangedCase{R"({"a":1,"n":5,"b":2,"c":3})", std::nullopt,
                                                     R"({"a":1,"b":2,"c":3})"},
                                         ChangedCase{R"({"n":null})", std::nullopt, "{}"}));

TEST(QNDatabaseObjectWithOverview, StoresATextAndComparesItFirst) {
  const auto page = pageHolding(R"({"n":"a"})");

  EXPECT_FALSE(page->setOverviewText("a", "n"));
  EXPECT_FALSE(page->dirtyRow());
  EXPECT_TRUE(page->setOverviewText("b", "n"));
  EXPECT_TRUE(page->dirtyRow());
  EXPECT_EQ(page->overviewTextForKey("n"), "b");
}

TEST(QNDatabaseObjectWithOverview, ATextTakesThePlaceOfAnotherKind) {
  const auto page = pageHolding(R"({"n":5})");

  EXPECT_TRUE(page->setOverviewText("5", "n"));

  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"n":"5"})");
}

// A short text lies inside its value and moves with it as the object grows; a long one is freed
// where its member is replaced.
class QNDatabaseObjectWithOverviewOwnText : public testing::TestWithParam<std::string> {};

TEST_P(QNDatabaseObjectWithOverviewOwnText, IsStoredUnderNewKeys) {
  const auto page = pageHolding("{}");
  page->setOverviewText(GetParam(), "0");

  for (int i = 1; i < 100; ++i) {
    const auto own = page->overviewTextForKey(std::to_string(i - 1));
    ASSERT_TRUE(page->setOverviewText(own, std::to_string(i)));
    ASSERT_EQ(page->overviewTextForKey(std::to_string(i)), GetParam()) << i;
  }
}

TEST_P(QNDatabaseObjectWithOverviewOwnText, CanBeCutUnderItsOwnKey) {
  const auto page = pageHolding("{}");
  page->setOverviewText(GetParam(), "n");

  EXPECT_TRUE(page->setOverviewText(page->overviewTextForKey("n")->substr(1), "n"));

  EXPECT_EQ(page->overviewTextForKey("n"), GetParam().substr(1));
}

INSTANTIATE_TEST_SUITE_P(Lengths, QNDatabaseObjectWithOverviewOwnText,
                         testing::Values("short", std::string(50, 'x') + "yz"));

TEST(QNDatabaseObjectWithOverview, NoTextRemovesTheMember) {
  const auto page = pageHolding(R"({"n":"a"})");

  EXPECT_TRUE(page->setOverviewText(std::nullopt, "n"));
  EXPECT_TRUE(page->overviewCopy()->empty());
  EXPECT_FALSE(page->setOverviewText(std::nullopt, "n"));
}

TEST(QNDatabaseObjectWithOverview, WritesNothingIntoAnOverviewThatDoesNotOpen) {
  const auto page = pageHolding(R"({"n":1})");
  page->profile()->lock();
  const MRCapturingSink sink;

  EXPECT_FALSE(page->setOverviewObject(Json(2), "n"));
  EXPECT_FALSE(page->setOverviewText("2", "n"));

  EXPECT_FALSE(page->dirtyRow());
}

TEST(QNDatabaseObjectWithOverview, CopyingAnEqualOverviewChangesNothing) {
  const auto page = pageHolding(R"({"a":1,"b":2})");
  page->mutableOverview();

  page->copyOverview(jsonObject(R"({"b":2,"a":1})"));
  page->copyOverview(jsonObject(R"({"b":2.0,"a":1.0})"));
  page->copyOverview(*page->mutableOverview());

  EXPECT_FALSE(page->dirtyRow());
}

TEST(QNDatabaseObjectWithOverview, CopyingOverAnUnparsedOverviewDirtiesEvenForTheSameContent) {
  const auto page = pageHolding(R"({"a":1})");

  page->copyOverview(jsonObject(R"({"a":1})"));

  EXPECT_TRUE(page->dirtyRow());
  EXPECT_EQ(page->parses, 0);
}

TEST(QNDatabaseObjectWithOverview, CopyingAnotherOverviewStoresACopy) {
  const auto page = pageHolding(R"({"a":1})");
  page->mutableOverview();
  JsonObject other = jsonObject(R"({"b":[1]})");

  page->copyOverview(other);
  other["b"].get_array().clear();

  EXPECT_TRUE(page->dirtyRow());
  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"b":[1]})");
}

TEST(QNDatabaseObjectWithOverview, CopiesAPartOfItself) {
  const auto page = pageHolding(R"({"inner":{"a":"text"}})");

  page->copyOverview(page->mutableOverview()->at("inner").get_object());

  EXPECT_EQ(jsonText(page->overviewCopy().value()), R"({"a":"text"})");
}

TEST(QNDatabaseObjectWithOverview, NewDataDropsTheParsedFormAndDirtiesNothing) {
  const auto vault = std::make_shared<QNTestServerProfile>();
  const auto page = storedPage(vault, vault->encryptOverview(bytesOf(R"({"title":"a"})")));
  page->mutableOverview();

  page->setOverviewData(vault->encryptOverview(bytesOf(R"({"title":"b"})")));

  EXPECT_FALSE(page->overviewIsParsed());
  EXPECT_EQ(vault->numberOfOpenings(), 1u);
  EXPECT_EQ(page->overviewTextForKey("title"), "b");
  EXPECT_FALSE(page->dirtyRow());
}

}  // namespace
}  // namespace quillon
