#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/arguments/QNCommandOutline.h"

namespace quillon {

/// The shell's own commands.
inline constexpr std::array<std::string_view, 3> kShellCommands = {"help", "lock", "exit"};

/// Reads the words of a line one after the other and tells what each is, as the commands'
/// definitions say. `outlines` must outlive it.
class QNLineGrammar final {
 public:
  explicit QNLineGrammar(const std::vector<QNCommandOutline>& outlines) : _outlines(outlines) {}

  enum class Role {
    command,  // or what comes behind one: "add" of "vault add"
    option,   // perhaps with its value: "--tag=work"
    value,    // of waitingOption(), as it was before
    word,
  };
  Role take(std::string_view word);

  /// "vault add"; empty before there is one.
  [[nodiscard]] const std::string& command() const { return _command; }
  /// The option whose value may come next; empty if none waits.
  [[nodiscard]] const std::string& waitingOption() const { return _waiting; }
  /// The words so far that were neither commands nor values.
  [[nodiscard]] const std::vector<std::string>& words() const { return _words; }

  /// Those that may stand in the line, by the command so far.
  [[nodiscard]] std::vector<const QNArgumentOutline*> options() const;
  /// What continues the command: all commands at first, then "add" behind "vault".
  [[nodiscard]] std::vector<std::string> nextCommands() const;
  /// The word that may come next; null if the command takes none.
  [[nodiscard]] const QNArgumentOutline* nextWord() const;

 private:
  [[nodiscard]] bool takesValue(std::string_view option) const;
  const std::vector<QNCommandOutline>& _outlines;
  std::string _command;
  std::string _waiting;
  std::vector<std::string> _words;
};

}  // namespace quillon
