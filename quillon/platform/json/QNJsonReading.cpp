#include "quillon/platform/json/QNJsonReading.h"

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>

namespace quillon {
namespace {

// Digits without an exponent as far as they stay short: a number in a form is a code or a phone
// number to its reader. The shortest form of to_chars would read 100000.0 as 1e+05.
std::to_chars_result writeDigits(char* begin, char* end, double number) {
  const double size = std::abs(number);
  const bool isPlain = size == 0 || (size >= 1e-6 && size < 1e21);
  return std::to_chars(begin, end, number,
                       isPlain ? std::chars_format::fixed : std::chars_format::scientific);
}

template <std::integral Number>
std::to_chars_result writeDigits(char* begin, char* end, Number number) {
  return std::to_chars(begin, end, number);
}

template <class Number>
QNSecret textOfNumber(Number number) {
  std::array<char, 64> digits;
  const auto end = writeDigits(digits.data(), digits.data() + digits.size(), number).ptr;
  QNSecret text(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
  wipe(digits.data(), digits.size());
  return text;
}

std::optional<QNSecret> textOfContainer(const Json& value) {
  const auto text = mr_JSONDataWithError(value);
  return text ? std::optional<QNSecret>(textOf(*text)) : std::nullopt;
}

constexpr double kTwoTo63 = 9223372036854775808.0;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

std::string_view withoutBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<std::int64_t> integerOfText(std::string_view text) {
  text = withoutBlanks(text);
  if (text.starts_with('+') && text.size() > 1 && isDigit(text[1])) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc()) return std::nullopt;
  std::string_view rest = text.substr(static_cast<std::size_t>(read.ptr - text.data()));
  if (rest.starts_with('.')) rest.remove_prefix(1);
  while (!rest.empty() && isDigit(rest.front())) rest.remove_prefix(1);
  return rest.empty() ? std::optional<std::int64_t>(number) : std::nullopt;
}

}  // namespace

std::optional<QNSecret> descriptionOfJson(const Json& value) {
  switch (value.kind()) {
    case JsonKind::null:
      return std::nullopt;
    case JsonKind::string:
      return QNSecret(value.get_string());
    case JsonKind::int64:
      return textOfNumber(value.get_int64());
    case JsonKind::uint64:
      return textOfNumber(value.get_uint64());
    case JsonKind::double_:
      return textOfNumber(value.get_double());
    case JsonKind::bool_:
      return QNSecret(value.get_bool() ? "true" : "false");
    default:
      return textOfContainer(value);
  }
}

std::optional<std::int64_t> integerOfJson(const Json& value) {
  if (const auto* const number = value.if_int64()) return *number;
  if (const auto* const text = value.if_string()) return integerOfText(*text);
  const auto* const number = value.if_double();  // an unsigned number is one that doesn't fit
  if (number == nullptr || !(*number >= -kTwoTo63 && *number < kTwoTo63)) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

}  // namespace quillon
