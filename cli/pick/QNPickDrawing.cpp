#include "cli/pick/QNPickDrawing.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/output/QNShownText.h"
#include "quillon/platform/text/QNUTF8.h"

namespace quillon {
namespace {

// Lines that aren't matches: the typed one and the count.
constexpr std::size_t kOtherLines = 2;
constexpr std::size_t kGap = 2;
// More of a title or of what was typed isn't looked at: a title may be a megabyte long.
constexpr std::size_t kMaxShownBytes = 4096;

std::string shownStart(std::string_view text) {
  if (text.size() <= kMaxShownBytes) return shownText(text);
  std::size_t size = kMaxShownBytes;
  while (size > 0 && continuesCharacter(text[size])) --size;
  return shownText(text.substr(0, size));
}

std::string lineOf(const QNPickList::Row& row, std::size_t columns) {
  const std::string title = shownStart(row.title);
  const std::size_t titleWidth = std::min(kTitleWidth, columns);
  if (row.more.empty()) return std::string(cutToWidth(title, columns));
  std::string line = padded(std::string(cutToWidth(title, titleWidth)), titleWidth);
  if (columns <= titleWidth + kGap) return line;
  line.append(kGap, ' ');
  line += cutToWidth(shownStart(row.more), columns - titleWidth - kGap);
  return line;
}

std::string atLine(std::size_t row, std::string_view text, bool isSelected = false) {
  const std::string_view on = isSelected ? "\x1b[7m" : "";
  const std::string_view off = isSelected ? "\x1b[0m" : "";
  return fmt::format("\x1b[{};1H\x1b[K{}{}{}", row, on, text, off);
}

// The end of what was typed: that is where the cursor stands.
std::string_view endOfWidth(std::string_view shown, std::size_t columns) {
  while (shownWidth(shown) > columns) {
    std::size_t first = 1;
    while (first < shown.size() && continuesCharacter(shown[first])) ++first;
    shown.remove_prefix(first);
  }
  return shown;
}

}  // namespace

std::size_t rowsForMatches(const QNRawTerminal::Size& size) {
  return size.rows > kOtherLines ? size.rows - kOtherLines : 1;
}

std::string drawn(const QNPickView& view, const QNRawTerminal::Size& size) {
  const std::size_t rows = rowsForMatches(size);
  const std::string shownPrompt = shownStart(view.prompt);
  // Of a narrow terminal what is typed gets half.
  const std::string_view prompt = cutToWidth(shownPrompt, size.columns / 2);
  const std::size_t promptWidth = shownWidth(prompt);
  const std::string typed = shownStart(view.typed);
  // A column is for the cursor.
  const std::string_view end =
      endOfWidth(typed, size.columns > promptWidth ? size.columns - promptWidth - 1 : 0);
  std::string text = "\x1b[?25l";
  text += atLine(1, std::string(prompt) + std::string(end));
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t match = view.first + row;
    const bool isThere = match < view.list.matches();
    text += atLine(row + 2, isThere ? lineOf(view.list.rowOfMatch(match), size.columns) : "",
                   isThere && match == view.selected);
  }
  const std::string count = fmt::format("{} of {}", view.list.matches(), view.list.size());
  if (size.rows > rows + 1) text += atLine(rows + 2, cutToWidth(count, size.columns));
  text += fmt::format("\x1b[1;{}H\x1b[?25h", promptWidth + shownWidth(end) + 1);
  return text;
}

}  // namespace quillon
