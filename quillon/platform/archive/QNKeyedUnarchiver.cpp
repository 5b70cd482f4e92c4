#include <algorithm>
#include <cmath>
#include <limits>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/archive/internal/QNArchiveForm.h"
#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

using Classes = std::span<const QNDecodableClass>;

// Strict: a float, or a number beyond 64 bits, isn't a whole number.
std::optional<std::uint64_t> unsignedNumber(const Json* value) {
  if (value == nullptr) return std::nullopt;
  if (const auto* const number = value->if_uint64()) return *number;
  const auto* const number = value->if_int64();
  if (number == nullptr || *number < 0) return std::nullopt;
  return static_cast<std::uint64_t>(*number);
}

// What {"$bytes":...} or {"$json":...} wraps; null if `value` isn't that.
const Json* unwrapped(const Json* value, std::string_view wrapper) {
  if (value == nullptr || !value->is_object()) return nullptr;
  const JsonObject& object = value->get_object();
  return object.size() == 1 ? object.if_contains(wrapper) : nullptr;
}

std::shared_ptr<QNCoding> makeObject(Classes classes, const Json* value);

class ArchiveDecoder final : public QNDecoder {
 public:
  ArchiveDecoder(Classes classes, const JsonObject& object) : _classes(classes), _object(object) {}

  bool containsValueForKey(std::string_view key) const override { return _object.contains(key); }

  std::optional<bool> decodeBool(std::string_view key) const override {
    const Json* const found = mr_objectForKey(_object, key, JsonKind::bool_);
    if (found == nullptr) return std::nullopt;
    return found->get_bool();
  }
  std::optional<std::int32_t> decodeInt32(std::string_view key) const override {
    const Json* const found = mr_objectForKey(_object, key, JsonKind::int64);
    using Limits = std::numeric_limits<std::int32_t>;
    if (found == nullptr || found->get_int64() < Limits::min() ||
        found->get_int64() > Limits::max()) {
      return std::nullopt;
    }
    return static_cast<std::int32_t>(found->get_int64());
  }
  std::optional<std::uint64_t> decodeInt64(std::string_view key) const override {
    return unsignedNumber(_object.if_contains(key));
  }
  // Other writers of JSON give a whole number no fraction, so any number will do.
  std::optional<float> decodeFloat(std::string_view key) const override {
    const Json* const found = _object.if_contains(key);
    if (found == nullptr || !found->is_number()) return std::nullopt;
    const double number = found->to_number<double>();
    if (std::abs(number) > std::numeric_limits<float>::max()) return std::nullopt;
    return static_cast<float>(number);
  }
  std::optional<std::string> decodeString(std::string_view key) const override {
    const auto text = mr_validStringValueForKey(_object, key);
    if (!text) return std::nullopt;
    return std::string(*text);
  }
  std::optional<Bytes> decodeBytes(std::string_view key) const override {
    const Json* const found = unwrapped(_object.if_contains(key), kArchiveBytesKey);
    if (found == nullptr || !found->is_string()) return std::nullopt;
    return mr_base64decode(found->get_string());
  }
  std::shared_ptr<QNCoding> decodeObject(std::string_view key) override {
    return makeObject(_classes, _object.if_contains(key));
  }
  std::vector<std::shared_ptr<QNCoding>> decodeObjects(std::string_view key) override {
    std::vector<std::shared_ptr<QNCoding>> objects;
    const Json* const found = mr_objectForKey(_object, key, JsonKind::array);
    if (found == nullptr) return objects;
    for (const Json& element : found->get_array()) {
      if (auto object = makeObject(_classes, &element)) objects.push_back(std::move(object));
    }
    return objects;
  }
  const Json* decodeJson(std::string_view key) const override {
    return unwrapped(_object.if_contains(key), kArchiveJsonKey);
  }

 private:
  Classes _classes;
  const JsonObject& _object;
};

std::shared_ptr<QNCoding> makeObject(Classes classes, const Json* value) {
  if (value == nullptr || !value->is_object()) return nullptr;
  const auto name = mr_validStringValueForKey(value->get_object(), kArchiveClassKey);
  if (!name) return nullptr;
  const auto known = std::find_if(classes.begin(), classes.end(),
                                  [&](const QNDecodableClass& it) { return it.name == *name; });
  if (known == classes.end()) return nullptr;
  ArchiveDecoder decoder(classes, value->get_object());
  return known->initWithCoder(decoder);
}

// Objects of classes on the longest way down. What "$json" wraps is foreign and isn't looked into.
std::size_t objectDepth(const Json& value) {
  std::size_t inner = 0;
  if (const JsonArray* const array = value.if_array()) {
    for (const Json& element : *array) inner = std::max(inner, objectDepth(element));
    return inner;
  }
  const JsonObject* const object = value.if_object();
  if (object == nullptr || !object->contains(kArchiveClassKey)) return 0;
  for (const auto& member : *object) inner = std::max(inner, objectDepth(member.value()));
  return inner + 1;
}

QNError refused(std::string message) {
  return {std::string(QNErrorDomain), kErrorUnreadableData, std::move(message)};
}

}  // namespace

QNResult<std::shared_ptr<QNCoding>> QNKeyedUnarchiver::unarchivedObjectOfClasses(
    std::span<const QNDecodableClass> classes, ByteView archive) {
  if (archive.size() > kMaxArchiveBytes) return refused("the archive is too large");
  QNError unreadable;
  const auto top = mr_objectFromJSONDataWithError(archive, &unreadable);
  if (!top) return refused(unreadable.message);
  const auto version = unsignedNumber(top->if_contains(kArchiveMarkerKey));
  if (!version) return refused("not an archive");
  if (*version != kArchiveVersion) return refused("the archive has an unknown version");
  const Json* const root = top->if_contains(kArchiveRootKey);
  if (root == nullptr) return refused("the archive has no root");
  if (objectDepth(*root) > kMaxArchiveDepth) return refused("objects nest too deep");
  auto object = makeObject(classes, root);
  if (object == nullptr) return refused("the root can't be made");
  return object;
}

}  // namespace quillon
