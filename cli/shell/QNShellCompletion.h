#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/arguments/QNCommandOutline.h"
#include "cli/shell/QNLineEditor.h"

namespace quillon {

/// What Tab makes of a line: commands, options, and what the vault has names for. Case and accents
/// don't count. A name that a terminal wouldn't show as it is isn't offered.
class QNShellCompletion final {
 public:
  enum class Kind { item, tag, folder, category, vault, field };
  /// All names of a kind; for fields those of `item`, which may be empty.
  using Names = std::function<std::vector<std::string>(Kind kind, const std::string& item)>;

  /// `outlines` must outlive it.
  QNShellCompletion(const std::vector<QNCommandOutline>& outlines, Names names)
      : _outlines(outlines), _names(std::move(names)) {}

  [[nodiscard]] QNLineCompletion complete(std::string_view beforeCursor) const;

 private:
  const std::vector<QNCommandOutline>& _outlines;
  Names _names;
};

}  // namespace quillon
