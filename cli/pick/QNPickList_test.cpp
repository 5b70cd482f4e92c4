#include "cli/pick/QNPickList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "cli/pick/QNPickDrawing.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

QNPickList listOf(const std::vector<std::string>& titles) {
  QNPickList list;
  for (const std::string& title : titles) list.add({title, ""});
  return list;
}

std::vector<std::string> titlesOf(const QNPickList& list) {
  std::vector<std::string> titles;
  for (std::size_t i = 0; i < list.matches(); ++i) titles.push_back(list.rowOfMatch(i).title);
  return titles;
}

std::vector<std::string> narrowed(QNPickList& list, std::string_view typed) {
  list.narrowTo(typed);
  return titlesOf(list);
}

TEST(PickList, ShowsAllInTheirOrderAtFirst) {
  QNPickList list = listOf({"b", "a", "c"});

  EXPECT_THAT(titlesOf(list), ElementsAre("b", "a", "c"));
  EXPECT_THAT(narrowed(list, ""), ElementsAre("b", "a", "c"));
  EXPECT_THAT(narrowed(list, "  "), ElementsAre("b", "a", "c"));
}

TEST(PickList, PutsTheStartOfATitleBeforeTheStartOfAWordBeforeTheRest) {
  QNPickList list;
  list.add({"Elsewhere", "jo@bank.example"});
  list.add({"Snowbank", ""});
  list.add({"My bank", ""});
  list.add({"Bank", ""});
  list.add({"Bank of mine", ""});

  EXPECT_THAT(narrowed(list, "bank"),
              ElementsAre("Bank", "Bank of mine", "My bank", "Snowbank", "Elsewhere"));
}

TEST(PickList, WantsEveryWordWhereverItStands) {
  QNPickList list;
  list.add({"Bank", "jo"}, "work");
  list.add({"Bank", "ann"}, "home");
  list.add({"Shop", "jo"}, "work");

  list.narrowTo("work bank jo");

  ASSERT_EQ(list.matches(), 1u);
  EXPECT_EQ(list.indexOfMatch(0), 0u);
}

TEST(PickList, FindsNoWordAcrossTheEndOfATitle) {
  QNPickList list;
  list.add({"ab", "cd"}, "ef");

  EXPECT_THAT(narrowed(list, "bc"), IsEmpty());
  EXPECT_THAT(narrowed(list, "de"), IsEmpty());
  EXPECT_THAT(narrowed(list, "ef"), ElementsAre("ab"));
}

TEST(PickList, IgnoresCaseAndAccentsInEveryScript) {
  QNPickList list = listOf({"Café", "Ørsted", "ПРИВЕТ", "日本銀行"});

  EXPECT_THAT(narrowed(list, "CAFE"), ElementsAre("Café"));
  EXPECT_THAT(narrowed(list, "orsted"), ElementsAre("Ørsted"));
  EXPECT_THAT(narrowed(list, "привет"), ElementsAre("ПРИВЕТ"));
  EXPECT_THAT(narrowed(list, "銀"), ElementsAre("日本銀行"));
}

TEST(PickList, LooksOnlyAtWhatTheLettersBeforeLeft) {
  QNPickList list = listOf({"apple", "bank", "band", "bean"});

  list.narrowTo("b");
  EXPECT_EQ(list.looked(), 4u);
  list.narrowTo("ba");
  EXPECT_EQ(list.looked(), 3u);
  list.narrowTo("ban");
  EXPECT_EQ(list.looked(), 2u);
}

TEST(PickList, LooksAtAllAgainAfterALetterIsTakenBack) {
  QNPickList list = listOf({"apple", "bank", "band", "bean"});
  list.narrowTo("bank");

  EXPECT_THAT(narrowed(list, "be"), ElementsAre("bean"));
  EXPECT_EQ(list.looked(), 4u);
  EXPECT_THAT(narrowed(list, ""), ElementsAre("apple", "bank", "band", "bean"));
}

TEST(PickList, GivesTheSameWhetherTypedLetterByLetterOrAtOnce) {
  std::vector<std::string> titles;
  for (int i = 0; i < 2000; ++i) {
    titles.push_back("Account " + std::to_string(i * 7919 % 2000) + " at Example " +
                     std::to_string(i % 97));
  }
  QNPickList slow = listOf(titles);
  const std::string typed = "exa 19 acc";
  for (std::size_t size = 1; size < typed.size(); ++size) slow.narrowTo(typed.substr(0, size));
  QNPickList once = listOf(titles);

  EXPECT_EQ(narrowed(slow, typed), narrowed(once, typed));
  EXPECT_GT(once.matches(), 10u);
}

TEST(PickList, OfNothingHasNoMatches) {
  QNPickList list;

  EXPECT_THAT(narrowed(list, "a"), IsEmpty());
  EXPECT_EQ(list.size(), 0u);
}

// A keystroke may take 16 ms with optimization (bench/): ten times that is for a busy machine.
TEST(PickList, OfAHundredThousandShowsAKeystrokeAtOnce) {
  QNPickList list;
  for (int i = 0; i < 100'000; ++i) {
    list.add({"Account " + std::to_string(i) + " at Example " + std::to_string(i % 977),
              "person" + std::to_string(i) + "@example.org"},
             "https://login.example-" + std::to_string(i % 9973) + ".com/signin");
  }
  const std::string typed = "example 77 person";
  auto worst = std::chrono::steady_clock::duration::zero();
  std::size_t bytes = 0;
  for (std::size_t size = 1; size <= typed.size(); ++size) {
    const auto start = std::chrono::steady_clock::now();
    list.narrowTo(typed.substr(0, size));
    bytes += drawn({list, "> ", typed}, {24, 80}).size();
    worst = std::max(worst, std::chrono::steady_clock::now() - start);
  }

  EXPECT_LT(worst, std::chrono::milliseconds(160));
  EXPECT_GT(bytes, 10'000u);
  EXPECT_GT(list.matches(), 100u);
}

}  // namespace
}  // namespace quillon
