#include "cli/import/QNCSVReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using testing::HasSubstr;
using Record = std::vector<std::string>;
using Records = std::vector<Record>;

// All records; one of "ERROR: ..." behind them for an error.
Records recordsIn(std::string_view text, char delimiter = ',') {
  QNCSVReader reader(toBytes(bytesOf(text)), delimiter);
  Records records;
  while (reader.next()) records.emplace_back(reader.fields().begin(), reader.fields().end());
  if (reader.error()) records.push_back({"ERROR: " + reader.error()->message});
  return records;
}

std::string utf8From(std::string_view content) {
  const auto text = QNCSVReader::utf8FromFile(toBytes(bytesOf(content)));
  return text ? std::string(textOf(text.value())) : "ERROR: " + text.error().message;
}

TEST(QNCSVReader, ReadsRecordsOfPlainFields) {
  EXPECT_EQ(recordsIn("a,b,c\nd,e,f\n"), (Records{{"a", "b", "c"}, {"d", "e", "f"}}));
  EXPECT_EQ(recordsIn("a,b\nc,d"), (Records{{"a", "b"}, {"c", "d"}}));
  EXPECT_EQ(recordsIn("a"), (Records{{"a"}}));
  EXPECT_EQ(recordsIn(""), Records{});
}

TEST(QNCSVReader, TakesEachLineEnd) {
  const Records expected{{"a", "b"}, {"c", "d"}};
  EXPECT_EQ(recordsIn("a,b\r\nc,d\r\n"), expected);
  EXPECT_EQ(recordsIn("a,b\nc,d\n"), expected);
  EXPECT_EQ(recordsIn("a,b\rc,d\r"), expected);
  EXPECT_EQ(recordsIn("a,b\r\nc,d\n"), expected);
}

TEST(QNCSVReader, KeepsBlanksAndEmptyFields) {
  EXPECT_EQ(recordsIn(" a , b\n"), (Records{{" a ", " b"}}));
  EXPECT_EQ(recordsIn(",\n"), (Records{{"", ""}}));
  EXPECT_EQ(recordsIn("a,,"), (Records{{"a", "", ""}}));
  EXPECT_EQ(recordsIn("\"\"\n"), (Records{{""}}));
  EXPECT_EQ(recordsIn("\"\",\"\""), (Records{{"", ""}}));
}

TEST(QNCSVReader, SkipsBlankLines) {
  EXPECT_EQ(recordsIn("\n\r\n\na\n\n\nb\n\n"), (Records{{"a"}, {"b"}}));
  EXPECT_EQ(recordsIn("\n\n"), Records{});
}

TEST(QNCSVReader, ReadsQuotedFieldsWithDelimitersNewLinesAndDoubledQuotes) {
  EXPECT_EQ(recordsIn("\"a,b\",\"c\r\nd\",\"e\"\"f\"\r\ng,h,i\r\n"),
            (Records{{"a,b", "c\r\nd", "e\"f"}, {"g", "h", "i"}}));
  EXPECT_EQ(recordsIn("\"\"\"\",\"\"\"a\"\"\""), (Records{{"\"", "\"a\""}}));
  EXPECT_EQ(recordsIn("\"a\"\"\"\"b\""), (Records{{"a\"\"b"}}));
}

TEST(QNCSVReader, AStrayQuoteInAnUnquotedFieldIsACharacter) {
  EXPECT_EQ(recordsIn("a\"b,c\"\n"), (Records{{"a\"b", "c\""}}));
  EXPECT_EQ(recordsIn(" \"a\",b\n"), (Records{{" \"a\"", "b"}}));
}

TEST(QNCSVReader, TextBehindAClosingQuoteBelongsToTheField) {
  EXPECT_EQ(recordsIn("\"a\"b,c\n"), (Records{{"ab", "c"}}));
  EXPECT_EQ(recordsIn("\"a\"\"b\"c\"d,e\n"), (Records{{"a\"bc\"d", "e"}}));
}

TEST(QNCSVReader, AQuoteThatIsNeverClosedIsAnErrorOfItsLine) {
  EXPECT_EQ(recordsIn("a\nb,\"c\nd\n"),
            (Records{{"a"}, {"ERROR: line 2: a quoted field has no end"}}));
  EXPECT_EQ(recordsIn("\""), (Records{{"ERROR: line 1: a quoted field has no end"}}));
  EXPECT_EQ(recordsIn("\"a\"\""), (Records{{"ERROR: line 1: a quoted field has no end"}}));
}

TEST(QNCSVReader, NothingIsReadAfterAnError) {
  QNCSVReader reader(toBytes(bytesOf("\"a")));

  EXPECT_FALSE(reader.next());
  EXPECT_FALSE(reader.next());
  EXPECT_TRUE(reader.fields().empty());
}

