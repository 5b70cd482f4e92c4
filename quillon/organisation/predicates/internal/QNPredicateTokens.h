#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

enum class QNPredicateTokenKind { end, word, keyPath, text, number, symbol };

/// A piece of a predicate's text form. `text` is the word, the key path without its "#", the text
/// with its escapes undone, the digits, or the sign.
struct QNPredicateToken {
  QNPredicateTokenKind kind = QNPredicateTokenKind::end;
  std::string text;
  std::size_t at = 0;  // its first byte
};

/// Cuts a text form into its pieces.
class QNPredicateTokens final {
 public:
  /// `format` must outlive it.
  explicit QNPredicateTokens(std::string_view format) : _format(format) {}
  /// The next piece, and `end` behind the last.
  QNResult<QNPredicateToken> next();

 private:
  QNResult<QNPredicateToken> nextWord();
  QNResult<QNPredicateToken> nextText();
  QNResult<QNPredicateToken> nextNumber();
  QNResult<QNPredicateToken> nextSymbol();
  [[nodiscard]] std::string_view wordAt(std::size_t at) const;
  [[nodiscard]] bool isNumberAt(std::size_t at) const;
  /// Appends what the escape behind a "\" stands for; false if it is none.
  bool appendEscaped(std::string& text);

  std::string_view _format;
  std::size_t _at = 0;
};

/// Error 114 of QNErrorDomain: what is wrong, and at which byte from 0; nothing of what was read.
QNError predicateTextFault(std::string_view what, std::size_t at);

}  // namespace quillon
