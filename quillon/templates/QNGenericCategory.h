#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/items/QNItemClass.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

class QNImage;

/// An absent identifier is a legal argument everywhere below.
using QNOptionalUUID = std::optional<std::string_view>;
using QNImageRef = std::shared_ptr<const QNImage>;

/// What a vault stores, or a list shows, for one category. Pictures are those of the resource
/// folder; null where there is none.
class QNGenericCategory {
 public:
  virtual ~QNGenericCategory() = default;
  [[nodiscard]] virtual std::optional<std::string> uuid() const = 0;
  /// In the user's language, as it stood when they were taken.
  [[nodiscard]] virtual std::optional<std::string> singularName() const = 0;
  [[nodiscard]] virtual std::optional<std::string> pluralName() const = 0;
  [[nodiscard]] virtual std::uint64_t numberOfItems() const = 0;
  /// Nothing for a class that keeps no order of its own.
  [[nodiscard]] virtual std::optional<std::uint64_t> ownDisplayOrder() const = 0;
  /// Not offered for new items.
  [[nodiscard]] virtual bool isHidden() const = 0;
  /// Made for lack of a template.
  [[nodiscard]] virtual bool isAdHoc() const = 0;
  /// Does what a list shows of it differ?
  [[nodiscard]] virtual bool isModifiedCopyOf(const QNGenericCategory& other) const = 0;

  [[nodiscard]] virtual QNImageRef listIcon() const = 0;
  [[nodiscard]] virtual QNImageRef detailIcon() const = 0;
  [[nodiscard]] virtual QNImageRef menuIcon() const = 0;
  [[nodiscard]] virtual QNImageRef touchBarIcon() const = 0;
  /// `style` 0 is a light background.
  [[nodiscard]] virtual QNImageRef sourceIconForBackgroundStyle(int style) const = 0;

  [[nodiscard]] std::optional<std::string> localizedSingularName() const { return singularName(); }
  [[nodiscard]] std::optional<std::string> localizedPluralName() const { return pluralName(); }
  [[nodiscard]] std::optional<std::string> newItemTitle() const { return singularName(); }
  [[nodiscard]] bool isSystemCategory() const;
  /// Two of the same identifier, or both without one.
  [[nodiscard]] bool isEqual(const QNGenericCategory& other) const {
    return uuid() == other.uuid();
  }
  [[nodiscard]] std::size_t hash() const;
  [[nodiscard]] std::strong_ordering compare(const QNGenericCategory& other) const;
};

/// Exactly three characters that begin with "00".
bool QNGenericCategoryIsSystemCategory(QNOptionalUUID uuid);
/// False for SSH keys and tombstones, true for anything else.
bool QNGenericCategoryIsItemEditable(QNOptionalUUID uuid);
const std::set<std::string, std::less<>>& QNGenericCategoryStandardCategoryUUIDs();
/// The categories that records for a watch are made from, in this order.
const std::vector<std::string>& QNGenericCategoryAvailableWatchCategories();
/// 0 for an absent identifier.
std::uint64_t QNGenericCategoryDefaultDisplayOrder(QNOptionalUUID uuid);
/// Null where no class serves the category; the caller decides what that means.
const QNItemClass* QNGenericCategoryItemClassForCategoryUUID(QNOptionalUUID uuid);

/// The category's own order, or the default one of its identifier.
std::uint64_t QNGenericCategoryDisplayOrder(const QNGenericCategory& category);
/// By that order; then by singular name, character by character.
std::strong_ordering QNGenericCategoryCompare(const QNGenericCategory& a,
                                              const QNGenericCategory& b);
/// Always by the default order; then by singular name as the user's language sorts, case apart.
std::weak_ordering QNGenericCategoryH9Compare(const QNGenericCategory& a,
                                              const QNGenericCategory& b);

}  // namespace quillon
