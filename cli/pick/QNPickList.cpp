#include "cli/pick/QNPickList.h"

#include <algorithm>

#include "cli/output/QNTitleSearch.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// Worse than QNTitleSearch::rankOfWord() gives for any title.
constexpr std::uint32_t kRankElsewhere = 3;
constexpr std::uint32_t kNoMatch = 0xFFFFFFFF;
// Parts a title from the rest of the text: no word holds it.
constexpr char kEndOfTitle = '\n';

std::vector<std::string> wordsOf(std::string_view folded) {
  std::vector<std::string> words;
  for (const std::string_view word : componentsSeparatedByString(folded, " ")) {
    if (!word.empty()) words.emplace_back(word);
  }
  return words;
}

}  // namespace

void QNPickList::add(Row row, std::string_view alsoFound) {
  Text text;
  text.start = _folded.size();
  _folded += foldedForSearch(row.title);
  text.titleSize = static_cast<std::uint32_t>(_folded.size() - text.start);
  _folded += kEndOfTitle;
  _folded += foldedForSearch(row.more);
  _folded += kEndOfTitle;
  _folded += foldedForSearch(alsoFound);
  text.size = static_cast<std::uint32_t>(_folded.size() - text.start);
  const auto index = static_cast<std::uint32_t>(_rows.size());
  _rows.push_back(std::move(row));
  _texts.push_back(text);
  _matches.push_back({index, 0});
  _shown.push_back(index);
}

std::uint32_t QNPickList::rankOf(const Text& text, const std::vector<std::string>& words) const {
  const std::string_view all = std::string_view(_folded).substr(text.start, text.size);
  std::uint32_t sum = 0;
  for (const std::string& word : words) {
    const auto place = all.find(word);
    if (place == std::string_view::npos) return kNoMatch;
    const auto inTitle = place < text.titleSize
                             ? QNTitleSearch::rankOfWord(all.substr(0, text.titleSize), word)
                             : std::nullopt;
    sum += inTitle.value_or(kRankElsewhere);
  }
  return std::min(sum, kRanks - 1);
}

void QNPickList::narrowTo(std::string_view typed) {
  const std::string folded = foldedForSearch(typed);
  // What doesn't fit a text won't fit a longer one.
  if (!folded.starts_with(_typed)) {
    _matches.clear();
    for (std::uint32_t row = 0; row < _rows.size(); ++row) _matches.push_back({row, 0});
  }
  _typed = folded;
  _looked = _matches.size();
  const std::vector<std::string> words = wordsOf(folded);
  auto kept = _matches.begin();
  for (const Match& match : _matches) {
    const std::uint32_t rank = rankOf(_texts[match.row], words);
    if (rank != kNoMatch) *kept++ = {match.row, rank};
  }
  _matches.erase(kept, _matches.end());
  order();
}

// By rank, each rank in the order of add(): counted, not compared.
void QNPickList::order() {
  std::array<std::size_t, kRanks + 1> start{};
  for (const Match& match : _matches) ++start[match.rank + 1];
  for (std::size_t rank = 1; rank < start.size(); ++rank) start[rank] += start[rank - 1];
  _shown.resize(_matches.size());
  for (const Match& match : _matches) _shown[start[match.rank]++] = match.row;
}

}  // namespace quillon
