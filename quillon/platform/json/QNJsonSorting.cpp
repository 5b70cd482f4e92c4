#include "quillon/platform/json/QNJsonSorting.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quillon {
namespace {

// A double that is a whole number of 64 bits is that number, as equality has it.
Json plainNumber(double number) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (std::trunc(number) != number || number < -kTwoTo63 || number >= 2 * kTwoTo63) return number;
  if (number < kTwoTo63) return static_cast<std::int64_t>(number);
  return static_cast<std::uint64_t>(number);
}

JsonArray sortedElements(const JsonArray& array) {
  JsonArray sorted(jsonStorage());
  sorted.reserve(array.size());
  for (const Json& element : array) {
    sorted.push_back(mr_arrayByDeepSortingDictionariesInJSONObject(element));
  }
  return sorted;
}

}  // namespace

Json mr_arrayByDeepSortingDictionariesInJSONObject(const Json& value) {
  if (const JsonObject* const object = value.if_object()) {
    return mr_arrayByDeepSortingDictionariesInJSONObject(*object);
  }
  if (const JsonArray* const array = value.if_array()) return sortedElements(*array);
  if (const double* const number = value.if_double()) return plainNumber(*number);
  return mr_deepMutableCopy(value);
}

JsonObject mr_arrayByDeepSortingDictionariesInJSONObject(const JsonObject& object) {
  std::vector<const boost::json::key_value_pair*> members;
  members.reserve(object.size());
  for (const auto& member : object) members.push_back(&member);
  std::sort(members.begin(), members.end(),
            [](const auto* a, const auto* b) { return a->key() < b->key(); });
  JsonObject sorted(jsonStorage());
  sorted.reserve(object.size());
  for (const auto* const member : members) {
    sorted.emplace(member->key(), mr_arrayByDeepSortingDictionariesInJSONObject(member->value()));
  }
  return sorted;
}

}  // namespace quillon
