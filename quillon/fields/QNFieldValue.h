#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string_view>
#include <variant>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

class QNAddressValue;

// Lets clang warn of a view on a temporary that has a name.
#if defined(__has_cpp_attribute)
#if __has_cpp_attribute(clang::lifetimebound)
#define QN_LIFETIMEBOUND [[clang::lifetimebound]]
#endif
#endif
#ifndef QN_LIFETIMEBOUND
#define QN_LIFETIMEBOUND
#endif

/// What a field holds, for comparing it and for handing it to another field: nothing, a text, a
/// whole number, an address, or any other JSON. A view, like std::string_view: valid while what
/// it was taken from lives unchanged. Never name one that is made from a temporary. To keep a
/// value, take the field's stringValue() or jsonValue().
class QNFieldValue final {
 public:
  QNFieldValue() = default;
  // NOLINTBEGIN(google-explicit-constructor): each of these is a value of a field.
  QNFieldValue(std::nullopt_t) {}
  /// A null, and a 0 with it, is no text: nothing is std::nullopt.
  QNFieldValue(std::nullptr_t) = delete;
  QNFieldValue(const char* text) : _value(std::string_view(text)) {}
  QNFieldValue(std::string_view text QN_LIFETIMEBOUND) : _value(text) {}
  QNFieldValue(const QNSecret& text QN_LIFETIMEBOUND) : _value(text.reveal()) {}
  QNFieldValue(std::optional<std::string_view> text) {
    if (text) _value = *text;
  }
  QNFieldValue(const QNAddressValue& address QN_LIFETIMEBOUND) : _value(&address) {}
  // NOLINTEND(google-explicit-constructor)
  static QNFieldValue ofNumber(std::int64_t number);
  /// A JSON text reads as a text, a whole number that fits as a number. Null is nothing; a JSON
  /// null isn't.
  static QNFieldValue ofJson(const Json* value);

  [[nodiscard]] bool isNothing() const { return std::holds_alternative<std::monostate>(_value); }
  [[nodiscard]] bool isText() const { return std::holds_alternative<std::string_view>(_value); }
  /// Each gives nothing for a value of another kind. A text may be a secret.
  [[nodiscard]] std::optional<std::string_view> revealText() const;
  [[nodiscard]] std::optional<std::int64_t> number() const;
  [[nodiscard]] const QNAddressValue* address() const;
  /// The JSON form, in the wiping resource; nothing for nothing.
  [[nodiscard]] std::optional<Json> toJson() const;

  /// Equal content? Nothing equals nothing at all, not even another nothing.
  [[nodiscard]] bool isEqual(const QNFieldValue& other) const;
  /// Both nothing, or equal content.
  [[nodiscard]] bool isSameAs(const QNFieldValue& other) const {
    return (isNothing() && other.isNothing()) || isEqual(other);
  }
  /// Are both texts, both numbers, both addresses, or JSON of the same kind?
  [[nodiscard]] bool isOfSameClassAs(const QNFieldValue& other) const;

 private:
  std::variant<std::monostate, std::string_view, std::int64_t, const QNAddressValue*, const Json*>
      _value;
};

/// Prints "[value]", so that it can't reach a log or a test's output by accident.
std::ostream& operator<<(std::ostream& out, const QNFieldValue& value);

}  // namespace quillon
