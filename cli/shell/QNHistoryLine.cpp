#include "cli/shell/QNHistoryLine.h"

#include <algorithm>
#include <array>
#include <utility>

#include "cli/arguments/QNArgumentParser.h"
#include "cli/shell/QNLineGrammar.h"
#include "cli/shell/QNShellWords.h"

namespace quillon {
namespace {

using Role = QNLineGrammar::Role;

// The options and words whose values are names of something or choices of how to do it. What isn't
// here is hidden, so that a new one keeps nothing that nobody thought of.
constexpr std::array<std::string_view, 29> kKept = {
    "--store",     "--vault",    "--lang",     "--category",    "--tag",      "--untag",
    "--folder",    "--field",    "--unset",    "--sort",        "--title",    "--to",
    "--keep",      "--to-store", "--set-file", "--length",      "--words",    "--pin",
    "--separator", "--count",    "--at",       "--other-vault", "--url-file", "--save",
    "--print",     "--copy",     "--clear",    "--idle",        "--clipboard"};
// Of these the field's name stays.
constexpr std::array<std::string_view, 2> kFieldValues = {"--set", "--add-field"};
constexpr std::array<std::string_view, 14> kKeptWords = {
    "ITEM", "TAG",   "FOLDER", "PARENT",   "PATH",  "TITLE", "NAME",
    "FILE", "OTHER", "VAULT",  "CATEGORY", "SHELL", "COLOR", "SIDE"};
// Characters of the shortest seed of one-time passwords that is in use.
constexpr std::size_t kSeedSize = 16;

template <class Names>
bool isAmong(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// "" takes a value away, and "-" is where to read it.
bool isSecretValue(std::string_view value) {
  return !value.empty() && value != "-";
}

// "notes=‹hidden›"
std::string withoutValue(std::string_view word) {
  const auto equals = word.find('=');
  if (equals == std::string_view::npos || !isSecretValue(word.substr(equals + 1))) {
    return std::string(word);
  }
  return std::string(word.substr(0, equals + 1)) + std::string(kHiddenValue);
}

std::string keptValue(std::string_view option, std::string_view value) {
  if (isAmong(kFieldValues, option)) return withoutValue(value);
  const bool isKept = isAmong(kKept, option) || option.ends_with("-file") ||
                      option.ends_with("-fd") || !isSecretValue(value);
  return std::string(isKept ? value : kHiddenValue);
}

std::string keptOption(std::string_view word) {
  const auto equals = word.find('=');
  if (equals == std::string_view::npos) return std::string(word);
  const std::string_view name = word.substr(0, equals);
  return std::string(name) + "=" + keptValue(name, word.substr(equals + 1));
}

// "otp SEED", where "otp ITEM" was meant: base32, perhaps in groups.
bool mayBeSeed(std::string_view word) {
  std::string letters(word);
  std::erase_if(letters, [](char c) { return c == ' ' || c == '-' || c == '='; });
  return letters.size() >= kSeedSize && std::all_of(letters.begin(), letters.end(), [](char c) {
           return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '2' && c <= '7');
         });
}

// "-pSECRET" is no option of ours, but of others; an address may hold a password.
std::string keptWord(std::string_view command, const QNArgumentOutline* meant,
                     std::string_view word) {
  const bool isKept = meant != nullptr && isAmong(kKeptWords, meant->name) &&
                      (!word.starts_with('-') || word.size() == 1) &&
                      word.find("://") == std::string_view::npos &&
                      (command != "otp" || !mayBeSeed(word));
  return isKept ? withoutValue(word) : std::string(kHiddenValue);
}

// What a line keeps word by word.
class Keeper {
 public:
  explicit Keeper(const std::vector<QNCommandOutline>& outlines) : _grammar(outlines) {}

  std::string kept(const std::string& word) {
    const std::string option = _grammar.waitingOption();
    const QNArgumentOutline* const meant = _grammar.nextWord();
    const auto role = _grammar.take(word);
    const bool isBehindField = std::exchange(_isBehindField, false);
    if (role == Role::option) return keptOptionOrValue(option, word);
    if (role == Role::value) {
      _isBehindField = isAmong(kFieldValues, option);
      return _isDoubtful ? std::string(kHiddenValue) : keptValue(option, word);
    }
    if (role == Role::command) return word;
    // "edit --set password SECRET", where "=" was forgotten.
    return isBehindField ? std::string(kHiddenValue) : keptWord(_grammar.command(), meant, word);
  }

 private:
  // Behind an option that waits for its value, what looks like an option may be that value, and
  // what follows it a word.
  std::string keptOptionOrValue(const std::string& waiting, const std::string& word) {
    _isDoubtful = !waiting.empty();
    const std::string name = word.substr(0, word.find('='));
    const auto options = _grammar.options();
    const bool isKnown =
        std::any_of(options.begin(), options.end(),
                    [&](const QNArgumentOutline* option) { return option->name == name; });
    if (!isKnown) return std::string(kHiddenValue);
    return _isDoubtful && name != word ? name + "=" + std::string(kHiddenValue) : keptOption(word);
  }

  QNLineGrammar _grammar;
  bool _isDoubtful = false;
  bool _isBehindField = false;
};

// "vault add"; empty if the line begins with none.
std::string commandOf(const std::vector<std::string>& words,
                      const std::vector<QNCommandOutline>& outlines) {
  QNLineGrammar grammar(outlines);
  for (const std::string& word : words) {
    const auto role = grammar.take(word);
    if (role == Role::word) break;
  }
  return grammar.command();
}

// Would the tool run it? What it doesn't take may be a secret without its quotes or its "=". Help
// is asked for in a line that may hold anything else.
bool isWellFormed(const std::vector<std::string>& words) {
  if (std::find(words.begin(), words.end(), "--") != words.end()) return false;
  const auto arguments = parseArguments(words);
  return arguments && !std::holds_alternative<QNTextArguments>(arguments.value().command);
}

// "help vault add"
bool isHelpOfCommand(const std::vector<std::string>& words,
                     const std::vector<QNCommandOutline>& outlines) {
  if (words.front() != "help") return false;
  std::string asked;
  for (std::size_t i = 1; i < words.size(); ++i) asked += (i > 1 ? " " : "") + words[i];
  return std::any_of(outlines.begin(), outlines.end(),
                     [&](const QNCommandOutline& outline) { return outline.name == asked; });
}

}  // namespace

std::optional<std::string> historyLineOf(std::string_view line,
                                         const std::vector<QNCommandOutline>& outlines) {
  if (line.empty() || line.front() == ' ' || line.front() == '\t') return std::nullopt;
  const auto split = shellWords(line);
  if (!split || split.value().empty()) return std::nullopt;
  std::vector<std::string> words;
  for (const QNShellWord& word : split.value()) words.push_back(word.text);
  const std::string command = commandOf(words, outlines);
  if (command.empty()) return std::nullopt;
  const bool isHelp = isHelpOfCommand(words, outlines);
  if (!isHelp && !isWellFormed(words)) return command;
  Keeper keeper(outlines);
  std::string kept;
  for (const std::string& word : words) {
    if (!kept.empty()) kept += ' ';
    kept += quotedWord(isHelp ? word : keeper.kept(word));
  }
  return kept;
}

}  // namespace quillon
