#include "quillon/fields/QNFieldValue.h"

#include <limits>
#include <ostream>

#include "quillon/fields/QNAddressValue.h"
#include "quillon/platform/json/QNJsonEquality.h"

namespace quillon {
namespace {

bool isNumber(const Json& value) {
  return value.is_int64() || value.is_uint64() || value.is_double();
}

}  // namespace

QNFieldValue QNFieldValue::ofNumber(std::int64_t number) {
  QNFieldValue made;
  made._value = number;
  return made;
}

QNFieldValue QNFieldValue::ofJson(const Json* value) {
  if (value == nullptr) return {};
  if (const auto* const text = value->if_string()) return std::string_view(*text);
  if (const auto* const number = value->if_int64()) return ofNumber(*number);
  QNFieldValue made;
  made._value = value;
  return made;
}

std::optional<std::string_view> QNFieldValue::revealText() const {
  const auto* const text = std::get_if<std::string_view>(&_value);
  return text == nullptr ? std::nullopt : std::optional<std::string_view>(*text);
}

std::optional<std::int64_t> QNFieldValue::number() const {
  const auto* const number = std::get_if<std::int64_t>(&_value);
  return number == nullptr ? std::nullopt : std::optional<std::int64_t>(*number);
}

const QNAddressValue* QNFieldValue::address() const {
  const auto* const address = std::get_if<const QNAddressValue*>(&_value);
  return address == nullptr ? nullptr : *address;
}

std::optional<Json> QNFieldValue::toJson() const {
  if (const auto text = revealText()) {
    std::optional<Json> made(std::in_place, jsonStorage());
    made->emplace_string().assign(*text);
    return made;
  }
  if (const auto integer = number()) return Json(*integer, jsonStorage());
  if (const QNAddressValue* const known = address()) {
    auto dictionary = known->dictionaryRepresentation();
    return dictionary ? std::optional<Json>(std::move(*dictionary)) : std::nullopt;
  }
  const auto* const json = std::get_if<const Json*>(&_value);
  return json == nullptr ? std::nullopt : std::optional<Json>(mr_deepMutableCopy(**json));
}

bool QNFieldValue::isOfSameClassAs(const QNFieldValue& other) const {
  const auto* const mine = std::get_if<const Json*>(&_value);
  const auto* const theirs = std::get_if<const Json*>(&other._value);
  if (mine != nullptr && theirs != nullptr) {
    return (*mine)->kind() == (*theirs)->kind() || (isNumber(**mine) && isNumber(**theirs));
  }
  if (mine != nullptr && other.number()) return isNumber(**mine);
  if (theirs != nullptr && number()) return isNumber(**theirs);
  return _value.index() == other._value.index();
}

bool QNFieldValue::isEqual(const QNFieldValue& other) const {
  if (isNothing() || !isOfSameClassAs(other)) return false;
  if (isText()) return revealText() == other.revealText();
  if (const QNAddressValue* const mine = address()) return mine->isEqual(*other.address());
  if (number() && other.number()) return number() == other.number();
  return equalJson(*toJson(), *other.toJson());
}

std::ostream& operator<<(std::ostream& out, const QNFieldValue& value) {
  return out << (value.isNothing() ? "[nothing]" : "[value]");
}

}  // namespace quillon
