#pragma once
// Which permissions an action needs. The numbers of the actions are words of applications.

#include <algorithm>
#include <array>

#include "quillon/vaults/QNGenericProfile.h"

namespace quillon {

/// Masks that are asked one at a time, in this order; the first 0 ends them. None: always allowed.
using QNActionRow = std::array<std::uint64_t, 4>;
/// The rows by the number of their action; there is no action 0.
using QNActionTable = std::array<QNActionRow, 16>;

inline constexpr QNActionTable kLocalVaultActions = {{
    /* none */ {},
    /* 1 */ {kPermissionAction1},
    /* 2 */ {kPermissionCreateItems},
    /* 3 */ {kPermissionAction1, kPermissionEdit},
    /* 4 */ {kPermissionCreateItems},
    /* 5 */ {kPermissionAction5},
    /* 6 */ {kPermissionEdit},
    /* 7 */ {kPermissionAction7},
    /* 8 */ {kPermissionManageVault},
    /* 9 */ {kPermissionEdit},
    /* 10 */ {kPermissionAction5 | kPermissionAction7},
    /* 11 */ {kPermissionCreateItems},
    /* 12 */ {kPermissionCreateItems, kPermissionReveal, kPermissionActions12To15},
    /* 13 */ {kPermissionAction1, kPermissionReveal, kPermissionActions12To15},
    /* 14 */
    {kPermissionAction14, kPermissionAction1, kPermissionReveal, kPermissionActions12To15},
    /* 15 */ {kPermissionAction1, kPermissionActions12To15},
}};

/// Account vaults of the type "P" refuse it, whatever the permissions.
inline constexpr std::uint32_t kActionRefusedByTypeP = 10;

/// Different on purpose in three rows.
inline constexpr QNActionTable kAccountVaultActions = [] {
  QNActionTable table = kLocalVaultActions;
  table[9] = {kPermissionManageVault};
  table[kActionRefusedByTypeP] = {kPermissionManageVault};
  table[15] = {kPermissionReveal, kPermissionAction1};
  return table;
}();

/// Does `hasPermission` grant every mask of the row? It isn't asked after the first refusal.
template <class Asker>
bool permitsRow(const QNActionRow& row, Asker hasPermission) {
  return std::all_of(row.begin(), std::find(row.begin(), row.end(), 0u), hasPermission);
}

/// False for a number that is no action.
template <class Asker>
bool permitsAction(const QNActionTable& table, std::uint32_t action, Asker hasPermission) {
  return action > 0 && action < table.size() && permitsRow(table[action], hasPermission);
}

}  // namespace quillon
