#include "cli/pick/QNPickDrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "cli/output/QNShownText.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// The text of each line, as the drawing places it; its colours are left out.
std::map<std::size_t, std::string> linesOf(std::string_view drawing) {
  std::map<std::size_t, std::string> lines;
  std::size_t row = 0;
  while (!drawing.empty()) {
    if (!drawing.starts_with("\x1b[")) {
      lines[row] += drawing.front();
      drawing.remove_prefix(1);
      continue;
    }
    const auto end = drawing.find_first_not_of("0123456789;?", 2);
    if (drawing[end] == 'H') row = std::stoul(std::string(drawing.substr(2)));
    drawing.remove_prefix(end + 1);
  }
  return lines;
}

QNPickList fiveItems() {
  QNPickList list;
  list.add({"Bank", "jo"});
  list.add({"日本銀行", "タロウ"});
  list.add({"e\u0301te\u0301", "two marks"});
  list.add({"Red \x1b[31malert\x07", "\u202egnp.exe"});
  list.add({std::string(500, 'w'), std::string(500, 'm')});
  return list;
}

TEST(PickDrawing, PutsWhatIsTypedAboveTheMatchesAndTheirCountBelow) {
  QNPickList list = fiveItems();
  list.narrowTo("ba");

  const auto lines = linesOf(drawn({list, "> ", "ba"}, {24, 80}));

  EXPECT_EQ(lines.at(1), "> ba");
  EXPECT_EQ(lines.at(2), "Bank" + std::string(38, ' ') + "jo");
  EXPECT_EQ(lines.count(3), 0u);
  EXPECT_EQ(lines.at(24), "1 of 5");
}

TEST(PickDrawing, AlignsWhatStandsBehindWideLettersAndMarks) {
  const QNPickList list = fiveItems();

  const auto lines = linesOf(drawn({list, "> ", ""}, {24, 80}));

  EXPECT_EQ(lines.at(3), "日本銀行" + std::string(34, ' ') + "タロウ");
  EXPECT_EQ(lines.at(4), "e\u0301te\u0301" + std::string(39, ' ') + "two marks");
}

TEST(PickDrawing, SendsNothingOfDataThatATerminalObeys) {
  const QNPickList list = fiveItems();

  const std::string text = drawn({list, "\x1b]0;x\x07> ", "\u202e"}, {24, 80});

  EXPECT_THAT(text, HasSubstr("Red \\x1b[31malert\\x07"));
  EXPECT_THAT(text, HasSubstr("\\u{202e}gnp.exe"));
  EXPECT_THAT(text, Not(HasSubstr("\x07")));
  EXPECT_THAT(text, Not(HasSubstr("\u202e")));
  EXPECT_THAT(text, Not(HasSubstr("\x1b[31m")));
  EXPECT_THAT(text, Not(HasSubstr("\x1b]")));
}

TEST(PickDrawing, IsNeverWiderThanTheTerminal) {
  const QNPickList list = fiveItems();
  for (std::size_t columns = 1; columns < 100; ++columns) {
    const auto lines = linesOf(drawn({list, "Some item> ", "what was typed 日本"}, {24, columns}));
    for (const auto& [row, line] : lines) {
      EXPECT_LE(shownWidth(line), columns) << row;
    }
  }
}

TEST(PickDrawing, KeepsTheEndOfWhatIsTypedInSight) {
  const QNPickList list = fiveItems();

  const auto lines = linesOf(drawn({list, "> ", std::string(200, 'a') + "the end"}, {24, 20}));

  EXPECT_EQ(lines.at(1), "> " + std::string(10, 'a') + "the end");
}

TEST(PickDrawing, ScrollsAndMarksTheSelectedMatch) {
  QNPickList list;
  for (int i = 0; i < 100; ++i) list.add({"row " + std::to_string(i), ""});

  const std::string text = drawn({list, "> ", "", 40, 42}, {12, 80});
  const auto lines = linesOf(text);

  EXPECT_EQ(lines.at(2), "row 40");
  EXPECT_EQ(lines.at(11), "row 49");
  EXPECT_EQ(lines.at(12), "100 of 100");
  EXPECT_THAT(text, HasSubstr("\x1b[7mrow 42\x1b[0m"));
  EXPECT_THAT(text, Not(HasSubstr("\x1b[7mrow 41")));
}

TEST(PickDrawing, FitsATerminalOfAnySize) {
  const QNPickList list = fiveItems();
  for (std::size_t rows = 1; rows < 6; ++rows) {
    const auto lines = linesOf(drawn({list, "> ", ""}, {rows, 80}));
    EXPECT_LE(lines.rbegin()->first, std::max<std::size_t>(rows, 2));
    EXPECT_EQ(rowsForMatches({rows, 80}), rows > 2 ? rows - 2 : 1);
  }
}

TEST(PickDrawing, LooksAtTheStartOfAnEndlessTitleOnly) {
  QNPickList list;
  std::string title;
  for (int i = 0; i < 350'000; ++i) title += "銀";
  list.add({title, title});

  const std::string text = drawn({list, "> ", ""}, {24, 80});

  EXPECT_LT(text.size(), 1000u);
  EXPECT_THAT(text, Not(HasSubstr("\\x")));  // no character was cut in two
}

TEST(CutToWidth, KeepsWholeCharactersAndTheirMarks) {
  EXPECT_EQ(cutToWidth("abc", 2), "ab");
  EXPECT_EQ(cutToWidth("abc", 3), "abc");
  EXPECT_EQ(cutToWidth("日本", 3), "日");
  EXPECT_EQ(cutToWidth("e\u0301a", 1), "e\u0301");
  EXPECT_EQ(cutToWidth("日", 1), "");
  EXPECT_EQ(cutToWidth("", 0), "");
}

}  // namespace
}  // namespace quillon
