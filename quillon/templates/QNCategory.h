#pragma once

#include "quillon/objects/QNDatabaseObject.h"
#include "quillon/templates/QNGenericCategory.h"

namespace quillon {

/// One category of a local vault: a stored row with its place in the order. Names and icon names
/// are refreshed at each load, so that a change of language rewrites no rows.
class QNCategory : public QNDatabaseObject, public QNGenericCategory, public QNDisplayOrderable {
 public:
  explicit QNCategory(QNNew) : QNDatabaseObject(initNew) {}
  explicit QNCategory(QNExisting existing) : QNDatabaseObject(existing) {}
  explicit QNCategory(QNDecoder& coder);
  void encodeWithCoder(QNEncoder& coder) override;

  [[nodiscard]] std::string_view className() const override { return "QNCategory"; }
  /// "<QNCategory: ADDRESS> 'PLURAL NAME'".
  [[nodiscard]] std::string description() const override;

  // Plain stores: they compare nothing and dirty nothing
  [[nodiscard]] std::optional<std::string> uuid() const override { return _uuid; }
  void setUuid(std::optional<std::string> uuid) { _uuid = std::move(uuid); }
  [[nodiscard]] std::optional<std::string> singularName() const override { return _singularName; }
  void setSingularName(std::optional<std::string> name) { _singularName = std::move(name); }
  [[nodiscard]] std::optional<std::string> pluralName() const override { return _pluralName; }
  void setPluralName(std::optional<std::string> name) { _pluralName = std::move(name); }
  [[nodiscard]] const std::optional<std::string>& listIconName() const { return _listIconName; }
  void setListIconName(std::optional<std::string> name) { _listIconName = std::move(name); }
  [[nodiscard]] const std::optional<std::string>& detailIconName() const { return _detailIconName; }
  void setDetailIconName(std::optional<std::string> name) { _detailIconName = std::move(name); }
  [[nodiscard]] std::uint64_t numberOfItems() const override { return _numberOfItems; }
  void setNumberOfItems(std::uint64_t count) { _numberOfItems = count; }

  /// What its template says; without one, true for the tombstone category alone.
  [[nodiscard]] bool isHidden() const override;
  [[nodiscard]] bool isAdHoc() const override { return false; }

  // Icons: QNCategory+Icons.cpp. Without an identifier listIcon() first names the icon of all
  // items, and keeps that name.
  [[nodiscard]] QNImageRef listIcon() const override;
  [[nodiscard]] QNImageRef detailIcon() const override;
  [[nodiscard]] QNImageRef menuIcon() const override;
  [[nodiscard]] QNImageRef touchBarIcon() const override;
  /// Marked as a template, but for the list icon that stands in for a missing one.
  [[nodiscard]] QNImageRef sourceIconForBackgroundStyle(int style) const override;

  [[nodiscard]] std::uint64_t displayOrder() const override { return _displayOrder; }
  [[nodiscard]] std::optional<std::uint64_t> ownDisplayOrder() const override {
    return _displayOrder;
  }
  /// The first order that a category gets dirties nothing; a change of it dirties the order only.
  void setDisplayOrder(std::uint64_t order) override;

  /// Do the number of items or a name differ? For redrawing a list.
  [[nodiscard]] bool isModifiedCopyOf(const QNGenericCategory& other) const override;

  /// Held weakly, unlike by other objects: a vault holds its categories, and the two would keep
  /// each other, and the vault's keys, for ever.
  [[nodiscard]] std::shared_ptr<QNGenericProfile> profile() const override { return _vault.lock(); }
  void setProfile(const std::shared_ptr<QNGenericProfile>& profile) override;
  void didLoad() override;
  void saveAllAttributes(JsonObject& attributes) override;
  void restoreAllAttributes(const JsonObject& attributes) override;

 private:
  void takeDefaultNames();
  std::weak_ptr<QNGenericProfile> _vault;

  std::optional<std::string> _uuid;
  std::optional<std::string> _singularName;
  std::optional<std::string> _pluralName;
  mutable std::optional<std::string> _listIconName;  // set by listIcon() without an identifier
  std::optional<std::string> _detailIconName;
  std::uint64_t _numberOfItems = 0;
  std::uint64_t _displayOrder = 0;
};

}  // namespace quillon
