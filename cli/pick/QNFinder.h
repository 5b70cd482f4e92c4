#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/pick/QNPickList.h"
#include "cli/terminal/QNRawTerminal.h"

namespace quillon {

/// Lets a person choose a row of a list: letters narrow it, arrows, pages, Home, End, Ctrl-N and
/// Ctrl-P move, Enter chooses.
class QNFinder final {
 public:
  /// Both must outlive it. `prompt` stands in front of what is typed.
  QNFinder(QNRawTerminal& terminal, QNPickList& list, std::string_view prompt)
      : _terminal(terminal), _list(list), _prompt(prompt) {}

  /// The row, as an index in the order in which the list was filled; nothing if the person left.
  /// `typed` stands there at first.
  std::optional<std::size_t> choose(std::string typed = {});

 private:
  enum class Step { goesOn, chosen, left };
  Step handle(const QNKeyPress& press);
  void narrow();
  void move(QNKey key);
  void draw();

  QNRawTerminal& _terminal;
  QNPickList& _list;
  std::string _prompt;
  std::string _typed;
  std::size_t _first = 0;
  std::size_t _selected = 0;
};

}  // namespace quillon
