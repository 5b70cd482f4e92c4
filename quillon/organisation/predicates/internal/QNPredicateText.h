#pragma once

#include <string>
#include <string_view>

#include "quillon/organisation/predicates/QNExpression.h"

namespace quillon {

/// What becomes of a text form: it is kept, with the texts that are searched for as they are or as
/// "…", or its bytes are counted alone, and no copy is made of what may be a secret.
enum class QNPredicateTextUse { whole, forLogging, counted };

/// Builds the text form of a predicate.
class QNPredicateText final {
 public:
  explicit QNPredicateText(QNPredicateTextUse use) : _use(use) {}
  void add(std::string_view words) {
    _size += words.size();
    if (_use != QNPredicateTextUse::counted) _text += words;
  }
  void add(const QNExpression& expression);
  [[nodiscard]] std::size_t size() const { return _size; }
  [[nodiscard]] std::string take() { return std::move(_text); }

 private:
  void addText(std::string_view text);
  void addList(const QNExpression::List& elements);

  QNPredicateTextUse _use;
  std::size_t _size = 0;
  std::string _text;
};

/// Is it a word of the grammar, in capitals or not?
bool isPredicateWord(std::string_view name);
/// Does it begin like a word, and go on like one?
bool beginsPredicateWord(char c);
bool continuesPredicateWord(char c);

/// "2024-07-04T12:30:05Z".
std::string predicateDateText(std::chrono::sys_seconds date);
/// Reads that, or the day alone. Nothing for any other text, or a day that isn't there.
std::optional<std::chrono::sys_seconds> predicateDateFromText(std::string_view text);

}  // namespace quillon
