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
                                      "edit Bank --set pin",
                                      "edit Bank --set-file notes=letter.txt",
                                      "edit Bank --set password=-",
                                      "edit Bank --set notes=",
                                      "trash Bank",
                                      "add login --title Bank --generate",
                                      "passwd --new-password-file new.txt",
                                      "otp Bank --at 59",
                                      "copy Bank --to work",
                                      "help edit",
                                      "lock",
                                      "exit",
                                      "pick --copy",
                                      "pick --copy=pin --clipboard wl-copy --clear 20",
                                      "smart show Weak",
                                      "folder move Travel --to-top",
                                      "folder move Travel Home",
                                      "tag rename work job",
                                      "merge other.qn --other-vault work",
                                      "template credit-card",
                                      "otp 'My bank'",
                                      "help vault add",
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
  EXPECT_EQ(kept("trash password=s3cret"), "trash password=‹hidden›");
  EXPECT_EQ(kept("otp JBSWY3DPEHPK3PXP"), "otp ‹hidden›");
  EXPECT_EQ(kept("otp 'jbsw y3dp ehpk 3pxp'"), "otp ‹hidden›");
  EXPECT_EQ(kept("otp otpauth://totp/x?secret"), "otp ‹hidden›");
  EXPECT_EQ(kept("edit --set password hunter2"), "edit --set password ‹hidden›");
}

TEST(HistoryLine, KeepsTheNameAloneOfACommandThatDoesNotTakeTheLine) {
  EXPECT_EQ(kept("edit Bank password=s3cret"), "edit");
  EXPECT_EQ(kept("add login --title Bank --password=s3cret"), "add login");
  EXPECT_EQ(kept("add login --title Bank --password s3cret"), "add login");
  EXPECT_EQ(kept("edit Bank --pasword s3cret"), "edit");
  EXPECT_EQ(kept("edit Bank --pasword=s3cret"), "edit");
  EXPECT_EQ(kept("list -ps3cret"), "list");
  EXPECT_EQ(kept("edit Bank --set notes=my pin is 1234"), "edit");
  EXPECT_EQ(kept("add login --title B --notes my pin is 1234"), "add login");
  EXPECT_EQ(kept("edit Bank --set password hunter2"), "edit");
  EXPECT_EQ(kept("add login --title B --password= hunter2"), "add login");
  EXPECT_EQ(kept("edit Bank --set notes= hunter2"), "edit");
  EXPECT_EQ(kept("passwd hunter2"), "passwd");
  EXPECT_EQ(kept("lock hunter2"), "lock");
  EXPECT_EQ(kept("vault add work hunter2"), "vault add");
  EXPECT_EQ(kept("help hunter2"), "help");
  EXPECT_EQ(kept("passwd hunter2 --help"), "passwd");
  EXPECT_EQ(kept("show -- hunter2"), "show");
}

TEST(HistoryLine, KeepsAnOptionOfItsOwnCommandAlone) {
  EXPECT_EQ(kept("generate --pin 6"), "generate --pin 6");
  EXPECT_EQ(kept("add credit-card --title C --pin 1234"), "add");
  EXPECT_EQ(kept("edit Bank --pin 1234"), "edit");
  EXPECT_EQ(kept("edit Bank --pin=1234"), "edit");
}

TEST(HistoryLine, HidesWhatIsSearchedFor) {
  EXPECT_EQ(kept("find --contents hunter2"), "find --contents ‹hidden›");
  EXPECT_EQ(kept("find forum shop --long"), "find ‹hidden› ‹hidden› --long");
  EXPECT_EQ(kept("find --where 'password == \"hunter2\"'"), "find --where ‹hidden›");
  EXPECT_EQ(kept("find --category --tag hunter2"), "find --category --tag ‹hidden›");
  EXPECT_EQ(kept("pick bank --copy"), "pick ‹hidden› --copy");
  EXPECT_EQ(kept("for https://user:pw@host/"), "for ‹hidden›");
  EXPECT_EQ(kept("for host"), "for ‹hidden›");
  for (const std::string_view predicate :
       {"password CONTAINS \"hunter2\"", "password LIKE \"hunter2\"",
        "password MATCHES \"hunter2\"", "password IN {\"hunter2\"}", "password < \"hunter2\"",
        "\"hunter2\" == password"}) {
    EXPECT_EQ(kept("smart add X '" + std::string(predicate) + "'"), "smart add X ‹hidden›");
  }
}

TEST(HistoryLine, HidesAValueThatLooksLikeAnOption) {
  EXPECT_EQ(kept("add login --title B --notes --hunter2"), "add login --title B --notes ‹hidden›");
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
  EXPECT_EQ(kept("vault add x --own-password --hint s3cret"),
            "vault add x --own-password --hint ‹hidden›");
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
