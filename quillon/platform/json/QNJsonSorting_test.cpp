#include "quillon/platform/json/QNJsonSorting.h"

#include <gtest/gtest.h>

#include "quillon/platform/json/QNJsonEquality.h"

namespace quillon {
namespace {

std::string sortedText(std::string_view text) {
  const auto value = mr_valueFromJSONDataWithError(bytesOf(text));
  return *mr_JSONStringWithError(mr_arrayByDeepSortingDictionariesInJSONObject(*value));
}

TEST(QNJsonSorting, PutsMembersInTheOrderOfTheirBytesAtEveryDepth) {
  EXPECT_EQ(sortedText(R"({"b":1,"a":[{"d":{"é":1,"z":2},"C":3}],"":null})"),
            R"({"":null,"a":[{"C":3,"d":{"z":2,"é":1}}],"b":1})");
}

TEST(QNJsonSorting, LeavesElementsInTheirOrder) {
  EXPECT_EQ(sortedText(R"([3,1,[2,"b","a"],true,false,null,{}])"),
            R"([3,1,[2,"b","a"],true,false,null,{}])");
}

TEST(QNJsonSorting, GivesNumbersOfOneValueOneForm) {
  EXPECT_EQ(sortedText("[40,4E1,40.0,-0.0,1e3]"), "[40,40,40,0,1000]");
  EXPECT_EQ(sortedText("[9223372036854775808.0,18446744073709551615]"),
            "[9223372036854775808,18446744073709551615]");
}

TEST(QNJsonSorting, KeepsOtherNumbers) {
  EXPECT_EQ(sortedText("[1.5,-2.25]"), "[1.5E0,-2.25E0]");
  const Json huge = mr_arrayByDeepSortingDictionariesInJSONObject(Json(1e30));
  EXPECT_EQ(huge, Json(1e30));
}

TEST(QNJsonSorting, GivesEqualContentOneText) {
  const std::string_view one = R"({"n":5E0,"o":{"x":1,"y":2}})";
  const std::string_view other = R"({"o":{"y":2,"x":1},"n":5})";
  ASSERT_TRUE(equalJson(*mr_valueFromJSONDataWithError(bytesOf(one)),
                        *mr_valueFromJSONDataWithError(bytesOf(other))));

  EXPECT_EQ(sortedText(one), sortedText(other));
}

TEST(QNJsonSorting, SharesNothingWithItsSource) {
  Json source(JsonObject{{"a", JsonArray{"text"}}});

  const Json sorted = mr_arrayByDeepSortingDictionariesInJSONObject(source);
  source.at("a").get_array()[0] = "changed";

  EXPECT_EQ(sorted.at("a").at(0), Json("text"));
  EXPECT_EQ(sorted.storage(), jsonStorage());
}

TEST(QNJsonSorting, SortsAnObjectThatIsGivenAwayInItsPlace) {
  JsonObject object = *mr_objectFromJSONStringWithError(R"({"b":[{"d":1,"c":2.0}],"a":"text"})");

  const JsonObject sorted = mr_arrayByDeepSortingDictionariesInJSONObject(std::move(object));

  EXPECT_EQ(mr_JSONStringWithError(sorted), R"({"a":"text","b":[{"c":2,"d":1}]})");
  EXPECT_EQ(sorted.storage(), jsonStorage());
}

}  // namespace
}  // namespace quillon
