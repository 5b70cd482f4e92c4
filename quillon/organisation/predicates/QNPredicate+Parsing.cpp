#include <algorithm>
#include <array>

#include "quillon/organisation/predicates/QNComparisonPredicate.h"
#include "quillon/organisation/predicates/QNCompoundPredicate.h"
#include "quillon/organisation/predicates/internal/QNPredicateRun.h"
#include "quillon/organisation/predicates/internal/QNPredicateText.h"
#include "quillon/organisation/predicates/internal/QNPredicateTokens.h"
#include "quillon/platform/json/QNJson.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"

// The text form. Words in capitals or not; README.md tells it to whoever writes one.
//
//   whole      = all { (OR | ||) all }
//   all        = one { (AND | &&) one }
//   one        = (NOT | !) one | "(" whole ")" | TRUEPREDICATE | FALSEPREDICATE
//              | (AND | OR) "{" [ whole { "," whole } ] "}"   of less than two parts as a rule
//              | [ ALL | ANY | SOME | NONE ] side operator [ "[" c | d | cd "]" ] side
//   operator   = == = != <> < <= =< > >= => CONTAINS BEGINSWITH ENDSWITH LIKE MATCHES IN BETWEEN
//   side       = key path | "#" key path | constant | "{" [ constant { "," constant } ] "}" | "%@"
//   constant   = text in quotes | number | YES | NO | TRUE | FALSE | NIL | NULL | DATE text

namespace quillon {
namespace {

using Kind = QNPredicateTokenKind;

// Parentheses and words that stand for nothing but the next part, one within the other.
constexpr int kMaxNesting = 64;

struct OperatorWord {
  std::string_view text;
  QNOperatorType type;
};
constexpr std::array kOperators = {
    OperatorWord{"<", QNOperatorType::lessThan},
    OperatorWord{"<=", QNOperatorType::lessThanOrEqualTo},
    OperatorWord{"=<", QNOperatorType::lessThanOrEqualTo},
    OperatorWord{">", QNOperatorType::greaterThan},
    OperatorWord{">=", QNOperatorType::greaterThanOrEqualTo},
    OperatorWord{"=>", QNOperatorType::greaterThanOrEqualTo},
    OperatorWord{"==", QNOperatorType::equalTo},
    OperatorWord{"=", QNOperatorType::equalTo},
    OperatorWord{"!=", QNOperatorType::notEqualTo},
    OperatorWord{"<>", QNOperatorType::notEqualTo},
    OperatorWord{"MATCHES", QNOperatorType::matches},
    OperatorWord{"LIKE", QNOperatorType::like},
    OperatorWord{"BEGINSWITH", QNOperatorType::beginsWith},
    OperatorWord{"ENDSWITH", QNOperatorType::endsWith},
    OperatorWord{"IN", QNOperatorType::in},
    OperatorWord{"CONTAINS", QNOperatorType::contains},
    OperatorWord{"BETWEEN", QNOperatorType::between},
};

bool equalWords(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return uppercaseASCII(x) == uppercaseASCII(y); });
}

/// Reads one text. Each operation gives nothing after the first fault, which stays.
class Parser {
 public:
  Parser(std::string_view format, std::span<const QNExpression> arguments)
      : _tokens(format), _arguments(arguments) {
    advance();
  }

  QNResult<QNPredicateRef> parse() {
    QNPredicateRef whole = parseWhole();
    if (!_fault && _token.kind != Kind::end) fail("more than a predicate");
    if (!_fault && _nextArgument != _arguments.size()) fail("less places than arguments");
    if (_fault) return *_fault;
    return whole;
  }

 private:
  // Pieces

