// The strings of a template: files "Locales/LANGUAGE.lproj/NAME*.strings" beside the template file
// "NAME.template.json". Keys:
//
//   __title__, __pluralTitle__        the names of the category
//   set.SECTION                       the title of a section
//   FIELD                             the title of a field
//   menu.FIELD.VALUE                  the label of a menu value

#include <algorithm>
#include <system_error>

#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/templates/QNTemplate.h"

namespace quillon {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTitle = "__title__";
constexpr std::string_view kPluralTitle = "__pluralTitle__";
constexpr std::string_view kEnglish = "en";
constexpr std::size_t kMaxTableBytes = std::size_t{4} << 20;

// A tag names a folder, so nothing that could lead to another one is looked up.
bool isLanguageTag(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  });
}

// What isn't hidden in a folder, by name: a table that two files hold must not depend on a disk.
std::vector<fs::path> filesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end;
       entry.increment(failed)) {
    if (!entry->path().filename().string().starts_with('.')) files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string nameOfFile(const fs::path& path) {
  const std::string name = path.filename().string();
  return name.substr(0, name.find('.'));
}

std::string menuKey(std::string_view identifier, std::string_view menuValue) {
  return formatted("menu.{}.{}", identifier, menuValue);
}

}  // namespace

std::string QNTemplate::localizedStringForKey(std::string_view key) const {
  if (key.empty()) return "";
  const std::string language = QNLocalization::sharedLocalization().language();
  const std::lock_guard lock(_mutex);
  if (_localizedStrings.empty()) _localizedStrings = loadLocalizationTable(language);
  if (const auto found = _localizedStrings.find(key); found != _localizedStrings.end()) {
    return found->second;
  }
  if (language == kEnglish) return std::string(key);
  if (!_englishStrings) _englishStrings = loadLocalizationTable(kEnglish);
  const auto found = _englishStrings->find(key);
  return found == _englishStrings->end() ? std::string(key) : found->second;
}

bool QNTemplate::isLocalizedString(std::string_view text, std::string_view forKey) const {
  const std::lock_guard lock(_mutex);
  if (!_stringsOfAllLanguages) _stringsOfAllLanguages = tablesOfAllLanguages();
  return std::any_of(_stringsOfAllLanguages->begin(), _stringsOfAllLanguages->end(),
                     [&](const QNLocalization::Table& table) {
                       const auto found = table.find(forKey);
                       return found != table.end() && found->second == text;
                     });
}

std::vector<QNLocalization::Table> QNTemplate::tablesOfAllLanguages() const {
  std::vector<QNLocalization::Table> tables;
  if (_definition.contains("localizedStrings")) {
    tables.push_back(loadLocalizationTable(kEnglish));  // one table serves every language
  } else if (_templateURL) {
    for (const fs::path& folder : filesIn(_templateURL->parent_path() / "Locales")) {
      if (folder.extension() == ".lproj") {
        tables.push_back(loadLocalizationTable(folder.stem().string()));
      }
    }
  }
  return tables;
}

std::string QNTemplate::localizedName(
    std::string_view key, std::optional<std::string> H9TemplateProperties::*name) const {
  if (_localized) return localizedStringForKey(key);
  const auto given =
      _h9TemplateProperties == nullptr ? std::nullopt : (*_h9TemplateProperties).*name;
  return given.value_or(std::string(key));
}

std::string QNTemplate::localizedTitle() const {
  return localizedName(kTitle, &H9TemplateProperties::title);
}

std::string QNTemplate::localizedPluralTitle() const {
  return localizedName(kPluralTitle, &H9TemplateProperties::pluralTitle);
}

std::string QNTemplate::localizedValueForFieldIdentifier(
    std::string_view identifier, std::optional<std::string_view> menuValue) const {
  if (!menuValue || menuValue->empty()) return "";
  const std::string key = menuKey(identifier, *menuValue);
  std::string label = localizedStringForKey(key);
  return label == key ? std::string(*menuValue) : label;
}

std::vector<std::string> QNTemplate::localizedMenuLabelsForFieldIdentifier(
    std::string_view identifier) const {
  std::vector<std::string> labels = menuItemsForFieldIdentifier(identifier);
  for (std::string& label : labels) label = localizedValueForFieldIdentifier(identifier, label);
  return labels;
}

QNLocalization::Table QNTemplate::loadLocalizationTable(std::string_view language) const {
  if (language.empty()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, description(),
                                       "no localization provided: {}", language);
    return {};
  }
  if (const Json* const inlined = _definition.if_contains("localizedStrings")) {
    QNLocalization::Table table;
    if (const auto* const texts = inlined->if_object()) {
      for (const auto& [key, text] : *texts) {
        if (text.is_string()) table.emplace(key, text.get_string());
      }
    }
    return table;
  }
  if (!_templateURL || !isLanguageTag(language)) return {};
  return tableInFolder(_templateURL->parent_path() / "Locales", language);
}

QNLocalization::Table QNTemplate::tableInFolder(const fs::path& locales,
                                                std::string_view language) const {
  fs::path folder = locales / (std::string(language) + ".lproj");
  auto files = filesIn(folder);
  if (files.empty()) {
    folder = locales / (std::string(language.substr(0, language.find('-'))) + ".lproj");
    files = filesIn(folder);
  }
  QNLocalization::Table table;
  const std::string name = nameOfFile(*_templateURL);
  for (const fs::path& file : files) {
    if (file.extension() != ".strings" || !file.filename().string().starts_with(name)) continue;
    const auto text = fileContent(file, kMaxTableBytes);
    if (!text) {
      log_error(DEBUG_DATABASE, "Failed to read localization table {}", file.string());
      continue;
    }
    for (auto& [key, value] : QNLocalization::parseStrings(*text, file.filename().string())) {
      table.insert_or_assign(key, std::move(value));
    }
  }
  if (table.empty()) {
    MRLogger::sharedLogger().status(DEBUG_DATABASE, description(),
                                    "Failed to load localization table {} for localization {}",
                                    folder.string(), language);
  }
  return table;
}

}  // namespace quillon
