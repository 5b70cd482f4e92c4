#include "cli/arguments/QNGivenValues.h"

#include <gmock/gmock.h>

#include "cli/QNToolError.h"

namespace quillon {
namespace {

using testing::HasSubstr;
using testing::Not;
using From = QNGivenValue::From;

template <class Value>
std::string refusal(const QNResult<Value>& read) {
  EXPECT_FALSE(read.ok());
  if (read.ok()) return "accepted";
  EXPECT_EQ(exitFor(read.error()), QNExit::wrongUsage);
  return read.error().message;
}

TEST(QNGivenValues, ASettingIsANameAndAValue) {
  const auto read = settingFrom("a.b=c=d").value();
  EXPECT_EQ(read.field, "a.b");
  EXPECT_EQ(read.value.from, From::argument);
  EXPECT_EQ(read.value.text, "c=d");
  EXPECT_EQ(settingFrom("a=").value().value.text, "");
  EXPECT_EQ(settingFrom("a").value().value.from, From::prompt);
  EXPECT_THAT(refusal(settingFrom("=x")), HasSubstr("FIELD=VALUE"));
  EXPECT_THAT(refusal(settingFrom("")), HasSubstr("FIELD=VALUE"));
}

TEST(QNGivenValues, APasswordIsNeverPartOfASetting) {
  EXPECT_TRUE(settingFrom("password").ok());
  EXPECT_TRUE(settingFrom("password=-").ok());
  EXPECT_TRUE(settingFrom("password=").ok());
  const std::string message = refusal(settingFrom("password=hunter2"));
  EXPECT_EQ(message, kNoSecretArguments);
  EXPECT_THAT(message, Not(HasSubstr("hunter2")));
}

TEST(QNGivenValues, AFileSettingNeedsBothItsParts) {
  const auto read = fileSettingFrom("a=b=c").value();
  EXPECT_EQ(read.field, "a");
  EXPECT_EQ(read.value.from, From::file);
  EXPECT_EQ(read.value.file, "b=c");
  for (const char* const text : {"", "a", "a=", "=b"}) {
    EXPECT_THAT(refusal(fileSettingFrom(text)), HasSubstr("FIELD=FILE")) << text;
  }
  EXPECT_THAT(refusal(fileSettingFrom("\xff=b")), HasSubstr("isn't UTF-8"));
  EXPECT_TRUE(fileSettingFrom("a=\xff").ok());
}

TEST(QNGivenValues, AnAdditionHasATitleAKindAndPerhapsASection) {
  const auto read = additionFrom("Home.Door: left:string=a:b.c=d").value();
  EXPECT_EQ(read.section, "Home");
  EXPECT_EQ(read.title, "Door: left");
  EXPECT_EQ(read.kind, "string");
  EXPECT_EQ(read.value.text, "a:b.c=d");
  EXPECT_EQ(additionFrom("Door:date").value().section, "");
  EXPECT_EQ(additionFrom(".Door:date").value().title, "Door");
  EXPECT_EQ(additionFrom("Door:totp").value().value.from, From::prompt);
  EXPECT_THAT(refusal(additionFrom("Door")), HasSubstr("SECTION.TITLE:KIND=VALUE"));
  EXPECT_THAT(refusal(additionFrom("Home.:string=x")), HasSubstr("SECTION.TITLE:KIND=VALUE"));
  EXPECT_THAT(refusal(additionFrom("Door:menu=x")), HasSubstr(addableKinds()));
}

TEST(QNGivenValues, ASecretIsNeverPartOfAnAddition) {
  for (const std::string kind : {"concealed", "totp"}) {
    EXPECT_TRUE(additionFrom("a:" + kind + "=-").ok());
    EXPECT_EQ(refusal(additionFrom("a:" + kind + "=hunter2")), kNoSecretArguments);
  }
}

TEST(QNGivenValues, APasswordIsAskedForOrReadFromInput) {
  EXPECT_EQ(itemPasswordFrom("").value(), QNItemPassword::prompt);
  EXPECT_EQ(itemPasswordFrom("-").value(), QNItemPassword::standardInput);
  EXPECT_EQ(refusal(itemPasswordFrom("hunter2")), kNoSecretArguments);
}

}  // namespace
}  // namespace quillon
