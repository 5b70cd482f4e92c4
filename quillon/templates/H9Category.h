#pragma once

#include "quillon/objects/H9DatabaseObject.h"
#include "quillon/templates/QNGenericCategory.h"
#include "quillon/templates/QNTemplate.h"

namespace quillon {

/// One category of an account's vault, made of a template of the account. It isn't stored: the
/// vault builds it from its template data.
class H9Category final : public H9DatabaseObject, public QNGenericCategory {
 public:
  /// The server's words stand over the template's. Null without a template or an account. An
  /// `existingId` of 0 makes a new one.
  static std::shared_ptr<H9Category> categoryWithTemplate(const std::shared_ptr<QNTemplate>& from,
                                                          std::uint64_t existingId,
                                                          std::uint64_t accountId,
                                                          const JsonObject* jsonDictionary);
  /// For a category that the account has no template for: default names, or "Other".
  static std::shared_ptr<H9Category> initAdHocWithUUID(QNOptionalUUID uuid);
  explicit H9Category(QNNew) : H9DatabaseObject(initNew) {}
  explicit H9Category(QNExisting existing) : H9DatabaseObject(existing) {}
  explicit H9Category(QNDecoder& coder);
  void encodeWithCoder(QNEncoder& coder) override;

  [[nodiscard]] std::string_view className() const override { return "H9Category"; }
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::optional<std::string> uuid() const override { return _uuid; }
  [[nodiscard]] std::optional<std::string> singularName() const override { return _singularName; }
  [[nodiscard]] std::optional<std::string> pluralName() const override { return _pluralName; }
  [[nodiscard]] const std::optional<std::string>& detailIconName() const { return _detailIconName; }
  [[nodiscard]] const std::optional<std::string>& sourceIconName() const { return _sourceIconName; }
  [[nodiscard]] std::uint64_t numberOfItems() const override { return _numberOfItems; }
  void setNumberOfItems(std::uint64_t count) { _numberOfItems = count; }
  [[nodiscard]] std::optional<std::uint64_t> ownDisplayOrder() const override {
    return std::nullopt;
  }
  /// What its template says; without one, true for the tombstone category alone.
  [[nodiscard]] bool isHidden() const override;
  [[nodiscard]] bool isAdHoc() const override { return _adHoc; }
  /// False for a category of another class.
  [[nodiscard]] bool isModifiedCopyOf(const QNGenericCategory& other) const override;
  [[nodiscard]] std::uint64_t accountId() const { return _accountId; }

  /// The definition of the template; null for none.
  [[nodiscard]] const JsonObject* jsonDictionary() const {
    return _template == nullptr ? nullptr : &_template->definition();
  }
  /// One with members also gives the names and icon names.
  void setJsonDictionary(const JsonObject* dictionary);

  // Icons: names come from the shared template, or from the identifier. Any picture but the list
  // icon and the detail icon is marked as a template, also where the list icon stands in.
  [[nodiscard]] QNImageRef listIcon() const override;
  [[nodiscard]] QNImageRef detailIcon() const override;
  [[nodiscard]] QNImageRef menuIcon() const override;
  [[nodiscard]] QNImageRef touchBarIcon() const override;
  [[nodiscard]] QNImageRef sourceIconForBackgroundStyle(int style) const override;

 private:
  [[nodiscard]] std::string listIconName() const;
  [[nodiscard]] QNImageRef templateImageNamed(std::string_view name) const;

  bool _adHoc = false;
  std::optional<std::string> _uuid;
  std::optional<std::string> _singularName;
  std::optional<std::string> _pluralName;
  std::optional<std::string> _detailIconName;
  std::optional<std::string> _sourceIconName;
  std::uint64_t _numberOfItems = 0;
  std::shared_ptr<const QNTemplate> _template;  // of the definition
  std::uint64_t _accountId = 0;
};

}  // namespace quillon
