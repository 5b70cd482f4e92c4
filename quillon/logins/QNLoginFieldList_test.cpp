#include "quillon/logins/QNLoginFieldList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QNLoginFieldList::Field field(std::string_view json) {
  const auto dictionary = mr_objectFromJSONStringWithError(json);
  EXPECT_TRUE(dictionary) << json;
  return std::make_shared<QNLoginField>(dictionary.value_or(JsonObject()));
}

QNLoginFieldList listOf(std::initializer_list<std::string_view> fields) {
  QNLoginFieldList list;
  for (const std::string_view json : fields) list.addLoginField(field(json));
  return list;
}

QNLoginFieldList passwords(std::initializer_list<std::string_view> values) {
  QNLoginFieldList list;
  for (const std::string_view value : values) {
    auto added = std::make_shared<QNLoginField>();
    added->setType("P");
    added->setValue(value);
    list.addLoginField(added);
  }
  return list;
}

std::string jsonOf(const QNLoginFieldList& list) {
  return mr_JSONStringWithError(Json(list.jsonArray())).value_or("no JSON form");
}

std::vector<std::string> namesOf(const QNLoginFieldList::Fields& fields) {
  std::vector<std::string> names;
  for (const auto& each : fields) names.push_back(each->name().value_or("(none)"));
  return names;
}

std::vector<std::string> revealed(const std::optional<std::vector<QNSecret>>& secrets) {
  std::vector<std::string> texts;
  if (secrets) {
    for (const QNSecret& secret : *secrets) texts.emplace_back(secret.reveal());
  }
  return texts;
}

constexpr std::string_view kUsername = R"({"name":"u","value":"ann","designation":"username"})";
constexpr std::string_view kPassword =
    R"({"name":"p","value":"pw","type":"P","designation":"password"})";

TEST(QNLoginFieldList, IsEmptyAtFirst) {
  const QNLoginFieldList list;

  EXPECT_EQ(list.count(), 0u);
  EXPECT_EQ(list.usernameField(), nullptr);
  EXPECT_EQ(list.passwordField(), nullptr);
  EXPECT_EQ(list.objectAtIndex(0), nullptr);
  EXPECT_EQ(jsonOf(list), "[]");
}

TEST(QNLoginFieldList, KeepsItsEntriesInOrder) {
  const auto list = listOf({R"({"name":"a"})", R"({"name":"b"})", R"({"name":"a"})"});

  EXPECT_THAT(namesOf(list.fields()), ElementsAre("a", "b", "a"));
  EXPECT_EQ(list.loginFieldAtIndex(1)->name(), "b");
  EXPECT_EQ(list.objectAtIndex(2), list.fields()[2]);
  EXPECT_EQ(list.loginFieldAtIndex(3), nullptr);
}

TEST(QNLoginFieldList, MayChangeWhileItsEntriesAreGoneThrough) {
  auto list = listOf({kUsername, kPassword});

  for (const auto& each : list.fields()) list.addLoginField(each);

  EXPECT_THAT(namesOf(list.fields()), ElementsAre("u", "p", "u", "p"));
}

TEST(QNLoginFieldList, KnowsItsDesignatedEntries) {
  const auto list = listOf({R"({"name":"x"})", kUsername, kPassword});

  EXPECT_EQ(list.usernameField(), list.fields()[1]);
  EXPECT_EQ(list.passwordField(), list.fields()[2]);
}

TEST(QNLoginFieldList, GuessesNothingFromNamesAndKinds) {
  const auto list = listOf(
      {R"({"name":"username","value":"ann"})", R"({"name":"password","value":"pw","type":"P"})"});

  EXPECT_EQ(list.usernameField(), nullptr);
  EXPECT_EQ(list.passwordField(), nullptr);
}

TEST(QNLoginFieldList, LeavesADesignationToItsNewestEntryInMemoryAndInJson) {
  const auto list = listOf(
      {R"({"name":"old","designation":"username"})", R"({"name":"new","designation":"username"})"});

  EXPECT_EQ(list.usernameField(), list.fields()[1]);
  EXPECT_EQ(jsonOf(list), R"([{"name":"old"},{"name":"new","designation":"username"}])");
}

