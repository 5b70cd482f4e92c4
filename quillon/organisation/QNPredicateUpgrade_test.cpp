#include "quillon/organisation/internal/QNPredicateUpgrade.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/organisation/internal/QNFolderTesting.h"
#include "quillon/platform/internal/QNMemoryWatch.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string upgraded(std::string_view format) {
  return textOf(folderTitled("f")->upgradeSmartFolderPredicateFormat(predicate(format)));
}

// What became of a question, and the logs of it.
std::pair<std::string, std::vector<std::string>> upgradedWithLogs(std::string_view format) {
  const MRCapturingSink sink;
  std::string text = upgraded(format);
  for (const MRLogRecord& record : sink.records()) {
    EXPECT_EQ(record.subsystem, DEBUG_DATABASE);
    EXPECT_EQ(record.method, "upgradeSmartFolderPredicateFormat");
  }
  return {std::move(text), errors(sink)};
}

struct Case {
  const char* old;
  const char* present;
};
std::ostream& operator<<(std::ostream& out, const Case& it) {
  return out << it.old;
}
class QNPredicateUpgradeCases : public testing::TestWithParam<Case> {};

TEST_P(QNPredicateUpgradeCases, AreRewrittenSilently) {
  const auto [text, logs] = upgradedWithLogs(GetParam().old);

  EXPECT_EQ(text, GetParam().present);
  EXPECT_THAT(logs, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(WithoutConversion, QNPredicateUpgradeCases,
                         testing::Values(Case{"title == \"x\"", "title == \"x\""},
                                         Case{"ALL title BEGINSWITH[c] \"x\"",
                                              "ALL title BEGINSWITH[c] \"x\""},
                                         Case{"title > username", "title > username"},
                                         Case{"username LIKE \"x*\"", "username LIKE \"x*\""}));

INSTANTIATE_TEST_SUITE_P(
    MappedToAny, QNPredicateUpgradeCases,
    testing::Values(
        Case{"tags CONTAINS[cd] \"x\"", "ANY tagsForSearch CONTAINS[cd] \"x\""},
        Case{"ALL tags != \"x\"", "ANY tagsForSearch != \"x\""},
        Case{"tagsForSearch == \"x\"", "ANY tagsForSearch == \"x\""},
        Case{"contentsForFullSearch CONTAINS \"x\"", "ANY allValuesForSearch CONTAINS \"x\""},
        Case{"location BEGINSWITH[c] \"x\"", "ANY URLStringsForSearch BEGINSWITH[c] \"x\""}));

INSTANTIATE_TEST_SUITE_P(
    MappedWithoutChange, QNPredicateUpgradeCases,
    testing::Values(Case{"passwordForSearch ==[c] \"x\"", "password ==[c] \"x\""},
                    Case{"ALL createdAt > DATE \"2020-01-01\"",
                         "ALL createdAtAsDate > DATE \"2020-01-01T00:00:00Z\""},
                    Case{"ANY updatedAt <= DATE \"2020-01-01\"",
                         "ANY updatedAtAsDate <= DATE \"2020-01-01T00:00:00Z\""},
                    Case{"notesPlainText ENDSWITH[d] \"x\"", "notesPlain ENDSWITH[d] \"x\""}));

INSTANTIATE_TEST_SUITE_P(
    PasswordStrength, QNPredicateUpgradeCases,
    testing::Values(Case{"passwordStrength < mr_number10", "passwordStrength < 20"},
                    Case{"passwordStrength < mr_number20", "passwordStrength < 20"},
                    Case{"passwordStrength > mr_number35", "passwordStrength > 35"},
                    Case{"passwordStrength >= mr_number40", "passwordStrength >= 40"},
                    Case{"passwordStrength <= mr_number60", "passwordStrength <= 60"},
                    Case{"passwordStrength == mr_number90", "passwordStrength == 90"},
                    Case{"passwordStrength != mr_number100", "passwordStrength != 100"},
                    Case{"passwordStrength < mr_number30", "passwordStrength < 20"},
                    Case{"passwordStrength < 0", "passwordStrength < 20"},
                    Case{"passwordStrength < 10", "passwordStrength < 20"},
                    Case{"passwordStrength < 19", "passwordStrength < 20"},
                    Case{"passwordStrength < 21", "passwordStrength < 21"},
                    Case{"passwordStrength < 35.9", "passwordStrength < 35"},
                    Case{"passwordStrength < \" 35 of 100\"", "passwordStrength < 35"},
                    Case{"passwordStrength < -50", "passwordStrength < 20"},
                    Case{"passwordStrength < \"99999999999999999999\"",
                         "passwordStrength < 9223372036854775807"},
                    Case{"passwordStrength < \"-99999999999999999999\"", "passwordStrength < 20"},
                    Case{"passwordStrength < NIL", "passwordStrength < 20"},
                    Case{"ANY passwordStrength <[cd] 50", "passwordStrength < 50"}));

INSTANTIATE_TEST_SUITE_P(
    Attachments, QNPredicateUpgradeCases,
    testing::Values(Case{"hasAttachmentString == NO", "numberOfAttachments == 0"},
                    Case{"hasAttachmentString == \"NO\"", "numberOfAttachments == 0"},
                    Case{"hasAttachmentString != \"NO\"", "numberOfAttachments == 0"},
                    Case{"hasAttachmentString == \"YES\"", "numberOfAttachments > 0"},
                    Case{"ALL hasAttachmentString ==[c] \"no\"", "numberOfAttachments > 0"},
                    Case{"hasAttachmentString == 0", "numberOfAttachments > 0"}));

INSTANTIATE_TEST_SUITE_P(Dropped, QNPredicateUpgradeCases,
                         testing::Values(Case{"trashed == YES", "nothing"},
                                         Case{"trashed != 5", "nothing"},
                                         Case{"securityLevel > 3", "nothing"},
                                         Case{"existingString == \"YES\"", "nothing"}));

INSTANTIATE_TEST_SUITE_P(Folder, QNPredicateUpgradeCases,
                         testing::Values(Case{"folderTitle ==[cd] \"\"", "folderUUID == NIL"}));

INSTANTIATE_TEST_SUITE_P(
    Compounds, QNPredicateUpgradeCases,
    testing::Values(
        Case{"trashed == NO AND title == \"x\"", "AND {title == \"x\"}"},
        Case{"trashed == NO OR title == \"x\"", "OR {title == \"x\"}"},
        Case{"trashed == NO AND securityLevel == 1", "AND {}"}, Case{"OR {trashed == NO}", "OR {}"},
        Case{"NOT tags == \"x\"", "NOT ANY tagsForSearch == \"x\""},
        Case{"NOT (trashed == NO AND tags == \"x\")", "NOT (AND {ANY tagsForSearch == \"x\"})"},
        Case{"NOT (AND {trashed == NO})", "NOT (AND {})"},
        Case{"title == \"a\" AND (tags == \"b\" OR categoryName == \"Logins\") AND trashed == NO",
             "title == \"a\" AND (ANY tagsForSearch == \"b\" OR categoryUUID == \"001\")"}));

// Categories: each old name

struct CategoryCase {
  const char* name;
  std::string_view uuid;
};
class QNPredicateUpgradeCategories : public testing::TestWithParam<CategoryCase> {};

TEST_P(QNPredicateUpgradeCategories, HaveAUuid) {
  const auto [name, uuid] = GetParam();

  EXPECT_EQ(QNFolder::categoryUUIDForName(name), uuid);
  EXPECT_EQ(upgraded("categoryName != \"" + std::string(name) + "\""),
            "categoryUUID == \"" + std::string(uuid) + "\"");
}

INSTANTIATE_TEST_SUITE_P(Names, QNPredicateUpgradeCategories,
                         testing::Values(CategoryCase{"Logins", "001"},
                                         CategoryCase{"webforms.WebForm", "001"},
                                         CategoryCase{"securenotes.SecureNote", "003"},
                                         CategoryCase{"identities.Identity", "004"},
                                         CategoryCase{"passwords.Password", "005"},
                                         CategoryCase{"system.Tombstone", "099"},
                                         CategoryCase{"wallet.financial.CreditCard", "002"},
                                         CategoryCase{"wallet.computer.License", "100"},
                                         CategoryCase{"wallet.financial.BankAccountUS", "101"},
                                         CategoryCase{"wallet.computer.Database", "102"},
                                         CategoryCase{"wallet.government.DriversLicense", "103"},
                                         CategoryCase{"wallet.government.HuntingLicense", "104"},
                                         CategoryCase{"wallet.membership.Membership", "105"},
                                         CategoryCase{"wallet.government.Passport", "106"},
                                         CategoryCase{"wallet.membership.RewardProgram", "107"},
                                         CategoryCase{"wallet.government.SsnUS", "108"},
                                         CategoryCase{"wallet.computer.Router", "109"},
                                         CategoryCase{"wallet.computer.UnixServer", "110"},
                                         CategoryCase{"wallet.onlineservices.Email.v2", "111"}));

TEST(QNPredicateUpgrade, KnowsNoOtherCategory) {
  EXPECT_EQ(QNFolder::categoryUUIDForName("logins"), std::nullopt);
  EXPECT_EQ(QNFolder::categoryUUIDForName(""), std::nullopt);
}

TEST(QNPredicateUpgrade, KnowsTheStrengthOfOldKeyPathsAlone) {
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number10"), 10);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number20"), 20);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number35"), 35);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number40"), 40);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number60"), 60);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number90"), 90);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number100"), 100);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath("mr_number30"), 0);
  EXPECT_EQ(QNFolder::passwordStrengthForKeyPath(""), 0);
}

