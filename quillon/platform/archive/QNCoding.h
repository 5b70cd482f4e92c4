#pragma once
// The keyed archive: an object writes its state under names, and is made again from them.
// The container is JSON; its form is told in docs/formats.md.

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

class QNEncoder;
class QNDecoder;

/// What can be archived.
class QNCoding {
 public:
  virtual ~QNCoding() = default;
  /// The class's name in archives.
  [[nodiscard]] virtual std::string_view className() const = 0;
  /// Writes the state. Not const: an object may bring its stored forms up to date first.
  virtual void encodeWithCoder(QNEncoder& coder) = 0;
};

/// Takes named values of one object. A key written twice keeps the later value.
class QNEncoder {
 public:
  virtual ~QNEncoder() = default;
  virtual void encodeBool(bool value, std::string_view forKey) = 0;
  virtual void encodeInt32(std::int32_t value, std::string_view forKey) = 0;
  /// 64 bits; unsigned values keep their bits' meaning as unsigned.
  virtual void encodeInt64(std::uint64_t value, std::string_view forKey) = 0;
  virtual void encodeFloat(float value, std::string_view forKey) = 0;
  virtual void encodeString(std::string_view value, std::string_view forKey) = 0;
  virtual void encodeBytes(ByteView value, std::string_view forKey) = 0;
  virtual void encodeObject(QNCoding& value, std::string_view forKey) = 0;
  virtual void encodeObjects(std::span<const std::shared_ptr<QNCoding>> values,
                             std::string_view forKey) = 0;
  /// A JSON container, kept as it is.
  virtual void encodeJson(const Json& value, std::string_view forKey) = 0;
};

/// Absent values aren't written.
inline void encodeIfPresent(QNEncoder& coder, const std::optional<std::string>& text,
                            std::string_view key) {
  if (text) coder.encodeString(*text, key);
}
template <class Data>
requires std::convertible_to<const Data&, ByteView>
void encodeIfPresent(QNEncoder& coder, const std::optional<Data>& data, std::string_view key) {
  if (data) coder.encodeBytes(*data, key);
}

/// Gives named values of one object. A key that is absent or of another kind reads as nothing.
class QNDecoder {
 public:
  virtual ~QNDecoder() = default;
  [[nodiscard]] virtual bool containsValueForKey(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<bool> decodeBool(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::int32_t> decodeInt32(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::uint64_t> decodeInt64(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<float> decodeFloat(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::string> decodeString(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<Bytes> decodeBytes(std::string_view key) const = 0;
  [[nodiscard]] virtual std::shared_ptr<QNCoding> decodeObject(std::string_view key) = 0;
  /// Elements that can't be made are left out.
  [[nodiscard]] virtual std::vector<std::shared_ptr<QNCoding>> decodeObjects(
      std::string_view key) = 0;
  [[nodiscard]] virtual const Json* decodeJson(std::string_view key) const = 0;
};

/// A class that an archive may hold.
struct QNDecodableClass {
  std::string_view name;
  std::shared_ptr<QNCoding> (*initWithCoder)(QNDecoder& coder);
};

}  // namespace quillon
