#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

QNSampleItemRef itemWith(std::string_view sections) {
  auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(sections), kDetailsSections);
  item->didSave();
  return item;
}

std::string textIn(const std::optional<QNSecret>& text) {
  return text ? std::string(text->reveal()) : "(none)";
}

/// Expects that there is none, by any of the four operations.
void expectNone(QNItem& item) {
  EXPECT_FALSE(item.hasTOTP());
  EXPECT_EQ(textIn(item.firstTOTPString()), "(none)");
  EXPECT_EQ(item.firstTOTPSection(), nullptr);
  EXPECT_EQ(item.firstTOTPField(), nullptr);
}

TEST(QNItemTOTP, IsAConcealedFieldWithThePrefix) {
  const auto item = itemWith(
      R"([{"name":"s1","fields":[{"k":"concealed","n":"pin","v":"1234"}]},)"
      R"({"name":"s2","fields":[{"k":"concealed","n":"TOTP_a","t":"code","v":"otpauth://a"}]}])");

  EXPECT_TRUE(item->hasTOTP());
  EXPECT_EQ(textIn(item->firstTOTPString()), "otpauth://a");
  EXPECT_EQ(item->firstTOTPSection(), item->fieldSectionAtIndex(1));
  EXPECT_EQ(item->firstTOTPField(), item->fieldSectionAtIndex(1)->fieldAtIndex(0));
}

TEST(QNItemTOTP, IsNotThereWithoutSuchAField) {
  expectNone(*newItem(localVault()));
  expectNone(*itemWith("[]"));
  expectNone(*itemWith(R"([{"name":"s1"},{"fields":[]},7])"));
  expectNone(*itemWith(R"([{"fields":[{"k":"concealed","n":"pin","v":"otpauth://a"}]}])"));
}

TEST(QNItemTOTP, IsNotAFieldWithThePrefixInSmallLetters) {
  expectNone(*itemWith(R"([{"fields":[{"k":"concealed","n":"totp_a","v":"otpauth://a"}]}])"));
  expectNone(*itemWith(R"([{"fields":[{"k":"concealed","n":"Totp_a","v":"otpauth://a"}]}])"));
  expectNone(*itemWith(R"([{"fields":[{"k":"concealed","n":"a_TOTP_","v":"otpauth://a"}]}])"));
}

TEST(QNItemTOTP, IsNotAFieldOfAnotherType) {
  expectNone(*itemWith(R"([{"fields":[{"k":"string","n":"TOTP_a","v":"otpauth://a"}]}])"));
  expectNone(*itemWith(R"([{"fields":[{"k":"URL","n":"TOTP_a","v":"otpauth://a"}]}])"));
  expectNone(*itemWith(R"([{"fields":[{"k":"otp","n":"TOTP_a","v":"otpauth://a"}]}])"));
}

TEST(QNItemTOTP, IsTheFirstWithAValueInOrderOfTheSections) {
  const auto item = itemWith(
      R"([{"fields":[{"k":"concealed","n":"TOTP_a","v":""},{"k":"concealed","n":"TOTP_b"}]},)"
      R"({"fields":[{"k":"concealed","n":"TOTP_c","v":""},)"
      R"({"k":"concealed","n":"TOTP_d","v":"otpauth://d"},)"
      R"({"k":"concealed","n":"TOTP_e","v":"otpauth://e"}]},)"
      R"({"fields":[{"k":"concealed","n":"TOTP_f","v":"otpauth://f"}]}])");

  EXPECT_TRUE(item->hasTOTP());
  EXPECT_EQ(textIn(item->firstTOTPString()), "otpauth://d");
  EXPECT_EQ(item->firstTOTPSection(), item->fieldSectionAtIndex(1));
  EXPECT_EQ(item->firstTOTPField(), item->fieldSectionAtIndex(1)->fieldAtIndex(1));
}

TEST(QNItemTOTP, IsTheSecondFieldIfTheFirstIsEmpty) {
  const auto item = itemWith(R"([{"fields":[{"k":"concealed","n":"TOTP_a","v":""},)"
                             R"({"k":"concealed","n":"TOTP_b","v":"otpauth://b"}]}])");

  EXPECT_TRUE(item->hasTOTP());
  EXPECT_EQ(item->firstTOTPField(), item->fieldSectionAtIndex(0)->fieldAtIndex(1));
}

TEST(QNItemTOTP, IsNotThereIfAllAreEmpty) {
  expectNone(*itemWith(R"([{"fields":[{"k":"concealed","n":"TOTP_a","v":""},)"
                       R"({"k":"concealed","n":"TOTP_b"}]}])"));
}

TEST(QNItemTOTP, CountsBlanksAsAValue) {
  const auto item = itemWith(R"([{"fields":[{"k":"concealed","n":"TOTP_a","v":"  "}]}])");

  EXPECT_TRUE(item->hasTOTP());
  EXPECT_EQ(textIn(item->firstTOTPString()), "  ");
}

TEST(QNItemTOTP, IsAFieldThatWasJustAdded) {
  const auto item = newItem(localVault());
  const auto field = std::make_shared<QNItemTOTPField>();
  item->fieldSectionWithName("s", "")->addField(field);
  expectNone(*item);

  field->setValue("otpauth://a");

  EXPECT_EQ(item->firstTOTPField(), field);
  EXPECT_EQ(textIn(item->firstTOTPString()), "otpauth://a");
}

TEST(QNItemTOTP, SurvivesASave) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setDetailsObject(
      jsonValue(R"([{"fields":[{"k":"concealed","n":"TOTP_a","v":"otpauth://a"}]}])"),
      kDetailsSections);
  save(*row);

  const auto item = opened(*row, vault);

  EXPECT_EQ(textIn(item->firstTOTPString()), "otpauth://a");
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemTOTP, IsNotThereWhileTheVaultIsLocked) {
  const auto vault = accountVault();
  const auto row = newItem(vault);
  row->setDetailsObject(
      jsonValue(R"([{"fields":[{"k":"concealed","n":"TOTP_a","v":"otpauth://a"}]}])"),
      kDetailsSections);
  save(*row);
  const auto item = opened(*row, vault);
  vault->setLocked(true);
  const MRCapturingSink sink;

  expectNone(*item);
  vault->setLocked(false);

  EXPECT_TRUE(item->hasTOTP());
}

}  // namespace
}  // namespace quillon
