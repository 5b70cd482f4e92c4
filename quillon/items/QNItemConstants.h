#pragma once
// Keys of an item's two JSON objects and of its row. Stored data: they never change.

#include <cstdint>
#include <string_view>

#include "quillon/platform/data/QNNotFound.h"

namespace quillon {

// Overview
inline constexpr std::string_view kOverviewTitle = "title";
inline constexpr std::string_view kOverviewAdditionalInformation = "ainfo";
inline constexpr std::string_view kOverviewURLString = "url";
inline constexpr std::string_view QNItemOverviewPasswordStrengthKey = "ps";
inline constexpr std::string_view QNItemOverviewPasswordBitsEntropyKey = "pbe";
inline constexpr std::string_view QNItemOverviewPasswordPasswordGeneratedByRNGKey = "pgrng";
inline constexpr std::string_view kTags = "tags";
inline constexpr std::string_view QNItemOverviewH9UserUUIDKey = "h9UserUUID";
inline constexpr std::string_view kCustomIcon = "icon";
inline constexpr std::string_view kCustomIconAttributes = "icons";
inline constexpr std::string_view kPendingCustomIcon = "pendingCustomIcon";

// Details
inline constexpr std::string_view kDetailsNotesPlain = "notesPlain";
inline constexpr std::string_view kDetailsSections = "sections";
inline constexpr std::string_view kDetailsPasswordHistory = "passwordHistory";
inline constexpr std::string_view kDetailsBackupKeys = "backupKeys";
inline constexpr std::string_view kDetailsFields = "fields";
inline constexpr std::string_view kDetailsHtmlForm = "htmlForm";
inline constexpr std::string_view kDetailsPassword = "password";

// Tags
inline constexpr std::string_view QNTagSeparatorString = "/";
inline constexpr std::string_view QN2FATag = "2FA";
inline constexpr std::string_view QNHttpTag = "HTTP";
inline constexpr std::string_view QNAppleWatchTag = "Apple Watch";

// Scope. Only "Never" has a meaning in this library; no scope counts as regular.
inline constexpr std::string_view QNItemScopeAlways = "Always";
inline constexpr std::string_view QNItemScopeBasicAuth = "BasicAuth";
inline constexpr std::string_view QNItemScopeNever = "Never";
inline constexpr std::string_view QNItemScopeRegular = "Regular";

/// Favourite index of a new favourite, and the highest that setFaveIndex() stores.
inline constexpr std::uint64_t kNewItemFaveIndex = 2147483647;

}  // namespace quillon
