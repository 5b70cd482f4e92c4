#include "quillon/platform/json/QNJson.h"

#include <cmath>
#include <functional>

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

class WipingResource final : public boost::json::memory_resource {
  void* do_allocate(std::size_t size, std::size_t /*align*/) override {
    return ::operator new(size);
  }
  void do_deallocate(void* block, std::size_t size, std::size_t /*align*/) override {
    releaseWiped(block, size);
  }
  bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
};

// Has the value a JSON form that can be read back? Texts must be UTF-8 and numbers finite. `depth`:
// how many more containers may stand inside one another.
bool hasJsonForm(const Json& value, std::size_t depth);
bool hasJsonForm(const JsonObject& object, std::size_t depth) {
  if (depth == 0) return false;
  for (const auto& member : object) {
    if (!isUTF8(member.key()) || !hasJsonForm(member.value(), depth - 1)) return false;
  }
  return true;
}
bool hasJsonForm(const Json& value, std::size_t depth) {
  switch (value.kind()) {
    case JsonKind::string:
      return isUTF8(value.get_string());
    case JsonKind::double_:
      return std::isfinite(value.get_double());
    case JsonKind::object:
      return hasJsonForm(value.get_object(), depth);
    case JsonKind::array:
      if (depth == 0) return false;
      for (const Json& element : value.get_array()) {
        if (!hasJsonForm(element, depth - 1)) return false;
      }
      return true;
    default:
      return true;
  }
}

template <class Value>
std::optional<Bytes> serialized(const Value& value, QNError* error) {
  if (!hasJsonForm(value, kMaxJsonDepth)) {
    setError(error, QNError::unreadable("a value has no JSON form"));
    return std::nullopt;
  }
  boost::json::serializer serializer;  // its own stack holds places, no text
  serializer.reset(&value);
  Bytes out;
  std::size_t chunk = 512;
  while (!serializer.done()) {
    const std::size_t start = out.size();
    out.resize(start + chunk);
    const auto written = serializer.read(reinterpret_cast<char*>(out.data()) + start, chunk);
    out.resize(start + written.size());
    chunk = std::max(chunk, out.size());
  }
  return out;
}

template <class Value>
std::optional<std::string> serializedText(const Value& value, QNError* error) {
  const auto bytes = serialized(value, error);
  if (!bytes) return std::nullopt;
  return std::string(textOf(*bytes));
}

void removeNulls(Json& value);

// What is kept moves into a new container: taking nulls out one by one would move all that is
// behind each of them.
void removeNulls(JsonArray& array) {
  JsonArray kept(array.storage());
  kept.reserve(array.size());
  for (Json& element : array) {
    if (element.is_null()) continue;
    removeNulls(element);
    kept.emplace_back(std::move(element));
  }
  array = std::move(kept);
}

void removeNulls(JsonObject& object) {
  JsonObject kept(object.storage());
  kept.reserve(object.size());
  for (auto& member : object) {
    if (member.value().is_null()) continue;
    removeNulls(member.value());
    kept.emplace(member.key(), std::move(member.value()));
  }
  object = std::move(kept);
}

void removeNulls(Json& value) {
  if (value.is_object()) removeNulls(value.get_object());
  if (value.is_array()) removeNulls(value.get_array());
}

// Does a text that may lie in the object outlive the end of one of its values?
bool textSurvives(const Json& ended, std::string_view text) {
  const auto* const replaced = ended.if_string();
  if (replaced == nullptr) return !ended.is_structured();
  const std::less<> before;
  return before(text.data() + text.size(), replaced->data()) ||
         before(replaced->data() + replaced->size(), text.data());
}

}  // namespace

boost::json::storage_ptr jsonStorage() noexcept {
  // Never destroyed: what other static objects hold is given back after the end of this file's.
  static WipingResource* const resource = new WipingResource;
  return resource;
}

