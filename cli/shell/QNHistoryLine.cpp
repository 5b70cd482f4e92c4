#include "cli/shell/QNHistoryLine.h"

#include <algorithm>
#include <array>

#include "cli/shell/QNLineGrammar.h"
#include "cli/shell/QNShellWords.h"

namespace quillon {
namespace {

using Role = QNLineGrammar::Role;

// The options whose values are names of something or choices of how to do it. What isn't here is
// hidden, so that a new option keeps nothing that nobody thought of.
constexpr std::array<std::string_view, 28> kKept = {
    "--store",       "--vault",    "--lang",  "--category", "--tag",       "--untag", "--folder",
    "--field",       "--unset",    "--sort",  "--title",    "--to",        "--keep",  "--to-store",
    "--set-file",    "--length",   "--words", "--pin",      "--separator", "--count", "--at",
    "--other-vault", "--url-file", "--save",  "--print",    "--copy",      "--clear", "--idle"};
// Of these the field's name stays.
constexpr std::array<std::string_view, 2> kFieldValues = {"--set", "--add-field"};
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

// "-pSECRET" is no option of ours, but of others.
std::string keptWord(std::string_view word) {
  return word.starts_with('-') && word.size() > 1 ? std::string(kHiddenValue) : withoutValue(word);
}

}  // namespace

std::optional<std::string> historyLineOf(std::string_view line,
                                         const std::vector<QNCommandOutline>& outlines) {
  if (line.empty() || line.front() == ' ' || line.front() == '\t') return std::nullopt;
  const auto words = shellWords(line);
  if (!words || words.value().empty()) return std::nullopt;
  QNLineGrammar grammar(outlines);
  std::string kept;
  for (const QNShellWord& word : words.value()) {
    const std::string option = grammar.waitingOption();
    const auto role = grammar.take(word.text);
    if (role == Role::word && grammar.command().empty()) return std::nullopt;
    if (!kept.empty()) kept += ' ';
    kept += quotedWord(role == Role::option  ? keptOption(word.text)
                       : role == Role::value ? keptValue(option, word.text)
                       : role == Role::word  ? keptWord(word.text)
                                             : word.text);
  }
  if (grammar.command().empty()) return std::nullopt;
  return kept;
}

}  // namespace quillon
