#pragma once
// Password strength and generation. Strengths are on one scale of 0 to 100.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

class QNWordList;

/// The password generator and the scale of strengths.
class QNSPG final {
 public:
  struct Characters {
    std::uint32_t length = 20;  // 4 to 256; what lies outside is drawn to the nearer end
    bool digits = true;
    bool symbols = true;
    /// Leaves out characters that are easily mistaken for another: 0 O 1 l I |
    bool withoutAmbiguous = false;
  };
  struct Words {
    std::uint32_t count = 6;  // 2 to 64; what lies outside is drawn to the nearer end
    std::string separator = "-";
  };
  /// Digits of a PIN: what lies outside is drawn to the nearer end.
  static constexpr std::uint32_t kMinDigits = 3;
  static constexpr std::uint32_t kMaxDigits = 64;
  /// A generated password and the bits of entropy of the way it was made.
  struct Generated {
    QNSecret password;
    double bitsEntropy = 0;
  };

  /// Random letters, digits and symbols; a small letter, a capital, and one of each asked class
  /// at least. The stated entropy is that of a choice among all such passwords.
  static Generated generateCharacters(const Characters& recipe);
  /// Random words of the list with the separator between them; a word may come twice. The entropy
  /// is that of the words alone.
  static Generated generateWords(const QNWordList& list, const Words& recipe);
  /// Random digits, each as likely as any other: 0000 is a PIN like every one.
  static Generated generatePIN(std::uint32_t digits);
  /// The default recipe of characters.
  static QNSecret generateCharactersPassword();

  /// Bits of entropy on the scale of strengths: 0 for 0 bits, 100 from 128 bits on, rising.
  static double calcStrengthWithBitsEntropy(double bits);
  /// Should a strength be shown for this text? Not for an empty one, one of blanks, or one of
  /// fewer than 2 or more than 1,024 characters.
  static bool qualifiesForPasswordStrength(std::string_view text);
};

/// Rates passwords that weren't generated here, by zxcvbn. Any thread may ask.
// LTPasswordStrengthWrapper.cpp
class LTPasswordStrengthWrapper final {
 public:
  /// 0 to 100, on the scale of QNSPG. The cost grows with the square of the length: a password
  /// whose first 32 characters reach 100 isn't looked at further, and of any other the first 100
  /// characters count. Nothing and an error of QNErrorDomain for an absent password, or one
  /// that isn't UTF-8.
  static std::optional<float> passwordStrength(std::optional<std::string_view> password,
                                               QNError* error = nullptr);
};

}  // namespace quillon
