#include "quillon/organisation/predicates/QNPredicate.h"

#include <gtest/gtest.h>

#include "quillon/organisation/predicates/internal/QNPredicateTesting.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

std::string truthText(const QNResult<QNTruth>& truth) {
  if (!truth.ok()) return truth.error().message;
  if (truth.value() == QNTruth::unknown) return "unknown";
  return truth.value() == QNTruth::yes ? "yes" : "no";
}

// An object whose secret lies in its details.
QNSampleObject sampleObject() {
  QNSampleObject object;
  object.withText("title", "Bank").withText("secret", "hidden").withNumber("count", 1);
  object.inDetails = {"secret"};
  return object;
}

std::string withoutDetails(std::string_view format) {
  QNSampleObject object = sampleObject();
  QNPredicateBudget budget;
  return truthText(predicate(format)->evaluateWithoutDetails(object, budget));
}

TEST(QNPredicate, OfAValueIsThatValue) {
  QNSampleObject object;

  EXPECT_TRUE(QNPredicate::predicateWithValue(true)->evaluate(object).value());
  EXPECT_FALSE(QNPredicate::predicateWithValue(false)->evaluate(object).value());
  EXPECT_EQ(QNPredicate::predicateWithValue(true)->constantValue(), true);
  EXPECT_EQ(predicate("count == 1")->constantValue(), std::nullopt);
}

TEST(QNPredicate, JoinsItsParts) {
  QNSampleObject object = sampleObject();

  EXPECT_EQ(answer(object, "count == 1 AND title == \"Bank\""), "yes");
  EXPECT_EQ(answer(object, "count == 1 AND title == \"x\""), "no");
  EXPECT_EQ(answer(object, "count == 2 OR title == \"Bank\""), "yes");
  EXPECT_EQ(answer(object, "count == 2 OR title == \"x\""), "no");
  EXPECT_EQ(answer(object, "NOT count == 2"), "yes");
  EXPECT_EQ(answer(object, "NOT count == 1"), "no");
  EXPECT_EQ(answer(object, "AND {}"), "yes");
  EXPECT_EQ(answer(object, "OR {}"), "no");
  EXPECT_EQ(answer(object, "AND {count == 2}"), "no");
}

TEST(QNPredicate, AsksNoMoreThanSettlesIt) {
  QNSampleObject object = sampleObject();

  EXPECT_EQ(answer(object, "count == 2 AND title == \"Bank\" AND unknown == 1"), "no");
  EXPECT_EQ(object.numberOfQuestions, 1);
}

TEST(QNPredicate, IsSettledWithoutDetailsWhereThatIsPossible) {
  EXPECT_EQ(withoutDetails("count == 1"), "yes");
  EXPECT_EQ(withoutDetails("secret == \"hidden\""), "unknown");
  EXPECT_EQ(withoutDetails("NOT secret == \"hidden\""), "unknown");
  EXPECT_EQ(withoutDetails("secret == \"hidden\" AND count == 2"), "no");
  EXPECT_EQ(withoutDetails("secret == \"hidden\" AND count == 1"), "unknown");
  EXPECT_EQ(withoutDetails("secret == \"hidden\" OR count == 1"), "yes");
  EXPECT_EQ(withoutDetails("secret == \"hidden\" OR count == 2"), "unknown");
  EXPECT_EQ(withoutDetails("\"hidden\" == secret"), "unknown");
  EXPECT_EQ(withoutDetails("unknown == 1"), "there is no key path unknown");
}

TEST(QNPredicate, AsksForNoDetailsWhereTheyAreClosed) {
  QNSampleObject object = sampleObject();
  QNPredicateBudget budget;

  EXPECT_TRUE(predicate("secret == 1")->evaluateWithoutDetails(object, budget).ok());
  EXPECT_EQ(object.numberOfQuestions, 0);
}

