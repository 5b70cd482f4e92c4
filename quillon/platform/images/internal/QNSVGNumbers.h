#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "quillon/platform/images/QNImage.h"

namespace quillon::svg {

inline constexpr std::string_view kBlanks = " \t\r\n";

/// Without blanks at both ends.
std::string_view trimmed(std::string_view text);
/// ASCII letters alone.
std::string lowercase(std::string_view text);

/// Pixels of a length with an absolute unit or none, at 96 to the inch; nothing for others.
std::optional<double> pixelsOf(std::string_view length);

/// Width and height of a view box; nothing unless both are above zero.
std::optional<QNSize> sizeOfViewBox(std::string_view text);

/// How many numbers a text holds, and the largest without its sign: infinity for one that can't be
/// told. Whatever its unit, it is no more than an inch.
struct QNSVGMeasures {
  double count = 0, largest = 0;
  void read(std::string_view text, bool withUnits);
};

/// By how much a transformation may enlarge; infinity where that can't be told.
double growthOf(std::string_view transform);

}  // namespace quillon::svg
