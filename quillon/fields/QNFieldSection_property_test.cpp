// What holds for any section, whatever was stored.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "quillon/fields/internal/QNFieldTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/json/QNJsonEquality.h"

namespace quillon {
namespace {

const std::vector<std::string>& kinds() {
  static const std::vector<std::string> all{
      "string", "phone",  "URL",       "email",   "concealed", "cctype",
      "date",   "gender", "monthYear", "address", "menu",      "country",
      "file",   "sshKey", "password",  "future",  "reference"};
  return all;
}

rc::Gen<std::string> anyText() {
  return rc::gen::element<std::string>("", "a", "12", "-7", "202407", "soon", "\"q\"\n", "ccnum1",
                                       "TOTP_1", "password", "\u00E9\U0001F511",
                                       "a longer text that lies outside of the value");
}

Json anyJson(int depth) {
  switch (*rc::gen::inRange(0, depth > 0 ? 9 : 7)) {
    case 0:
      return Json(nullptr, jsonStorage());
    case 1:
      return Json(*rc::gen::arbitrary<bool>(), jsonStorage());
    case 2:
      return Json(*rc::gen::arbitrary<std::int64_t>(), jsonStorage());
    case 3:
      return Json(*rc::gen::inRange(0, 300000) / 4.0, jsonStorage());
    case 4:
      return Json(~std::uint64_t{0} - *rc::gen::arbitrary<std::uint8_t>(), jsonStorage());
    case 5:
    case 6:
      return Json(*anyText(), jsonStorage());
    case 7:
      return Json({anyJson(depth - 1), anyJson(depth - 1)}, jsonStorage());
    default: {
      JsonObject object(jsonStorage());
      const std::string key = *rc::gen::element<std::string>("street", "zip", "x");
      object[key] = anyJson(depth - 1);
      return object;
    }
  }
}

// Members of any names and kinds; the known ones often, and in any order.
Json anyField() {
  if (*rc::gen::inRange(0, 10) == 0) return anyJson(1);
  JsonObject field(jsonStorage());
  const int members = *rc::gen::inRange(0, 8);
  for (int i = 0; i < members; ++i) {
    const std::string key = *rc::gen::element<std::string>("n", "t", "k", "v", "a", "inputTraits",
                                                           "v", "k", "future", "z");
    if (key == "k" && *rc::gen::inRange(0, 5) > 0) {
      field[key] = *rc::gen::elementOf(kinds());
    } else {
      field[key] = anyJson(2);
    }
  }
  return field;
}

JsonObject anySection() {
  JsonObject section(jsonStorage());
  if (*rc::gen::arbitrary<bool>()) section["name"] = anyJson(1);
  if (*rc::gen::arbitrary<bool>()) section["future"] = anyJson(2);
  if (*rc::gen::inRange(0, 5) > 0) {
    JsonArray fields(jsonStorage());
    const int count = *rc::gen::inRange(0, 6);
    for (int i = 0; i < count; ++i) fields.push_back(anyField());
    section["fields"] = std::move(fields);
  } else if (*rc::gen::arbitrary<bool>()) {
    section["fields"] = anyJson(1);
  }
  if (*rc::gen::arbitrary<bool>()) section["title"] = anyJson(1);
  return section;
}

// Identifiers that are drawn at each reading.
void dropDrawnIdentifiers(JsonObject& section) {
  Json* const fields = section.if_contains("fields");
  if (fields == nullptr) return;
  for (Json& field : fields->get_array()) {
    if (!field.is_object()) continue;
    const auto identifier = mr_validStringValueForKey(field.get_object(), "n");
    const auto kind = mr_validStringValueForKey(field.get_object(), "k");
    if (kind == "concealed" && identifier.value_or("").starts_with("TOTP_")) {
      field.get_object().stable_erase("n");
    }
  }
}

JsonObject written(const JsonObject& stored) {
  QNFieldSection section;
  section.loadDictionary(stored);
  return section.dictionaryRepresentation();
}

RC_GTEST_PROP(QNFieldSectionProperty, WhatWasWrittenIsWrittenAgainToTheByte, ()) {
  const MRCapturingSink sink;
  // Without a country, which a missing address would take.
  const QNScopedLocale locale("de");

  JsonObject once = written(anySection());
  JsonObject twice = written(once);

  dropDrawnIdentifiers(once);
  dropDrawnIdentifiers(twice);
  RC_ASSERT(jsonText(once) == jsonText(twice));
}

RC_GTEST_PROP(QNFieldSectionProperty, UnknownMembersAndElementsSurviveToTheByte, ()) {
  const MRCapturingSink sink;
  const JsonObject stored = anySection();

  const JsonObject kept = written(stored);

  const Json* const future = stored.if_contains("future");
  if (future != nullptr) RC_ASSERT(jsonText(kept.at("future")) == jsonText(*future));
  const Json* const fields = mr_objectForKey(stored, "fields", JsonKind::array);
  if (fields == nullptr || fields->get_array().empty()) return;
  const JsonArray& before = fields->get_array();
  const JsonArray& after = kept.at("fields").get_array();
  RC_ASSERT(before.size() == after.size());
  for (std::size_t i = 0; i < before.size(); ++i) {
    const JsonObject* const field = before[i].if_object();
    if (field == nullptr || QNItemField::fieldFromStored(*field)->isUnknownField()) {
      RC_ASSERT(jsonText(after[i]) == jsonText(before[i]));
      continue;
    }
    for (const std::string_view key : {"future", "z"}) {
      const Json* const member = field->if_contains(key);
      if (member != nullptr) {
        RC_ASSERT(jsonText(after[i].get_object().at(key)) == jsonText(*member));
      }
    }
  }
}

RC_GTEST_PROP(QNFieldSectionProperty, InPlaceComesToTheSameAsWritingTheWhole, ()) {
  const MRCapturingSink sink;
  const JsonObject stored = anySection();
  QNFieldSection section;
  section.loadDictionary(*rc::gen::arbitrary<bool>() ? stored : anySection());
  if (section.numberOfFields() > 0 && *rc::gen::arbitrary<bool>()) {
    section.removeFieldAtIndex(static_cast<std::size_t>(*rc::gen::inRange(0, 6)));
  }
  Json target(stored, jsonStorage());

  const bool changed = section.storeInto(target);

  RC_ASSERT(equalJson(target.get_object(), section.dictionaryRepresentation()));
  RC_ASSERT(changed || jsonText(target) == jsonText(stored));
}

}  // namespace
}  // namespace quillon
