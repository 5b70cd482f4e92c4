#pragma once
// For tests: the interface language, templates that take the shared registry's place, a folder of
// template files, and a category of a class without an order of its own.

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "quillon/platform/data/MRData.h"
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
  [[nodiscard]] bool isHidden() const override { return false; }
  [[nodiscard]] bool isAdHoc() const override { return false; }
  [[nodiscard]] bool isModifiedCopyOf(const QNGenericCategory& /*other*/) const override {
    return false;
  }
  [[nodiscard]] QNImageRef listIcon() const override { return nullptr; }
  [[nodiscard]] QNImageRef detailIcon() const override { return nullptr; }
  [[nodiscard]] QNImageRef menuIcon() const override { return nullptr; }
  [[nodiscard]] QNImageRef touchBarIcon() const override { return nullptr; }
  [[nodiscard]] QNImageRef sourceIconForBackgroundStyle(int /*style*/) const override {
    return nullptr;
  }
};

/// A template of a definition given as JSON text.
inline std::shared_ptr<QNTemplate> templateOf(std::string_view definition) {
  const auto object = mr_objectFromJSONStringWithError(definition);
  return std::make_shared<QNTemplate>(object ? &*object : nullptr);
}

/// What the shared manager holds while this lives: these and no other.
class QNScopedTemplates final {
 public:
  explicit QNScopedTemplates(std::initializer_list<std::string_view> definitions = {}) {
    auto registry = std::make_shared<QNTemplateManager::Registry>();
    for (const auto definition : definitions) registry->add(templateOf(definition));
    _before = QNTemplateManager::sharedManager().exchangeRegistry(std::move(registry));
  }
  ~QNScopedTemplates() { QNTemplateManager::sharedManager().exchangeRegistry(std::move(_before)); }
  QNScopedTemplates(const QNScopedTemplates&) = delete;
  QNScopedTemplates& operator=(const QNScopedTemplates&) = delete;

 private:
  std::shared_ptr<const QNTemplateManager::Registry> _before;
};

/// A folder of its own under the system's folder for temporary files, gone with this.
class QNScratchFolder final {
 public:
  QNScratchFolder() : _path(std::filesystem::temp_directory_path() / ("quillon-" + mr_uuid())) {
    std::filesystem::create_directories(_path);
  }
  ~QNScratchFolder() { std::filesystem::remove_all(_path); }
  QNScratchFolder(const QNScratchFolder&) = delete;
  QNScratchFolder& operator=(const QNScratchFolder&) = delete;
  [[nodiscard]] const std::filesystem::path& path() const { return _path; }
  std::filesystem::path write(std::string_view name, std::string_view content) const {
    const auto file = _path / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
  }

 private:
  std::filesystem::path _path;
};

}  // namespace quillon
