#pragma once

#include <memory>
#include <string_view>

#include "quillon/objects/QNTags.h"

namespace quillon {

class QNItem;
class QNTemplate;

/// The class of an item as a value: its name and how to make one.
struct QNItemClass {
  std::string_view name;
  /// Null for a class whose new items come from a template.
  std::shared_ptr<QNItem> (*initNew)();
  std::shared_ptr<QNItem> (*initExistingWithID)(std::uint64_t oid);
  /// Null for a class that takes no template.
  std::shared_ptr<QNItem> (*initNewWithTemplate)(const std::shared_ptr<QNTemplate>& from);
};

/// The descriptor of a class that has both plain constructors.
template <class Item>
QNItemClass itemClassNamed(std::string_view name) {
  return {name, [] { return std::shared_ptr<QNItem>(std::make_shared<Item>(initNew)); },
          [](std::uint64_t oid) {
            return std::shared_ptr<QNItem>(std::make_shared<Item>(QNExisting{oid}));
          },
          nullptr};
}

/// The descriptor of a class whose new items start from a template.
template <class Item>
QNItemClass itemClassOfTemplates(std::string_view name) {
  return {name, nullptr,
          [](std::uint64_t oid) {
            return std::shared_ptr<QNItem>(std::make_shared<Item>(QNExisting{oid}));
          },
          [](const std::shared_ptr<QNTemplate>& from) {
            return std::shared_ptr<QNItem>(Item::initNewWithTemplate(from));
          }};
}

}  // namespace quillon
