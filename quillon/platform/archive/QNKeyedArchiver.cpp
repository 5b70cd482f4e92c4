#include "quillon/platform/archive/QNKeyedArchiver.h"

#include <fmt/core.h>

#include "quillon/platform/archive/internal/QNArchiveForm.h"
#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

QNError notArchivable(std::string message) {
  return {std::string(QNErrorDomain), kErrorUnreadableData, std::move(message)};
}

// Writes one object, and makes another encoder for each object in it. The first failure stays in
// `_failure`, which all of them share; nothing is written after it.
class ArchiveEncoder final : public QNEncoder {
 public:
  ArchiveEncoder(JsonObject& object, std::size_t depth, std::optional<QNError>& failure)
      : _object(object), _depth(depth), _failure(failure) {}

  void encodeRoot(QNCoding& root) {
    if (_failure) return;
    if (_depth > kMaxArchiveDepth) {
      _failure = notArchivable("objects nest too deep");
      return;
    }
    setJsonText(_object, kArchiveClassKey, root.className());
    root.encodeWithCoder(*this);
  }

  void encodeBool(bool value, std::string_view forKey) override {
    if (accepts(forKey)) _object[forKey] = value;
  }
  void encodeInt32(std::int32_t value, std::string_view forKey) override {
    if (accepts(forKey)) _object[forKey] = value;
  }
  void encodeInt64(std::uint64_t value, std::string_view forKey) override {
    if (accepts(forKey)) _object[forKey] = value;
  }
  void encodeFloat(float value, std::string_view forKey) override {
    if (accepts(forKey)) _object[forKey] = static_cast<double>(value);
  }
  void encodeString(std::string_view value, std::string_view forKey) override {
    if (accepts(forKey)) setJsonText(_object, forKey, value);
  }
  void encodeBytes(ByteView value, std::string_view forKey) override {
    if (!accepts(forKey)) return;
    std::string text = mr_base64encode(value);
    setJsonText(_object[forKey].emplace_object(), kArchiveBytesKey, text);
    wipe(text.data(), text.size());  // it may be a key
  }
  void encodeObject(QNCoding& value, std::string_view forKey) override {
    if (!accepts(forKey)) return;
    encodeInto(_object[forKey].emplace_object(), value);
  }
  void encodeObjects(std::span<const std::shared_ptr<QNCoding>> values,
                     std::string_view forKey) override {
    if (!accepts(forKey)) return;
    JsonArray& list = _object[forKey].emplace_array();
    for (const auto& value : values) {
      if (value != nullptr) encodeInto(list.emplace_back(nullptr).emplace_object(), *value);
    }
  }
  void encodeJson(const Json& value, std::string_view forKey) override {
    if (accepts(forKey)) _object[forKey].emplace_object()[kArchiveJsonKey] = value;
  }

 private:
  bool accepts(std::string_view key) {
    if (!_failure && key.substr(0, 1) == std::string_view(&kArchiveReservedMark, 1)) {
      _failure = notArchivable(fmt::format("the key {} is reserved", key));
    }
    return !_failure;
  }
  void encodeInto(JsonObject& object, QNCoding& value) {
    ArchiveEncoder(object, _depth + 1, _failure).encodeRoot(value);
  }

  JsonObject& _object;
  std::size_t _depth;
  std::optional<QNError>& _failure;
};

}  // namespace

QNResult<Bytes> QNKeyedArchiver::archivedDataWithRootObject(QNCoding& root) {
  Json archive(boost::json::object_kind, jsonStorage());
  JsonObject& top = archive.get_object();
  top[kArchiveMarkerKey] = kArchiveVersion;
  std::optional<QNError> failure;
  ArchiveEncoder(top[kArchiveRootKey].emplace_object(), 1, failure).encodeRoot(root);
  if (failure) return *failure;
  QNError unwritable;
  auto bytes = mr_JSONDataWithError(archive, &unwritable);
  if (!bytes) return notArchivable(unwritable.message);
  // What couldn't be read back must not be written.
  if (bytes->size() > kMaxArchiveBytes) return notArchivable("the archive is too large");
  return std::move(*bytes);
}

}  // namespace quillon
