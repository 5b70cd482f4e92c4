#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "quillon/platform/json/QNJson.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/H9TemplateProperties.h"

namespace quillon {

class QNFieldSection;
class QNItemField;

// Keys of a field definition's "inputTraits", for the applications
inline constexpr std::string_view QNTemplateFieldInputTraitsPropertyKey = "inputTraits";
inline constexpr std::string_view QNTemplateFieldKeyboardTypeInputTraitKey = "keyboard";
inline constexpr std::string_view QNTemplateFieldAutocapitalizationTypeInputTraitKey =
    "autocapitalization";
inline constexpr std::string_view QNTemplateFieldAutocorrectionTypeInputTraitKey = "autocorrection";

/// What a category is, as data: its names, its icons, and the sections and fields that a new item
/// starts with. Its strings are in the user's language: a table is read at the first need and kept,
/// also when the language changes. Any thread may use one.
class QNTemplate final {
 public:
  /// Null gives an assertion log, and a template of nothing.
  explicit QNTemplate(const JsonObject* initWithDefinition);
  /// With what a server says beside the definition, null for nothing.
  QNTemplate(const JsonObject* initWithDefinition, const JsonObject* h9TemplateDictionary);
  QNTemplate(const QNTemplate&) = delete;
  QNTemplate& operator=(const QNTemplate&) = delete;

  // What the definition says
  [[nodiscard]] const JsonObject& definition() const { return _definition; }
  /// The category; nothing if the definition names none.
  [[nodiscard]] std::optional<std::string> uuid() const;
  /// The file that it came from; nothing for one that came from a server.
  [[nodiscard]] const std::optional<std::filesystem::path>& templateURL() const {
    return _templateURL;
  }
  /// Before anybody else knows the template: it isn't locked.
  void setTemplateURL(std::optional<std::filesystem::path> url) { _templateURL = std::move(url); }
  /// The identifier of the field that an item's subtitle comes from.
  [[nodiscard]] const std::optional<std::string>& subtitleFieldName() const {
    return _subtitleFieldName;
  }
  [[nodiscard]] const std::optional<std::string>& listIconName() const { return _listIconName; }
  [[nodiscard]] const std::optional<std::string>& detailIconName() const { return _detailIconName; }
  [[nodiscard]] const std::optional<std::string>& sourceIconName() const { return _sourceIconName; }
  [[nodiscard]] bool localized() const { return _localized; }
  /// Not offered for new items.
  [[nodiscard]] bool hidden() const { return _hidden; }
  [[nodiscard]] bool deprecated() const { return _deprecated; }
  [[nodiscard]] bool visible() const { return !_hidden && !_deprecated; }
  /// Null for a template of this library.
  [[nodiscard]] const std::shared_ptr<const H9TemplateProperties>& h9TemplateProperties() const {
    return _h9TemplateProperties;
  }
  [[nodiscard]] std::string description() const;

  // Fields
  /// New sections with new, empty fields. Nothing, with an error log, without "contents".
  [[nodiscard]] std::optional<std::vector<std::shared_ptr<QNFieldSection>>>
  instantiateFieldSections() const;
  /// A type that isn't known makes an unknown field, which keeps it.
  [[nodiscard]] std::shared_ptr<QNItemField> instantiateFieldForDefinition(
      const JsonObject& definition) const;
  /// The last definition of that name; null for none. Valid as long as the template.
  [[nodiscard]] const JsonObject* definitionForFieldIdentifier(std::string_view identifier) const;
  [[nodiscard]] bool containsFieldIdentifier(std::string_view identifier) const {
    return definitionForFieldIdentifier(identifier) != nullptr;
  }
  /// The values that a menu field chooses from, in order.
  [[nodiscard]] std::vector<std::string> menuItemsForFieldIdentifier(
      std::string_view identifier) const;

  // Strings: QNTemplate+Localization.cpp
  [[nodiscard]] std::string localizedTitle() const;
  [[nodiscard]] std::string localizedPluralTitle() const;
  /// The user's language, then English, then the key itself.
  [[nodiscard]] std::string localizedStringForKey(std::string_view key) const;
  /// Is it the text of that key in any language that the template speaks? Tells a title that the
  /// template gave from one that a person chose.
  [[nodiscard]] bool isLocalizedString(std::string_view text, std::string_view forKey) const;
  /// The label of a menu value; the value itself where it has none.
  [[nodiscard]] std::string localizedValueForFieldIdentifier(
      std::string_view identifier, std::optional<std::string_view> menuValue) const;
  [[nodiscard]] std::vector<std::string> localizedMenuLabelsForFieldIdentifier(
      std::string_view identifier) const;
  /// Reads the table of a language, a BCP 47 tag, afresh.
  [[nodiscard]] QNLocalization::Table loadLocalizationTable(std::string_view language) const;

 private:
  using Definitions = std::unordered_map<std::string_view, const JsonObject*>;
  using TableRef = std::shared_ptr<const QNLocalization::Table>;
  class Strings;
  [[nodiscard]] std::shared_ptr<QNFieldSection> instantiateSection(const JsonObject& definition,
                                                                   Strings& strings) const;
  [[nodiscard]] std::shared_ptr<QNItemField> instantiateField(const JsonObject& definition,
                                                              Strings& strings) const;
  [[nodiscard]] std::string localizedName(std::string_view key,
                                          std::optional<std::string> H9TemplateProperties::*) const;
  [[nodiscard]] TableRef keptTable(TableRef& kept, std::string_view language,
                                   bool emptyIsKept) const;
  void reportMissingTable(const std::filesystem::path& folder, std::string_view language) const;
  [[nodiscard]] std::vector<QNLocalization::Table> tablesOfAllLanguages() const;
  [[nodiscard]] QNLocalization::Table tableInFolder(const std::filesystem::path& locales,
                                                    std::string_view language) const;

  JsonObject _definition;
  bool _localized = false;
  bool _hidden = false;
  bool _deprecated = false;
  std::optional<std::filesystem::path> _templateURL;
  std::optional<std::string> _subtitleFieldName;
  std::optional<std::string> _listIconName;
  std::optional<std::string> _detailIconName;
  std::optional<std::string> _sourceIconName;
  std::shared_ptr<const H9TemplateProperties> _h9TemplateProperties;

  mutable std::mutex _mutex;  // guards what is made at the first need; nothing is read under it
  mutable TableRef _localizedStrings;
  mutable TableRef _englishStrings;
  mutable std::shared_ptr<const std::vector<QNLocalization::Table>> _stringsOfAllLanguages;
  mutable std::optional<Definitions> _fieldsByName;  // the keys lie in the definition
};

/// The strings of a template in the language of now, to look up many. Not for threads to share.
class QNTemplate::Strings final {
 public:
  explicit Strings(const QNTemplate& of);
  /// Valid as long as this object and the key.
  [[nodiscard]] std::string_view ofKey(std::string_view key);

 private:
  const QNTemplate& _template;
  std::string _language;
  TableRef _own;
  TableRef _english;  // read at the first key that the other lacks
};

}  // namespace quillon