TEST(QNLoginFieldList, TakesADesignationFromWhoHasIt) {
  auto list = listOf({kUsername, R"({"name":"b"})"});

  list.designateLoginFieldAt(1, QNLoginFieldDesignationUsername);

  EXPECT_FALSE(list.fields()[0]->designation());
  EXPECT_EQ(list.usernameField(), list.fields()[1]);
}

TEST(QNLoginFieldList, DesignatesTheEntryThatHasItAlreadyWithoutChange) {
  auto list = listOf({kUsername});
  const std::string before = jsonOf(list);

  list.designateLoginFieldAt(0, QNLoginFieldDesignationUsername);

  EXPECT_EQ(list.usernameField(), list.fields()[0]);
  EXPECT_EQ(jsonOf(list), before);
}

TEST(QNLoginFieldList, OnlyTakesADesignationAwayForANegativeIndex) {
  auto list = listOf({kUsername, kPassword});

  list.designateLoginFieldAt(-1, QNLoginFieldDesignationUsername);

  EXPECT_FALSE(list.fields()[0]->designation());
  EXPECT_EQ(list.usernameField(), nullptr);
  EXPECT_EQ(list.passwordField(), list.fields()[1]);
}

TEST(QNLoginFieldList, ChangesNothingForAnIndexBehindTheEnd) {
  auto list = listOf({kUsername});

  list.designateLoginFieldAt(1, QNLoginFieldDesignationUsername);

  EXPECT_EQ(list.usernameField(), list.fields()[0]);
  EXPECT_EQ(list.count(), 1u);
}

TEST(QNLoginFieldList, TakesADesignationThatIsReadFromItsHolder) {
  auto list = listOf({R"({"designation":"totp","name":"a"})", R"({"name":"b"})"});
  const auto designation =
      mr_validStringValueForKey(list.fields()[0]->asDictionary(), QNLoginFieldKeyDesignation);
  ASSERT_TRUE(designation);

  list.designateLoginFieldAt(1, *designation);

  EXPECT_EQ(jsonOf(list), R"([{"name":"a"},{"name":"b","designation":"totp"}])");
}

TEST(QNLoginFieldList, TakesAnotherDesignationFromItsFirstHolderOnly) {
  auto list = listOf({R"({"name":"a","designation":"totp"})",
                      R"({"name":"b","designation":"totp"})", R"({"name":"c"})"});

  list.designateLoginFieldAt(2, QNFillObjectDesignationTOTP);

  EXPECT_EQ(jsonOf(list), R"([{"name":"a"},{"name":"b","designation":"totp"},)"
                          R"({"name":"c","designation":"totp"}])");
}

TEST(QNLoginFieldList, TakesAnotherDesignationFromNobodyWhenItsFirstHolderIsDesignated) {
  auto list =
      listOf({R"({"name":"a","designation":"totp"})", R"({"name":"b","designation":"totp"})"});
  const std::string before = jsonOf(list);

  list.designateLoginFieldAt(0, QNFillObjectDesignationTOTP);

  EXPECT_EQ(jsonOf(list), before);
}

TEST(QNLoginFieldList, IgnoresNullInThePlaceOfAnEntry) {
  auto list = listOf({kUsername});

  list.addLoginField(nullptr);

  EXPECT_EQ(list.count(), 1u);
  EXPECT_EQ(list.usernameField(), list.fields()[0]);
}

TEST(QNLoginFieldList, ForgetsTheUsernameThatBecomesThePassword) {
  auto list = listOf({kUsername});

  list.designateLoginFieldAt(0, QNLoginFieldDesignationPassword);

  EXPECT_EQ(list.usernameField(), nullptr);
  EXPECT_EQ(list.passwordField(), list.fields()[0]);
}

TEST(QNLoginFieldList, KeepsAnyOtherDesignationOnTheEntryOnly) {
  auto list = listOf({R"({"name":"code"})", R"({"name":"b","designation":"totp"})"});

  list.designateLoginFieldAt(0, QNFillObjectDesignationTOTP);

  EXPECT_EQ(list.loginFieldDesignatedAs("totp"), list.fields()[0]);
  EXPECT_FALSE(list.fields()[1]->designation());
  EXPECT_EQ(list.usernameField(), nullptr);
  EXPECT_EQ(list.passwordField(), nullptr);
}

