#include "cli/shell/QNLineGrammar.h"

#include <algorithm>
#include <utility>

namespace quillon {

QNLineGrammar::Role QNLineGrammar::take(std::string_view word) {
  const std::string waiting = std::exchange(_waiting, "");
  if (word.starts_with("--")) {
    const bool isWhole = word.find('=') == std::string_view::npos;
    if (isWhole && takesValue(word)) _waiting = word;
    return Role::option;
  }
  if (!waiting.empty()) return Role::value;
  const auto next = nextCommands();
  if (_words.empty() && std::find(next.begin(), next.end(), word) != next.end()) {
    if (!_command.empty()) _command += ' ';
    _command += word;
    return Role::command;
  }
  _words.emplace_back(word);
  return Role::word;
}

// Also one that isn't known: what stands behind it was meant as its value, perhaps.
bool QNLineGrammar::takesValue(std::string_view option) const {
  for (const QNArgumentOutline* const known : options()) {
    if (known->name == option) return known->takesValue;
  }
  return true;
}

std::vector<const QNArgumentOutline*> QNLineGrammar::options() const {
  std::vector<const QNArgumentOutline*> options;
  for (const QNCommandOutline& outline : _outlines) {
    if (outline.name != _command && !outline.name.empty()) continue;
    for (const QNArgumentOutline& option : outline.options) options.push_back(&option);
  }
  return options;
}

std::vector<std::string> QNLineGrammar::nextCommands() const {
  std::vector<std::string> next;
  const std::string before = _command.empty() ? "" : _command + " ";
  for (const QNCommandOutline& outline : _outlines) {
    const bool continues = outline.name.size() > before.size() && outline.name.starts_with(before);
    const std::string rest = continues ? outline.name.substr(before.size()) : "";
    if (!rest.empty() && rest.find(' ') == std::string::npos) next.push_back(rest);
  }
  if (_command.empty()) next.insert(next.end(), kShellCommands.begin(), kShellCommands.end());
  return next;
}

const QNArgumentOutline* QNLineGrammar::nextWord() const {
  for (const QNCommandOutline& outline : _outlines) {
    if (outline.name != _command || outline.words.empty()) continue;
    return &outline.words[std::min(_words.size(), outline.words.size() - 1)];
  }
  return nullptr;
}

}  // namespace quillon
