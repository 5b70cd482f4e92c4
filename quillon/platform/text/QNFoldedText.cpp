#include "quillon/platform/text/QNFoldedText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "quillon/platform/text/QNASCII.h"

namespace quillon {
namespace {

// Eight characters at once
using Word = std::uint64_t;
constexpr Word kOnes = 0x0101010101010101;
constexpr Word kHighBits = 0x8080808080808080;

// Eight times that byte.
constexpr Word repeated(char byte) noexcept {
  return kOnes * static_cast<std::uint8_t>(byte);
}

bool hasZeroByte(Word word) noexcept {
  return ((word - kOnes) & ~word & kHighBits) != 0;
}

// A sum's high bit tells on which side of a letter a character lies; none of ASCII carries over.
Word lowercaseASCII(Word word) noexcept {
  constexpr Word fromA = kHighBits - repeated('A');
  constexpr Word beyondZ = kHighBits - repeated('Z') - kOnes;
  return word | ((word + fromA) & ~(word + beyondZ) & kHighBits) >> 2;
}

void copyLowercaseASCII(std::string_view text, char* place) noexcept {
  if (text.size() < sizeof(Word)) {
    for (const char c : text) *place++ = quillon::lowercaseASCII(c);
    return;
  }
  const auto copyWord = [&](std::size_t i) {
    const Word word = lowercaseASCII(eightBytesAt(text.data() + i));
    std::memcpy(place + i, &word, sizeof word);
  };
  for (std::size_t i = 0; i + sizeof(Word) < text.size(); i += sizeof(Word)) copyWord(i);
  copyWord(text.size() - sizeof(Word));  // may overlap the one before it
}

// Beyond this a search that compares at every place isn't quick whatever it meets.
constexpr std::size_t kMaxShortPart = 32;

}  // namespace

QNFoldedText::QNFoldedText(std::string_view text, QNFolding folding, Way way) {
  switch (way) {
    case Way::none:
      _text = text;
      break;
    case Way::small:
      copyLowercaseASCII(text, _small.data());
      _smallSize = text.size();
      _text = {_small.data(), _smallSize};
      break;
    case Way::large:
      _large = foldedText(text, folding);
      _text = _large.reveal();  // for the comparison alone
      break;
  }
}

QNFoldedText::~QNFoldedText() {
  if (_smallSize > 0) wipe(_small.data(), _smallSize);
}

// Looks at eight places at once: only where the first and the last byte of `part` stand at their
// distance the rest is compared. Titles are short: the C library's search takes longer to set up.
bool containsText(std::string_view text, std::string_view part) noexcept {
  if (part.empty() || part.size() > text.size()) return part.empty();
  if (part.size() > kMaxShortPart) {
    return ::memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
  }
  const std::size_t toLast = part.size() - 1;
  const Word first = repeated(part.front());
  const Word last = repeated(part.back());
  std::size_t place = 0;
  for (; place + toLast + sizeof(Word) <= text.size(); place += sizeof(Word)) {
    const char* const at = text.data() + place;
    if (!hasZeroByte((eightBytesAt(at) ^ first) | (eightBytesAt(at + toLast) ^ last))) continue;
    for (std::size_t i = 0; i < sizeof(Word); ++i) {
      if (at[i] == part.front() && text.substr(place + i, part.size()) == part) return true;
    }
  }
  return text.find(part, place) != std::string_view::npos;
}

}  // namespace quillon
