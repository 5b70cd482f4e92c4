#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "quillon/templates/QNGenericCategory.h"

namespace quillon {

/// Default names and icon names of the categories that are known without a template. The names
/// are localized together, at the first use of any, and stay in that language for the life of the
/// process.
///
///                     absent identifier       unknown identifier     known, for example "001"
///   singular name     ""                      nothing                "Login"
///   plural name       "All Items", in the     nothing                "Logins"
///                     language of each call
///   list icon         "type-allitems-list"    "type-generic-list"    "type-login-list"
///   detail icon       "type-generic-detail"   "type-generic-detail"  "type-login-details"
///
/// "099", which has no icon, is known all the same: "type--list", "type--details".
class QNCategoryHelper final {
 public:
  static std::optional<std::string> defaultSingularNameFor(QNOptionalUUID uuid);
  static std::optional<std::string> defaultPluralNameFor(QNOptionalUUID uuid);
  static std::string defaultListIconNameFor(QNOptionalUUID uuid);
  static std::string defaultDetailIconNameFor(QNOptionalUUID uuid);

  // From a list icon name, by replacing every occurrence of its parts:
  //                absent name                 "type-login-list"
  //   source icon  "type-generic-source"       style 0: "sidebar-login-light-background"
  //                                            any other style: "sidebar-login"
  //   menu icon    "type-generic-source"       "type-login-source"
  //   touch bar    "type-allitems-dark-color"  "type-login-dark-color"
  /// `style` is the background style of the platform's table view.
  static std::string sourceIconNameWith(std::optional<std::string_view> listIconName, int style);
  static std::string menuIconNameWith(std::optional<std::string_view> listIconName);
  static std::string touchbarIconNameWith(std::optional<std::string_view> listIconName);
};

}  // namespace quillon
