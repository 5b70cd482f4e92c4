#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/organisation/internal/QNFolderTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kInvalid = "Error creating smart folder. Predicate format invalid.";

std::string archived(std::string_view format) {
  return mr_base64encode(predicate(format)->archivedData().value());
}

// A smart folder that holds a question of an older format, as an older version has written it.
std::shared_ptr<QNFolder> oldFolder(std::string_view format,
                                    std::string_view key = "predicate_b64") {
  auto folder = cleanFolder();
  folder->setSmartFolder(true);
  folder->setOverviewText(archived(format), key);
  folder->didSave();
  return folder;
}

// Storing

TEST(QNFolderPredicate, IsStoredInThePresentFormat) {
  const auto folder = cleanFolder();
  folder->setSmartFolder(true);
  folder->setOverviewText("old", "predicate_b64");
  folder->didSave();

  EXPECT_TRUE(folder->setSmartFolderPredicate(predicate("title == \"x\"")));

  EXPECT_TRUE(folder->dirtyRow());
  EXPECT_EQ(folder->overviewTextForKey("predicate_b64_v4"), archived("title == \"x\""));
  EXPECT_EQ(folder->smartFolderVersion(), 4u);
  EXPECT_EQ(folder->overviewTextForKey("predicate_b64"), "old");
  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "title == \"x\"");
}

TEST(QNFolderPredicate, OfTheSameWordsDirtiesNothing) {
  const auto folder = cleanFolder();
  folder->setSmartFolderPredicate(predicate("title == \"x\""));
  folder->didSave();

  EXPECT_TRUE(folder->setSmartFolderPredicate(predicate("title == \"x\"")));

  EXPECT_FALSE(folder->dirtyRow());
}

TEST(QNFolderPredicate, ThatIsAbsentIsNotStored) {
  const MRCapturingSink sink;
  const auto folder = cleanFolder();

  EXPECT_FALSE(folder->setSmartFolderPredicate(nullptr));

  EXPECT_FALSE(folder->dirtyRow());
  EXPECT_EQ(folder->overviewObjectForKey("predicate_b64_v4"), nullptr);
  EXPECT_THAT(errors(sink),
              ElementsAre("Failed to archive smart folder predicate: MRErrorDomain 114"));
}

TEST(QNFolderPredicate, OfAFolderThatDoesNotOpenIsNotStored) {
  const MRCapturingSink sink;
  const auto folder = std::make_shared<QNFolder>(QNExisting{1});

  EXPECT_FALSE(folder->setSmartFolderPredicate(predicate("title == \"x\"")));

  EXPECT_FALSE(folder->dirtyRow());
}

TEST(QNFolderPredicate, SurvivesASave) {
  const auto folder = cleanFolder();
  folder->setSmartFolder(true);
  folder->setSmartFolderPredicate(predicate("NOT ANY tagsForSearch ==[cd] \"x\""));
  folder->willSave();
  const auto again = std::make_shared<QNFolder>(QNExisting{1});
  again->setProfile(folder->profile());
  again->setOverviewData(folder->overviewData());
  again->setSmartFolder(true);

  EXPECT_EQ(textOf(again->smartFolderPredicate()), "NOT ANY tagsForSearch ==[cd] \"x\"");
}

// Reading

TEST(QNFolderPredicate, OfAnOrdinaryFolderIsNothing) {
  const auto folder = oldFolder("title == \"x\"");
  folder->setSmartFolder(false);

  EXPECT_EQ(folder->smartFolderPredicate(), nullptr);
}

TEST(QNFolderPredicate, OfNeitherKeyIsNeverTrue) {
  const MRCapturingSink sink;
  const auto folder = cleanFolder();
  folder->setSmartFolder(true);

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "FALSEPREDICATE");
  EXPECT_THAT(errors(sink), ElementsAre("Could not convert predicate: (null)"));
}

TEST(QNFolderPredicate, OfNeitherKeyInThePresentFormatIsNeverTrueSilently) {
  const MRCapturingSink sink;
  const auto folder = cleanFolder();
  folder->setSmartFolder(true);
  folder->setSmartFolderVersion(4);

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "FALSEPREDICATE");
  EXPECT_THAT(errors(sink), IsEmpty());
}

TEST(QNFolderPredicate, OfAnOlderFormatIsRewrittenAtEachReadingAndKept) {
  const auto folder = oldFolder("tags == \"x\"");
  const std::string stored(*folder->overviewTextForKey("predicate_b64"));

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "ANY tagsForSearch == \"x\"");
  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "ANY tagsForSearch == \"x\"");

  EXPECT_EQ(folder->overviewTextForKey("predicate_b64"), stored);
  EXPECT_EQ(folder->overviewObjectForKey("predicate_b64_v4"), nullptr);
  EXPECT_EQ(folder->smartFolderVersion(), 0u);
  EXPECT_FALSE(folder->dirtyRow());
}

