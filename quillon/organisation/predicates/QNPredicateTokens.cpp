#include "quillon/organisation/predicates/internal/QNPredicateTokens.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "quillon/organisation/predicates/internal/QNPredicateRun.h"
#include "quillon/organisation/predicates/internal/QNPredicateText.h"
#include "quillon/platform/text/QNFormat.h"

namespace quillon {
namespace {

// Longer ones before those that they begin with.
constexpr std::array<std::string_view, 21> kSymbols = {
    "==", "=<", "=>", "=", "!=", "!", "<>", "<=", "<", ">=", ">",
    "&&", "||", "%@", "(", ")",  "{", "}",  "[",  "]", ","};

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

QNError predicateTextFault(std::string_view what, std::size_t at) {
  return predicateFault(formatted("{} at byte {}", what, at));
}

std::string_view QNPredicateTokens::wordAt(std::size_t at) const {
  std::size_t end = at;
  bool begins = true;
  while (end < _format.size()) {
    const char c = _format[end];
    if (begins ? !beginsPredicateWord(c) : c != '.' && !continuesPredicateWord(c)) break;
    begins = c == '.';
    ++end;
  }
  return _format.substr(at, end - at);
}

bool QNPredicateTokens::isNumberAt(std::size_t at) const {
  if (at < _format.size() && _format[at] == '-') ++at;
  return at < _format.size() && isDigit(_format[at]);
}

QNResult<QNPredicateToken> QNPredicateTokens::next() {
  while (_at < _format.size() && isBlank(_format[_at])) ++_at;
  if (_at == _format.size()) return QNPredicateToken{QNPredicateTokenKind::end, {}, _at};
  const char c = _format[_at];
  if (c == '#' || beginsPredicateWord(c)) return nextWord();
  if (c == '"' || c == '\'') return nextText();
  if (isNumberAt(_at)) return nextNumber();
  return nextSymbol();
}

QNResult<QNPredicateToken> QNPredicateTokens::nextWord() {
  const std::size_t start = _at;
  const bool isMarked = _format[_at] == '#';
  const std::string_view word = wordAt(start + (isMarked ? 1 : 0));
  if (word.empty() || word.back() == '.') return predicateTextFault("no name", start);
  _at = start + (isMarked ? 1 : 0) + word.size();
  const bool isWord = !isMarked && isPredicateWord(word);
  return QNPredicateToken{isWord ? QNPredicateTokenKind::word : QNPredicateTokenKind::keyPath,
                          std::string(word), start};
}

QNResult<QNPredicateToken> QNPredicateTokens::nextText() {
  const std::size_t start = _at;
  const char quote = _format[_at++];
  std::string text;
  while (_at < _format.size() && _format[_at] != quote) {
    if (_format[_at] != '\\') {
      text.push_back(_format[_at++]);
      continue;
    }
    const std::size_t escape = _at++;
    if (!appendEscaped(text)) return predicateTextFault("an unknown escape", escape);
  }
  if (_at == _format.size()) return predicateTextFault("a text without an end", start);
  ++_at;
  return QNPredicateToken{QNPredicateTokenKind::text, std::move(text), start};
}

bool QNPredicateTokens::appendEscaped(std::string& text) {
  if (_at == _format.size()) return false;
  const char c = _format[_at++];
  constexpr std::string_view marks = "\"'\\nrt";
  constexpr std::string_view meant = "\"'\\\n\r\t";
  if (const std::size_t known = marks.find(c); known != std::string_view::npos) {
    text.push_back(meant[known]);
    return true;
  }
  // "\u" and four digits, for control characters alone: any other stands as it is.
  if (c != 'u' || _format.size() - _at < 4) return false;
  unsigned unit = 0;
  const char* const digits = _format.data() + _at;
  const auto read = std::from_chars(digits, digits + 4, unit, 16);
  if (read.ec != std::errc() || read.ptr != digits + 4 || unit > 0x7F) return false;
  _at += 4;
  text.push_back(static_cast<char>(unit));
  return true;
}

QNResult<QNPredicateToken> QNPredicateTokens::nextNumber() {
  const std::size_t start = _at;
  if (_format[_at] == '-') ++_at;
  const auto goesOn = [this] {
    const char c = _format[_at];
    if (isDigit(c) || c == '.' || c == 'e' || c == 'E') return true;
    return (c == '+' || c == '-') && (_format[_at - 1] == 'e' || _format[_at - 1] == 'E');
  };
  while (_at < _format.size() && goesOn()) ++_at;
  return QNPredicateToken{QNPredicateTokenKind::number,
                          std::string(_format.substr(start, _at - start)), start};
}

QNResult<QNPredicateToken> QNPredicateTokens::nextSymbol() {
  const std::string_view rest = _format.substr(_at);
  const std::size_t start = _at;
  const auto* const known =
      std::find_if(kSymbols.begin(), kSymbols.end(),
                   [rest](std::string_view symbol) { return rest.starts_with(symbol); });
  if (known == kSymbols.end()) return predicateTextFault("an unknown sign", start);
  _at += known->size();
  return QNPredicateToken{QNPredicateTokenKind::symbol, std::string(*known), start};
}

}  // namespace quillon
