#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/items/QNItemConstants.h"
#include "quillon/objects/QNDatabaseObject.h"

namespace quillon {

/// A tag of a vault in a list of tags. It knows none of its items, which hold their tags as texts:
/// how many there are is counted outside. No setter dirties the row.
class QNTag final : public QNDatabaseObject {
 public:
  explicit QNTag(QNNew) : QNDatabaseObject(initNew) {}
  explicit QNTag(QNExisting existing) : QNDatabaseObject(existing) {}
  explicit QNTag(QNDecoder& coder);
  [[nodiscard]] std::string_view className() const override { return "QNTag"; }
  /// The tag of the items that a new vault may begin with.
  static std::string_view starterKitTagTitle() { return "Starter Kit"; }

  /// The whole path, its levels separated by QNTagSeparatorString: "Travel/Tickets".
  [[nodiscard]] const std::optional<std::string>& title() const { return _title; }
  void setTitle(std::optional<std::string> title);
  /// The levels of the path. None without a title; the one level of an empty title is empty.
  [[nodiscard]] const std::vector<std::string>& titleComponents() const { return _titleComponents; }
  /// How many levels there are.
  [[nodiscard]] std::size_t nestDepth() const { return _titleComponents.size(); }
  /// One level, or the path down to it. Empty for a position that there is none of.
  [[nodiscard]] std::string titleComponentAtNestPosition(std::int64_t position,
                                                         bool includeParentTitleComponents) const;
  [[nodiscard]] std::uint64_t numberOfItems() const { return _numberOfItems; }
  void setNumberOfItems(std::uint64_t count) { _numberOfItems = count; }
  /// The number of items in words: "empty", "1 item", "1,234 items".
  [[nodiscard]] std::string localizedSubtitle() const;
  /// The order of the titles for a person, case apart. Below 0, 0, or above 0.
  [[nodiscard]] int localizedCompare(const QNTag& other) const;

  void saveAllAttributes(JsonObject& attributes) override;
  /// What isn't in the dictionary is absent afterwards.
  void restoreAllAttributes(const JsonObject& attributes) override;
  void encodeWithCoder(QNEncoder& coder) override;

 private:
  std::optional<std::string> _title;
  std::uint64_t _numberOfItems = 0;
  std::vector<std::string> _titleComponents;  // of _title
};

}  // namespace quillon