TEST(QNFolderPredicate, OfVersionFourIsNotRewrittenWhateverItsKey) {
  const auto folder = oldFolder("tags == \"x\"");
  folder->setSmartFolderVersion(4);

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "tags == \"x\"");
}

TEST(QNFolderPredicate, OfVersionThreeIsRewrittenWhateverItsKey) {
  const auto folder = oldFolder("tags == \"x\"", "predicate_b64_v4");
  folder->setSmartFolderVersion(3);

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "ANY tagsForSearch == \"x\"");
}

TEST(QNFolderPredicate, OfThePresentKeyComesFirst) {
  const auto folder = oldFolder("title == \"old\"");
  folder->setSmartFolderPredicate(predicate("title == \"new\""));

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "title == \"new\"");
}

TEST(QNFolderPredicate, OfAnArchiveWithNoneFallsBackOnTheOlderKey) {
  const auto folder = oldFolder("title == \"old\"");
  folder->setOverviewText(
      mr_base64encode(bytesOf(R"({"quillon-archive":1,"root":{"$class":"QNPredicateArchive"}})")),
      "predicate_b64_v4");
  folder->setSmartFolderVersion(4);

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "title == \"old\"");
}

TEST(QNFolderPredicate, ThatCannotBeReadIsNeverTrueWithALog) {
  for (const std::string& broken :
       {std::string("no base64!"), std::string(""), mr_base64encode(bytesOf("bplist00")),
        mr_base64encode(bytesOf("{}"))}) {
    const auto folder = oldFolder("title == \"old\"");
    folder->setOverviewText(broken, "predicate_b64_v4");
    const MRCapturingSink sink;

    EXPECT_EQ(textOf(folder->smartFolderPredicate()), "FALSEPREDICATE") << broken;
    EXPECT_THAT(errors(sink), ElementsAre(kInvalid)) << broken;
    EXPECT_EQ(sink.records()[0].subsystem, DEBUG_DATABASE);
  }
}

TEST(QNFolderPredicate, OfAnotherKindThanTextCountsAsAbsent) {
  const auto folder = oldFolder("title == \"old\"");
  folder->setOverviewObject(Json(5), "predicate_b64_v4");

  EXPECT_EQ(textOf(folder->smartFolderPredicate()), "title == \"old\"");
}

TEST(QNFolderPredicate, WhoseMeaningIsGoneIsNeverTrue) {
  EXPECT_EQ(textOf(oldFolder("trashed == YES")->smartFolderPredicate()), "FALSEPREDICATE");
}

TEST(QNFolderPredicate, HasItsVersionAsAnUnsignedNumber) {
  const auto folder = cleanFolder();

  EXPECT_EQ(folder->smartFolderVersion(), 0u);
  folder->setSmartFolderVersion(3);
  EXPECT_EQ(folder->smartFolderVersion(), 3u);
  EXPECT_EQ(jsonText(folder->overviewObjectForKey("sfVersion")), "3");
  folder->setOverviewText("4", "sfVersion");
  EXPECT_EQ(folder->smartFolderVersion(), 0u);
}

// The fatal case

TEST(QNFolderPredicateDeathTest, ANotOverADroppedConditionStopsTheProcess) {
  const auto folder = oldFolder("NOT trashed == YES");

  EXPECT_DEATH(static_cast<void>(folder->smartFolderPredicate()),
               "QNFolder.*subpredicates.count == 1");
}

TEST(QNFolderPredicate, TellsBeforehandThatItWouldStopTheProcess) {
  const MRCapturingSink sink;
  const auto folder = oldFolder("title == \"x\" OR (NOT (securityLevel == 1))");

  const auto fault = folder->smartFolderFault();

  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->domainCodeString(), "QNErrorDomain 114");
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNFolderPredicate, HasNoFaultWhereReadingEndsWell) {
  const MRCapturingSink sink;
  const auto ordinary = oldFolder("NOT trashed == YES");
  ordinary->setSmartFolder(false);
  const auto present = oldFolder("NOT trashed == YES");
  present->setSmartFolderVersion(4);
  const auto broken = oldFolder("NOT trashed == YES");
  broken->setOverviewText("no base64!", "predicate_b64_v4");
  const auto empty = cleanFolder();
  empty->setSmartFolder(true);

  for (const auto& folder :
       {ordinary, present, broken, empty, oldFolder("NOT title == \"x\""), oldFolder("odd == 1")}) {
    EXPECT_EQ(folder->smartFolderFault(), std::nullopt);
  }
  EXPECT_THAT(sink.records(), IsEmpty());
}

}  // namespace
}  // namespace quillon