TEST(QNCSVReader, TellsTheLineThatARecordBeginsIn) {
  QNCSVReader reader(toBytes(bytesOf("a\r\n\"b\r\nc\rd\ne\"\r\n\r\nf\ng")));
  std::vector<std::size_t> lines;

  while (reader.next()) lines.push_back(reader.line());

  EXPECT_EQ(lines, (std::vector<std::size_t>{1, 2, 7, 8}));
}

TEST(QNCSVReader, FieldsMayHoldZeroBytes) {
  EXPECT_EQ(recordsIn(std::string_view("a\0b,c", 5)), (Records{{std::string("a\0b", 3), "c"}}));
}

TEST(QNCSVReader, AFieldOfTheLongestLengthIsReadAndALongerOneIsNot) {
  const std::string longest(QNCSVReader::kMaxFieldBytes, 'x');

  EXPECT_EQ(recordsIn(longest + ",b"), (Records{{longest, "b"}}));
  EXPECT_EQ(recordsIn("\"" + longest + "\""), (Records{{longest}}));
  EXPECT_EQ(recordsIn(longest + "x"), (Records{{"ERROR: line 1: a field is longer than 16 MiB"}}));
  EXPECT_EQ(recordsIn("a\n\"" + longest + "x\""),
            (Records{{"a"}, {"ERROR: line 2: a field is longer than 16 MiB"}}));
}

TEST(QNCSVReader, ARecordHasAnEnd) {
  EXPECT_EQ(recordsIn(std::string(QNCSVReader::kMaxFields - 1, ',')).at(0).size(),
            QNCSVReader::kMaxFields);
  EXPECT_EQ(recordsIn(std::string(QNCSVReader::kMaxFields, ',')),
            (Records{{"ERROR: line 1: too many fields"}}));
}

TEST(QNCSVReader, EarlierFieldsStayValid) {
  QNCSVReader reader(toBytes(bytesOf("\"a\"\"b\",c\n\"d\"\"e\",f\n")));
  ASSERT_TRUE(reader.next());
  const std::string_view first = reader.fields()[0];
  ASSERT_TRUE(reader.next());

  EXPECT_EQ(first, "a\"b");
}

TEST(QNCSVReader, ReadsWithAnotherDelimiter) {
  EXPECT_EQ(recordsIn("a;b,c;\"d;e\"", ';'), (Records{{"a", "b,c", "d;e"}}));
  EXPECT_EQ(recordsIn("a\tb c", '\t'), (Records{{"a", "b c"}}));
}

TEST(QNCSVReader, FindsTheDelimiterInTheFirstLine) {
  EXPECT_EQ(QNCSVReader::delimiterOf("name,url,username\na;b;c;d;e"), ',');
  EXPECT_EQ(QNCSVReader::delimiterOf("name;url;username"), ';');
  EXPECT_EQ(QNCSVReader::delimiterOf("name\turl\tuser,name\n"), '\t');
  EXPECT_EQ(QNCSVReader::delimiterOf("\"a;b;c;d\",e,f"), ',');
  EXPECT_EQ(QNCSVReader::delimiterOf("single"), ',');
  EXPECT_EQ(QNCSVReader::delimiterOf(""), ',');
}

TEST(QNCSVReader, TakesAByteOrderMarkAway) {
  EXPECT_EQ(utf8From("\xef\xbb\xbfname,url"), "name,url");
  EXPECT_EQ(utf8From("name"), "name");
  EXPECT_EQ(utf8From(""), "");
  EXPECT_EQ(utf8From("\xef\xbb\xbf"), "");
}

TEST(QNCSVReader, ReadsUTF16OfBothByteOrders) {
  EXPECT_EQ(utf8From(std::string_view("\xff\xfe"
                                      "a\0\xe9\0,\0\x3d\xd8\x00\xde",
                                      12)),
            "aé,😀");
  EXPECT_EQ(utf8From(std::string_view("\xfe\xff\0a\0\xe9\0,\xd8\x3d\xde\x00\x65\xe5", 14)),
            "aé,😀日");
}

TEST(QNCSVReader, RefusesBrokenUTF16WithTheLine) {
  EXPECT_EQ(utf8From(std::string_view("\xff\xfe"
                                      "a\0\n\0\x3d\xd8"
                                      "b\0",
                                      10)),
            "ERROR: line 2: this isn't UTF-16 text");
  EXPECT_EQ(utf8From(std::string_view("\xff\xfe\x00\xde", 4)),
            "ERROR: line 1: this isn't UTF-16 text");
  EXPECT_THAT(utf8From(std::string_view("\xff\xfe"
                                        "a",
                                        3)),
              HasSubstr("half a character"));
}

TEST(QNCSVReader, RefusesWhatIsNotUTF8WithTheLine) {
  EXPECT_THAT(utf8From("a\r\nb\nc,\xe9t\xe9\n"), HasSubstr("line 3: this isn't UTF-8 text"));
  EXPECT_THAT(utf8From("\xc0\x80"), HasSubstr("line 1:"));
}

}  // namespace
}  // namespace quillon
