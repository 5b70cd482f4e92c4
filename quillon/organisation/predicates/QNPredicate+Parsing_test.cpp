#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "quillon/organisation/predicates/QNExpression.h"
#include "quillon/organisation/predicates/internal/QNPredicateTesting.h"
#include "quillon/organisation/predicates/internal/QNPredicateText.h"
#include "quillon/organisation/predicates/internal/QNRandomPredicates.h"

namespace quillon {
namespace {

std::string formatOf(std::string_view format, std::span<const QNExpression> arguments = {}) {
  const auto made = QNPredicate::predicateWithFormat(format, arguments);
  return made.ok() ? made.value()->predicateFormat() : made.error().message;
}

std::string faultOf(std::string_view format) {
  const auto made = QNPredicate::predicateWithFormat(format);
  if (made.ok()) return "none";
  EXPECT_EQ(made.error().domainCodeString(), "QNErrorDomain 114");
  return made.error().message;
}

TEST(QNPredicateText, HasTheFormsThatOldQuestionsAreKnownBy) {
  EXPECT_EQ(formatOf("folderTitle ==[cd] \"\""), "folderTitle ==[cd] \"\"");
  EXPECT_EQ(formatOf("existingString == 'YES'"), "existingString == \"YES\"");
  EXPECT_EQ(formatOf("folderUUID==NIL"), "folderUUID == NIL");
  const QNExpression uuid[] = {*QNExpression::text("001")};
  EXPECT_EQ(formatOf("categoryUUID = %@", uuid), "categoryUUID == \"001\"");
}

TEST(QNPredicateText, ReadsEachOperatorInEachOfItsSpellings) {
  const std::pair<const char*, const char*> operators[] = {{"<", "<"},
                                                           {"<=", "<="},
                                                           {"=<", "<="},
                                                           {">", ">"},
                                                           {">=", ">="},
                                                           {"=>", ">="},
                                                           {"==", "=="},
                                                           {"=", "=="},
                                                           {"!=", "!="},
                                                           {"<>", "!="},
                                                           {"matches", "MATCHES"},
                                                           {"Like", "LIKE"},
                                                           {"beginswith", "BEGINSWITH"},
                                                           {"EndsWith", "ENDSWITH"},
                                                           {"in", "IN"},
                                                           {"contains", "CONTAINS"},
                                                           {"between", "BETWEEN"}};
  for (const auto& [given, known] : operators) {
    EXPECT_EQ(formatOf("a " + std::string(given) + " 1"), "a " + std::string(known) + " 1");
  }
}

TEST(QNPredicateText, ReadsOptionsInAnyOrderAndCase) {
  EXPECT_EQ(formatOf("a == [c] 1"), "a ==[c] 1");
  EXPECT_EQ(formatOf("a ==[d] 1"), "a ==[d] 1");
  EXPECT_EQ(formatOf("a ==[DC] 1"), "a ==[cd] 1");
}

TEST(QNPredicateText, ReadsConstants) {
  EXPECT_EQ(formatOf("a == -5"), "a == -5");
  EXPECT_EQ(formatOf("a == 2.50"), "a == 2.5");
  EXPECT_EQ(formatOf("a == 1e3"), "a == 1000.0");
  EXPECT_EQ(formatOf("a == 1e300"), "a == 1e+300");
  EXPECT_EQ(formatOf("a == 9223372036854775807"), "a == 9223372036854775807");
  EXPECT_EQ(formatOf("a == 9223372036854775808"), "a == 9.223372036854776e+18");
  EXPECT_EQ(formatOf("a == true"), "a == YES");
  EXPECT_EQ(formatOf("a == No"), "a == NO");
  EXPECT_EQ(formatOf("a == null"), "a == NIL");
  EXPECT_EQ(formatOf("a == date '2024-07-04'"), "a == DATE \"2024-07-04T00:00:00Z\"");
  EXPECT_EQ(formatOf("a == DATE \"0001-01-01T00:00:00Z\""), "a == DATE \"0001-01-01T00:00:00Z\"");
  EXPECT_EQ(formatOf("a == DATE \"9999-12-31T23:59:59Z\""), "a == DATE \"9999-12-31T23:59:59Z\"");
  EXPECT_EQ(formatOf("a IN { 1,'b' , NIL}"), "a IN {1, \"b\", NIL}");
  EXPECT_EQ(formatOf("a IN {}"), "a IN {}");
}

TEST(QNPredicateText, WritesWhatWouldEndATextWithEscapes) {
  EXPECT_EQ(formatOf(R"(a == 'it"s \'so\' \\ \n\r\t\u0001')"),
            R"(a == "it\"s 'so' \\ \n\r\t\u0001")");
  EXPECT_EQ(formatOf("a == \"Zürich \U0001F600\""), "a == \"Zürich \U0001F600\"");
}

TEST(QNPredicateText, KnowsAKeyPathThatIsAWordToo) {
  EXPECT_EQ(formatOf("#any == 1"), "#any == 1");
  EXPECT_EQ(formatOf("#title == 1"), "title == 1");
  EXPECT_EQ(formatOf("any.thing == 1"), "any.thing == 1");
  EXPECT_EQ(formatOf("_a9.b_c == 1"), "_a9.b_c == 1");
}

TEST(QNPredicateText, PutsCompoundsInCompoundsIntoParentheses) {
  EXPECT_EQ(formatOf("a == 1 or b == 2 and c == 3"), "a == 1 OR (b == 2 AND c == 3)");
  EXPECT_EQ(formatOf("(a == 1 || b == 2) && c == 3"), "(a == 1 OR b == 2) AND c == 3");
  EXPECT_EQ(formatOf("a == 1 AND b == 2 AND c == 3"), "a == 1 AND b == 2 AND c == 3");
  EXPECT_EQ(formatOf("a == 1 AND (b == 2 AND c == 3)"), "a == 1 AND (b == 2 AND c == 3)");
  EXPECT_EQ(formatOf("NOT a == 1 AND b == 2"), "(NOT a == 1) AND b == 2");
  EXPECT_EQ(formatOf("!(a == 1 AND b == 2)"), "NOT (a == 1 AND b == 2)");
  EXPECT_EQ(formatOf("NOT NOT a == 1"), "NOT (NOT a == 1)");
  EXPECT_EQ(formatOf("((a == 1))"), "a == 1");
}

TEST(QNPredicateText, HasAFormForCompoundsOfLessThanTwo) {
  EXPECT_EQ(formatOf("and {}"), "AND {}");
  EXPECT_EQ(formatOf("OR{a == 1}"), "OR {a == 1}");
  EXPECT_EQ(formatOf("AND {a == 1, b == 2}"), "a == 1 AND b == 2");
  EXPECT_EQ(formatOf("NOT AND {a == 1 OR b == 2}"), "NOT (AND {a == 1 OR b == 2})");
}

TEST(QNPredicateText, ReadsNoneAsNotAny) {
  EXPECT_EQ(formatOf("NONE a == 1"), "NOT ANY a == 1");
}

TEST(QNPredicateText, PutsArgumentsInTheirPlaces) {
  const QNExpression two[] = {QNExpression::integer(1), *QNExpression::keyPath("b")};

  EXPECT_EQ(formatOf("a == %@ AND %@ == 2", two), "a == 1 AND b == 2");
  EXPECT_EQ(formatOf("a IN {%@, 2} AND %@ == 3", two), "a IN {1, 2} AND b == 3");
  EXPECT_EQ(formatOf("a == %@", two), "less places than arguments at byte 7");
  EXPECT_EQ(formatOf("a == '%@'", {}), "a == \"%@\"");
}

TEST(QNPredicateText, TellsWhatIsWrongAndWhere) {
  EXPECT_EQ(faultOf(""), "no value at byte 0");
  EXPECT_EQ(faultOf("title"), "no operator at byte 5");
  EXPECT_EQ(faultOf("title =="), "no value at byte 8");
  EXPECT_EQ(faultOf("title == \"a"), "a text without an end at byte 9");
  EXPECT_EQ(faultOf("title == \"\\x\""), "an unknown escape at byte 10");
  EXPECT_EQ(faultOf("title == \"\\u00ff\""), "an unknown escape at byte 10");
  EXPECT_EQ(faultOf("title == 1 2"), "more than a predicate at byte 11");
  EXPECT_EQ(faultOf("title == 1.."), "no value at byte 9");
  EXPECT_EQ(faultOf("title == 1e999"), "no value at byte 9");
  EXPECT_EQ(faultOf("title ==[x] 1"), "an unknown option at byte 9");
  EXPECT_EQ(faultOf("title ==[cc] 1"), "an unknown option at byte 9");
  EXPECT_EQ(faultOf("title ==[] 1"), "no option at byte 9");
  EXPECT_EQ(faultOf("title ==[c 1"), "no end of options at byte 11");
  EXPECT_EQ(faultOf("(title == 1"), "no closing parenthesis at byte 11");
  EXPECT_EQ(faultOf("title IN {1"), "no end of a list at byte 11");
  EXPECT_EQ(faultOf("title IN {{1}}"), "no value at byte 10");
  EXPECT_EQ(faultOf("title IN {b}"), "no value at byte 10");
  EXPECT_EQ(faultOf("AND title == 1"), "no list of parts at byte 4");
  EXPECT_EQ(faultOf("title == DATE 5"), "no date at byte 14");
  EXPECT_EQ(faultOf("title == DATE \"2024-02-30\""), "no date at byte 14");
  EXPECT_EQ(faultOf("title == DATE \"2024-02-01T24:00:00Z\""), "no date at byte 14");
  EXPECT_EQ(faultOf("title == DATE \"0000-01-01\""), "no date at byte 14");
  EXPECT_EQ(faultOf("title == DATE \"2024-1-1\""), "no date at byte 14");
  EXPECT_EQ(faultOf("title == DATE \"-024-01-01\""), "no date at byte 14");
  EXPECT_EQ(faultOf("title == $x"), "an unknown sign at byte 9");
  EXPECT_EQ(faultOf("a. == 1"), "no name at byte 0");
  EXPECT_EQ(faultOf("# == 1"), "no name at byte 0");
  EXPECT_EQ(faultOf("title == %@"), "no argument for a place at byte 9");
  EXPECT_EQ(faultOf(std::string(256, 'a') + " == 1"), "a key path that is too long at byte 0");
  EXPECT_EQ(faultOf("title == \"\xFF\""), "the predicate's text isn't UTF-8");
  EXPECT_EQ(faultOf(std::string(QNPredicate::kMaxTextBytes + 1, ' ')),
            "the predicate's text is too long");
}

TEST(QNPredicateText, RefusesToNestTenThousandDeep) {
  const auto repeated = [](std::string_view part) {
    std::string text;
    for (int i = 0; i < 10'000; ++i) text += part;
    return text;
  };

  EXPECT_EQ(faultOf(repeated("(") + "a == 1" + repeated(")")),
            "nesting that is too deep at byte 64");
  EXPECT_EQ(faultOf(repeated("NOT ") + "a == 1"), "nesting that is too deep at byte 256");
  EXPECT_EQ(faultOf(repeated("!") + "a == 1"), "nesting that is too deep at byte 64");
  EXPECT_EQ(faultOf(repeated("OR{") + "a == 1" + repeated("}")),
            "nesting that is too deep at byte 192");
}

TEST(QNPredicateText, RefusesCompoundsBeyondTheirDepth) {
  std::string text = "a == 1";
  for (std::size_t i = 0; i <= QNPredicate::kMaxDepth; ++i) text = "NOT (" + text + ")";

  EXPECT_TRUE(faultOf(text).starts_with("a predicate that is too large or nests too deep"));
}

TEST(QNPredicateText, HidesWhatIsSearchedForInLogs) {
  EXPECT_EQ(predicate("a == \"secret\" AND b IN {\"x\", 5} AND NOT c == NIL")
                ->predicateFormatForLogging(),
            "a == \"…\" AND b IN {\"…\", 5} AND (NOT c == NIL)");
}

TEST(QNPredicateText, ReadsBackAsTheSameQuestion) {
  EXPECT_TRUE(rc::check([] {
    const QNPredicateRef made =
        QNRandomPredicates(*rc::gen::arbitrary<std::uint32_t>()).predicate(4);
    const std::string text = made->predicateFormat();

    const auto again = QNPredicate::predicateWithFormat(text);

    RC_ASSERT(again.ok());
    RC_ASSERT(again.value()->isEqual(*made));
    RC_ASSERT(again.value()->predicateFormat() == text);
  }));
}

TEST(QNPredicateText, HasItsBytesCountedWithoutBeingWritten) {
  EXPECT_TRUE(rc::check([] {
    const QNPredicateRef made =
        QNRandomPredicates(*rc::gen::arbitrary<std::uint32_t>()).predicate(4);
    QNPredicateText text(QNPredicateTextUse::counted);

    made->describe(text);

    RC_ASSERT(text.size() == made->predicateFormat().size());
    RC_ASSERT(text.take().empty());
  }));
}

TEST(QNExpression, RefusesWhatHasNoTextForm) {
  EXPECT_EQ(QNExpression::real(1.0 / 0.0), std::nullopt);
  EXPECT_EQ(QNExpression::real(std::nan("")), std::nullopt);
  EXPECT_EQ(QNExpression::text("\xFF"), std::nullopt);
  EXPECT_EQ(QNExpression::keyPath(""), std::nullopt);
  EXPECT_EQ(QNExpression::keyPath("9a"), std::nullopt);
  EXPECT_EQ(QNExpression::keyPath("a..b"), std::nullopt);
  EXPECT_EQ(QNExpression::keyPath("a b"), std::nullopt);
  EXPECT_EQ(QNExpression::list({*QNExpression::keyPath("a")}), std::nullopt);
  EXPECT_EQ(QNExpression::list({*QNExpression::list({})}), std::nullopt);
  const auto date = [](std::int64_t seconds) {
    return QNExpression::date(std::chrono::sys_seconds(std::chrono::seconds(seconds)));
  };
  EXPECT_EQ(date(QNExpression::kFirstSecond - 1), std::nullopt);
  EXPECT_EQ(date(QNExpression::kLastSecond + 1), std::nullopt);
  EXPECT_EQ(date(QNExpression::kFirstSecond)->description(), "DATE \"0001-01-01T00:00:00Z\"");
  EXPECT_EQ(date(QNExpression::kLastSecond)->description(), "DATE \"9999-12-31T23:59:59Z\"");
}

TEST(QNExpression, KnowsItsType) {
  EXPECT_EQ(static_cast<int>(QNExpression::integer(1).expressionType()), 0);
  EXPECT_EQ(static_cast<int>(QNExpression::keyPath("a")->expressionType()), 3);
}

}  // namespace
}  // namespace quillon
