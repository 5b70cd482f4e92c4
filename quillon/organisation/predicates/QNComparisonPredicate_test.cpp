#include "quillon/organisation/predicates/QNComparisonPredicate.h"

#include <gtest/gtest.h>

#include <chrono>

#include "quillon/organisation/predicates/internal/QNPredicateTesting.h"

namespace quillon {
namespace {

struct Case {
  const char* format;
  bool holds;
};
std::ostream& operator<<(std::ostream& out, const Case& it) {
  return out << it.format;
}

QNSampleObject sampleObject() {
  static const JsonArray stored = {"Home", 7, "Zürich"};
  QNSampleObject object;
  object.withText("name", "Crème Brûlée").withText("plain", "Example Bank").withText("empty", "");
  object.withNumber("count", 5).withNothing("nothing");
  object.with("real", [] { return QNKeyPathValue(2.5); });
  object.with("truth", [] { return QNKeyPathValue(true); });
  object.with("day", [] {
    return QNKeyPathValue(std::chrono::sys_seconds(std::chrono::seconds(1'720'096'205)));
  });
  object.with("view", [] { return QNKeyPathValue(std::string_view("Example Bank")); });
  object.with("stored", [] { return QNKeyPathValue(&stored); });
  object.withTexts("tags", {"Home", "work"}).withTexts("few", {}).withText("other", "EXAMPLE bank");
  return object;
}

class QNComparisonPredicateCases : public testing::TestWithParam<Case> {};

TEST_P(QNComparisonPredicateCases, Holds) {
  QNSampleObject object = sampleObject();

  EXPECT_EQ(answer(object, GetParam().format), GetParam().holds ? "yes" : "no");
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, QNComparisonPredicateCases,
    testing::Values(Case{"count == 5", true}, Case{"count == 4", false}, Case{"count != 4", true},
                    Case{"count != 5", false}, Case{"count < 6", true}, Case{"count < 5", false},
                    Case{"count <= 5", true}, Case{"count <= 4", false}, Case{"count > 4", true},
                    Case{"count > 5", false}, Case{"count >= 5", true}, Case{"count >= 6", false},
                    Case{"count == 5.0", true}, Case{"count < 5.5", true},
                    Case{"real == 2.5", true}, Case{"real > 2", true}, Case{"real < 2", false},
                    Case{"5 == count", true}, Case{"truth == YES", true},
                    Case{"truth == NO", false}, Case{"truth == 1", true}, Case{"truth != 0", true},
                    Case{"count == 9223372036854775807", false}));

INSTANTIATE_TEST_SUITE_P(
    Days, QNComparisonPredicateCases,
    testing::Values(Case{"day == DATE \"2024-07-04T12:30:05Z\"", true},
                    Case{"day > DATE \"2024-07-04\"", true},
                    Case{"day < DATE \"2024-07-05\"", true},
                    Case{"day >= DATE \"2024-07-05\"", false},
                    Case{"day BETWEEN {DATE \"2024-01-01\", DATE \"2025-01-01\"}", true},
                    Case{"day == 1720096205", false}, Case{"day != 1720096205", true}));

INSTANTIATE_TEST_SUITE_P(
    Texts, QNComparisonPredicateCases,
    testing::Values(
        Case{"plain == \"Example Bank\"", true}, Case{"plain == \"example bank\"", false},
        Case{"plain ==[c] \"EXAMPLE BANK\"", true}, Case{"view ==[c] \"EXAMPLE BANK\"", true},
        Case{"plain != \"Example Bank\"", false}, Case{"plain !=[c] \"example bank\"", false},
        Case{"plain < \"F\"", true}, Case{"plain > \"F\"", false}, Case{"plain <= \"E\"", false},
        Case{"plain >= \"E\"", true}, Case{"plain < \"e\"", true}, Case{"plain <[c] \"e\"", false},
        Case{"name == \"Crème Brûlée\"", true}, Case{"name ==[d] \"Creme Brulee\"", true},
        Case{"name ==[d] \"creme brulee\"", false}, Case{"name ==[cd] \"CREME BRÛLÉE\"", true},
        Case{"name ==[c] \"CREME BRULEE\"", false}, Case{"name ==[c] \"CRÈME BRÛLÉE\"", true},
        Case{"name ==[c] \"cre\u0300me bru\u0302le\u0301e\"", true},
        Case{"plain CONTAINS \"ple B\"", true}, Case{"plain CONTAINS \"PLE B\"", false},
        Case{"plain CONTAINS[c] \"PLE B\"", true}, Case{"plain CONTAINS \"\"", true},
        Case{"name CONTAINS[cd] \"me br\"", true}, Case{"name CONTAINS[cd] \"é\"", true},
        Case{"plain CONTAINS[cd] \"ß\"", false}, Case{"empty CONTAINS \"a\"", false},
        Case{"plain BEGINSWITH \"Exam\"", true}, Case{"plain BEGINSWITH \"exam\"", false},
        Case{"plain BEGINSWITH[c] \"exam\"", true}, Case{"plain BEGINSWITH \"xam\"", false},
        Case{"plain ENDSWITH \"Bank\"", true}, Case{"plain ENDSWITH \"bank\"", false},
        Case{"plain ENDSWITH[c] \"BANK\"", true}, Case{"plain ENDSWITH \"Ban\"", false},
        Case{"name ENDSWITH[cd] \"LEE\"", true}, Case{"plain LIKE \"Ex*B?nk\"", true},
        Case{"plain LIKE \"ex*\"", false}, Case{"plain LIKE[c] \"ex*\"", true},
        Case{"name LIKE[cd] \"creme?bru*\"", true}, Case{"plain MATCHES \"Ex.* B[aeiou]nk\"", true},
        Case{"plain MATCHES \"Ex\"", false}, Case{"plain MATCHES \"ex.*\"", false},
        Case{"plain MATCHES[c] \"ex.*\"", true}, Case{"plain MATCHES[cd] \"\\\\D+\"", true},
        Case{"name MATCHES[d] \"Cr[e]me .*\"", true}, Case{"name MATCHES[d] \"Crème .*\"", true},
        Case{"name MATCHES[cd] \"CREME .*\"", true}, Case{"count CONTAINS \"5\"", false},
        Case{"count MATCHES \"5\"", false}, Case{"count LIKE \"5\"", false},
        Case{"count == \"5\"", false}, Case{"count != \"5\"", true}));

INSTANTIATE_TEST_SUITE_P(
    Nothing, QNComparisonPredicateCases,
    testing::Values(Case{"nothing == NIL", true}, Case{"nothing != NIL", false},
                    Case{"nothing == \"\"", false}, Case{"nothing != \"\"", true},
                    Case{"empty == NIL", false}, Case{"empty != NIL", true},
                    Case{"nothing < 1", false}, Case{"nothing >= NIL", false},
                    Case{"nothing CONTAINS \"\"", false}, Case{"nothing BEGINSWITH \"\"", false},
                    Case{"nothing IN {NIL, 1}", true}, Case{"nothing IN {1}", false},
                    Case{"nothing BETWEEN {1, 2}", false}));

INSTANTIATE_TEST_SUITE_P(
    Lists, QNComparisonPredicateCases,
    testing::Values(
        Case{"tags CONTAINS \"Home\"", true}, Case{"tags CONTAINS \"home\"", false},
        Case{"tags CONTAINS[c] \"HOME\"", true}, Case{"tags CONTAINS \"Hom\"", false},
        Case{"\"Home\" IN tags", true}, Case{"\"home\" IN[c] tags", true},
        Case{"\"Hom\" IN tags", false}, Case{"plain IN {\"a\", \"Example Bank\"}", true},
        Case{"plain IN {\"a\", \"b\"}", false}, Case{"plain IN[c] {\"EXAMPLE BANK\"}", true},
        Case{"plain IN \"an Example Bank here\"", true}, Case{"plain IN \"Example\"", false},
        Case{"count IN {1, 5}", true}, Case{"count IN {}", false},
        Case{"count BETWEEN {5, 6}", true}, Case{"count BETWEEN {4, 5}", true},
        Case{"count BETWEEN {6, 7}", false}, Case{"count BETWEEN {1, 4}", false},
        Case{"count BETWEEN {1}", false}, Case{"count BETWEEN {1, 9, 10}", false},
        Case{"count BETWEEN 5", false}, Case{"plain BETWEEN {\"E\", \"F\"}", true},
        Case{"tags == {\"Home\", \"work\"}", true}, Case{"tags == {\"work\", \"Home\"}", false},
        Case{"tags == {\"Home\"}", false}, Case{"tags != {\"Home\"}", true},
        Case{"few == {}", true}, Case{"tags BEGINSWITH \"Home\"", false},
        Case{"stored CONTAINS \"Zürich\"", true}, Case{"stored CONTAINS[d] \"Zurich\"", true},
        Case{"stored CONTAINS 7", false}));

INSTANTIATE_TEST_SUITE_P(
    Modifiers, QNComparisonPredicateCases,
    testing::Values(Case{"ANY tags BEGINSWITH \"Ho\"", true},
                    Case{"ANY tags BEGINSWITH \"x\"", false}, Case{"ALL tags CONTAINS \"o\"", true},
                    Case{"ALL tags CONTAINS \"m\"", false}, Case{"ANY few == \"a\"", false},
                    Case{"ALL few == \"a\"", true}, Case{"ANY nothing == NIL", false},
                    Case{"ALL nothing == 1", true}, Case{"ANY count == 5", true},
                    Case{"ALL count == 4", false}, Case{"SOME tags == \"work\"", true},
                    Case{"NONE tags == \"work\"", false}, Case{"NONE tags == \"x\"", true},
                    Case{"ANY tags IN {\"work\"}", true}, Case{"ALL tags IN {\"work\"}", false},
                    Case{"ANY tags MATCHES \"w.*\"", true},
                    Case{"ANY stored LIKE[cd] \"z*\"", true}));

INSTANTIATE_TEST_SUITE_P(
    TwoKeyPaths, QNComparisonPredicateCases,
    testing::Values(Case{"plain ==[c] other", true}, Case{"plain == other", false},
                    Case{"plain CONTAINS empty", true}, Case{"plain LIKE[c] other", true},
                    Case{"plain MATCHES[c] other", true}, Case{"plain MATCHES other", false},
                    Case{"count > real", true}, Case{"\"Example\" == \"Example\"", true}));

TEST(QNComparisonPredicate, FoldsLongTextsAsItFoldsShortOnes) {
  QNSampleObject object;
  object.withText("notes", std::string(5000, 'x') + "NEEDLE" + std::string(5000, 'x'));

  EXPECT_EQ(answer(object, "notes CONTAINS[c] \"needle\""), "yes");
  EXPECT_EQ(answer(object, "notes CONTAINS[c] \"needles\""), "no");
}

TEST(QNComparisonPredicate, TellsAKeyPathThatTheObjectHasNot) {
  QNSampleObject object = sampleObject();

  EXPECT_EQ(answer(object, "colour == 1"), "there is no key path colour");
  EXPECT_EQ(predicate("colour == 1")->evaluate(object).error().domainCodeString(),
            "QNErrorDomain 114");
}

TEST(QNComparisonPredicate, TellsAPatternThatIsNone) {
  QNSampleObject object = sampleObject();

  EXPECT_EQ(answer(object, "plain MATCHES \"(\""), "no regular expression");
  EXPECT_EQ(answer(object, "ANY tags MATCHES \"(\""), "no regular expression");
}

TEST(QNComparisonPredicate, RefusesUnknownOptions) {
  EXPECT_EQ(
      QNComparisonPredicate::comparison({*QNExpression::keyPath("a"), QNExpression(),
                                         QNComparisonModifier::direct, QNOperatorType::equalTo, 4}),
      nullptr);
}

TEST(QNComparisonPredicate, RefusesATextFormBeyondItsLimit) {
  const auto withText = [](std::size_t size) {
    return QNComparisonPredicate::comparison(
        {*QNExpression::keyPath("a"), *QNExpression::text(std::string(size, 'x'))});
  };
  constexpr std::size_t around = sizeof("a == \"\"") - 1;

  EXPECT_NE(withText(QNPredicate::kMaxTextBytes - around), nullptr);
  EXPECT_EQ(withText(QNPredicate::kMaxTextBytes - around + 1), nullptr);
}

// What costs too much

TEST(QNComparisonPredicate, GivesUpAPatternThatWouldNeverEnd) {
  QNSampleObject object;
  object.withText("text", std::string(200, 'a'));

  EXPECT_EQ(answer(object, "text MATCHES \"(a|aa)+b\""),
            "the predicate costs more than is allowed");
}

TEST(QNComparisonPredicate, GivesUpWildcardsWithoutAnEnd) {
  QNSampleObject object;
  object.withText("text", std::string(100'000, 'a'));

  EXPECT_EQ(answer(object, "text LIKE \"*" + std::string(10'000, 'a') + "b*\""),
            "the predicate costs more than is allowed");
}

TEST(QNComparisonPredicate, GivesUpListsThatMultiply) {
  QNSampleObject object;
  object.withTexts("many", std::vector<std::string>(30'000, "x"));
  std::string list = "{0";
  for (int i = 0; i < 10'000; ++i) list += ", 1";

  EXPECT_EQ(answer(object, "ANY many IN " + list + "}"),
            "the predicate costs more than is allowed");
}

std::string listOf(std::size_t count, const std::string& element) {
  std::string list = "{" + element;
  for (std::size_t i = 1; i < count; ++i) list += ", " + element;
  return list + "}";
}

TEST(QNComparisonPredicate, DoesNotWalkAListThatIsNoneOfTheRightLength) {
  QNSampleObject object;
  object.withTexts("many", std::vector<std::string>(30'000, "x"));
  const std::string list = listOf(21'000, "0");
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(answer(object, "ANY many == " + list), "no");
  EXPECT_EQ(answer(object, "ANY many != " + list), "yes");
  EXPECT_EQ(answer(object, "ALL many != " + list), "yes");
  EXPECT_EQ(answer(object, "ANY many BETWEEN " + list), "no");
  EXPECT_EQ(answer(object, "many == " + list), "no");

  // Some thousand times as long as that takes, and a part of what as many walks would.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(QNComparisonPredicate, RefusesAModifierOrAnOperatorThatThereIsNot) {
  const auto isMade = [](int modifier, int operatorType) {
    return QNComparisonPredicate::comparison({QNExpression::integer(1), QNExpression::integer(1),
                                              static_cast<QNComparisonModifier>(modifier),
                                              static_cast<QNOperatorType>(operatorType), 0}) !=
           nullptr;
  };

  EXPECT_TRUE(isMade(2, 12));
  EXPECT_FALSE(isMade(3, 0));
  EXPECT_FALSE(isMade(-1, 0));
  EXPECT_FALSE(isMade(0, 13));
  EXPECT_FALSE(isMade(0, -1));
}

TEST(QNComparisonPredicate, PaysForEachElementOfListsOfOneLength) {
  QNSampleObject object;
  object.withTexts("many", std::vector<std::string>(10'000, "x"));
  for (const std::string comparison : {"==", "!="}) {
    QNPredicateBudget budget;
    const std::uint64_t before = budget.left();

    ASSERT_TRUE(predicate("many " + comparison + " " + listOf(10'000, "\"x\""))
                    ->evaluate(object, budget)
                    .ok());

    EXPECT_GE(before - budget.left(), 10'000 * QNPredicateBudget::kStepsPerComparison);
  }
}

TEST(QNComparisonPredicate, PaysForAnswersThatTheObjectMakes) {
  for (const bool isList : {false, true}) {
    QNSampleObject object;
    if (isList) {
      object.withTexts("big", std::vector<std::string>(10'000, std::string(100, 'a')));
    } else {
      object.withText("big", std::string(1'000'000, 'a'));
    }
    const auto question = predicate("big == 0");
    QNPredicateBudget budget;

    while (question->evaluate(object, budget).ok()) ASSERT_LE(object.numberOfQuestions, 100);

    EXPECT_GE(object.numberOfQuestions, 30);
  }
}

TEST(QNComparisonPredicate, SharesOneBudgetAmongObjects) {
  QNSampleObject object;
  static const std::string text(1'000'000, 'a');
  object.with("text", [] { return QNKeyPathValue(std::string_view(text)); });
  const auto question = predicate("text CONTAINS \"b\"");
  QNPredicateBudget budget(1);
  int answered = 0;

  while (question->evaluate(object, budget).ok()) ++answered;

  EXPECT_GE(answered, 30);
  EXPECT_LE(answered, 70);
  EXPECT_EQ(budget.left(), 0u);
}

TEST(QNPredicateBudget, GrowsWithItsObjects) {
  EXPECT_EQ(QNPredicateBudget(1000).left() - QNPredicateBudget(0).left(),
            1000 * QNPredicateBudget::kStepsPerObject);
}

}  // namespace
}  // namespace quillon
