#include "quillon/platform/text/QNRegularExpression.h"

#include <gtest/gtest.h>

#include <thread>

namespace quillon {
namespace {

using Match = QNRegularExpression::Match;

std::shared_ptr<const QNRegularExpression> expression(std::string_view text,
                                                      bool ignoringCase = false) {
  return QNRegularExpression::compiled(text, ignoringCase).value();
}

Match match(std::string_view text, std::string_view pattern, bool ignoringCase = false) {
  return expression(pattern, ignoringCase)->matches(text, [](std::uint64_t) { return true; });
}

TEST(QNRegularExpression, MatchesWholeTexts) {
  EXPECT_EQ(match("2024-07", "\\d{4}-\\d\\d"), Match::yes);
  EXPECT_EQ(match("in 2024-07", "\\d{4}-\\d\\d"), Match::no);
  EXPECT_EQ(match("", ""), Match::yes);
  EXPECT_EQ(match("", ".+"), Match::no);
  EXPECT_EQ(match(std::string_view(), "a*"), Match::yes);
}

TEST(QNRegularExpression, CountsCharactersAndNotBytes) {
  EXPECT_EQ(match("Zürich", "Z.rich"), Match::yes);
  EXPECT_EQ(match("\U0001F600", "."), Match::yes);
}

TEST(QNRegularExpression, IgnoresCaseWhereAsked) {
  EXPECT_EQ(match("ÄRGER", "ärger"), Match::no);
  EXPECT_EQ(match("ÄRGER", "ärger", true), Match::yes);
}

TEST(QNRegularExpression, RefusesWhatIsNone) {
  for (const std::string& broken : {std::string("("), std::string("[a"), std::string("a{2"),
                                    std::string("*"), std::string(5000, 'a')}) {
    const auto made = QNRegularExpression::compiled(broken, false);

    ASSERT_FALSE(made.ok());
    EXPECT_EQ(made.error().domainCodeString(), "QNErrorDomain 114");
  }
}

TEST(QNRegularExpression, EndsWhenItMaySpendNoMore) {
  std::uint64_t spent = 0;
  const auto spend = [&spent](std::uint64_t steps) { return (spent += steps) <= 1'000'000; };

  const Match matched = expression("(a|a)*b")->matches(std::string(60, 'a'), spend);

  EXPECT_EQ(matched, Match::tooCostly);
  EXPECT_LE(spent, 1'000'000 + QNRegularExpression::kStepsBetweenCalls);
}

TEST(QNRegularExpression, EndsByItselfWhereNobodyCounts) {
  EXPECT_EQ(match(std::string(60, 'a'), "(a|a)*b"), Match::tooCostly);
}

TEST(QNRegularExpression, RemembersNoMoreThanItsStackHolds) {
  EXPECT_EQ(match(std::string(4'000'000, 'a'), "(a|b)*"), Match::tooCostly);
}

TEST(QNRegularExpression, ServesSeveralThreads) {
  const auto shared = expression("[a-f]*");
  bool first = false;
  bool second = false;

  std::thread other([&] {
    for (int i = 0; i < 1000; ++i) {
      first = shared->matches("abc", [](std::uint64_t) { return true; }) == Match::yes;
    }
  });
  for (int i = 0; i < 1000; ++i) {
    second = shared->matches("xyz", [](std::uint64_t) { return true; }) == Match::no;
  }
  other.join();

  EXPECT_TRUE(first);
  EXPECT_TRUE(second);
}

}  // namespace
}  // namespace quillon
