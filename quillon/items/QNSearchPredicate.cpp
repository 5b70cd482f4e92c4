#include "quillon/items/QNSearchPredicate.h"

#include <algorithm>
#include <cstring>

#include "quillon/items/QNItem.h"
#include "quillon/platform/json/QNJsonReading.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Word = std::uint64_t;
constexpr Word kOnes = 0x0101010101010101;
constexpr Word kHighBits = 0x8080808080808080;

Word wordAt(const char* place) noexcept {
  Word word = 0;
  std::memcpy(&word, place, sizeof word);
  return word;
}

// Eight times that byte.
Word repeated(char byte) noexcept {
  return kOnes * static_cast<std::uint8_t>(byte);
}

bool hasZeroByte(Word word) noexcept {
  return ((word - kOnes) & ~word & kHighBits) != 0;
}

// Looks at eight places at once: only where the first and the last byte of `part` stand at their
// distance the rest is compared. Titles are short: the C library's search takes longer to set up.
bool contains(std::string_view text, std::string_view part) noexcept {
  if (part.empty()) return true;
  const std::size_t toLast = part.size() - 1;
  const Word first = repeated(part.front());
  const Word last = repeated(part.back());
  std::size_t place = 0;
  for (; place + toLast + sizeof(Word) <= text.size(); place += sizeof(Word)) {
    const char* const at = text.data() + place;
    if (!hasZeroByte((wordAt(at) ^ first) | (wordAt(at + toLast) ^ last))) continue;
    for (std::size_t i = 0; i < sizeof(Word); ++i) {
      if (text.substr(place + i, part.size()) == part) return true;
    }
  }
  return text.find(part, place) != std::string_view::npos;
}

}  // namespace

QNSearchPredicate::QNSearchPredicate(std::string_view searched, Place place)
    : _searched(searched), _folded(secretFoldedForSearch(searched)), _place(place) {}

bool QNSearchPredicate::matches(std::string_view text) const {
  return matchesFolded(secretFoldedForSearch(text).reveal());  // compared, and wiped
}

bool QNSearchPredicate::matchesFolded(std::string_view folded) const noexcept {
  const std::string_view part = _folded.reveal();
  return _place == Place::beginning ? folded.starts_with(part) : contains(folded, part);
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