// What is logged

TEST(QNPredicateUpgrade, LogsAnUnknownCategoryAndDropsIt) {
  const auto [text, logs] =
      upgradedWithLogs("categoryName == \"wallet.Unknown\" AND title == \"x\"");

  EXPECT_EQ(text, "AND {title == \"x\"}");
  EXPECT_THAT(logs, ElementsAre("Unknown category name in predicate: categoryName == \"…\""));
}

TEST(QNPredicateUpgrade, LogsACategoryThatIsNoText) {
  for (const char* const other : {"5", "NIL", "title", "{\"Logins\"}"}) {
    const auto [text, logs] = upgradedWithLogs("categoryName == " + std::string(other));

    EXPECT_EQ(text, "nothing");
    EXPECT_EQ(logs.size(), 1u);
  }
}

TEST(QNPredicateUpgrade, LogsWhatItCannotConvert) {
  for (const char* const odd : {"colour == 5", "folderTitle == NIL", "existingString ==[c] 5",
                                "5 == title", "TRUEPREDICATE", "FALSEPREDICATE"}) {
    const auto [text, logs] = upgradedWithLogs(odd);

    EXPECT_EQ(text, "nothing");
    EXPECT_THAT(logs, ElementsAre("Could not convert predicate: " + std::string(odd)));
  }
}

