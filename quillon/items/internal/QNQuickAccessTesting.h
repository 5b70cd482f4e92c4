#pragma once
// For tests: what quick access offers, as texts, and a vault that reveals nothing.

#include "quillon/fields/QNItemField.h"
#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {

/// "IDENTIFIER COMMAND" of each; of a one-time password, whose identifier is drawn anew at each
/// reading, "TOTP COMMAND".
inline std::vector<std::string> shown(const std::vector<QNQuickAccessShortcut>& shortcuts) {
  std::vector<std::string> texts;
  for (const auto& each : shortcuts) {
    const auto identifier = each.field()->identifier().value_or("(none)");
    texts.push_back(std::string(each.field()->isTOTPField() ? "TOTP" : identifier) + " " +
                    std::to_string(each.keyCommand()));
  }
  return texts;
}

inline std::shared_ptr<QNTestServerProfile> vaultWithoutRevealing() {
  auto vault = accountVault();
  vault->setPermissions(~kPermissionReveal);
  return vault;
}

}  // namespace quillon
