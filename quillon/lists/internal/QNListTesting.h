#pragma once
// For tests of lists: items of a vault by uuid and title.

#include "quillon/items/QNItem.h"
#include "quillon/touchpoints/QNItemSpecifier.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {

/// Of a vault with the uuid "vault".
inline std::shared_ptr<QNItem> listedItem(std::string uuid, std::string_view title = "Title") {
  static const auto vault = [] {
    auto made = std::make_shared<QNTestServerProfile>();
    made->setUuid(sharedString("vault"));
    return made;
  }();
  auto item = std::make_shared<QNItem>(initNew);
  item->setProfile(vault);
  item->setUuid(sharedString(std::move(uuid)));
  item->setTitle(title);
  return item;
}

inline QNItemSpecifier::Ref specifierOf(std::string_view uuid) {
  return QNItemSpecifier::specifierWithItemUUID(uuid, "vault");
}

}  // namespace quillon
