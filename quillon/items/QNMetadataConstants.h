#pragma once
// Keys of what QNItem::spotlightMetadata() tells an index of the system, in this order. "number" is
// whole seconds since 1970; a text that isn't there is "", but for the title (localized "Unnamed")
// and the description, which always has its words.

#include <string_view>

namespace quillon {

inline constexpr std::string_view QNMetadataItemUUID = "uuid";
inline constexpr std::string_view QNMetadataItemProfileUUID = "profileUUID";
/// The same once more.
inline constexpr std::string_view QNMetadataItemVaultUUID = "vaultUUID";
inline constexpr std::string_view QNMetadataItemVaultName = "vaultName";
inline constexpr std::string_view QNMetadataItemCategorySingularName = "categorySingularName";
inline constexpr std::string_view QNMetadataItemCategoryPluralName = "categoryPluralName";
inline constexpr std::string_view QNMetadataItemCategoryUUID = "categoryUUID";
inline constexpr std::string_view QNMetadataItemTitle = "itemTitle";
/// For a person, in the user's language.
inline constexpr std::string_view QNMetadataItemDescription = "itemDescription";
inline constexpr std::string_view QNMetadataItemCreatedAt = "createdAt";    // number
inline constexpr std::string_view QNMetadataItemModifiedAt = "modifiedAt";  // number
/// List of texts; left out of an item without addresses.
inline constexpr std::string_view QNMetadataItemWebsiteURLs = "websiteURLs";
/// Of an account vault's item alone; left out where it has no name.
inline constexpr std::string_view QNMetadataItemAccountName = "accountName";

}  // namespace quillon
