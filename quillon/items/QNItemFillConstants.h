#pragma once
// Keys of the records by which applications have a browser fill an item in. This library neither
// writes nor reads one.

#include <string_view>

namespace quillon {

inline constexpr std::string_view kQNItemFillItemKind = "itemKind";
inline constexpr std::string_view kQNItemFillBrainAction = "brainAction";
inline constexpr std::string_view kQNItemFillBrainDictionary = "brainDictionary";
inline constexpr std::string_view kQNItemFillItemUUID = "itemUUID";
inline constexpr std::string_view kQNItemFillCategoryUUID = "categoryUUID";
inline constexpr std::string_view kQNItemFillProfileUUID = "profileUUID";
inline constexpr std::string_view kQNItemFillVaultUUID = "vaultUUID";
inline constexpr std::string_view kQNItemFillUserUUID = "userUUID";
inline constexpr std::string_view kQNItemFillAccountUUID = "accountUUID";
inline constexpr std::string_view kQNItemFillURLString = "URLString";
inline constexpr std::string_view kQNItemFillAutosubmit = "autosubmitType";
inline constexpr std::string_view kQNItemFillCreatedAt = "createdAt";
inline constexpr std::string_view kQNItemFillUpdatedAt = "updatedAt";
inline constexpr std::string_view kQNItemFillCreator = "creator";

}  // namespace quillon
