#pragma once

#include <string>
#include <vector>

#include "cli/commands/QNKeptVaults.h"
#include "cli/shell/QNShellCompletion.h"

namespace quillon {

/// The names of an open vault, for completion. Titles and tags are listed once for each line; a
/// locked vault has none, and nobody is asked for a password.
class QNShellNames final {
 public:
  [[nodiscard]] std::vector<std::string> of(QNShellCompletion::Kind kind, const std::string& item,
                                            const QNOpenVault* open);
  /// Forgets them: the vault is locked, or may have changed.
  void forget();

 private:
  void list(const QNOpenVault& open);
  [[nodiscard]] std::vector<std::string> fieldsOf(const std::string& item,
                                                  const QNOpenVault& open) const;
  struct Item {
    std::string title;
    std::string uuid;
  };
  bool _isListed = false;
  std::vector<Item> _items;
  std::vector<std::string> _tags;
};

}  // namespace quillon
