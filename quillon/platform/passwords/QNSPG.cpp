#include "quillon/platform/passwords/QNSPG.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "quillon/platform/data/MRData.h"
#include "quillon/platform/passwords/QNWordList.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::uint32_t kMinLength = 4;
constexpr std::uint32_t kMaxLength = 256;
constexpr std::uint32_t kMinWords = 2;
constexpr std::uint32_t kMaxWords = 64;
constexpr double kBitsOfFullStrength = 128;
constexpr std::string_view kAmbiguous = "0O1lI|";
// Quotes, backslash and blank are left out: forms and shells mangle them.
constexpr std::string_view kSymbols = "!#$%&()*+,-./:;<=>?@[]^_{|}~";

// The classes of characters that a recipe asks for; a password has one of each at least.
std::vector<std::string> classesOf(const QNSPG::Characters& recipe) {
  std::vector<std::string> classes{"abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"};
  if (recipe.digits) classes.emplace_back("0123456789");
  if (recipe.symbols) classes.emplace_back(kSymbols);
  if (!recipe.withoutAmbiguous) return classes;
  for (std::string& characters : classes) {
    const auto isAmbiguous = [](char c) { return kAmbiguous.find(c) != std::string_view::npos; };
    characters.erase(std::remove_if(characters.begin(), characters.end(), isAmbiguous),
                     characters.end());
  }
  return classes;
}

std::size_t sizeOf(const std::vector<std::string>& classes) {
  std::size_t size = 0;
  for (const std::string& characters : classes) size += characters.size();
  return size;
}

// log2 of the number of passwords with one of each class at least: each of them is equally
// likely. Inclusion and exclusion over the sets of classes that are missing; as parts of all
// passwords of that length, since their number itself has hundreds of digits.
double bitsOfChoice(const std::vector<std::string>& classes, std::uint32_t length) {
  const auto size = static_cast<double>(sizeOf(classes));
  double admissible = 0;
  for (unsigned missing = 0; missing < 1u << classes.size(); ++missing) {
    double left = size;
    double sign = 1;
    for (std::size_t i = 0; i < classes.size(); ++i) {
      if ((missing >> i & 1) == 0) continue;
      left -= static_cast<double>(classes[i].size());
      sign = -sign;
    }
    admissible += sign * std::pow(left / size, length);
  }
  return length * std::log2(size) + std::log2(admissible);
}

bool hasEachClass(std::string_view password, const std::vector<std::string>& classes) {
  return std::all_of(classes.begin(), classes.end(), [&](const std::string& characters) {
    return password.find_first_of(characters) != std::string_view::npos;
  });
}

void fillFrom(std::string_view alphabet, std::span<char> password) {
  for (char& c : password) c = alphabet[randomBelow(static_cast<std::uint32_t>(alphabet.size()))];
}

}  // namespace

QNSPG::Generated QNSPG::generateCharacters(const Characters& recipe) {
  const std::uint32_t length = std::clamp(recipe.length, kMinLength, kMaxLength);
  const std::vector<std::string> classes = classesOf(recipe);
  std::string alphabet;
  for (const std::string& characters : classes) alphabet += characters;
  std::array<char, kMaxLength> place{};
  const std::span<char> password(place.data(), length);
  // Whole passwords are drawn until one fits, so that none is likelier than another. Of those
  // of 4 characters, the shortest, one in fifteen fits; of 20 characters, nearly all.
  do {
    fillFrom(alphabet, password);
  } while (!hasEachClass({password.data(), password.size()}, classes));
  Generated generated{QNSecret({password.data(), password.size()}), bitsOfChoice(classes, length)};
  wipe(place.data(), place.size());
  return generated;
}

QNSPG::Generated QNSPG::generateWords(const QNWordList& list, const Words& recipe) {
  const std::uint32_t count = std::clamp(recipe.count, kMinWords, kMaxWords);
  const auto& words = list.words();
  Generated generated;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (i > 0) generated.password.append(recipe.separator);
    generated.password.append(words[randomBelow(static_cast<std::uint32_t>(words.size()))]);
  }
  generated.bitsEntropy = count * list.bitsOfWord();
  return generated;
}

QNSPG::Generated QNSPG::generatePIN(std::uint32_t digits) {
  constexpr std::string_view kDigits = "0123456789";
  const std::uint32_t length = std::clamp(digits, kMinDigits, kMaxDigits);
  Generated generated;
  for (std::uint32_t i = 0; i < length; ++i) {
    generated.password.append(kDigits.substr(randomBelow(10), 1));
  }
  generated.bitsEntropy = length * std::log2(10);
  return generated;
}

QNSecret QNSPG::generateCharactersPassword() {
  return generateCharacters({}).password;
}

double QNSPG::calcStrengthWithBitsEntropy(double bits) {
  if (!(bits > 0)) return 0;  // NaN as well
  return std::min(bits / kBitsOfFullStrength, 1.0) * 100;
}

bool QNSPG::qualifiesForPasswordStrength(std::string_view text) {
  constexpr std::size_t shortest = 2;
  constexpr std::size_t longest = 1024;
  if (bytesOfCutToLength(text, longest) < text.size()) return false;
  return textLength(text) >= shortest && !isBlankText(text);
}

}  // namespace quillon
