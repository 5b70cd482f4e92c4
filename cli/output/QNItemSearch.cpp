#include "cli/output/QNItemSearch.h"

#include <algorithm>

#include "quillon/platform/text/QNText.h"

namespace quillon {

QNItemSearch::QNItemSearch(const std::vector<std::string>& words, QNFindLevel level, Load load)
    : _level(level), _load(std::move(load)) {
  for (const std::string& word : words) {
    if (isBlankText(word)) continue;
    _words.push_back(lowercaseIdentifier(trimmed(word)));
    _titles.emplace_back(std::vector<std::string>{word});
  }
}

// Where words are that the title hasn't.
std::optional<QNItemSearch::Place> QNItemSearch::lowestPlace(QNItem& item) const {
  const auto ifFound = [](bool found, Place place) {
    return found ? std::optional(place) : std::nullopt;
  };
  switch (_level) {
    case QNFindLevel::title:
      return ifFound(item.titleMatchesLowercaseStrings(_words), inTitle);
    case QNFindLevel::overview:
      return ifFound(item.overviewMatchesLowercaseStrings(_words), inOverview);
    case QNFindLevel::words:
      return ifFound(_load(item) && item.matchesHelperSearchStrings(_words, true), inOverview);
    case QNFindLevel::contents:
      if (item.overviewMatchesLowercaseStrings(_words)) return inOverview;
      return ifFound(_load(item) && item.contentsMatchesLowercaseStrings(_words), inContents);
  }
  return std::nullopt;
}

std::optional<std::uint32_t> QNItemSearch::rankOf(QNItem& item) const {
  const auto place = lowestPlace(item);
  if (!place) return std::nullopt;
  const std::string title = item.title();
  std::uint32_t rank = 0;
  for (const QNTitleSearch& word : _titles) {
    rank = std::max(rank, word.rankOf(title).value_or(*place));
  }
  return rank;
}

}  // namespace quillon
