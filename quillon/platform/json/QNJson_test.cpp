#include "quillon/platform/json/QNJson.h"

#include <fmt/core.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

using testing::HasSubstr;

std::optional<Json> parsed(std::string_view text) {
  return mr_valueFromJSONDataWithError(bytesOf(text));
}
std::string written(const Json& value) {
  return mr_JSONStringWithError(value).value_or("no JSON form");
}
// Text after reading and writing.
std::string throughJson(std::string_view text) {
  const auto value = parsed(text);
  return value ? written(*value) : "refused";
}
std::string errorOf(std::string_view text) {
  QNError error;
  return mr_valueFromJSONDataWithError(bytesOf(text), &error) ? "none" : error.domainCodeString();
}
JsonObject object(std::string_view text) {
  return mr_objectFromJSONStringWithError(text).value_or(JsonObject{{"refused", true}});
}
std::string nestedArrays(std::size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

// Reading and writing

TEST(QNJson, KeepsMembersInOrderAndWritesNoBlanks) {
  EXPECT_EQ(throughJson(" { \"b\" : [ 1 , -2 , true , null ] , \"a\" : { } } \n"),
            R"({"b":[1,-2,true,null],"a":{}})");
}

TEST(QNJson, ReadsEscapesAndWritesThemOnlyWhereNeeded) {
  EXPECT_EQ(throughJson(R"("\u0041\u00fc\ud83d\udd11\/\\\"\n\u0000")"),
            "\"A\xc3\xbc\xf0\x9f\x94\x91/\\\\\\\"\\n\\u0000\"");
}

TEST(QNJson, KeepsTheLastOfTwoEqualKeys) {
  EXPECT_EQ(throughJson(R"({"a":1,"b":2,"a":{"c":3}})"), R"({"a":{"c":3},"b":2})");
}

TEST(QNJson, ReadsNestingToItsLimitAndNoFurther) {
  EXPECT_EQ(throughJson(nestedArrays(kMaxJsonDepth)), nestedArrays(kMaxJsonDepth));
  EXPECT_EQ(errorOf(nestedArrays(kMaxJsonDepth + 1)), "MRErrorDomain 114");
}

class QNJsonRefusals : public testing::TestWithParam<const char*> {};

TEST_P(QNJsonRefusals, AreErrors) {
  EXPECT_EQ(errorOf(GetParam()), "MRErrorDomain 114");
}

INSTANTIATE_TEST_SUITE_P(
    Texts, QNJsonRefusals,
    testing::Values("", " ", "{", "[1", "\"a", "{\"a\":}", "[1,]", "{\"a\":1,}", "{a:1}", "'a'",
                    "[1] x", "{}{}", "1 2", "nul", "NaN", "Infinity", "-", "01", "1.", ".5", "1e",
                    "+1", "0x10", "1e309", "-1e309", "// comment\n1", "\xef\xbb\xbf{}", "\"\x01\"",
                    "\"\n\"", "\"\\x41\"", "\"\\ud800\"", "\"\\udc00\"", "\"\\ud800\\u0041\"",
                    // Not UTF-8: a lone byte, an overlong slash, a surrogate, beyond U+10FFFF, cut
                    "\"\xff\"", "\"\xc0\xaf\"", "\"\xed\xa0\x80\"", "\"\xf4\x90\x80\x80\"",
                    "\"\xe2\x82\"", "{\"\xff\":1}"));

TEST(QNJson, RefusesANulByteBehindTheText) {
  EXPECT_EQ(errorOf(std::string_view("{}\0", 3)), "MRErrorDomain 114");
}

TEST(QNJson, RefusesTextThatIsTooLong) {
  // Never touched beyond its length, so the pages of this view need not hold anything.
  const Bytes small{'1'};
  QNError error;

  const auto value = mr_valueFromJSONDataWithError({small.data(), kMaxJsonBytes + 1}, &error);

  EXPECT_FALSE(value);
  EXPECT_THAT(error.message, HasSubstr("too long"));
}

TEST(QNJson, WantsAnObjectWhereOneIsAskedFor) {
  QNError error;

  EXPECT_EQ(mr_objectFromJSONStringWithError("[]", &error), std::nullopt);
  EXPECT_EQ(error.domainCodeString(), "MRErrorDomain 114");
  EXPECT_EQ(mr_mutableObjectFromJSONDataWithError(bytesOf("7")), std::nullopt);
  EXPECT_EQ(mr_objectFromJSONDataWithError(bytesOf("{")), std::nullopt);
  EXPECT_EQ(mr_mutableObjectFromJSONDataWithError(bytesOf(R"({"a":1})")), (JsonObject{{"a", 1}}));
}

TEST(QNJson, WritesAnObjectAsItWritesTheValue) {
  const JsonObject source{{"a", 1}, {"b", {true, "x"}}};

  EXPECT_EQ(mr_JSONStringWithError(source), R"({"a":1,"b":[true,"x"]})");
  EXPECT_EQ(textOf(mr_JSONDataWithError(source).value_or(Bytes())), R"({"a":1,"b":[true,"x"]})");
  EXPECT_EQ(textOf(mr_JSONDataWithError(Json(source)).value_or(Bytes())),
            R"({"a":1,"b":[true,"x"]})");
}

TEST(QNJson, WritesLongTextsWhole) {
  const std::string text = "\"" + std::string(100'000, 'x') + "\"";

  EXPECT_EQ(throughJson(text), text);
}

TEST(QNJson, RefusesToWriteWhatHasNoJsonForm) {
  for (const Json& value :
       {Json("\xff"), Json(JsonObject{{"\xff", 1}}), Json(JsonArray{1, JsonArray{"\xc0\xaf"}}),
        Json(JsonObject{{"a", JsonObject{{"b", std::nan("")}}}}), Json(HUGE_VAL)}) {
    QNError error;
    EXPECT_EQ(mr_JSONDataWithError(value, &error), std::nullopt);
    EXPECT_EQ(error.domainCodeString(), "MRErrorDomain 114");
    EXPECT_EQ(mr_JSONStringWithError(value), std::nullopt);
  }
}

Json nested(std::size_t depth, bool inObjects) {
  Json value(1);
  for (std::size_t i = 0; i < depth; ++i) {
    value = inObjects ? Json(JsonObject{{"a", value}}) : Json(JsonArray{value});
  }
  return value;
}

TEST(QNJson, WritesNestingToTheLimitThatIsReadBack) {
  for (const bool inObjects : {false, true}) {
    const Json value = nested(kMaxJsonDepth, inObjects);

    const auto written = mr_JSONDataWithError(value);

    ASSERT_TRUE(written.has_value());
    EXPECT_EQ(mr_valueFromJSONDataWithError(*written), value);
  }
}

TEST(QNJson, RefusesToWriteNestingThatCannotBeReadBack) {
  for (const bool inObjects : {false, true}) {
    const Json value = nested(kMaxJsonDepth + 1, inObjects);
    QNError error;

    EXPECT_EQ(mr_JSONDataWithError(value, &error), std::nullopt);

    EXPECT_EQ(error.domainCodeString(), "MRErrorDomain 114");
  }
  EXPECT_EQ(mr_JSONDataWithError(nested(kMaxJsonDepth + 1, true).get_object()), std::nullopt);
}

// Numbers

TEST(QNJsonNumbers, KeepWholeNumbersOf64Bits) {
  for (const char* const text : {"0", "-1", "9223372036854775807", "-9223372036854775808",
                                 "9223372036854775808", "18446744073709551615"}) {
    EXPECT_EQ(throughJson(text), text);
  }
}

TEST(QNJsonNumbers, ReadLargerOnesAsTheNearestDouble) {
  const auto value = parsed("[18446744073709551616,-9223372036854775809,1e308,1E+2,1e-400]");

  ASSERT_TRUE(value);
  EXPECT_EQ(*value, (JsonArray{18446744073709551616.0, -9223372036854775808.0, 1e308, 100.0, 0.0}));
}

// The nearest double, as the compiler knows it, for texts that a reader gets wrong if it
// multiplies a power of ten in.
TEST(QNJsonNumbers, AreReadToTheNearestDouble) {
  const std::pair<const char*, double> cases[] = {
      {"0.1", 0.1},
      {"0.30000000000000004", 0.30000000000000004},
      {"5e-324", 5e-324},
      {"2.2250738585072011e-308", 2.2250738585072011e-308},
      {"2.2250738585072014e-308", 2.2250738585072014e-308},
      {"1.7976931348623157e308", 1.7976931348623157e308},
      {"9007199254740993.0", 9007199254740993.0},
      {"123456789012345678901234567890", 123456789012345678901234567890.0},
      {"8.41e21", 8.41e21},
      {"6929495644600919.5", 6929495644600919.5},
      {"3.518437208883201171875e13", 3.518437208883201171875e13},
      {"-0.0", -0.0}};
  for (const auto& [text, number] : cases) {
    const auto value = parsed(text);

    ASSERT_TRUE(value && value->is_double()) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value->get_double()),
              std::bit_cast<std::uint64_t>(number))
        << text;
  }
}

