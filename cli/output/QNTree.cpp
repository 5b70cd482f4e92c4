#include "cli/output/QNTree.h"

#include <algorithm>

namespace quillon {
namespace {

constexpr std::string_view kOpen = "│  ";  // more come below, on that level
constexpr std::string_view kDone = "   ";
constexpr std::string_view kNext = "├─ ";
constexpr std::string_view kLast = "└─ ";

}  // namespace

// From the last line up: only what comes below a line tells whether it is the last of its level.
std::vector<std::string> branchesOfTree(const std::vector<std::size_t>& levels) {
  std::vector<std::string> branches(levels.size());
  std::vector<bool> continues;  // of each level: does another line of it follow?
  for (std::size_t i = levels.size(); i-- > 0;) {
    const std::size_t level = levels[i];
    continues.resize(level + 1, false);
    for (std::size_t above = 1; above < level; ++above) {
      branches[i] += continues[above] ? kOpen : kDone;
    }
    if (level > 0) branches[i] += continues[level] ? kNext : kLast;
    continues[level] = true;
  }
  return branches;
}

}  // namespace quillon
