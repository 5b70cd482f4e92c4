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

bool precedes(const boost::json::key_value_pair* a, const boost::json::key_value_pair* b) {
  return a->key() < b->key();
}

void sortMembers(JsonObject& object);

void sort(Json& value) {
  if (JsonObject* const object = value.if_object()) return sortMembers(*object);
  if (const double* const number = value.if_double()) {
    value = plainNumber(*number);
    return;
  }
  if (!value.is_array()) return;
  for (Json& element : value.get_array()) sort(element);
}

void sortMembers(JsonObject& object) {
  std::vector<boost::json::key_value_pair*> members;
  members.reserve(object.size());
  for (auto& member : object) {
    sort(member.value());
    members.push_back(&member);
  }
  if (std::is_sorted(members.begin(), members.end(), precedes)) return;
  std::sort(members.begin(), members.end(), precedes);
  JsonObject sorted(object.storage());
  sorted.reserve(object.size());
  for (auto* const member : members) sorted.emplace(member->key(), std::move(member->value()));
  object = std::move(sorted);
}

}  // namespace

Json mr_arrayByDeepSortingDictionariesInJSONObject(const Json& value) {
  Json sorted = mr_deepMutableCopy(value);
  sort(sorted);
  return sorted;
}

JsonObject mr_arrayByDeepSortingDictionariesInJSONObject(JsonObject&& object) {
  sortMembers(object);
  return std::move(object);
}

}  // namespace quillon
