#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<QNItemMonthYearField> monthYear(std::string_view json) {
  auto field = std::make_shared<QNItemMonthYearField>();
  setJson(*field, json);
  return field;
}

TEST(QNItemMonthYearField, ReadsYearAndMonth) {
  const auto field = monthYear("202407");

  EXPECT_EQ(field->year(), 2024);
  EXPECT_EQ(field->fullYear(), 2024);
  EXPECT_EQ(field->month(), 7);
  EXPECT_EQ(textOf(field->stringValue()), "07/2024");
  EXPECT_EQ(field->yearMonthFormat().reveal(), "202407");
  EXPECT_EQ(jsonText(field->jsonValue()), "202407");
  EXPECT_EQ(field->rawValue().number(), 202407);
}

TEST(QNItemMonthYearField, AYearOfTwoDigitsIsOfThisCentury) {
  const auto field = monthYear(R"("1503")");

  EXPECT_EQ(field->year(), 15);
  EXPECT_EQ(field->fullYear(), 2015);
  EXPECT_EQ(field->month(), 3);
  EXPECT_EQ(textOf(field->stringValue()), "03/2015");
  EXPECT_EQ(field->yearMonthFormat().reveal(), "201503");
  EXPECT_EQ(jsonText(field->jsonValue()), "1503");
  EXPECT_EQ(field->compare(*monthYear("201503")), 0);
  EXPECT_LT(field->compare(*monthYear("201504")), 0);
  EXPECT_GT(field->compare(*monthYear("201412")), 0);
}

TEST(QNItemMonthYearField, TheYear99StaysAsItIs) {
  const auto field = monthYear("9901");

  EXPECT_EQ(textOf(field->stringValue()), "01/99");
  EXPECT_EQ(field->yearMonthFormat().reveal(), "9901");
  EXPECT_LT(field->compare(*monthYear("190001")), 0);
  EXPECT_EQ(textOf(monthYear("9801")->stringValue()), "01/2098");
  EXPECT_GT(monthYear("9801")->compare(*monthYear("209712")), 0);
}

TEST(QNItemMonthYearField, ZeroIsNothing) {
  for (const auto& field : {monthYear("0"), std::make_shared<QNItemMonthYearField>()}) {
    EXPECT_EQ(field->jsonValue(), std::nullopt);
    EXPECT_EQ(field->stringValue(), std::nullopt);
    EXPECT_TRUE(field->rawValue().isNothing());
    EXPECT_TRUE(field->isEmpty());
  }
}

TEST(QNItemMonthYearField, WithoutAMonthOrAYearShowsNothing) {
  EXPECT_EQ(monthYear("7")->stringValue(), std::nullopt);
  EXPECT_EQ(monthYear("202400")->stringValue(), std::nullopt);
  EXPECT_EQ(jsonText(monthYear("7")->jsonValue()), "7");
  EXPECT_TRUE(monthYear("7")->isEmpty());
}

TEST(QNItemMonthYearField, NothingClearsItWithoutAWord) {
  const auto field = monthYear("202407");
  const MRCapturingSink sink;

  field->setJsonValue(nullptr);

  EXPECT_EQ(field->year(), 0);
  EXPECT_EQ(field->month(), 0);
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNItemMonthYearField, AnythingElseBecomesJanuary1970) {
  for (const std::string_view json : {R"({"a":1})", "[]", "null", "false", R"("07/24")"}) {
    const MRCapturingSink sink;

    const auto field = monthYear(json);

    EXPECT_EQ(field->year(), 1970) << json;
    EXPECT_EQ(field->month(), 1) << json;
    EXPECT_THAT(errors(sink),
                ElementsAre("Error setting json value. Expecting a string or number "
                            "but received a <" +
                            std::string(boost::json::to_string(jsonValue(json).kind())) +
                            ">. Replacing with 197001."));
  }
}

TEST(QNItemMonthYearField, LargeNumbersAreCutTo16Bits) {
  // 70000 is 4464 in 16 bits; 7000012 - 446400 is 6553612, of which 12 is left.
  const auto field = monthYear("7000012");
  EXPECT_EQ(field->year(), 4464);
  EXPECT_EQ(field->month(), 12);

  // 92233720368547758 is 18350 in 16 bits; what is left of the month is 7, and of the lowest -8.
  const auto highest = monthYear("9223372036854775807");
  EXPECT_EQ(highest->year(), 18350);
  EXPECT_EQ(highest->month(), 7);
  const auto lowest = monthYear("-9223372036854775808");
  EXPECT_EQ(lowest->year(), -18350);
  EXPECT_EQ(lowest->month(), -8);
}

TEST(QNItemMonthYearField, NegativeNumbersAreCutTowardsZero) {
  const auto field = monthYear("-203");

  EXPECT_EQ(field->year(), -2);
  EXPECT_EQ(field->month(), -3);
}

TEST(QNItemMonthYearField, ARawValueGoesThroughTheJsonValue) {
  QNItemMonthYearField field;

  field.setRawValue("202407");

  EXPECT_EQ(field.year(), 2024);
  EXPECT_EQ(jsonText(field.storedForm().at("v")), "202407");
}

TEST(QNItemMonthYearField, MonthAndYearMayBeSetApart) {
  QNItemMonthYearField field;
  field.setMonth(7);
  field.setYear(2024);
  EXPECT_EQ(jsonText(field.jsonValue()), "202407");

  field.setMonth(0);
  field.setYear(0);

  EXPECT_FALSE(field.storedForm().contains("v"));
}

}  // namespace
}  // namespace quillon