TEST(QNPredicateUpgrade, ComparesTheExactTextOfOldFolderQuestions) {
  for (const char* const other :
       {"folderTitle == \"\"", "folderTitle ==[c] \"\"", "folderTitle ==[cd] \"x\"",
        "ANY folderTitle ==[cd] \"\"", "existingString == \"NO\"", "existingString != \"YES\"",
        "existingString == YES"}) {
    const auto [text, logs] = upgradedWithLogs(other);

    EXPECT_EQ(text, "nothing") << other;
    EXPECT_EQ(logs.size(), 1u) << other;
  }
}

TEST(QNPredicateUpgrade, LogsNothingOfWhatIsSearchedFor) {
  const auto [text, logs] = upgradedWithLogs("secretWord == \"hidden\"");

  EXPECT_THAT(logs, ElementsAre("Could not convert predicate: secretWord == \"…\""));
}

TEST(QNPredicateUpgrade, LogsAnAbsentQuestion) {
  const MRCapturingSink sink;

  EXPECT_EQ(folderTitled("f")->upgradeSmartFolderPredicateFormat(nullptr), nullptr);

  EXPECT_THAT(errors(sink), ElementsAre("Could not convert predicate: (null)"));
}

TEST(QNPredicateUpgrade, DropsAQuestionThatGrowsBeyondItsLimit) {
  constexpr std::size_t around = sizeof("tags == \"\"") - 1;
  const std::string longest(QNPredicate::kMaxTextBytes - around, 'x');
  const auto [text, logs] = upgradedWithLogs("tags == \"" + longest + "\"");

  EXPECT_EQ(text, "nothing");
  EXPECT_THAT(logs, ElementsAre("Could not convert predicate: tags == \"…\""));
}

// Fatal, or told

TEST(QNPredicateUpgradeDeathTest, StopsTheProcessAtANotOverNothing) {
  const auto folder = folderTitled("f");
  for (const char* const fatal :
       {"NOT trashed == YES", "NOT categoryName == \"Unknown\"", "NOT TRUEPREDICATE",
        "title == \"x\" AND (NOT existingString == \"YES\")"}) {
    EXPECT_DEATH(static_cast<void>(folder->upgradeSmartFolderPredicateFormat(predicate(fatal))),
                 "subpredicates.count == 1")
        << fatal;
  }
}

TEST(QNPredicateUpgrade, TellsTheFaultAndStopsNothing) {
  const QNPredicateUpgrade quiet{std::nullopt};
  const MRCapturingSink sink;

  EXPECT_FALSE(quiet.upgraded(predicate("NOT trashed == YES")).ok());
  EXPECT_TRUE(quiet.upgraded(predicate("NOT tags == \"x\"")).ok());
  EXPECT_TRUE(quiet.upgraded(predicate("odd == 1")).ok());
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNPredicateUpgrade, LooksAtAQuestionWithoutCopiesOfItsTextsThatStayBehind) {
  constexpr std::string_view kText = "a text that is too long for a place inside an object";
  const MRCapturingSink sink;
  const auto folder = folderTitled("f");
  const auto unknown = predicate("unknown == \"" + std::string(kText) + "\"");
  const QNFreedBlockWatch watch(kText);

  EXPECT_EQ(folder->upgradeSmartFolderPredicateFormat(unknown), nullptr);

  EXPECT_EQ(watch.found(), 0u);
}

}  // namespace
}  // namespace quillon
