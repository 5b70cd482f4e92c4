#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

// Parts of an address, as formats name them
inline constexpr std::string_view QNAddressFieldIdentifierStreet = "Street";
inline constexpr std::string_view QNAddressFieldIdentifierCity = "City";
inline constexpr std::string_view QNAddressFieldIdentifierRegion = "Region";
inline constexpr std::string_view QNAddressFieldIdentifierState = "State";
inline constexpr std::string_view QNAddressFieldIdentifierZip = "ZIP";
inline constexpr std::string_view QNAddressFieldIdentifierCountry = "Country";

/// An address: six texts, each of which may be absent. A value; it lies in the wiping resource,
/// and so does a copy. `country` is a code in small letters, "de".
class QNAddressValue final {
 public:
  /// The country of the user's locale, and nothing else.
  QNAddressValue();
  /// As stored; see setDictionaryRepresentation().
  explicit QNAddressValue(const JsonObject& dictionaryRepresentation);
  QNAddressValue(const QNAddressValue& other);
  QNAddressValue& operator=(const QNAddressValue& other);
  QNAddressValue(QNAddressValue&&) = default;
  QNAddressValue& operator=(QNAddressValue&&) = default;
  ~QNAddressValue() = default;

  // Views, valid until the value changes. Nothing removes a part.
  [[nodiscard]] std::optional<std::string_view> country() const { return part("country"); }
  [[nodiscard]] std::optional<std::string_view> zip() const { return part("zip"); }
  [[nodiscard]] std::optional<std::string_view> region() const { return part("region"); }
  [[nodiscard]] std::optional<std::string_view> state() const { return part("state"); }
  [[nodiscard]] std::optional<std::string_view> city() const { return part("city"); }
  [[nodiscard]] std::optional<std::string_view> street() const { return part("street"); }
  void setCountry(std::optional<std::string_view> code) { setPart("country", code); }
  void setZip(std::optional<std::string_view> zip) { setPart("zip", zip); }
  void setRegion(std::optional<std::string_view> region) { setPart("region", region); }
  void setState(std::optional<std::string_view> state) { setPart("state", state); }
  void setCity(std::optional<std::string_view> city) { setPart("city", city); }
  void setStreet(std::optional<std::string_view> street) { setPart("street", street); }

  /// The parts that are there; nothing, and not an empty object, for none.
  [[nodiscard]] std::optional<JsonObject> dictionaryRepresentation() const;
  /// A part that is absent or no text becomes nothing, the country too.
  void setDictionaryRepresentation(const JsonObject& dictionary);
  /// What is stored: the parts, and the members that this library doesn't know, in the order in
  /// which they were read.
  [[nodiscard]] const JsonObject& storedForm() const { return _members; }

  /// All six equal? Nothing equals nothing.
  [[nodiscard]] bool isEqual(const QNAddressValue& other) const;
  friend bool operator==(const QNAddressValue& a, const QNAddressValue& b) { return a.isEqual(b); }
  [[nodiscard]] std::size_t hash() const;
  /// As the format of its own country writes it.
  [[nodiscard]] QNSecret stringValue() const;
  /// Nothing but blanks in all six. A country counts.
  [[nodiscard]] bool isEmpty() const;

 private:
  [[nodiscard]] std::optional<std::string_view> part(std::string_view key) const;
  void setPart(std::string_view key, std::optional<std::string_view> text);
  JsonObject _members;
};

}  // namespace quillon
