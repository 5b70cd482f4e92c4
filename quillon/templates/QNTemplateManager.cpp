#include "quillon/templates/QNTemplateManager.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSuffix = ".template.json";
constexpr std::string_view kDefinition = "templateAttrs";
constexpr std::string_view kObject = "QNTemplateManager";
constexpr std::size_t kMaxTemplateBytes = std::size_t{4} << 20;

// Two operations report a file that can't be read, or isn't a template, in the same words, each in
// its own kind of log.
using Report = void (*)(MRLogText text, std::string_view a, std::string_view b, std::string_view c);

void asAssertion(MRLogText text, std::string_view a, std::string_view b, std::string_view c) {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, kObject, text, a, b, c);
}
void asError(MRLogText text, std::string_view a, std::string_view b, std::string_view c) {
  MRLogger::sharedLogger().error(DEBUG_DATABASE, kObject, text, a, b, c);
}

std::optional<std::string> readTemplate(const fs::path& path, Report report) {
  auto content = fileContent(path, kMaxTemplateBytes);
  if (content) return content;
  std::error_code failed;
  const auto size = fs::file_size(path, failed);
  report("Failed to load template '{}': {}", path.string(),
         failed                     ? failed.message()
         : size > kMaxTemplateBytes ? std::string("the file is too large")
                                    : std::string("the file can't be read"),
         {});
  return std::nullopt;
}

void reportUnparsed(const fs::path& path, std::string_view bytes, const QNError& error,
                    Report report) {
  report("Failed to parse template definition from '{}' with bytes '{}': {}", path.string(), bytes,
         error.domain.empty() ? "(null)" : error.domainCodeString());
}

}  // namespace

QNTemplateManager& QNTemplateManager::sharedManager() {
  static QNTemplateManager shared;
  return shared;
}

void QNTemplateManager::Registry::add(std::shared_ptr<QNTemplate> added) {
  if (const auto uuid = added->uuid()) templatesByUUID.insert_or_assign(*uuid, added);
  templates.push_back(std::move(added));
}

std::shared_ptr<const QNTemplateManager::Registry> QNTemplateManager::registry() const {
  const std::lock_guard lock(_mutex);
  return _registry;
}

std::shared_ptr<const QNTemplateManager::Registry> QNTemplateManager::exchangeRegistry(
    std::shared_ptr<const Registry> registry) {
  const std::lock_guard lock(_mutex);
  return std::exchange(_registry, std::move(registry));
}

std::vector<std::shared_ptr<QNTemplate>> QNTemplateManager::templates() const {
  const auto loaded = registry();
  return loaded == nullptr ? std::vector<std::shared_ptr<QNTemplate>>() : loaded->templates;
}

// Two threads that are first at once both load, and the first to finish is kept.
std::shared_ptr<QNTemplate> QNTemplateManager::findTemplateWithUUID(
    std::optional<std::string_view> uuid) {
  auto loaded = registry();
  if (loaded == nullptr) {
    auto made = frameworkRegistry();
    const std::lock_guard lock(_mutex);
    if (_registry == nullptr) _registry = std::move(made);
    loaded = _registry;
  }
  if (!uuid || loaded == nullptr) return nullptr;
  const auto found = loaded->templatesByUUID.find(*uuid);
  return found == loaded->templatesByUUID.end() ? nullptr : found->second;
}

void QNTemplateManager::loadFrameworkResources() {
  if (auto loaded = frameworkRegistry()) exchangeRegistry(std::move(loaded));
}

void QNTemplateManager::loadFromDirectory(const fs::path& path) {
  if (auto loaded = registryOfDirectory(path)) exchangeRegistry(std::move(loaded));
}

std::shared_ptr<const QNTemplateManager::Registry> QNTemplateManager::frameworkRegistry() {
  std::error_code failed;
  const fs::path folder = resourcePath("CategoryTemplates");
  if (fs::is_directory(folder, failed)) return registryOfDirectory(folder);
  MRLogger::sharedLogger().assertion(
      DEBUG_DATABASE, kObject,
      "Failed to load CategoryTemplates. It's likely that the build of the app is broken. The "
      "user will face problems with non-hardcoded item categories.");
  return nullptr;
}

// Null if there is no template in it.
std::shared_ptr<const QNTemplateManager::Registry> QNTemplateManager::registryOfDirectory(
    const fs::path& path) {
  std::error_code failed;
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(path, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    if (entry->path().filename().string().ends_with(kSuffix)) files.push_back(entry->path());
  }
  if (failed) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, kObject, "loadFromDirectory '{}' failed: {}",
                                       path.string(), failed.message());
    return nullptr;
  }
  std::sort(files.begin(), files.end());
  auto loaded = std::make_shared<Registry>();
  for (const fs::path& file : files) {
    if (auto made = loadTemplateFromPath(file)) loaded->add(std::move(made));
  }
  return loaded->templates.empty() ? nullptr : loaded;
}

std::shared_ptr<QNTemplate> QNTemplateManager::loadTemplateFromPath(const fs::path& path) {
  const auto content = readTemplate(path, asAssertion);
  if (!content) return nullptr;
  QNError error;
  const auto file = mr_objectFromJSONStringWithError(*content, &error);
  const Json* const definition =
      file ? mr_objectForKey(*file, kDefinition, JsonKind::object) : nullptr;
  if (definition == nullptr) {
    reportUnparsed(path, *content, error, asAssertion);
    return nullptr;
  }
  auto made = std::make_shared<QNTemplate>(&definition->get_object());
  made->setTemplateURL(path);
  return made;
}

std::optional<std::string> QNTemplateManager::findTemplateStringWithUUID(
    std::optional<std::string_view> uuid) {
  MRLogger& logger = MRLogger::sharedLogger();
  const auto found = findTemplateWithUUID(uuid);
  if (found == nullptr) return std::nullopt;
  const auto& path = found->templateURL();
  if (!path) {
    logger.assertion(DEBUG_DATABASE, kObject, "Failed to get template path '{}': {}", *uuid,
                     "(null)");
    return std::nullopt;
  }
  const auto content = readTemplate(*path, asError);
  if (!content) return std::nullopt;
  QNError error;
  auto file = mr_mutableObjectFromJSONDataWithError(bytesOf(*content), &error);
  if (!file) {
    reportUnparsed(*path, *content, error, asError);
    return std::nullopt;
  }
  const auto place = file->find(kDefinition);
  if (place == file->end() || !place->value().is_object()) {
    logger.error(DEBUG_DATABASE, kObject, "Failed to get data for {}", kDefinition);
    return std::nullopt;
  }
  JsonObject strings(jsonStorage());
  const std::string language = QNLocalization::sharedLocalization().language();
  for (const auto& [key, text] : found->loadLocalizationTable(language)) strings[key] = text;
  JsonObject attributes = std::move(place->value().get_object());
  file->erase(place);
  attributes["localizedStrings"] = std::move(strings);
  (*file)["attrs"] = std::move(attributes);
  auto text = mr_JSONStringWithError(*file);
  if (!text) {
    // Not reached: what was read as JSON can be written. A dictionary has no other description.
    logger.assertion(DEBUG_DATABASE, kObject, "Failed to get String from Dictionary '{}'",
                     boost::json::serialize(*file));
  }
  return text;
}

}  // namespace quillon
