#include "cli/shell/QNShellCompletion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using Kind = QNShellCompletion::Kind;

class ShellCompletion : public ::testing::Test {
 protected:
  QNLineCompletion complete(std::string_view line) {
    return QNShellCompletion(outlines,
                             [this](Kind kind, const std::string& item) {
                               askedItem = item;
                               return names[static_cast<std::size_t>(kind)];
                             })
        .complete(line);
  }
  std::string lineAfter(std::string_view line) {
    const auto completion = complete(line);
    return std::string(line.substr(0, completion.start)) + completion.word;
  }

  std::vector<QNCommandOutline> outlines = commandOutlines();
  std::string askedItem;
  // In the order of Kind.
  std::vector<std::vector<std::string>> names = {
      {"Bank", "Bank of mine", "It's mine", "Café", "Red \x1b[31malert", "日本銀行"},
      {"work", "home/garden"},
      {"Travel", "Travel/2024"},
      {"login", "bank-account"},
      {"Personal", "work"},
      {"title", "notes", "Extra.pin"}};
};

TEST_F(ShellCompletion, CompletesCommandsAndTheirSecondWords) {
  EXPECT_EQ(lineAfter("tra"), "trash ");
  EXPECT_THAT(complete("re").choices, ElementsAre("resolve", "restore"));
  EXPECT_EQ(lineAfter("vault ic"), "vault icon ");
  EXPECT_EQ(lineAfter("ex"), "ex");
  EXPECT_THAT(complete("ex").choices, ElementsAre("exit", "export"));
  EXPECT_EQ(lineAfter("help tra"), "help trash ");
  EXPECT_EQ(lineAfter("--vault work tra"), "--vault work trash ");
}

TEST_F(ShellCompletion, CompletesTheOptionsOfTheCommand) {
  EXPECT_EQ(lineAfter("show Bank --rev"), "show Bank --reveal ");
  EXPECT_EQ(lineAfter("list --vau"), "list --vault ");
  EXPECT_THAT(complete("list --").choices, Contains("--category"));
  EXPECT_THAT(complete("list --").choices, Not(Contains("--reveal")));
  EXPECT_THAT(complete("list --sort ").choices,
              ElementsAre("category", "created", "strength", "title", "updated"));
  EXPECT_EQ(lineAfter("list --sort=up"), "list --sort=updated ");
}

TEST_F(ShellCompletion, CompletesNames) {
  EXPECT_EQ(lineAfter("list --tag wo"), "list --tag work ");
  EXPECT_EQ(lineAfter("list --tag=wo"), "list --tag=work ");
  EXPECT_EQ(lineAfter("list --category lo"), "list --category login ");
  EXPECT_EQ(lineAfter("list --vault p"), "list --vault Personal ");
  EXPECT_EQ(lineAfter("edit Bank --untag ho"), "edit Bank --untag home/garden ");
}

TEST_F(ShellCompletion, CompletesFieldsOfTheItemInTheLine) {
  EXPECT_EQ(lineAfter("show Bank --field ex"), "show Bank --field Extra.pin ");
  EXPECT_EQ(askedItem, "Bank");
  EXPECT_EQ(lineAfter("edit 'Bank of mine' --set no"), "edit 'Bank of mine' --set notes=");
  EXPECT_EQ(askedItem, "Bank of mine");
}

TEST_F(ShellCompletion, TakesCaseAndAccentsApart) {
  EXPECT_EQ(lineAfter("show cafe"), "show Café ");
  EXPECT_EQ(lineAfter("show 日"), "show 日本銀行 ");
}

TEST_F(ShellCompletion, QuotesWhatNeedsIt) {
  EXPECT_EQ(lineAfter("show it"), "show 'It'\\''s mine' ");
  EXPECT_EQ(lineAfter("show 'Bank o"), "show 'Bank of mine' ");
  EXPECT_EQ(lineAfter("show Bank\\ o"), "show 'Bank of mine' ");
}

TEST_F(ShellCompletion, GoesAsFarAsAllChoicesAgreeAndThenListsThem) {
  EXPECT_EQ(lineAfter("show ba"), "show Bank");
  EXPECT_EQ(lineAfter("show Bank"), "show Bank");
  EXPECT_THAT(complete("show Bank").choices, ElementsAre("Bank", "Bank of mine"));
}

TEST_F(ShellCompletion, NeverCutsACharacterInTwo) {
  names[0] = {"日本", "日曜", "旧"};  // the last one begins with the same byte

  EXPECT_EQ(lineAfter("show "), "show ");
  EXPECT_EQ(lineAfter("show 日"), "show 日");
}

TEST_F(ShellCompletion, OffersNoNameThatATerminalWouldObey) {
  EXPECT_THAT(complete("show Red").choices, IsEmpty());
  EXPECT_EQ(lineAfter("show Red"), "show Red");
}

TEST_F(ShellCompletion, LeavesALineAloneThatNothingFits) {
  EXPECT_EQ(lineAfter("show nobody"), "show nobody");
  EXPECT_EQ(lineAfter("show 'no body"), "show 'no body");
  EXPECT_EQ(lineAfter("nosuchcommand x"), "nosuchcommand x");
  EXPECT_EQ(lineAfter(""), "");
}

}  // namespace
}  // namespace quillon
