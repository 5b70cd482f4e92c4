// What the value of a field leaves in memory that nobody owns any more: nothing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/internal/QNMemoryWatch.h"

namespace quillon {
namespace {

// The first fits into a short text inside a JSON value, the second doesn't.
constexpr std::string_view kShort = "s3cret-Pw-9";
constexpr std::string_view kLong = "long-secret-that-no-short-text-buffer-holds-0123456789";

class QNFieldsMemory : public testing::TestWithParam<std::string_view> {};

void useConcealed(std::string_view secret) {
  const auto field = QNItemConcealedField::fieldWithIdentifier("1");
  field->setValue(secret);
  static_cast<void>(field->value());
  static_cast<void>(field->displayStringValue());
  // A short text lies inside of the value itself, which is its caller's.
  if (secret.size() > kShort.size()) static_cast<void>(field->jsonValue());
  JsonObject attributes;
  attributes["clipboardFilter"] = "abcdefghijklmnopqrstuvwxyz0123456789-PS";
  field->setAttributes(&attributes);
  static_cast<void>(field->clipboardStringValue());
  const auto copy = field->conflictCopyWithUniqueFieldIdentifierForConflict(std::nullopt);
  QNFieldSection section;
  section.addField(field);
  section.mergeField(copy);
  static_cast<void>(section.allPasswordsForSearch());
  Json stored(section.dictionaryRepresentation());
  QNFieldSection again;
  again.loadDictionary(stored.get_object());
  again.addFieldsFromSection(section);
  again.fieldAtIndex(0)->setRawValue("other");
  again.storeInto(stored);
}

void useOthers(std::string_view secret) {
  QNAddressValue address;
  address.setStreet(secret);
  address.setCountry(secret);
  QNItemAddressField field;
  field.setValue(address);
  static_cast<void>(field.stringValue());
  static_cast<void>(field.jsonValue());
  QNItemAddressField other;
  other.setRawValue(field.rawValue());
  other.setValue(QNAddressValue());
  QNItemUnknownField unknown("future", "1");
  JsonObject value(jsonStorage());
  setJsonText(value, "x", secret);
  const Json json(std::move(value));
  unknown.setJsonValue(&json);
  static_cast<void>(unknown.stringValue());
  static_cast<void>(unknown.jsonValue());
  unknown.setJsonValue(nullptr);
}

TEST_P(QNFieldsMemory, AConcealedFieldLeavesNothing) {
  const QNFreedBlockWatch watch(GetParam());

  EXPECT_EQ(remainsOnStack(GetParam(), [] { useConcealed(GetParam()); }), 0u);

  EXPECT_EQ(watch.found(), 0u);
}

TEST_P(QNFieldsMemory, AddressesAndUnknownFieldsLeaveNothing) {
  useOthers("other");  // reads what is kept for good
  const QNFreedBlockWatch watch(GetParam());

  EXPECT_EQ(remainsOnStack(GetParam(), [] { useOthers(GetParam()); }), 0u);

  EXPECT_EQ(watch.found(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Lengths, QNFieldsMemory, testing::Values(kShort, kLong),
                         [](const auto& tested) {
                           return tested.param == kShort ? "Short" : "Long";
                         });

}  // namespace
}  // namespace quillon