TEST(QNLoginFieldList, LeavesEqualOtherDesignationsWhereTheyWereAdded) {
  const auto list =
      listOf({R"({"name":"a","designation":"totp"})", R"({"name":"b","designation":"totp"})"});

  EXPECT_EQ(list.loginFieldDesignatedAs("totp"), list.fields()[0]);
  EXPECT_EQ(list.fields()[1]->designation(), "totp");
}

TEST(QNLoginFieldList, FindsTheDesignatedEntries) {
  const auto list = listOf({kPassword, kUsername});

  EXPECT_EQ(list.loginFieldDesignatedAs("username"), list.fields()[1]);
  EXPECT_EQ(list.loginFieldDesignatedAs("password"), list.fields()[0]);
  EXPECT_EQ(list.loginFieldDesignatedAs("totp"), nullptr);
}

TEST(QNLoginFieldList, HasNoUsernameAfterTheRemovalOfItsEntry) {
  auto list = listOf({kUsername, R"({"name":"u","value":"ann"})"});

  list.removeLoginFieldAtIndex(0);

  EXPECT_EQ(list.usernameField(), nullptr);
  EXPECT_THAT(namesOf(list.fields()), ElementsAre("u"));
}

TEST(QNLoginFieldList, HasNoPasswordAfterTheRemovalOfItsEntry) {
  auto list = listOf({kUsername, kPassword});

  list.removeLoginFieldAtIndex(1);

  EXPECT_EQ(list.passwordField(), nullptr);
  EXPECT_EQ(list.usernameField(), list.fields()[0]);
}

TEST(QNLoginFieldList, IgnoresARemovalBehindTheEnd) {
  auto list = listOf({kUsername});

  list.removeLoginFieldAtIndex(1);

  EXPECT_EQ(list.count(), 1u);
}

TEST(QNLoginFieldList, MakesTheEntryOfAUsername) {
  QNLoginFieldList list;

  const auto added = list.addDesignatedUsername("ann");

  EXPECT_EQ(list.usernameField(), added);
  EXPECT_EQ(jsonOf(list),
            R"([{"name":"username","value":"ann","type":"T","designation":"username"}])");
}

TEST(QNLoginFieldList, MakesAnEmptyUsernameForNothing) {
  QNLoginFieldList list;

  const auto added = list.addDesignatedUsername(std::nullopt);

  EXPECT_TRUE(added->hasValue(""));
}

TEST(QNLoginFieldList, MakesTheEntryOfAPassword) {
  QNLoginFieldList list;

  const auto added = list.addDesignatedPassword("pw");

  EXPECT_EQ(list.passwordField(), added);
  EXPECT_EQ(jsonOf(list),
            R"([{"name":"password","value":"pw","type":"P","designation":"password"}])");
}

TEST(QNLoginFieldList, MakesAPasswordWithoutAValueForNothing) {
  QNLoginFieldList list;

  const auto added = list.addDesignatedPassword(std::nullopt);

  EXPECT_FALSE(added->value());
}

TEST(QNLoginFieldList, ListsItsConcealedEntriesInOrder) {
  const auto list =
      listOf({R"({"name":"a","type":"P"})", R"({"name":"b"})", R"({"name":"c","type":"P"})"});

  EXPECT_THAT(namesOf(list.passwordFields()), ElementsAre("a", "c"));
}

TEST(QNLoginFieldList, FindsTheFirstEntryWithExactlyAValue) {
  const auto list = listOf({R"({"name":"a","value":"X"})", R"({"name":"b","value":"x"})",
                            R"({"name":"c","value":"x"})"});

  EXPECT_EQ(list.findLoginFieldWithValue("x"), list.fields()[1]);
  EXPECT_EQ(list.findLoginFieldWithValue(""), nullptr);
}

TEST(QNLoginFieldList, FindsTheFirstEntryWithExactlyAName) {
  const auto list = listOf({R"({"name":"A"})", R"({"name":"a"})", R"({"name":"a"})"});

  EXPECT_EQ(list.findLoginFieldWithName("a"), list.fields()[1]);
  EXPECT_EQ(list.findLoginFieldWithName("b"), nullptr);
}

TEST(QNLoginFieldList, ListsAllEntriesWithAName) {
  const auto list =
      listOf({R"({"name":"a","value":"1"})", R"({"name":"b"})", R"({"name":"a","value":"2"})"});

  EXPECT_THAT(list.loginFieldsWithName("a"), ElementsAre(list.fields()[0], list.fields()[2]));
  EXPECT_THAT(list.loginFieldsWithName("c"), IsEmpty());
}