std::optional<Bytes> mr_JSONDataWithError(const Json& value, QNError* error) {
  return serialized(value, error);
}
std::optional<Bytes> mr_JSONDataWithError(const JsonObject& object, QNError* error) {
  return serialized(object, error);
}
std::optional<std::string> mr_JSONStringWithError(const Json& value, QNError* error) {
  return serializedText(value, error);
}
std::optional<std::string> mr_JSONStringWithError(const JsonObject& object, QNError* error) {
  return serializedText(object, error);
}

std::optional<JsonObject> mr_objectFromJSONDataWithError(ByteView data, QNError* error) {
  auto value = mr_valueFromJSONDataWithError(data, error);
  if (!value) return std::nullopt;
  if (!value->is_object()) {
    setError(error, QNError::unreadable("the JSON text isn't an object"));
    return std::nullopt;
  }
  return std::move(value->get_object());
}

// Every object of ours is mutable, to any depth.
std::optional<JsonObject> mr_mutableObjectFromJSONDataWithError(ByteView data, QNError* error) {
  return mr_objectFromJSONDataWithError(data, error);
}

std::optional<JsonObject> mr_objectFromJSONStringWithError(std::string_view text, QNError* error) {
  return mr_objectFromJSONDataWithError(bytesOf(text), error);
}

void mr_removeNSNullValues(JsonObject& object) {
  removeNulls(object);
}

JsonObject mr_deepMutableCopy(const JsonObject& object) {
  return JsonObject(object, jsonStorage());
}
Json mr_deepMutableCopy(const Json& value) {
  return Json(value, jsonStorage());
}

const Json* memberForKey(const JsonObject& object, std::string_view key) {
  constexpr std::size_t mostToLookThrough = 16;
  if (object.size() > mostToLookThrough || key.empty()) return object.if_contains(key);
  for (const auto& member : object) {
    const std::string_view name = member.key();
    if (name.size() == key.size() && name.front() == key.front() && name == key) {
      return &member.value();
    }
  }
  return nullptr;
}

const Json* mr_objectForKey(const JsonObject& object, std::string_view key, JsonKind ofClass) {
  const Json* const found = memberForKey(object, key);
  return found != nullptr && found->kind() == ofClass ? found : nullptr;
}

const Json* mr_objectForKey(const JsonObject& object, std::string_view key,
                            std::initializer_list<JsonKind> ofClasses) {
  for (const JsonKind kind : ofClasses) {
    if (const Json* const found = mr_objectForKey(object, key, kind)) return found;
  }
  return nullptr;
}

std::optional<std::string_view> mr_validStringValueForKey(const JsonObject& object,
                                                          std::string_view key) {
  const Json* const found = mr_objectForKey(object, key, JsonKind::string);
  if (found == nullptr) return std::nullopt;
  return std::string_view(found->get_string());
}

std::optional<std::string> ownedStringForKey(const JsonObject& object, std::string_view key) {
  const auto text = mr_validStringValueForKey(object, key);
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::uint64_t> mr_unsignedValueForKey(const JsonObject& object,
                                                    std::string_view key) {
  const Json* const found = object.if_contains(key);
  if (found == nullptr) return std::nullopt;
  if (const auto* const number = found->if_uint64()) return *number;
  if (const auto* const number = found->if_int64(); number != nullptr && *number >= 0) {
    return static_cast<std::uint64_t>(*number);
  }
  constexpr double kTwoTo64 = 18446744073709551616.0;
  if (const auto* const number = found->if_double();
      number != nullptr && *number >= 0 && *number < kTwoTo64) {
    return static_cast<std::uint64_t>(*number);
  }
  return std::nullopt;
}

void setJsonText(JsonObject& object, std::string_view key, std::string_view text) {
  // An object that grows moves its members. With room for one more the key is looked for once.
  const bool hasRoom = object.size() < object.capacity();
  Json* const place = hasRoom ? &object[key] : object.if_contains(key);
  if (place != nullptr && textSurvives(*place, text)) {
    place->emplace_string().assign(text);
    return;
  }
  // A copy in a string of the JSON kind would stay on the stack if it is short.
  const Bytes copy = toBytes(bytesOf(text));
  object[key].emplace_string().assign(textOf(copy));
}

}  // namespace quillon
