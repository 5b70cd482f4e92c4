#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Characters of a kind, as Unicode sorts them. Bytes that aren't UTF-8 count as U+FFFD, a symbol.
class QNCharacterSet final {
 public:
  /// Blanks of every width (category Zs) and the tab; no ends of lines.
  static const QNCharacterSet& whitespace();
  /// The same and whatever ends a line, without the plain blank.
  static const QNCharacterSet& whitespaceButBlank();
  /// What is neither a letter, nor a mark, nor a number.
  static const QNCharacterSet& nonAlphanumerics();

  [[nodiscard]] bool contains(char32_t character) const noexcept { return _test(character); }
  [[nodiscard]] bool containsAnyOf(std::string_view text) const noexcept;
  /// `text` cut at each of the characters. Pieces are empty where two of them meet, or one stands
  /// at an end; a text without any is one piece. Valid as long as the text.
  [[nodiscard]] std::vector<std::string_view> piecesOf(std::string_view text) const;

 private:
  using Test = bool (*)(char32_t) noexcept;
  explicit constexpr QNCharacterSet(Test test) noexcept : _test(test) {}
  Test _test;
};

}  // namespace quillon
