#include "cli/shell/QNShellWords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>

#include "cli/QNToolError.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> wordsOf(std::string_view line) {
  const auto words = shellWords(line);
  EXPECT_TRUE(words.ok()) << line;
  std::vector<std::string> texts;
  if (words.ok()) {
    for (const QNShellWord& word : words.value()) texts.push_back(word.text);
  }
  return texts;
}

// What the system's own shell makes of a line: each word behind a mark of its own.
std::vector<std::string> wordsOfSystemShell(const std::string& line) {
  const std::string command = "set -f; printf '%s\\001' " + line;
  std::string quoted = "sh -c '";
  for (const char c : command) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen((quoted + "'").c_str(), "r"), pclose);
  std::vector<std::string> words(1);
  for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
    if (c == 1) {
      words.emplace_back();
    } else {
      words.back() += static_cast<char>(c);
    }
  }
  words.pop_back();
  return words;
}

TEST(ShellWords, ReadsWhatTheSystemsShellReads) {
  for (const std::string line : {"show Bank",
                                 "  show \t Bank  ",
                                 "show 'My bank'",
                                 "show \"My bank\"",
                                 "show My\\ bank",
                                 "a'b'\"c\"d",
                                 "''",
                                 "\"\" ''",
                                 "a\\'b",
                                 "'a\\b'",
                                 "\"a\\b\"",
                                 "\"a\\\\b\"",
                                 "\"a\\\"b\"",
                                 "\"it's\"",
                                 "'say \"hi\"'",
                                 "\"a\\$b\\`c\"",
                                 "show Bank # of mine",
                                 "a#b",
                                 "'#' x",
                                 "ü 日本 'é ö'",
                                 "--set notes='two words'",
                                 "x=1 y"}) {
    EXPECT_EQ(wordsOf(line), wordsOfSystemShell(line)) << line;
  }
}

TEST(ShellWords, AreNoneInALineOfBlanksOrComments) {
  EXPECT_THAT(wordsOf(""), IsEmpty());
  EXPECT_THAT(wordsOf(" \t"), IsEmpty());
  EXPECT_THAT(wordsOf("# a comment"), IsEmpty());
}

TEST(ShellWords, ExpandNothing) {
  EXPECT_THAT(wordsOf("$HOME *.csv ~ a|b > x; y & `id` \"$(id)\""),
              ElementsAre("$HOME", "*.csv", "~", "a|b", ">", "x;", "y", "&", "`id`", "$(id)"));
}

TEST(ShellWords, RefuseALineThatEndsInsideAQuotation) {
  for (const std::string_view line : {"show 'My bank", "show \"My bank", "show My\\", "'a' \"b"}) {
    const auto words = shellWords(line);
    ASSERT_FALSE(words.ok()) << line;
    EXPECT_EQ(exitFor(words.error()), QNExit::wrongUsage);
    EXPECT_EQ(words.error().message, "the line ends inside a quotation");
  }
}

TEST(ShellWords, TellWhereTheyStand) {
  const auto words = shellWords("a  'b c' d");

  ASSERT_TRUE(words.ok());
  ASSERT_EQ(words.value().size(), 3u);
  EXPECT_EQ(words.value()[1].start, 3u);
  EXPECT_EQ(words.value()[1].end, 8u);
}

TEST(ShellWords, OfABegunLineEndWithTheOneThatIsWritten) {
  EXPECT_THAT(begunLine("show Ba").words, ElementsAre("show"));
  EXPECT_EQ(begunLine("show Ba").begun.text, "Ba");
  EXPECT_EQ(begunLine("show Ba").begun.start, 5u);
  EXPECT_THAT(begunLine("show Bank ").words, ElementsAre("show", "Bank"));
  EXPECT_EQ(begunLine("show Bank ").begun.text, "");
  EXPECT_EQ(begunLine("show Bank ").begun.start, 10u);
  EXPECT_EQ(begunLine("show 'My ba").begun.text, "My ba");
  EXPECT_EQ(begunLine("show My\\ ba").begun.text, "My ba");
  EXPECT_EQ(begunLine("").begun.start, 0u);
}

TEST(ShellWords, ComeBackFromTheirQuotedForm) {
  for (const std::string word : {"", "Bank", "My bank", "it's", "a\\b", "\"x\"", "#1", "ü 日本",
                                 "a\tb", "$x", "--tag", "'"}) {
    EXPECT_THAT(wordsOf(quotedWord(word)), ElementsAre(word));
  }
  EXPECT_EQ(quotedWord("Bank-1_a.b@c"), "Bank-1_a.b@c");
}

}  // namespace
}  // namespace quillon
