#pragma once

#include <string>
#include <vector>

namespace quillon {

/// An option, or a word without one.
struct QNArgumentOutline {
  std::string name;  // "--tag"; "ITEM" for a word
  bool takesValue = false;
  std::vector<std::string> choices;  // if it takes nothing else
};

/// What a line of one command can hold, as the command's definition says.
struct QNCommandOutline {
  std::string name;  // "vault add"; empty for what stands in front of a command
  std::vector<QNArgumentOutline> options;
  std::vector<QNArgumentOutline> words;
};

/// All commands, "" first; options of "" may stand in each line.
std::vector<QNCommandOutline> commandOutlines();

}  // namespace quillon
