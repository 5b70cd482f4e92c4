#include "cli/shell/QNShellWords.h"

#include <algorithm>

#include "cli/QNToolError.h"

namespace quillon {
namespace {

// What a backslash quotes between double quotes.
constexpr std::string_view kQuotedInDouble = "$`\"\\";
// What stands in a word as it is, beside letters, digits and all that isn't ASCII.
constexpr std::string_view kPlain = "_-.,:/@%+=";

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n';
}

class Splitter {
 public:
  explicit Splitter(std::string_view line) : _line(line) {}

  // False at the end of the line and at a comment.
  bool begin() {
    while (_next < _line.size() && isBlank(_line[_next])) ++_next;
    if (_next == _line.size() || _line[_next] == '#') return false;
    _word = {"", _next, _next};
    return true;
  }
  // Up to the blank behind the word, or the end of the line.
  void read() {
    while (_next < _line.size() && !isBlank(_line[_next])) readPiece();
    _word.end = _next;
  }
  [[nodiscard]] bool isOpen() const { return _isOpen; }
  [[nodiscard]] bool isAtEnd() const { return _next == _line.size(); }
  [[nodiscard]] const QNShellWord& word() const { return _word; }

 private:
  void readPiece() {
    const char c = _line[_next++];
    if (c == '\\') {
      readEscaped();
    } else if (c == '\'' || c == '"') {
      readQuoted(c);
    } else {
      _word.text += c;
    }
  }
  void readEscaped() {
    _isOpen = isAtEnd();
    if (!_isOpen) _word.text += _line[_next++];
  }
  void readQuoted(char quote) {
    _isOpen = true;
    while (_isOpen && !isAtEnd()) {
      const char c = _line[_next++];
      const bool escapes = quote == '"' && c == '\\' && !isAtEnd() &&
                           kQuotedInDouble.find(_line[_next]) != std::string_view::npos;
      _isOpen = c != quote;
      if (escapes) {
        _word.text += _line[_next++];
      } else if (_isOpen) {
        _word.text += c;
      }
    }
  }

  std::string_view _line;
  std::size_t _next = 0;
  QNShellWord _word;
  bool _isOpen = false;  // the word needs more than the line has
};

bool isPlain(char c) {
  return static_cast<unsigned char>(c) >= 0x80 || (c >= 'a' && c <= 'z') ||
         (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         kPlain.find(c) != std::string_view::npos;
}

}  // namespace

QNResult<std::vector<QNShellWord>> shellWords(std::string_view line) {
  std::vector<QNShellWord> words;
  Splitter splitter(line);
  while (splitter.begin()) {
    splitter.read();
    words.push_back(splitter.word());
  }
  if (!splitter.isOpen()) return words;
  return toolError(QNExit::wrongUsage, "the line ends inside a quotation");
}

QNBegunLine begunLine(std::string_view line) {
  QNBegunLine begun{{}, {"", line.size(), line.size()}};
  Splitter splitter(line);
  while (splitter.begin()) {
    splitter.read();
    if (splitter.isAtEnd()) {
      begun.begun = splitter.word();
      return begun;
    }
    begun.words.push_back(splitter.word().text);
  }
  return begun;
}

std::string quotedWord(std::string_view word) {
  const bool plain = std::all_of(word.begin(), word.end(), isPlain);
  if (plain && !word.empty()) return std::string(word);
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

}  // namespace quillon
