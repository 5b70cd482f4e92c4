#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/templates/QNTemplate.h"

namespace quillon {

/// The templates of the process, each a file "NAME.template.json" in the resource folder
/// CategoryTemplates. They are read at the first look-up and stay: nothing watches the folder.
/// Any thread may use it.
class QNTemplateManager final {
 public:
  static QNTemplateManager& sharedManager();

  /// Null for a category that has none. Reads the templates first if that wasn't done.
  [[nodiscard]] std::shared_ptr<QNTemplate> findTemplateWithUUID(
      std::optional<std::string_view> uuid);
  [[nodiscard]] std::shared_ptr<QNTemplate> templateWithUUID(std::optional<std::string_view> uuid) {
    return findTemplateWithUUID(uuid);
  }
  /// By file name. Reads nothing: empty before the first look-up.
  [[nodiscard]] std::vector<std::shared_ptr<QNTemplate>> templates() const;

  /// Without the folder: an assertion log, and the next look-up tries again.
  void loadFrameworkResources();
  /// What doesn't load is logged and left out. A folder without a template changes nothing; of two
  /// templates of one category the later is found.
  void loadFromDirectory(const std::filesystem::path& path);
  /// Null, with an assertion log, if it can't be read or is no template.
  [[nodiscard]] static std::shared_ptr<QNTemplate> loadTemplateFromPath(
      const std::filesystem::path& path);

  /// A template with its strings in the user's language as one JSON text, for clients in another
  /// process: the definition stands under "attrs". Nothing, with a log, if it can't be made.
  [[nodiscard]] std::optional<std::string> findTemplateStringWithUUID(
      std::optional<std::string_view> uuid);

  /// What is loaded, as a value.
  struct Registry {
    std::vector<std::shared_ptr<QNTemplate>> templates;
    std::map<std::string, std::shared_ptr<QNTemplate>, std::less<>> templatesByUUID;
    void add(std::shared_ptr<QNTemplate> added);
  };
  /// For tests: puts another registry in place and gives back the earlier one. Null: not loaded.
  std::shared_ptr<const Registry> exchangeRegistry(std::shared_ptr<const Registry> registry);

 private:
  QNTemplateManager() = default;
  [[nodiscard]] std::shared_ptr<const Registry> registry() const;
  static std::shared_ptr<const Registry> frameworkRegistry();
  static std::shared_ptr<const Registry> registryOfDirectory(const std::filesystem::path& path);

  mutable std::mutex _mutex;  // guards the pointer; what it points to never changes
  std::shared_ptr<const Registry> _registry;
};

}  // namespace quillon
