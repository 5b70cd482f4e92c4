#include "quillon/items/QNSearchPredicate.h"

#include <algorithm>

#include "quillon/items/QNItem.h"
#include "quillon/platform/json/QNJsonReading.h"
#include "quillon/platform/text/QNFoldedText.h"

namespace quillon {

QNSearchPredicate::QNSearchPredicate(std::string_view searched, Place place)
    : _searched(searched), _folded(secretFoldedForSearch(searched)), _place(place) {}

bool QNSearchPredicate::matches(std::string_view text) const {
  return matchesFolded(QNFoldedText(text).text());
}

bool QNSearchPredicate::matchesFolded(std::string_view folded) const noexcept {
  const std::string_view part = _folded.reveal();
  return _place == Place::beginning ? folded.starts_with(part) : containsText(folded, part);
}

bool objectMatchesLowercaseString(const Json* object, std::string_view string) {
  return objectMatches(object, *QNItem::cachedPredicateForSearchString(string));
}

bool objectMatches(const Json* object, const QNSearchPredicate& test) {
  if (object == nullptr) return false;
  if (const auto* const list = object->if_array()) {
    return std::any_of(list->begin(), list->end(),
                       [&test](const Json& element) { return objectMatches(&element, test); });
  }
  if (const auto* const members = object->if_object()) {
    return std::any_of(members->begin(), members->end(), [&test](const auto& member) {
      return objectMatches(&member.value(), test);
    });
  }
  const auto text = descriptionOfJson(*object);
  return text && test.matches(text->reveal());  // compared only
}

}  // namespace quillon
