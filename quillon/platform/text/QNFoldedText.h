#pragma once
// What comparisons of many short texts are made of.

#include <array>
#include <string_view>

#include "quillon/platform/memory/QNSecret.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {

/// A text as foldedText() gives it, for one comparison. Short ASCII, which nearly every value is,
/// is folded within this object, without asking for memory. Wiped at its end. A text that folding
/// doesn't change is looked at where it lies, and must outlive this.
class QNFoldedText final {
 public:
  explicit QNFoldedText(std::string_view text, QNFolding folding = QNFolding::caseAndMarks)
      : QNFoldedText(text, folding, wayFor(text, folding)) {}
  QNFoldedText(const QNFoldedText&) = delete;
  QNFoldedText& operator=(const QNFoldedText&) = delete;
  /// How a text is folded: not at all, within the object, or in memory that is taken for it, which
  /// costs many times as much and alone may change its size.
  enum class Way { none, small, large };
  static Way wayFor(std::string_view text, QNFolding folding) noexcept {
    if (folding == QNFolding::none) return Way::none;
    if (!isASCII(text)) return Way::large;
    if (folding == QNFolding::marks) return Way::none;
    return text.size() <= kMaxSmall ? Way::small : Way::large;
  }
  /// `way` must be what wayFor() gives for both.
  QNFoldedText(std::string_view text, QNFolding folding, Way way);
  ~QNFoldedText();
  [[nodiscard]] std::string_view text() const noexcept { return _text; }

 private:
  static constexpr std::size_t kMaxSmall = 256;
  std::string_view _text;
  std::size_t _smallSize = 0;
  QNSecret _large;
  std::array<char, kMaxSmall> _small;  // NOLINT: not filled before it is needed
};

/// Does `part` stand in `text`, byte by byte? Linear whatever both hold. An empty part stands
/// anywhere.
bool containsText(std::string_view text, std::string_view part) noexcept;

}  // namespace quillon
