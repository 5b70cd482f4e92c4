#include "quillon/organisation/predicates/internal/QNWildcards.h"

#include <algorithm>

#include "quillon/platform/text/QNUTF8.h"

namespace quillon {
namespace {

// Bytes of the UTF-8 character at `at`; 1 for a byte that begins none.
std::size_t characterSize(std::string_view text, std::size_t at) {
  std::size_t end = at + 1;
  while (end < text.size() && continuesCharacter(text[end])) ++end;
  return end - at;
}

bool isEscape(std::string_view pattern, std::size_t at) {
  return pattern[at] == '\\' && at + 1 < pattern.size() &&
         (pattern[at + 1] == '*' || pattern[at + 1] == '?' || pattern[at + 1] == '\\');
}

// A place in both; step() goes on by what the pattern says there, unless it is a "*".
struct Place {
  std::size_t inText = 0, inPattern = 0;

  bool step(std::string_view text, std::string_view pattern) {
    if (inPattern == pattern.size()) return false;
    if (pattern[inPattern] == '?') {
      inText += characterSize(text, inText);
      ++inPattern;
      return true;
    }
    const std::size_t literal = isEscape(pattern, inPattern) ? inPattern + 1 : inPattern;
    if (text[inText] != pattern[literal]) return false;
    ++inText;
    inPattern = literal + 1;
    return true;
  }
};

}  // namespace

// Only the last "*" is ever tried again: what an earlier one could take instead, it can take too.
std::optional<bool> matchesWildcards(std::string_view text, std::string_view pattern,
                                     QNPredicateBudget& budget) {
  Place place;
  std::optional<Place> lastStar;
  while (place.inText < text.size()) {
    if (!budget.spend(kStepsPerCharacter)) return std::nullopt;
    if (place.inPattern < pattern.size() && pattern[place.inPattern] == '*') {
      ++place.inPattern;
      lastStar = place;
    } else if (!place.step(text, pattern)) {
      if (!lastStar) return false;
      lastStar->inText += characterSize(text, lastStar->inText);
      place = *lastStar;
    }
  }
  const std::string_view rest = pattern.substr(place.inPattern);
  return std::all_of(rest.begin(), rest.end(), [](char c) { return c == '*'; });
}

}  // namespace quillon
