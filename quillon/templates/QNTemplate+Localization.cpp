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

// Read without the lock: a report of a broken line may come back here.
QNTemplate::TableRef QNTemplate::keptTable(TableRef& kept, std::string_view language,
                                           bool emptyIsKept) const {
  const auto isGood = [emptyIsKept](const TableRef& table) {
    return table != nullptr && (emptyIsKept || !table->empty());
  };
  {
    const std::lock_guard lock(_mutex);
    if (isGood(kept)) return kept;
  }
  auto loaded = std::make_shared<const QNLocalization::Table>(loadLocalizationTable(language));
  const std::lock_guard lock(_mutex);
  if (!isGood(kept)) kept = std::move(loaded);
  return kept;
}

QNTemplate::Strings::Strings(const QNTemplate& of)
    : _template(of),
      _language(QNLocalization::sharedLocalization().language()),
      _own(of.keptTable(of._localizedStrings, _language, false)) {}

std::string_view QNTemplate::Strings::ofKey(std::string_view key) {
  if (const auto found = _own->find(key); found != _own->end()) return found->second;
  if (_language == kEnglish) return key;
  if (_english == nullptr)
    _english = _template.keptTable(_template._englishStrings, kEnglish, true);
  const auto found = _english->find(key);
  return found == _english->end() ? key : found->second;
}

std::string QNTemplate::localizedStringForKey(std::string_view key) const {
  return key.empty() ? "" : std::string(Strings(*this).ofKey(key));
}

bool QNTemplate::isLocalizedString(std::string_view text, std::string_view forKey) const {
  auto tables = [this] {
    const std::lock_guard lock(_mutex);
    return _stringsOfAllLanguages;
  }();
  if (tables == nullptr) {
    tables = std::make_shared<const std::vector<QNLocalization::Table>>(tablesOfAllLanguages());
    const std::lock_guard lock(_mutex);
    _stringsOfAllLanguages = tables;
  }
  return std::any_of(tables->begin(), tables->end(), [&](const QNLocalization::Table& table) {
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

void QNTemplate::reportMissingTable(const fs::path& folder, std::string_view language) const {
  MRLogger::sharedLogger().status(DEBUG_DATABASE, description(),
                                  "Failed to load localization table {} for localization {}",
                                  folder.string(), language);
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
  if (!_templateURL) return {};
  const fs::path locales = _templateURL->parent_path() / "Locales";
  if (QNLocalization::isLanguageTag(language)) return tableInFolder(locales, language);
  reportMissingTable(locales, language);
  return {};
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
  if (table.empty()) reportMissingTable(folder, language);
  return table;
}

}  // namespace quillon
