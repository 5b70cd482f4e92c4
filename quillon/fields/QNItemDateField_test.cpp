#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(QNItemDateField, StartsWithoutADate) {
  const QNItemDateField field;

  EXPECT_EQ(field.value(), QNItemDateField::kNoDate);
  EXPECT_EQ(field.value(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(field.jsonValue(), std::nullopt);
  EXPECT_EQ(field.stringValue(), std::nullopt);
  EXPECT_TRUE(field.rawValue().isNothing());
  EXPECT_TRUE(field.isEmpty());
}

TEST(QNItemDateField, ZeroIsADate) {
  const QNScopedLocale locale("en-US");
  const QNScopedTimeZone zone("UTC");
  QNItemDateField field;

  setJson(field, "0");

  EXPECT_EQ(field.value(), 0);
  EXPECT_EQ(jsonText(field.jsonValue()), "0");
  EXPECT_EQ(field.rawValue().number(), 0);
  EXPECT_EQ(textOf(field.stringValue()), "Jan 1, 1970");
  EXPECT_FALSE(field.isEmpty());
}

TEST(QNItemDateField, TakesWhatHasAWholeNumber) {
  const std::pair<std::string_view, std::int64_t> cases[] = {
      {"1720051200", 1720051200},
      {"-86400", -86400},
      {R"("1720051200")", 1720051200},
      {R"(" -5 ")", -5},
      {"12.9", 12},
      {"-12.9", -12},
      {R"("12.9")", 12},
      {"1.5E3", 1500},
      {R"("+7")", 7},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()}};
  for (const auto& [json, seconds] : cases) {
    QNItemDateField field;
    const MRCapturingSink sink;

    setJson(field, json);

    EXPECT_EQ(field.value(), seconds) << json;
    EXPECT_THAT(sink.records(), IsEmpty()) << json;
  }
}

TEST(QNItemDateField, HasNoDateAfterAnythingElse) {
  for (const std::string_view json :
       {R"({"a":1})", "[]", "null", "true", R"("")", R"("soon")", R"("12a")", R"("--5")", "1E300",
        "18446744073709551615", R"("9223372036854775808")"}) {
    QNItemDateField field;
    field.setValue(5);
    const MRCapturingSink sink;

    setJson(field, json);

    EXPECT_EQ(field.value(), QNItemDateField::kNoDate) << json;
    EXPECT_THAT(errors(sink),
                ElementsAre("Error setting json value. Expecting a string or number "
                            "but received a <" +
                            std::string(boost::json::to_string(jsonValue(json).kind())) +
                            ">. Replacing with 0."));
  }
}

TEST(QNItemDateField, NothingClearsTheDateWithoutAWord) {
  QNItemDateField field;
  field.setValue(5);
  const MRCapturingSink sink;

  field.setJsonValue(nullptr);

  EXPECT_EQ(field.value(), QNItemDateField::kNoDate);
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST(QNItemDateField, ARawValueGoesThroughTheJsonValue) {
  QNItemDateField field;

  field.setRawValue("12");
  EXPECT_EQ(field.value(), 12);
  field.setRawValue(QNFieldValue::ofNumber(-1));
  EXPECT_EQ(field.value(), -1);
  field.setRawValue(std::nullopt);

  EXPECT_EQ(field.value(), QNItemDateField::kNoDate);
}

TEST(QNItemDateField, IsStoredAsANumber) {
  const auto field = fieldOf(R"({"k":"date","n":"1","t":"","v":"12"})");

  EXPECT_EQ(jsonText(field->storedForm()), R"({"k":"date","n":"1","t":"","v":12})");
}

}  // namespace
}  // namespace quillon