  void advance() {
    if (_fault) return;
    auto next = _tokens.next();
    if (!next.ok()) {
      _fault = next.error();
      _token = {};
    } else {
      _token = std::move(next).value();
    }
  }
  std::nullptr_t fail(std::string_view what) {
    if (!_fault) _fault = predicateTextFault(what, _token.at);
    return nullptr;
  }
  [[nodiscard]] bool isWord(std::string_view word) const {
    return !_fault && _token.kind == Kind::word && equalWords(_token.text, word);
  }
  [[nodiscard]] bool isSymbol(std::string_view symbol) const {
    return !_fault && _token.kind == Kind::symbol && _token.text == symbol;
  }
  bool takeWord(std::string_view word) {
    if (!isWord(word)) return false;
    advance();
    return true;
  }
  bool takeSymbol(std::string_view symbol) {
    if (!isSymbol(symbol)) return false;
    advance();
    return true;
  }
  void requireSymbol(std::string_view symbol, std::string_view orElse) {
    if (!takeSymbol(symbol)) fail(orElse);
  }

  // Compounds

  QNPredicateRef parseWhole() { return parseJoined(QNCompoundType::orType); }

  QNPredicateRef parseJoined(QNCompoundType type) {
    const bool isOr = type == QNCompoundType::orType;
    const auto part = [&] { return isOr ? parseJoined(QNCompoundType::andType) : parseOne(); };
    std::vector<QNPredicateRef> parts = {part()};
    while (!_fault && (isOr ? takeWord("OR") || takeSymbol("||")
                            : takeWord("AND") || takeSymbol("&&"))) {
      parts.push_back(part());
    }
    if (_fault || parts.size() == 1) return parts.front();
    return compound(type, std::move(parts));
  }

  QNPredicateRef parseOne() {
    if (++_nesting > kMaxNesting) return fail("nesting that is too deep");
    QNPredicateRef one = parseUnnested();
    --_nesting;
    return one;
  }

  QNPredicateRef parseUnnested() {
    if (takeWord("NOT") || takeSymbol("!")) {
      QNPredicateRef part = parseOne();
      return _fault ? nullptr : compound(QNCompoundType::notType, {std::move(part)});
    }
    if (takeSymbol("(")) {
      QNPredicateRef whole = parseWhole();
      requireSymbol(")", "no closing parenthesis");
      return whole;
    }
    if (takeWord("TRUEPREDICATE")) return QNPredicate::predicateWithValue(true);
    if (takeWord("FALSEPREDICATE")) return QNPredicate::predicateWithValue(false);
    if (takeWord("AND")) return parseListed(QNCompoundType::andType);
    if (takeWord("OR")) return parseListed(QNCompoundType::orType);
    return parseComparison();
  }

  QNPredicateRef parseListed(QNCompoundType type) {
    requireSymbol("{", "no list of parts");
    std::vector<QNPredicateRef> parts;
    while (!_fault && !isSymbol("}")) {
      parts.push_back(parseWhole());
      if (!isSymbol("}")) requireSymbol(",", "no end of a list");
    }
    requireSymbol("}", "no end of a list");
    return _fault ? nullptr : compound(type, std::move(parts));
  }

  QNPredicateRef compound(QNCompoundType type, std::vector<QNPredicateRef> parts) {
    QNPredicateRef made = QNCompoundPredicate::compound(type, std::move(parts));
    if (made == nullptr) fail("a predicate that is too large or nests too deep");
    return made;
  }

  // Comparisons

  QNPredicateRef parseComparison() {
    const bool isNone = takeWord("NONE");
    QNComparisonPredicate::Parts parts;
    if (isNone || takeWord("ANY") || takeWord("SOME")) {
      parts.modifier = QNComparisonModifier::any;
    } else if (takeWord("ALL")) {
      parts.modifier = QNComparisonModifier::all;
    }
    parts.left = parseSide();
    parts.operatorType = parseOperator();
    parts.options = parseOptions();
    parts.right = parseSide();
    if (_fault) return nullptr;
    QNPredicateRef made = QNComparisonPredicate::comparison(std::move(parts));
    if (made == nullptr) return fail("a comparison that is too large");
    return isNone ? compound(QNCompoundType::notType, {std::move(made)}) : made;
  }

