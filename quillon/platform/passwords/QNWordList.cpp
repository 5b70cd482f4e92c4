#include "quillon/platform/passwords/QNWordList.h"

#include <algorithm>
#include <cmath>

#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{4} << 20;

bool isWord(std::string_view word) {
  const auto isBlankOrControl = [](char c) {
    return (static_cast<unsigned char>(c) <= 0x20) || c == 0x7f;
  };
  return !word.empty() && isUTF8(word) && std::none_of(word.begin(), word.end(), isBlankOrControl);
}

}  // namespace

QNResult<QNWordList> QNWordList::fromText(std::string text) {
  QNWordList list(std::make_unique<const std::string>(std::move(text)));
  std::string_view rest = *list._text;
  while (!rest.empty()) {
    const std::string_view word = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), word.size() + 1));
    if (!isWord(word)) return QNError::unreadable("a line of the word list holds no word");
    // What begins a word in a sorted list begins the one that follows it.
    if (!list._words.empty() &&
        (word <= list._words.back() || word.starts_with(list._words.back()))) {
      return QNError::unreadable("a word of the list isn't sorted, or begins the next");
    }
    list._words.push_back(word);
  }
  if (list._words.size() < 2) return QNError::unreadable("the word list has no two words");
  return list;
}

QNResult<QNWordList> QNWordList::english() {
  auto text = fileContent(resourceFolder() / "words.txt", kMaxBytes);
  if (!text) return QNError::unreadable("words.txt isn't in the folder of the data files");
  return fromText(std::move(*text));
}

double QNWordList::bitsOfWord() const noexcept {
  return std::log2(static_cast<double>(_words.size()));
}

}  // namespace quillon
