#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

class QNItem;

/// An item's uuid together with its vault's: how the world outside a vault names an item. A
/// value; it holds no reference to the item.
class QNItemSpecifier final {
 public:
  /// Null, with an assertion log, for an item without a uuid.
  static std::shared_ptr<const QNItemSpecifier> specifierWithItem(const QNItem& item);
  /// Null, with an assertion log, without an item uuid. Without a profile uuid the profile is
  /// "unknown" and a fresh identifier, so that two such specifiers are never equal.
  static std::shared_ptr<const QNItemSpecifier> specifierWithItemUUID(
      std::optional<std::string_view> uuid, std::optional<std::string_view> profileUUID);

  [[nodiscard]] const std::string& uuid() const { return _uuid; }
  [[nodiscard]] const std::string& profileUUID() const { return _profileUUID; }
  friend bool operator==(const QNItemSpecifier&, const QNItemSpecifier&) = default;
  [[nodiscard]] std::size_t hash() const;

  /// "PROFILE_ITEM".
  [[nodiscard]] std::string stringRepresentation() const;
  /// ":PROFILE:ITEM".
  [[nodiscard]] std::string coreStringRepresentation() const;
  [[nodiscard]] std::string debugDescription() const;

 private:
  QNItemSpecifier(std::string uuid, std::string profileUUID);
  std::string _uuid;
  std::string _profileUUID;
};

}  // namespace quillon