TEST(QNLoginFieldList, ReportsEntriesWhoseNamesTheOtherDoesNotHave) {
  const auto list = listOf({R"({"name":"a"})", R"({"name":"b"})", R"({"value":"no name"})"});
  const auto other = listOf({R"({"name":"b"})"});

  EXPECT_THAT(namesOf(list.loginFieldsNotContainedWithin(other)), ElementsAre("a", "(none)"));
}

TEST(QNLoginFieldList, FindsANamelessEntryInAListThatHasOne) {
  const auto list = listOf({R"({"value":"no name"})"});
  const auto other = listOf({R"({"value":"nameless too"})"});

  EXPECT_THAT(list.loginFieldsNotContainedWithin(other), IsEmpty());
}

TEST(QNLoginFieldList, SeesNoConflictWithAnEqualEntry) {
  const auto list = listOf({R"({"name":"a","value":"1","x":true})"});
  const auto other =
      listOf({R"({"name":"a","value":"2"})", R"({"x":true,"value":"1","name":"a"})"});

  EXPECT_THAT(list.loginFieldsConflictingWith(other), IsEmpty());
}

TEST(QNLoginFieldList, SeesNoConflictInANumberThatIsWrittenOtherwise) {
  const auto list = listOf({R"({"name":"a","value":"1","x":40})"});
  const auto other = listOf({R"({"name":"a","value":"1","x":40.0})"});

  EXPECT_THAT(list.loginFieldsConflictingWith(other), IsEmpty());
  EXPECT_THAT(other.loginFieldsConflictingWith(list), IsEmpty());
}

TEST(QNLoginFieldList, SeesAConflictInAnyMember) {
  const auto list = listOf({R"({"name":"a","value":"1","x":true})"});
  const auto other = listOf({R"({"name":"a","value":"1","x":false})"});

  EXPECT_THAT(namesOf(list.loginFieldsConflictingWith(other)), ElementsAre("a"));
}

TEST(QNLoginFieldList, SeesAConflictWithAListThatLacksTheName) {
  const auto list = listOf({R"({"name":"a","value":"1"})"});

  EXPECT_THAT(namesOf(list.loginFieldsConflictingWith(QNLoginFieldList())), ElementsAre("a"));
}

TEST(QNLoginFieldList, SeesNoConflictInEntriesWithoutNameOrValue) {
  const auto list = listOf({R"({"name":"a"})", R"({"value":"1"})"});

  EXPECT_THAT(list.loginFieldsConflictingWith(QNLoginFieldList()), IsEmpty());
}

TEST(QNLoginFieldList, NeverSeesAConflictInACheckbox) {
  const auto list = listOf({R"({"name":"remember","value":"1","type":"C"})"});
  const auto other = listOf({R"({"name":"remember","value":"0","type":"C"})"});

  EXPECT_THAT(list.loginFieldsConflictingWith(other), IsEmpty());
}

TEST(QNLoginFieldList, RecognisesTheNewPasswordByItsTwin) {
  const auto list = passwords({"old", "new", "new"});

  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue(std::nullopt), list.fields()[1]);
  EXPECT_EQ(list.findOldPasswordLoginField(), list.fields()[0]);
}

TEST(QNLoginFieldList, FindsNoNewPasswordWhenItsValueIsExcluded) {
  const auto list = passwords({"old", "new", "new"});

  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue("new"), nullptr);
}

TEST(QNLoginFieldList, FindsTheNextTwinsWhenTheFirstAreExcluded) {
  const auto list = passwords({"a", "b", "a", "c", "c"});

  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue(std::nullopt), list.fields()[0]);
  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue("a"), list.fields()[3]);
}

TEST(QNLoginFieldList, TakesAPasswordWithoutAValueForTheOldOne) {
  const auto list = listOf({R"({"type":"P","value":"new"})", R"({"type":"P"})",
                            R"({"type":"P","value":"new"})", R"({"type":"P","value":"old"})"});

  EXPECT_EQ(list.findOldPasswordLoginField(), list.fields()[1]);
}

TEST(QNLoginFieldList, FindsTheOldPasswordBehindTheNewOne) {
  const auto list = passwords({"new", "new", "old"});

  EXPECT_EQ(list.findOldPasswordLoginField(), list.fields()[2]);
}

