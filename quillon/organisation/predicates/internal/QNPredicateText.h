#pragma once

#include <string>
#include <string_view>

#include "quillon/organisation/predicates/QNExpression.h"

namespace quillon {

/// Builds the text form of a predicate.
class QNPredicateText final {
 public:
  /// Texts that are searched for are shown as "…", or as they are.
  explicit QNPredicateText(bool hidesTexts) : _hidesTexts(hidesTexts) {}
  void add(std::string_view words) { _text += words; }
  void add(const QNExpression& expression);
  [[nodiscard]] std::string take() { return std::move(_text); }

 private:
  void addText(std::string_view text);
  void addList(const QNExpression::List& elements);

  bool _hidesTexts;
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
