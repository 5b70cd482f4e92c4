#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quillon {

/// What stands before the lines of a tree, "│  └─ " and the like, given the level of each line,
/// depth first: 0 at the top, and never more than one below the line before it.
std::vector<std::string> branchesOfTree(const std::vector<std::size_t>& levels);

}  // namespace quillon
