#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// Words to make passwords of. No word begins another one: words that stand together without a
/// separator can be told apart, so that as many words of a list are as many choices. A value.
class QNWordList final {
 public:
  /// One word a line, sorted by bytes. Error 114 of QNErrorDomain for fewer than two words, a word
  /// that isn't UTF-8 or holds a blank or a control character, and one that the word before it
  /// begins, equals or follows.
  static QNResult<QNWordList> fromText(std::string text);
  /// The 7,776 English words of the resource folder. Error 114 if they aren't there.
  static QNResult<QNWordList> english();

  /// Valid as long as the list, or one that it was moved to.
  [[nodiscard]] const std::vector<std::string_view>& words() const noexcept { return _words; }
  /// log2 of the number of words.
  [[nodiscard]] double bitsOfWord() const noexcept;

 private:
  explicit QNWordList(std::unique_ptr<const std::string> text) : _text(std::move(text)) {}
  std::unique_ptr<const std::string> _text;  // stays where it is when the list moves
  std::vector<std::string_view> _words;
};

}  // namespace quillon