TEST(QNJsonNumbers, ComeBackExactlyWhateverTheirBits) {
  std::mt19937_64 generator(2024);
  int tried = 0;
  for (int i = 0; i < 200'000; ++i) {
    const double number = std::bit_cast<double>(generator());
    if (!std::isfinite(number)) continue;
    ++tried;

    const auto back = parsed(written(Json(number)));

    ASSERT_TRUE(back && back->is_double());
    ASSERT_EQ(std::bit_cast<std::uint64_t>(back->get_double()),
              std::bit_cast<std::uint64_t>(number));
  }
  EXPECT_GT(tried, 190'000);
}

TEST(QNJsonNumbers, ComeBackExactlyFromTheirShortDecimals) {
  // What people write: up to seventeen digits, a small exponent.
  std::mt19937_64 generator(2025);
  for (int i = 0; i < 100'000; ++i) {
    const double number = static_cast<double>(generator() % 100'000'000'000'000'000) /
                          std::pow(10.0, static_cast<double>(generator() % 20));

    const auto back = parsed(fmt::format("[{:.17g}]", number));

    ASSERT_TRUE(back);
    ASSERT_EQ(back->get_array()[0].to_number<double>(), number);
  }
}

// Helpers

TEST(mr_removeNSNullValues, RemovesThemAtEveryDepth) {
  JsonObject source = object(
      R"({"a":null,"b":[null,1,null,null,[null],{"c":null,"d":2}],"e":{"f":{"g":null}},"h":"x"})");

  mr_removeNSNullValues(source);

  EXPECT_EQ(mr_JSONStringWithError(source), R"({"b":[1,[],{"d":2}],"e":{"f":{}},"h":"x"})");
}

TEST(mr_removeNSNullValues, TakesTimeInProportionToTheObject) {
  // Half a million nulls: removed one by one, each with a move of all behind it, this would
  // take minutes.
  JsonArray array(jsonStorage());
  JsonObject inner(jsonStorage());
  for (int i = 0; i < 250'000; ++i) {
    array.emplace_back(nullptr);
    array.emplace_back(i);
    inner.emplace(std::to_string(i), nullptr);
  }
  inner.emplace("kept", 1);
  JsonObject source({{"array", std::move(array)}, {"object", std::move(inner)}}, jsonStorage());

  mr_removeNSNullValues(source);

  EXPECT_EQ(source["array"].get_array().size(), 250'000u);
  EXPECT_EQ(source["array"].get_array()[249'999], 249'999);
  EXPECT_EQ(source["object"].get_object(), (JsonObject{{"kept", 1}}));
}

TEST(mr_deepMutableCopy, SharesNothingWithItsSource) {
  const JsonObject source{{"a", JsonArray{1, JsonObject{{"b", "text"}}}}};

  JsonObject copy = mr_deepMutableCopy(source);
  Json valueCopy = mr_deepMutableCopy(source.at("a"));
  copy["a"].get_array()[1].get_object()["b"] = "other";
  valueCopy.get_array().clear();

  EXPECT_EQ(mr_JSONStringWithError(source), R"({"a":[1,{"b":"text"}]})");
  EXPECT_EQ(copy.storage(), jsonStorage());
  EXPECT_EQ(copy["a"].get_array()[1].storage(), jsonStorage());
}

TEST(mr_objectForKey, AnswersOnlyTheKindsAskedFor) {
  const JsonObject source = object(R"({"t":"x","n":1,"o":{},"z":null})");

  ASSERT_NE(mr_objectForKey(source, "t", JsonKind::string), nullptr);
  EXPECT_EQ(*mr_objectForKey(source, "t", JsonKind::string), "x");
  EXPECT_EQ(mr_objectForKey(source, "t", JsonKind::object), nullptr);
  EXPECT_EQ(mr_objectForKey(source, "absent", JsonKind::string), nullptr);
  EXPECT_NE(mr_objectForKey(source, "n", {JsonKind::string, JsonKind::int64}), nullptr);
  EXPECT_EQ(mr_objectForKey(source, "o", {JsonKind::string, JsonKind::int64}), nullptr);
  EXPECT_NE(mr_objectForKey(source, "z", JsonKind::null), nullptr);
}

TEST(mr_validStringValueForKey, ReadsTextOnly) {
  const JsonObject source = object(R"({"t":"x","empty":"","n":1,"z":null})");

  EXPECT_EQ(mr_validStringValueForKey(source, "t"), "x");
  EXPECT_EQ(mr_validStringValueForKey(source, "empty"), "");
  EXPECT_EQ(mr_validStringValueForKey(source, "n"), std::nullopt);
  EXPECT_EQ(mr_validStringValueForKey(source, "z"), std::nullopt);
  EXPECT_EQ(mr_validStringValueForKey(source, "absent"), std::nullopt);
}

TEST(mr_unsignedValueForKey, CutsFractionsAndReadsNothingOutOfRange) {
  const auto read = [](std::string_view number) {
    return mr_unsignedValueForKey(object(fmt::format(R"({{"n":{}}})", number)), "n");
  };

  EXPECT_EQ(read("0"), 0u);
  EXPECT_EQ(read("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(read("1700000000.9"), 1'700'000'000u);
  EXPECT_EQ(read("1e3"), 1'000u);
  EXPECT_EQ(read("18446744073709549568.0"), 18'446'744'073'709'549'568u);
  for (const char* const number :
       {"-1", "-0.5", "18446744073709551616", "1e300", "\"7\"", "true", "null", "[7]"}) {
    EXPECT_EQ(read(number), std::nullopt) << number;
  }
  EXPECT_EQ(mr_unsignedValueForKey({}, "n"), std::nullopt);
}

TEST(memberForKey, FindsWhatTheObjectHasUnderThatName) {
  for (const std::size_t size : {0u, 1u, 16u, 17u, 40u}) {
    JsonObject object(jsonStorage());
    for (std::size_t i = 0; i < size; ++i) object["k" + std::to_string(i)] = i;

    for (const char* const key : {"", "k", "k0", "k7", "k15", "k16", "k39", "x0", "k00"}) {
      EXPECT_EQ(memberForKey(object, key), object.if_contains(key)) << size << ' ' << key;
    }
  }
}

TEST(memberForKey, KnowsAnEmptyName) {
  JsonObject object(jsonStorage());
  object["a"] = 1;
  EXPECT_EQ(memberForKey(object, ""), nullptr);

  object[""] = 2;

  EXPECT_EQ(memberForKey(object, ""), object.if_contains(""));
}

TEST(setJsonText, ReplacesWhateverStoodThere) {
  JsonObject target(jsonStorage());

  setJsonText(target, "a", "short");
  setJsonText(target, "b", "");
  setJsonText(target, "a", std::string(50, 'x'));

  EXPECT_EQ(mr_JSONStringWithError(target), "{\"a\":\"" + std::string(50, 'x') + "\",\"b\":\"\"}");
}

// What stays in memory. A short text lies inside its value, a long one in a block of its own.

constexpr std::string_view kShort = "hunter2!?";
constexpr std::string_view kLong = "a pass phrase that is longer than any value";

struct RemainsCase {
  const char* name;
  std::string text;
  std::string_view needle;
};
class QNJsonRemains : public testing::TestWithParam<RemainsCase> {};

TEST_P(QNJsonRemains, AreNowhereInTheHeapOrOnTheStack) {
  const auto& [name, text, needle] = GetParam();
  const QNFreedBlockWatch watch(needle);
  std::size_t size = 0;

  const std::size_t onStack = remainsOnStack(needle, [&text = text, &size] {
    const auto value = mr_valueFromJSONDataWithError(bytesOf(text));
    const auto bytes = mr_JSONDataWithError(value->get_object());
    const JsonObject copy = mr_deepMutableCopy(value->get_object());
    size = bytes->size() + copy.size();
  });

  EXPECT_GT(size, 0u);
  EXPECT_EQ(onStack, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

std::string deep(std::string_view value, std::size_t depth) {
  std::string text = fmt::format(R"({{"password":"{}"}})", value);
  for (std::size_t levels = 1; levels + 2 <= depth; levels += 2) {
    text = fmt::format(R"({{"fields":[{}]}})", text);
  }
  return text;
}
std::string wide(std::string_view value, std::size_t count) {
  std::string text = "{";
  for (std::size_t i = 0; i < count; ++i) text += fmt::format(R"("key{}":"{}",)", i, value);
  return text + R"("end":null})";
}
const std::string kEscapedShort = R"(\u0068unter\u0032!?)";
const std::string kEscapedLong =
    std::string(kLong.substr(0, 20)) + "\\u0068" + std::string(kLong.substr(21));

INSTANTIATE_TEST_SUITE_P(
    Texts, QNJsonRemains,
    testing::Values(RemainsCase{"Short", deep(kShort, 1), kShort},
                    RemainsCase{"Long", deep(kLong, 1), kLong},
                    RemainsCase{"ShortDeep", deep(kShort, 63), kShort},
                    RemainsCase{"LongDeep", deep(kLong, 63), kLong},
                    RemainsCase{"ShortMany", wide(kShort, 1000), kShort},
                    RemainsCase{"LongMany", wide(kLong, 1000), kLong},
                    RemainsCase{"EscapedShort", deep(kEscapedShort, 1), kShort},
                    RemainsCase{"EscapedLong", deep(kEscapedLong, 1), kLong},
                    RemainsCase{"EscapedShortDeep", deep(kEscapedShort, 63), kShort},
                    RemainsCase{"EscapedLongDeep", deep(kEscapedLong, 63), kLong},
                    RemainsCase{"ShortEscapedMany", wide(kEscapedShort, 1000), kShort},
                    RemainsCase{"Key", R"({"hunter2!?":1})", kShort}),
    [](const auto& it) { return std::string(it.param.name); });

TEST(QNJsonRemains, AreFoundWhereATextIsNotKeptOff) {
  const std::string text(kShort);

  const std::size_t onStack = remainsOnStack(kShort, [&text] {
    volatile char local[32] = {};
    std::copy(text.begin(), text.end(), local);
  });

  EXPECT_GT(onStack, 0u);
}

TEST(setJsonText, LeavesNothingOnTheStackOrInTheHeap) {
  const std::string text(kShort);
  const QNFreedBlockWatch watch(kShort);

  const std::size_t onStack = remainsOnStack(kShort, [&text] {
    JsonObject target(jsonStorage());
    for (int i = 0; i < 100; ++i) setJsonText(target, std::to_string(i), text);
    setJsonText(target, "7", "another");
  });

  EXPECT_EQ(onStack, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

TEST(mr_removeNSNullValues, LeavesNothingOnTheStackOrInTheHeap) {
  const std::string text = fmt::format(R"({{"a":null,"b":"{0}","c":[null,"{0}",null]}})", kShort);
  const QNFreedBlockWatch watch(kShort);

  const std::size_t onStack = remainsOnStack(kShort, [&text] {
    auto source = mr_objectFromJSONStringWithError(text);
    mr_removeNSNullValues(*source);
  });

  EXPECT_EQ(onStack, 0u);
  EXPECT_EQ(watch.found(), 0u);
}

}  // namespace
}  // namespace quillon
