#include "quillon/platform/json/QNJsonReading.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillon {
namespace {

std::string description(std::string_view text) {
  const auto shown = descriptionOfJson(*mr_valueFromJSONDataWithError(bytesOf(text)));
  return shown ? std::string(shown->reveal()) : "(none)";
}
std::optional<std::int64_t> integer(std::string_view text) {
  return integerOfJson(*mr_valueFromJSONDataWithError(bytesOf(text)));
}

TEST(QNJsonReading, DescribesEveryKindOfValue) {
  EXPECT_EQ(description(R"("x \"y\"")"), "x \"y\"");
  EXPECT_EQ(description("-5"), "-5");
  EXPECT_EQ(description("18446744073709551615"), "18446744073709551615");
  EXPECT_EQ(description("100000.0"), "100000");
  EXPECT_EQ(description("2.5"), "2.5");
  EXPECT_EQ(description("1E300"), "1e+300");
  EXPECT_EQ(description("true"), "true");
  EXPECT_EQ(description("false"), "false");
  EXPECT_EQ(description(R"({"a":[1,null]})"), R"({"a":[1,null]})");
  EXPECT_EQ(description("[]"), "[]");
  EXPECT_EQ(description("null"), "(none)");
}

TEST(QNJsonReading, ReadsAWholeNumberFromNumbersAndTexts) {
  EXPECT_EQ(integer("5"), 5);
  EXPECT_EQ(integer("-5.9"), -5);
  EXPECT_EQ(integer("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(integer("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(integer("-9.223372036854775808E18"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(integer(R"("5")"), 5);
  EXPECT_EQ(integer(R"(" +5\n")"), 5);
  EXPECT_EQ(integer(R"("-5.")"), -5);
  EXPECT_EQ(integer(R"("5.75")"), 5);
  EXPECT_EQ(integer(R"("007")"), 7);
}

TEST(QNJsonReading, ReadsNoNumberFromAnythingElse) {
  for (const std::string_view text :
       {"null", "true", "[5]", R"({"a":5})", R"("")", R"("+")", R"("+-5")", R"("-")", R"("5x")",
        R"("5.5.5")", R"("5 5")", R"("0x5")", R"(".5")", R"("1e3")", R"("9223372036854775808")",
        "9223372036854775808", "9.3E18", "-1E19", "1E308"}) {
    EXPECT_EQ(integer(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quillon
