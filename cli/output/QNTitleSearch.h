#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Finds titles by words, case and accents apart. Every word must occur.
class QNTitleSearch final {
 public:
  explicit QNTitleSearch(const std::vector<std::string>& words);
  /// 0 for the best: each word adds nothing where the title begins with it, 1 where a word of the
  /// title does, 2 where it occurs inside one. Nothing if one is missing.
  [[nodiscard]] std::optional<std::uint32_t> rankOf(std::string_view title) const;
  /// The same of one word; both are folded already.
  [[nodiscard]] static std::optional<std::uint32_t> rankOfWord(std::string_view title,
                                                               std::string_view word);

 private:
  std::vector<std::string> _words;  // folded
};

}  // namespace quillon
