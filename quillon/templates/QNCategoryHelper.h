#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "quillon/templates/QNGenericCategory.h"

namespace quillon {

/// Default names of one category. The names are localized when the table is built, at the first
/// use, and stay in that language for the life of the process.
struct QNCategoryInfo {
  std::string iconName;  // middle part of its icon names; empty for tombstones
  std::string singularName;
  std::string pluralName;
};

/// Default names and icon names of the categories that are known without a template.
class QNCategoryHelper final {
 public:
  static std::optional<std::string> defaultSingularNameFor(QNOptionalUUID uuid);
  static std::optional<std::string> defaultPluralNameFor(QNOptionalUUID uuid);
  static std::string defaultListIconNameFor(QNOptionalUUID uuid);
  static std::string defaultDetailIconNameFor(QNOptionalUUID uuid);

  // From a list icon name
  /// `style` is the background style of the platform's table view.
  static std::string sourceIconNameWith(std::optional<std::string_view> listIconName, int style);
  static std::string menuIconNameWith(std::optional<std::string_view> listIconName);
  static std::string touchbarIconNameWith(std::optional<std::string_view> listIconName);
};

}  // namespace quillon
