#include "quillon/platform/json/QNJsonEquality.h"

#include <algorithm>
#include <cmath>

namespace quillon {
namespace {

// A double turns into the whole number, never the other way: that would round.
bool isWholeNumber(double number, const Json& other) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (std::trunc(number) != number || number < -kTwoTo63 || number >= 2 * kTwoTo63) return false;
  if (number < kTwoTo63) return Json(static_cast<std::int64_t>(number)) == other;
  return Json(static_cast<std::uint64_t>(number)) == other;
}

bool equalArrays(const JsonArray& a, const JsonArray& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const Json& one, const Json& other) { return equalJson(one, other); });
}

}  // namespace

bool equalJson(const Json& a, const Json& b) {
  if (a.is_object() && b.is_object()) return equalJson(a.get_object(), b.get_object());
  if (a.is_array() && b.is_array()) return equalArrays(a.get_array(), b.get_array());
  if (a.is_double() && !b.is_double()) return isWholeNumber(a.get_double(), b);
  if (b.is_double() && !a.is_double()) return isWholeNumber(b.get_double(), a);
  return a == b;
}

bool equalJson(const JsonObject& a, const JsonObject& b) {
  return a.size() == b.size() && std::all_of(a.begin(), a.end(), [&b](const auto& member) {
           const Json* const other = b.if_contains(member.key());
           return other != nullptr && equalJson(member.value(), *other);
         });
}

}  // namespace quillon
