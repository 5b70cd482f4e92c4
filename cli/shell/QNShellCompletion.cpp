#include "cli/shell/QNShellCompletion.h"

#include <algorithm>
#include <array>
#include <optional>

#include "cli/output/QNShownText.h"
#include "cli/shell/QNLineGrammar.h"
#include "cli/shell/QNShellWords.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/text/QNUTF8.h"

namespace quillon {
namespace {

using Kind = QNShellCompletion::Kind;
using Choices = std::vector<std::string>;

// What the value of an option names, and words of this name in a definition.
struct Named {
  std::string_view name;
  Kind kind;
  std::string_view behind = "";  // what follows the name without a blank
};
constexpr std::array<Named, 18> kNamed = {{
    {"ITEM", Kind::item},
    {"CATEGORY", Kind::category},
    {"TAG", Kind::tag},
    {"FOLDER", Kind::folder},
    {"PARENT", Kind::folder},
    {"--tag", Kind::tag},
    {"--untag", Kind::tag},
    {"--category", Kind::category},
    {"--folder", Kind::folder},
    {"--vault", Kind::vault},
    {"--to", Kind::vault},
    {"--other-vault", Kind::vault},
    {"--field", Kind::field},
    {"--unset", Kind::field},
    {"--print", Kind::field},
    {"--copy", Kind::field},
    {"--set", Kind::field, "="},
    {"--set-file", Kind::field, "="},
}};

const Named* namedBy(std::string_view name) {
  const auto* const found = std::find_if(kNamed.begin(), kNamed.end(),
                                         [&](const Named& named) { return named.name == name; });
  return found == kNamed.end() ? nullptr : found;
}

// Those that begin with what was typed, sorted, each once.
Choices fitting(Choices choices, std::string_view typed) {
  const std::string folded = foldedForSearch(typed);
  const auto unfit = [&](const std::string& choice) {
    return choice.empty() || shownText(choice) != choice ||
           !foldedForSearch(choice).starts_with(folded);
  };
  choices.erase(std::remove_if(choices.begin(), choices.end(), unfit), choices.end());
  std::sort(choices.begin(), choices.end());
  choices.erase(std::unique(choices.begin(), choices.end()), choices.end());
  return choices;
}

bool isInsideCharacter(std::string_view text, std::size_t place) {
  return place < text.size() && continuesCharacter(text[place]);
}

// In whole characters.
std::string_view commonStart(const Choices& choices) {
  const std::string_view first = choices.front();
  std::size_t size = first.size();
  for (const std::string_view other : choices) {
    const auto ends =
        std::mismatch(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(size),
                      other.begin(), other.end());
    size = static_cast<std::size_t>(ends.first - first.begin());
    while (size > 0 && (isInsideCharacter(first, size) || isInsideCharacter(other, size))) --size;
  }
  return first.substr(0, size);
}

// As one can go on typing it: a quote stays open.
std::string quotedStart(std::string_view text) {
  std::string quoted = quotedWord(text);
  if (quoted.starts_with('\'')) quoted.pop_back();
  return quoted;
}

class Completer {
 public:
  Completer(const std::vector<QNCommandOutline>& outlines, const QNShellCompletion::Names& names,
            const QNBegunLine& line)
      : _grammar(outlines), _outlines(outlines), _names(names), _line(line) {
    for (const std::string& word : line.words) _grammar.take(word);
  }

  [[nodiscard]] QNLineCompletion complete(std::string_view asTyped) {
    const std::string& typed = _line.begun.text;
    const auto equals = typed.find('=');
    if (typed.starts_with("--") && equals != std::string::npos) {
      _before = typed.substr(0, equals + 1);
      return made(ofOption(typed.substr(0, equals)), typed.substr(equals + 1), asTyped);
    }
    if (typed.starts_with("--")) return made(optionNames(), typed, asTyped);
    if (!_grammar.waitingOption().empty()) {
      return made(ofOption(_grammar.waitingOption()), typed, asTyped);
    }
    return made(ofWord(), typed, asTyped);
  }

 private:
  Choices optionNames() {
    Choices names;
    for (const QNArgumentOutline* const option : _grammar.options()) names.push_back(option->name);
    return names;
  }
  Choices ofOption(std::string_view name) {
    for (const QNArgumentOutline* const option : _grammar.options()) {
      if (option->name == name && !option->choices.empty()) return option->choices;
    }
    return ofName(name);
  }
  Choices ofWord() {
    if (_grammar.command() == "help") return QNLineGrammar(_outlines).nextCommands();
    Choices choices = _grammar.words().empty() ? _grammar.nextCommands() : Choices();
    const QNArgumentOutline* const word = _grammar.nextWord();
    if (word == nullptr || _grammar.command().empty()) return choices;
    const Choices more = word->choices.empty() ? ofName(word->name) : word->choices;
    choices.insert(choices.end(), more.begin(), more.end());
    return choices;
  }
  Choices ofName(std::string_view name) {
    const Named* const named = namedBy(name);
    if (named == nullptr) return {};
    _behind = named->behind;
    return _names(named->kind, _grammar.words().empty() ? "" : _grammar.words().front());
  }

  QNLineCompletion made(Choices all, std::string_view typed, std::string_view asTyped) const {
    QNLineCompletion completion{_line.begun.start, std::string(asTyped),
                                fitting(std::move(all), typed)};
    const Choices& choices = completion.choices;
    if (choices.size() == 1) {
      completion.word = quotedWord(_before + choices.front() + std::string(_behind));
      if (_behind.empty()) completion.word += ' ';
    } else if (!choices.empty()) {
      const std::string_view common = commonStart(choices);
      const bool isLonger = foldedForSearch(common).starts_with(foldedForSearch(typed));
      if (isLonger && common != typed) completion.word = quotedStart(_before + std::string(common));
    }
    return completion;
  }

  QNLineGrammar _grammar;
  const std::vector<QNCommandOutline>& _outlines;
  const QNShellCompletion::Names& _names;
  const QNBegunLine& _line;
  std::string _before;  // "--tag=" of a word that holds both
  std::string_view _behind;
};

}  // namespace

QNLineCompletion QNShellCompletion::complete(std::string_view beforeCursor) const {
  const QNBegunLine line = begunLine(beforeCursor);
  return Completer(_outlines, _names, line).complete(beforeCursor.substr(line.begun.start));
}

}  // namespace quillon
