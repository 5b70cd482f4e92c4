#pragma once
// For tests of categories: the interface language, a category of a class without an order of its
// own, and a template that leaves the shared manager when it goes.

#include <memory>
#include <string>
#include <utility>

#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNGenericCategory.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {

class QNScopedLanguage final {
 public:
  explicit QNScopedLanguage(std::string_view tag)
      : _before(QNLocalization::sharedLocalization().language()) {
    QNLocalization::sharedLocalization().setLanguage(tag);
  }
  ~QNScopedLanguage() { QNLocalization::sharedLocalization().setLanguage(_before); }
  QNScopedLanguage(const QNScopedLanguage&) = delete;
  QNScopedLanguage& operator=(const QNScopedLanguage&) = delete;

 private:
  std::string _before;
};

struct QNTestCategory final : QNGenericCategory {
  std::optional<std::string> itsUUID;
  std::optional<std::string> itsSingularName;
  std::optional<std::string> itsPluralName;
  std::uint64_t itsNumberOfItems = 0;
  std::optional<std::uint64_t> itsOrder;

  QNTestCategory() = default;
  QNTestCategory(std::string uuid, std::string singularName)
      : itsUUID(std::move(uuid)), itsSingularName(std::move(singularName)) {}
  [[nodiscard]] std::optional<std::string> uuid() const override { return itsUUID; }
  [[nodiscard]] std::optional<std::string> singularName() const override { return itsSingularName; }
  [[nodiscard]] std::optional<std::string> pluralName() const override { return itsPluralName; }
  [[nodiscard]] std::uint64_t numberOfItems() const override { return itsNumberOfItems; }
  [[nodiscard]] std::optional<std::uint64_t> ownDisplayOrder() const override { return itsOrder; }
};

class QNScopedTemplate final {
 public:
  explicit QNScopedTemplate(std::string uuid, QNTemplatePresentation presentation = {})
      : _added(std::make_shared<QNTemplate>(std::move(uuid), std::move(presentation))) {
    QNTemplateManager::sharedManager().addTemplate(_added);
  }
  ~QNScopedTemplate() { QNTemplateManager::sharedManager().removeTemplateWithUUID(_added->uuid()); }
  QNScopedTemplate(const QNScopedTemplate&) = delete;
  QNScopedTemplate& operator=(const QNScopedTemplate&) = delete;
  [[nodiscard]] const std::shared_ptr<QNTemplate>& added() const { return _added; }

 private:
  std::shared_ptr<QNTemplate> _added;
};

}  // namespace quillon
