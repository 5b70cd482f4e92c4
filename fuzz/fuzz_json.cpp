// JSON helpers: what was read, written and read again is the same value, and its text the same
// text.
#include <cstdlib>

#include "quillon/platform/json/QNJson.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

bool hasNull(const Json& value) {
  if (const JsonArray* const array = value.if_array()) {
    return std::any_of(array->begin(), array->end(), hasNull);
  }
  if (const JsonObject* const object = value.if_object()) {
    return std::any_of(object->begin(), object->end(),
                       [](const auto& member) { return hasNull(member.value()); });
  }
  return value.is_null();
}

void exerciseObject(JsonObject& object) {
  for (const auto& member : object) {
    const std::string_view key = member.key();
    require(mr_objectForKey(object, key, member.value().kind()) == &member.value());
    require(mr_validStringValueForKey(object, key).has_value() == member.value().is_string());
    mr_unsignedValueForKey(object, key);
  }
  const JsonObject before = mr_deepMutableCopy(object);
  require(before == object);
  mr_removeNSNullValues(object);
  for (const auto& member : object) require(!hasNull(member.value()));
  require(object.size() <= before.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  QNError error;
  auto value = mr_valueFromJSONDataWithError({data, size}, &error);
  if (!value) {
    require(error.domainCodeString() == "MRErrorDomain 114");
    return 0;
  }
  const auto text = mr_JSONDataWithError(*value);
  require(text.has_value());
  const auto again = mr_valueFromJSONDataWithError(*text);
  require(again && *again == *value);
  require(mr_JSONDataWithError(*again) == text);
  if (value->is_object()) exerciseObject(value->get_object());
  return 0;
}