TEST(QNLoginFieldList, TakesASinglePasswordForTheOldOne) {
  const auto list = passwords({"only"});

  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue(std::nullopt), nullptr);
  EXPECT_EQ(list.findOldPasswordLoginField(), list.fields()[0]);
}

TEST(QNLoginFieldList, TakesTheNewPasswordForTheOldOneWhenAllAreEqual) {
  const auto list = passwords({"same", "same"});

  EXPECT_EQ(list.findOldPasswordLoginField(), list.fields()[0]);
}

TEST(QNLoginFieldList, TakesNoEmptyTwinsForANewPassword) {
  const auto list = passwords({"", ""});

  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue(std::nullopt), nullptr);
  EXPECT_EQ(list.findOldPasswordLoginField(), list.fields()[0]);
}

TEST(QNLoginFieldList, FindsNoPasswordsInAFormWithoutAny) {
  const auto list = listOf({kUsername});

  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue(std::nullopt), nullptr);
  EXPECT_EQ(list.findOldPasswordLoginField(), nullptr);
}

TEST(QNLoginFieldList, CountsOnlyConcealedEntriesAsTwins) {
  const auto list = listOf({R"({"type":"P","value":"x"})", R"({"type":"T","value":"x"})"});

  EXPECT_EQ(list.findNewPasswordLoginFieldExcludingPasswordValue(std::nullopt), nullptr);
}

TEST(QNLoginFieldList, GivesItsNonEmptyValuesPasswordsAndNamesForSearch) {
  const auto list = listOf({R"({"name":"u","value":"ann"})", R"({"name":"","value":""})",
                            R"({"name":"p","value":"pw","type":"P"})",
                            R"({"name":"q","value":"hidden","designation":"password"})",
                            R"({"value":"nameless"})"});

  EXPECT_THAT(revealed(list.allValuesForSearch()), ElementsAre("ann", "pw", "hidden", "nameless"));
  EXPECT_THAT(revealed(list.allPasswordsForSearch()), ElementsAre("pw", "hidden"));
  EXPECT_THAT(revealed(list.allFieldTitlesForSearch()), ElementsAre("u", "p", "q"));
}

TEST(QNLoginFieldList, GivesNothingForSearchWhenNothingQualifies) {
  const auto list = listOf({R"({"value":"","name":""})"});

  EXPECT_FALSE(list.allValuesForSearch());
  EXPECT_FALSE(list.allPasswordsForSearch());
  EXPECT_FALSE(list.allFieldTitlesForSearch());
}

TEST(QNLoginFieldList, SharesItsEntriesWithAnotherList) {
  QNLoginFieldList one = listOf({kUsername});
  QNLoginFieldList other;

  other.addLoginField(one.fields()[0]);
  other.designateLoginFieldAt(0, QNFillObjectDesignationTOTP);

  EXPECT_EQ(one.fields()[0]->designation(), "totp");
  EXPECT_EQ(one.usernameField(), nullptr);
  EXPECT_EQ(one.loginFieldDesignatedAs(QNLoginFieldDesignationUsername), nullptr);
}

TEST(QNLoginFieldList, ForgetsWhoLosesItsDesignationWithoutTheList) {
  const auto list = listOf({kUsername, kPassword});

  list.fields()[0]->setDesignation(QNFillObjectDesignationTOTP);
  list.fields()[1]->_removeDesignation();

  EXPECT_EQ(list.usernameField(), nullptr);
  EXPECT_EQ(list.passwordField(), nullptr);
  EXPECT_EQ(list.loginFieldDesignatedAs(QNLoginFieldDesignationPassword), nullptr);
}

TEST(QNLoginFieldList, IsMovedWithItsDesignationsAndNeverCopied) {
  auto list = listOf({kUsername, kPassword});
  const auto fields = list.fields();

  const QNLoginFieldList moved = std::move(list);

  EXPECT_EQ(moved.usernameField(), fields[0]);
  EXPECT_EQ(moved.passwordField(), fields[1]);
  EXPECT_FALSE(std::is_copy_constructible_v<QNLoginFieldList>);
  EXPECT_FALSE(std::is_copy_assignable_v<QNLoginFieldList>);
}

}  // namespace
}  // namespace quillon
