#include "cli/output/QNTitleSearch.h"

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

bool isInWord(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

}  // namespace

std::optional<std::uint32_t> QNTitleSearch::rankOfWord(std::string_view title,
                                                       std::string_view word) {
  std::size_t found = title.find(word);
  if (found == 0) return 0;
  if (found == std::string_view::npos) return std::nullopt;
  for (; found != std::string_view::npos; found = title.find(word, found + 1)) {
    if (!isInWord(title[found - 1])) return 1;
  }
  return 2;
}

QNTitleSearch::QNTitleSearch(const std::vector<std::string>& words) {
  for (const std::string& word : words) _words.push_back(foldedForSearch(trimmed(word)));
}

std::optional<std::uint32_t> QNTitleSearch::rankOf(std::string_view title) const {
  const std::string folded = foldedForSearch(title);
  std::uint32_t sum = 0;
  for (const std::string& word : _words) {
    const auto rank = rankOfWord(folded, word);
    if (!rank) return std::nullopt;
    sum += *rank;
  }
  return sum;
}

}  // namespace quillon
