#include "quillon/platform/images/internal/QNSVGNumbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "quillon/platform/text/QNASCII.h"

namespace quillon::svg {
namespace {

/// The number at the beginning of a text, which then begins behind it.
std::optional<double> takeNumber(std::string_view& text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc() || !std::isfinite(number)) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
  return number;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string lowercase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), lowercaseASCII);
  return lower;
}

std::optional<double> pixelsOf(std::string_view length) {
  struct Unit {
    std::string_view name;
    double pixels;
  };
  constexpr std::array<Unit, 8> units{{{"", 1},
                                       {"px", 1},
                                       {"pt", 96.0 / 72},
                                       {"pc", 16},
                                       {"in", 96},
                                       {"cm", 96 / 2.54},
                                       {"mm", 96 / 25.4},
                                       {"Q", 96 / 101.6}}};
  length = trimmed(length);
  const auto number = takeNumber(length);
  if (!number) return std::nullopt;
  for (const Unit& unit : units) {
    if (length == unit.name) return *number * unit.pixels;
  }
  return std::nullopt;
}

std::optional<QNSize> sizeOfViewBox(std::string_view text) {
  std::array<double, 4> numbers{};
  for (double& number : numbers) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n,"), text.size()));
    const auto read = takeNumber(text);
    if (!read) return std::nullopt;
    number = *read;
  }
  if (!trimmed(text).empty() || !(numbers[2] > 0) || !(numbers[3] > 0)) return std::nullopt;
  return QNSize{numbers[2], numbers[3]};
}

void QNSVGMeasures::read(std::string_view text, bool withUnits) {
  while (true) {
    text.remove_prefix(std::min(text.find_first_of("0123456789."), text.size()));
    if (text.empty()) return;
    const auto number = takeNumber(text);
    if (!number) {
      largest = std::numeric_limits<double>::infinity();
      return;
    }
    const bool inUnits = withUnits && !text.empty() && text[0] != '%' && !text.starts_with("px");
    ++count;
    largest = std::max(largest, inUnits ? *number * 96 : *number);
  }
}

double growthOf(std::string_view transform) {
  double growth = 1;
  while (true) {
    const std::size_t opening = transform.find('(');
    if (opening == std::string_view::npos) return growth;
    const std::string name = lowercase(transform.substr(0, opening));
    const std::size_t closing = std::min(transform.find(')', opening), transform.size());
    std::string_view rest = transform.substr(opening, closing - opening);
    transform.remove_prefix(closing);
    double squares = 0;
    // The first four numbers of a matrix; the others only move.
    for (int i = 0; i < 4; ++i) {
      rest.remove_prefix(std::min(rest.find_first_of("0123456789.-"), rest.size()));
      if (rest.empty()) break;
      const auto number = takeNumber(rest);
      if (!number) return std::numeric_limits<double>::infinity();
      squares += *number * *number;
    }
    if (name.find("skew") != std::string::npos) return std::numeric_limits<double>::infinity();
    if (name.find("translate") == std::string::npos && name.find("rotate") == std::string::npos) {
      growth *= std::sqrt(squares);
    }
  }
}

}  // namespace quillon::svg
