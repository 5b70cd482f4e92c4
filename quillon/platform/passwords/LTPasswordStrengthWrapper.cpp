#include <zxcvbn.h>

#include <algorithm>
#include <array>

#include "quillon/platform/passwords/QNSPG.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::size_t kFirstLook = 32;
constexpr std::size_t kLongestLook = 100;
constexpr std::size_t kMaxBytesOfCharacter = 3;  // of one UTF-16 code unit in UTF-8

std::string_view startOf(std::string_view password, std::size_t length) {
  return password.substr(0, bytesOfCutToLength(password, length));
}

// Of kLongestLook characters at most.
double strengthOf(std::string_view start) {
  // zxcvbn wants an end mark; a zero inside would hide the rest.
  std::array<char, kLongestLook * kMaxBytesOfCharacter + 1> text{};
  std::replace_copy(start.begin(), start.end(), text.begin(), '\0', '\x01');
  const double bits = ZxcvbnMatch(text.data(), nullptr, nullptr);
  wipe(text.data(), text.size());
  return QNSPG::calcStrengthWithBitsEntropy(bits);
}

}  // namespace

std::optional<float> LTPasswordStrengthWrapper::passwordStrength(
    std::optional<std::string_view> password, QNError* error) {
  if (!password || !isUTF8(*password)) {
    setError(error, {std::string(QNErrorDomain), kErrorUnreadableData,
                     password ? "the password isn't UTF-8" : "no password"});
    return std::nullopt;
  }
  const std::string_view start = startOf(*password, kFirstLook);
  double strength = strengthOf(start);
  if (strength < 100 && start.size() < password->size()) {
    strength = strengthOf(startOf(*password, kLongestLook));
  }
  return static_cast<float>(strength);
}

}  // namespace quillon
