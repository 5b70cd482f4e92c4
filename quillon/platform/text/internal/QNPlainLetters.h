#pragma once

#include <unicode/utypes.h>

namespace quillon {

/// Letters that normalization doesn't take apart, though people search for them by their plain
/// look-alike. Null for any other.
inline const char* plainLetterFor(UChar32 c) noexcept {
  switch (c) {
    case 0x00C6:
      return "AE";
    case 0x00E6:
      return "ae";
    case 0x00D0:
    case 0x0110:
      return "D";  // Ð, Đ
    case 0x00F0:
    case 0x0111:
      return "d";  // ð, đ
    case 0x00D8:
      return "O";  // Ø
    case 0x00F8:
      return "o";  // ø
    case 0x00DE:
      return "TH";  // Þ
    case 0x00FE:
      return "th";  // þ
    case 0x0126:
      return "H";  // Ħ
    case 0x0127:
      return "h";  // ħ
    case 0x0131:
      return "i";  // ı
    case 0x0141:
      return "L";  // Ł
    case 0x0142:
      return "l";  // ł
    case 0x0152:
      return "OE";
    case 0x0153:
      return "oe";
    case 0x0166:
      return "T";  // Ŧ
    case 0x0167:
      return "t";  // ŧ
    default:
      return nullptr;
  }
}

}  // namespace quillon
