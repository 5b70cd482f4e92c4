#include "quillon/platform/json/QNJsonEquality.h"

namespace quillon {
namespace {

Json jsonValue(std::string_view text) {
  return mr_valueFromJSONDataWithError(bytesOf(text)).value();
}

struct EqualityCase {
  const char* one;
  const char* other;
  bool equal;
};
class EqualJson : public testing::TestWithParam<EqualityCase> {};

TEST_P(EqualJson, ComparesNumbersByValueBothWays) {
  const Json one = jsonValue(GetParam().one), other = jsonValue(GetParam().other);

  EXPECT_EQ(equalJson(one, other), GetParam().equal) << one << " " << other;
  EXPECT_EQ(equalJson(other, one), GetParam().equal) << other << " " << one;
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, EqualJson,
    testing::Values(EqualityCase{"40", "40.0", true}, EqualityCase{"-40", "-40.0", true},
                    EqualityCase{"0", "-0.0", true}, EqualityCase{"40", "40.5", false},
                    EqualityCase{"40", "41.0", false}, EqualityCase{"40.0", "4e1", true},
                    EqualityCase{"9223372036854775808", "9223372036854775808.0", true},
                    EqualityCase{"-9223372036854775808", "-9223372036854775808.0", true}));

// Beyond 2^53 a double stands for one whole number alone, and beyond 64 bits for none of ours.
INSTANTIATE_TEST_SUITE_P(
    NumbersThatRound, EqualJson,
    testing::Values(EqualityCase{"9007199254740993", "9007199254740992.0", false},
                    EqualityCase{"9223372036854775807", "9223372036854775808.0", false},
                    EqualityCase{"18446744073709551615", "18446744073709551616.0", false},
                    EqualityCase{"-9223372036854775808", "-9223372036854777856.0", false},
                    EqualityCase{"1", "1e300", false}));

INSTANTIATE_TEST_SUITE_P(
    Depths, EqualJson,
    testing::Values(EqualityCase{R"({"a":[{"b":2}],"c":1})", R"({"c":1.0,"a":[{"b":2.0}]})", true},
                    EqualityCase{R"({"a":[{"b":2}]})", R"({"a":[{"b":3.0}]})", false},
                    EqualityCase{"[1,2]", "[1.0]", false}, EqualityCase{"[1,2]", "[2.0,1]", false},
                    EqualityCase{R"({"a":1})", R"({"a":1.0,"b":1})", false},
                    EqualityCase{R"({"a":1})", R"({"b":1.0})", false}));

INSTANTIATE_TEST_SUITE_P(
    Kinds, EqualJson,
    testing::Values(EqualityCase{"40.0", R"("40")", false}, EqualityCase{"0.0", "null", false},
                    EqualityCase{"1.0", "true", false}, EqualityCase{"{}", "[]", false},
                    EqualityCase{R"("a")", R"("a")", true}, EqualityCase{"null", "null", true}));

}  // namespace
}  // namespace quillon
