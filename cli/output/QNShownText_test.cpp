#include "cli/output/QNShownText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(QNShownText, LeavesOrdinaryTextOfAnyLanguageAsItIs) {
  for (const std::string text : {"", "Example Bank", "C:\\path", "Große Straße", "日本語",
                                 "👩‍💻🏳️‍🌈", "naïve café"}) {
    EXPECT_EQ(shownText(text), text);
    EXPECT_EQ(shownLines(text), text);
  }
}

TEST(QNShownText, EscapesWhatATerminalWouldObey) {
  EXPECT_EQ(shownText("a\x1b[31mred"), "a\\x1b[31mred");
  EXPECT_EQ(shownText("a\x07\x7f"), "a\\x07\\x7f");
  EXPECT_EQ(shownText("a\nb\tc\rd"), "a\\nb\\tc\\rd");
  EXPECT_EQ(shownText(std::string("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(shownText("\xc2\x9b"
                      "31m"),
            "\\u{9b}31m");  // the one-character form of ESC [
}

TEST(QNShownText, EscapesWhatWouldShowTextAsSomethingElse) {
  EXPECT_EQ(shownText("moc\xe2\x80\xae"
                      "abc"),
            "moc\\u{202e}abc");
  EXPECT_EQ(shownText("a\xe2\x81\xa6z"), "a\\u{2066}z");
  EXPECT_EQ(shownText("a\xe2\x80\xa8z"), "a\\u{2028}z");
  EXPECT_EQ(shownText("a\xe2\x80\x8bz"), "a\\u{200b}z");
}

TEST(QNShownText, EscapesBytesThatAreNotUTF8) {
  EXPECT_EQ(shownText("a\xff z"), "a\\xff z");
  EXPECT_EQ(shownText("\xe2\x82"), "\\xe2\\x82");
}

TEST(QNShownText, LinesKeepNewLinesAndTabsOnly) {
  EXPECT_EQ(shownLines("a\n\tb\r\x1b"), "a\n\tb\\r\\x1b");
}

TEST(QNShownText, OwnTextsKeepTheirMarksOfDirectionAndNothingElse) {
  EXPECT_EQ(shownOwnLines("4\u200f/7\u200e/\u061c"), "4\u200f/7\u200e/\u061c");
  EXPECT_EQ(shownOwnLines("a\u202eb\u2066c\x1b"), "a\\u{202e}b\\u{2066}c\\x1b");
  EXPECT_EQ(shownText("4\u200f/7\u200e/\u061c"), "4\\u{200f}/7\\u{200e}/\\u{61c}");
  EXPECT_EQ(shownLines("4\u200f"), "4\\u{200f}");
}

std::string shownJson(std::string_view json) {
  std::string shown;
  writeShownJson(json, [&shown](std::string_view piece) { shown += piece; });
  return shown;
}

TEST(QNShownText, JSONHasItsOwnEscapesForTheSame) {
  EXPECT_EQ(shownJson("\"a\x7f\u009b\u202e\u200f\u2028z\ufeff\""),
            R"("a\u007f\u009b\u202e\u200f\u2028z\ufeff")");
  EXPECT_EQ(shownJson("[\"a\xff\"]"), R"(["a\ufffd"])");
  for (const std::string json : {"", "[1,\n2]", R"("\u001b\n\\")", "\"日本語 👩‍💻\""}) {
    EXPECT_EQ(shownJson(json), json);
  }
}

TEST(QNShownText, OnePairOfMarksAroundTheWholeIsLeftOut) {
  EXPECT_EQ(withoutIsolation("\u20664111 **** 1111\u2069"), "4111 **** 1111");
  EXPECT_EQ(withoutIsolation("\u2066\u2069"), "");
  for (const std::string text :
       {"", "a", "\u2066", "\u2066a", "a\u2069", "\u2066a\u2069b", "\u2066a\u2069b\u2069"}) {
    EXPECT_EQ(withoutIsolation(text), text);
  }
}

TEST(QNShownText, CountsColumnsAsATerminalDoes) {
  EXPECT_EQ(shownWidth("abc"), 3u);
  EXPECT_EQ(shownWidth("日本"), 4u);
  EXPECT_EQ(shownWidth("e\xcc\x81"), 1u);
  EXPECT_EQ(padded("日本", 6), "日本  ");
  EXPECT_EQ(padded("abcdef", 3), "abcdef");
}

}  // namespace
}  // namespace quillon
