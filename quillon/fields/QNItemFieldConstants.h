#pragma once
// Keys of a stored field, and texts by which fields and sections are known. Stored data: they
// never change.

#include <string_view>

namespace quillon {

// A field: an element of a section's "fields"
inline constexpr std::string_view kItemFieldIdentifier = "n";
inline constexpr std::string_view kItemFieldTitle = "t";
inline constexpr std::string_view kItemFieldType = "k";
inline constexpr std::string_view kItemFieldValue = "v";
inline constexpr std::string_view kItemFieldAttrs = "a";
inline constexpr std::string_view kItemFieldInputTraits = "inputTraits";
/// The size of a key, in bits, inside the attributes of an SSH key.
inline constexpr std::string_view kItemFieldCount = "c";

/// Kinds that no class of this library stands for yet; they travel as unknown fields.
inline constexpr std::string_view kItemFieldFileType = "file";
inline constexpr std::string_view kItemFieldSSHKeyType = "sshKey";

inline constexpr std::string_view QNItemReferenceFieldFilterCategoryAttributeKey =
    "filterCategoryUUID";

// A section: an element of details "sections"
inline constexpr std::string_view kFieldSectionName = "name";
inline constexpr std::string_view kFieldSectionTitle = "title";
inline constexpr std::string_view kFieldSectionFields = "fields";

// Names of sections
inline constexpr std::string_view kConflictsSectionName = "conflicts";
inline constexpr std::string_view kReferencesSectionName = "linked items";
inline constexpr std::string_view kFileSectionName = "add more";

/// Between the identifier of a field that lost a merge and the number of its copy.
inline constexpr std::string_view kConflictIdentifierSeparator = "_conflict_";

}  // namespace quillon
