#pragma once
// Categories by the names that people and scripts give them.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// The categories that the tool knows by name, without tombstones, in the order in which a person
/// looks for them: the usual ones first, then by title.
std::vector<std::string> knownCategoryUUIDs();

/// The English name in small letters with dashes, "bank-account": the same in every language, and
/// scripts rely on it. Empty for a category that isn't known.
std::string_view nameOfCategory(std::string_view uuid);
/// In the user's language; the uuid itself for a category that isn't known.
std::string titleOfCategory(std::string_view uuid);
std::string pluralTitleOfCategory(std::string_view uuid);

/// The uuid of a known category: by uuid, by that name, or by a title in the user's language, case
/// and accents apart.
std::optional<std::string> categoryNamed(std::string_view text);

/// May an item of it be made in a local vault, as all vaults of a store are?
bool isAvailable(std::string_view uuid);

}  // namespace quillon
