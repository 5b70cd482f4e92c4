#include "cli/shell/QNHistoryLine.h"

#include <gtest/gtest.h>

#include "cli/shell/QNLineGrammar.h"

namespace quillon {
namespace {

std::string kept(std::string_view line) {
  static const auto outlines = commandOutlines();
  return historyLineOf(line, outlines).value_or("nothing");
}

TEST(HistoryLine, KeepsWhatNamesSomething) {
  for (const std::string_view line : {"list",
                                      "show Bank",
                                      "show 'My bank' --field pin",
                                      "list --tag work --sort updated",
                                      "list --tag=work",
                                      "add router --title Home --tag net",
                                      "vault add work",
                                      "vault list",
                                      "find forum shop",
                                      "edit Bank --set pin",
                                      "edit Bank --set-file notes=letter.txt",
                                      "edit Bank --set password=-",
                                      "edit Bank --set notes=",
                                      "add login --title Bank --generate",
                                      "passwd --new-password-file new.txt",
                                      "otp Bank --at 59",
                                      "copy Bank --to work",
                                      "help edit",
                                      "lock",
                                      "exit",
                                      "pick bank --copy",
                                      "--json list",
                                      "generate --length 30"}) {
    EXPECT_EQ(kept(line), line);
  }
}

TEST(HistoryLine, HidesTheValuesOfFields) {
  EXPECT_EQ(kept("edit Bank --set notes=s3cret"), "edit Bank --set notes=‹hidden›");
  EXPECT_EQ(kept("edit Bank --set 'notes=two words' --tag work"),
            "edit Bank --set notes=‹hidden› --tag work");
  EXPECT_EQ(kept("edit Bank --set=notes=s3cret"), "edit Bank --set=notes=‹hidden›");
  EXPECT_EQ(kept("edit Bank --set 'My field=s3cret'"), "edit Bank --set 'My field=‹hidden›'");
  EXPECT_EQ(kept("edit Bank --add-field Extra.Code:string=s3cret"),
            "edit Bank --add-field Extra.Code:string=‹hidden›");
}

TEST(HistoryLine, HidesTheValuesOfOptionsThatHoldContent) {
  EXPECT_EQ(kept("add login --title Bank --username jo --notes 's3 cret' --url https://a.example"),
            "add login --title Bank --username ‹hidden› --notes ‹hidden› --url ‹hidden›");
  EXPECT_EQ(kept("otp --url otpauth://totp/x?secret=ABC"), "otp --url ‹hidden›");
  EXPECT_EQ(kept("init --hint 'the bird'"), "init --hint ‹hidden›");
  EXPECT_EQ(kept("find --url=https://a.example"), "find --url=‹hidden›");
}

TEST(HistoryLine, HidesWhatWasTypedInTheWrongWay) {
  EXPECT_EQ(kept("edit Bank password=s3cret"), "edit Bank password=‹hidden›");
  EXPECT_EQ(kept("add login --title Bank --password=s3cret"),
            "add login --title Bank --password=‹hidden›");
  EXPECT_EQ(kept("add login --title Bank --password s3cret"),
            "add login --title Bank --password ‹hidden›");
  EXPECT_EQ(kept("edit Bank --pasword s3cret"), "edit Bank --pasword ‹hidden›");
  EXPECT_EQ(kept("edit Bank --pasword=s3cret"), "edit Bank --pasword=‹hidden›");
  EXPECT_EQ(kept("list -ps3cret"), "list ‹hidden›");
}

TEST(HistoryLine, KeepsNothingOfALineThatBeginsWithABlank) {
  EXPECT_EQ(kept(" list"), "nothing");
  EXPECT_EQ(kept("\tlist"), "nothing");
  EXPECT_EQ(kept(""), "nothing");
}

TEST(HistoryLine, KeepsNothingOfWhatIsNoCommand) {
  EXPECT_EQ(kept("hunter2"), "nothing");
  EXPECT_EQ(kept("hunter2 list"), "nothing");
  EXPECT_EQ(kept("--json hunter2"), "nothing");
  EXPECT_EQ(kept("--json"), "nothing");
  EXPECT_EQ(kept("# a comment"), "nothing");
  EXPECT_EQ(kept("show 'never closed"), "nothing");
}

TEST(HistoryLine, HidesAValueThatItDoesNotKnowToBeAName) {
  // Whatever commands there are: an option whose value isn't on the list of names is hidden.
  const std::vector<QNCommandOutline> outlines = {
      {"", {}, {}}, {"new", {{"--made-up", true, {}}, {"--flag", false, {}}}, {}}};

  EXPECT_EQ(historyLineOf("new --made-up s3cret --flag word", outlines),
            "new --made-up ‹hidden› --flag word");
}

TEST(LineGrammar, ReadsDefinitionsOfTheTool) {
  const auto outlines = commandOutlines();
  QNLineGrammar grammar(outlines);

  EXPECT_EQ(grammar.take("--vault"), QNLineGrammar::Role::option);
  EXPECT_EQ(grammar.take("list"), QNLineGrammar::Role::value);
  EXPECT_EQ(grammar.take("vault"), QNLineGrammar::Role::command);
  EXPECT_EQ(grammar.take("add"), QNLineGrammar::Role::command);
  EXPECT_EQ(grammar.command(), "vault add");
  EXPECT_EQ(grammar.take("--own-password"), QNLineGrammar::Role::option);
  EXPECT_EQ(grammar.take("list"), QNLineGrammar::Role::word);
  EXPECT_EQ(grammar.words(), std::vector<std::string>{"list"});
}

}  // namespace
}  // namespace quillon
