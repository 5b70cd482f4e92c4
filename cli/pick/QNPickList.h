#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Rows that are narrowed while somebody types. Each row's folded text is kept, so that a keystroke
/// costs a substring search in each row that the letters before it left.
class QNPickList final {
 public:
  /// `more` is shown behind the title; `alsoFound` is searched, too, but not shown.
  struct Row {
    std::string title;
    std::string more;
  };
  /// Rows keep the order in which they are added.
  void add(Row row, std::string_view alsoFound = {});

  /// Those that hold every word of `typed`, case and accents apart: first where a title begins with
  /// it, then where a word of the title does, then elsewhere in the title, then elsewhere. Within
  /// these the order in which they were added.
  void narrowTo(std::string_view typed);

  [[nodiscard]] std::size_t size() const { return _rows.size(); }
  /// Rows that fit, before the first narrowTo() all.
  [[nodiscard]] std::size_t matches() const { return _shown.size(); }
  /// The index, in the order of add(), of a match.
  [[nodiscard]] std::size_t indexOfMatch(std::size_t match) const { return _shown[match]; }
  [[nodiscard]] const Row& rowOfMatch(std::size_t match) const { return _rows[_shown[match]]; }
  /// Rows that the last narrowTo() looked at.
  [[nodiscard]] std::size_t looked() const { return _looked; }

 private:
  struct Text {
    std::size_t start = 0;  // in _folded
    std::uint32_t titleSize = 0;
    std::uint32_t size = 0;
  };
  struct Match {
    std::uint32_t row = 0;
    std::uint32_t rank = 0;
  };
  // Sums of ranks beyond are equally bad.
  static constexpr std::uint32_t kRanks = 64;
  [[nodiscard]] std::uint32_t rankOf(const Text& text, const std::vector<std::string>& words) const;
  void order();

  std::vector<Row> _rows;
  std::vector<Text> _texts;
  std::string _folded;          // of all rows, one behind the other
  std::string _typed;           // folded
  std::vector<Match> _matches;  // in the order of add()
  std::vector<std::uint32_t> _shown;
  std::size_t _looked = 0;
};

}  // namespace quillon