TEST(QNPredicate, KnowsWhatOfAnItemLiesInDetails) {
  EXPECT_FALSE(predicate("title == \"a\" AND ANY tagsForSearch == \"b\" AND passwordStrength < 20 "
                         "AND categoryUUID == \"001\" AND folderUUID == NIL AND "
                         "numberOfAttachments > 0 AND createdAtAsDate > updatedAtAsDate")
                   ->needsDetails());
  for (const char* const keyPath :
       {"username", "password", "notesPlain", "URLStringsForSearch", "allValuesForSearch"}) {
    EXPECT_TRUE(predicate("TRUEPREDICATE AND NOT title == " + std::string(keyPath))->needsDetails())
        << keyPath;
  }
}

TEST(QNPredicate, TellsBeforehandWhatNoItemCanAnswer) {
  const auto fault = [](std::string_view format) {
    const auto found = predicate(format)->faultForItems();
    return found ? found->message : "none";
  };

  EXPECT_EQ(fault("title == \"a\" AND NOT password == NIL"), "none");
  EXPECT_EQ(fault("title == \"a\" OR NOT colour == 1"), "there is no key path colour");
  EXPECT_EQ(fault("1 == colour"), "there is no key path colour");
  EXPECT_EQ(fault("AND {title MATCHES \"[\"}"), "no regular expression");
  EXPECT_EQ(fault("TRUEPREDICATE"), "none");
}

TEST(QNPredicate, EqualsTheSameWordsAlone) {
  EXPECT_TRUE(predicate("a == 1 AND b == 2")->isEqual(*predicate("a == 1 AND b == 2")));
  EXPECT_FALSE(predicate("a == 1 AND b == 2")->isEqual(*predicate("b == 2 AND a == 1")));
  EXPECT_FALSE(predicate("a == 1")->isEqual(*predicate("AND {a == 1}")));
  EXPECT_FALSE(predicate("a == 1")->isEqual(*predicate("a == 1.0")));
  EXPECT_FALSE(predicate("a == 1")->isEqual(*predicate("a ==[c] 1")));
  EXPECT_FALSE(predicate("a == 1")->isEqual(*predicate("ANY a == 1")));
  EXPECT_FALSE(predicate("a == 1")->isEqual(*predicate("TRUEPREDICATE")));
  EXPECT_FALSE(predicate("TRUEPREDICATE")->isEqual(*predicate("FALSEPREDICATE")));
}

TEST(QNPredicate, IsMadeWithoutCopiesOfItsTextsThatStayBehind) {
  constexpr std::string_view kText = "a text that is too long for a place inside an object";
  QNComparisonPredicate::Parts parts{*QNExpression::keyPath("a"), *QNExpression::text(kText)};
  const QNFreedBlockWatch watch(kText);

  const auto comparison = QNComparisonPredicate::comparison(std::move(parts));
  const auto compound = QNCompoundPredicate::compound(QNCompoundType::andType, {comparison});

  ASSERT_NE(compound, nullptr);
  EXPECT_EQ(watch.found(), 0u);
}

TEST(QNCompoundPredicate, RefusesANotOfAnyNumberButOne) {
  const auto part = QNPredicate::predicateWithValue(true);

  EXPECT_EQ(QNCompoundPredicate::compound(QNCompoundType::notType, {}), nullptr);
  EXPECT_EQ(QNCompoundPredicate::compound(QNCompoundType::notType, {part, part}), nullptr);
  EXPECT_EQ(QNCompoundPredicate::compound(QNCompoundType::andType, {part, nullptr}), nullptr);
}

TEST(QNCompoundPredicate, RefusesATypeThatThereIsNot) {
  for (const int type : {-1, 3, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(QNCompoundPredicate::compound(static_cast<QNCompoundType>(type), {}), nullptr)
        << type;
  }
}

TEST(QNCompoundPredicate, RefusesToNestBeyondItsLimit) {
  QNPredicateRef nested = QNPredicate::predicateWithValue(true);
  for (std::size_t i = 0; i < QNPredicate::kMaxDepth; ++i) {
    nested = QNCompoundPredicate::compound(QNCompoundType::notType, {nested});
    ASSERT_NE(nested, nullptr);
  }

  EXPECT_EQ(nested->depth(), QNPredicate::kMaxDepth);
  EXPECT_EQ(QNCompoundPredicate::compound(QNCompoundType::notType, {nested}), nullptr);
}

}  // namespace
}  // namespace quillon