  QNOperatorType parseOperator() {
    const bool mayBe = _token.kind == Kind::symbol || _token.kind == Kind::word;
    const auto* const known = std::find_if(
        kOperators.begin(), kOperators.end(),
        [this](const OperatorWord& it) { return equalWords(it.text, _token.text); });
    if (_fault || !mayBe || known == kOperators.end()) {
      fail("no operator");
      return {};
    }
    advance();
    return known->type;
  }

  std::uint32_t parseOptions() {
    if (!takeSymbol("[")) return 0;
    std::uint32_t options = 0;
    const bool isName = _token.kind == Kind::keyPath && !_token.text.empty();
    for (const char c : _token.text) {
      const char letter = lowercaseASCII(c);
      const std::uint32_t option = letter == 'c'   ? kCaseInsensitive
                                   : letter == 'd' ? kDiacriticInsensitive
                                                   : 0;
      if (option == 0 || (options & option) != 0) fail("an unknown option");
      options |= option;
    }
    if (!isName) fail("no option");
    advance();
    requireSymbol("]", "no end of options");
    return options;
  }

  // Sides

  QNExpression parseSide() {
    if (_token.kind == Kind::keyPath) return parseKeyPath();
    if (takeSymbol("{")) return parseList();
    if (isSymbol("%@")) return parseArgument();
    return parseConstant();
  }

  QNExpression parseKeyPath() {
    auto keyPath = QNExpression::keyPath(_token.text);
    if (!keyPath) fail("a key path that is too long");
    advance();
    return keyPath ? std::move(*keyPath) : QNExpression();
  }

  QNExpression parseArgument() {
    if (_nextArgument == _arguments.size()) {
      fail("no argument for a place");
      return {};
    }
    advance();
    return _arguments[_nextArgument++];
  }

  QNExpression parseList() {
    QNExpression::List elements;
    while (!_fault && !isSymbol("}")) {
      elements.push_back(isSymbol("%@") ? parseArgument() : parseConstant());
      if (!isSymbol("}")) requireSymbol(",", "no end of a list");
    }
    requireSymbol("}", "no end of a list");
    auto list = _fault ? std::nullopt : QNExpression::list(std::move(elements));
    if (!list) fail("a list of more than constants");
    return list ? std::move(*list) : QNExpression();
  }

  QNExpression parseConstant() {
    if (takeWord("YES") || takeWord("TRUE")) return QNExpression::boolean(true);
    if (takeWord("NO") || takeWord("FALSE")) return QNExpression::boolean(false);
    if (takeWord("NIL") || takeWord("NULL")) return {};
    const bool isDate = takeWord("DATE");
    std::optional<QNExpression> constant;
    if (_token.kind == Kind::text) {
      constant = isDate ? dateConstant() : QNExpression::text(_token.text);
    } else if (_token.kind == Kind::number && !isDate) {
      constant = numberConstant();
    }
    if (!constant) fail(isDate ? "no date" : "no value");
    advance();
    return constant ? std::move(*constant) : QNExpression();
  }

  std::optional<QNExpression> dateConstant() const {
    const auto date = predicateDateFromText(_token.text);
    return date ? QNExpression::date(*date) : std::nullopt;
  }

  // A number has the form that it has in JSON; one beyond 64 bits is the nearest double.
  std::optional<QNExpression> numberConstant() const {
    const auto number = mr_valueFromJSONDataWithError(bytesOf(_token.text));
    if (!number || !number->is_number()) return std::nullopt;
    if (const auto* const whole = number->if_int64()) return QNExpression::integer(*whole);
    return QNExpression::real(number->to_number<double>());
  }

  QNPredicateTokens _tokens;
  std::span<const QNExpression> _arguments;
  std::size_t _nextArgument = 0;
  QNPredicateToken _token;
  std::optional<QNError> _fault;
  int _nesting = 0;
};

}  // namespace

QNResult<QNPredicateRef> QNPredicate::predicateWithFormat(
    std::string_view format, std::span<const QNExpression> arguments) {
  if (format.size() > kMaxTextBytes) return predicateFault("the predicate's text is too long");
  if (!isUTF8(format)) return predicateFault("the predicate's text isn't UTF-8");
  return Parser(format, arguments).parse();
}

}  // namespace quillon
