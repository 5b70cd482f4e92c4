#include "quillon/fields/QNAddressFormat.h"

#include <algorithm>
#include <array>
#include <mutex>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

constexpr std::string_view kDefaultDefinition = "Default";
constexpr std::string_view kDefaultKeyboardSettings = "defaultKbdSettings";
constexpr std::string_view kKeyboardSettings = "kbdSettings";
constexpr std::string_view kFormat = "FORMAT";
constexpr std::string_view kEditFormat = "EDIT_FORMAT";
constexpr std::string_view kBuiltInFormat = "Street\nCity Region State\nZIP\nCountry";
constexpr std::string_view kCountryMenu = "menu.country.";
constexpr std::size_t kLargestFile = std::size_t{4} << 20;

// What was read or found once, for the whole process.
struct Cache {
  std::mutex mutex;
  QNAddressFormat::Definition addressFormats;
  std::shared_ptr<QNTemplate> identityTemplate;
  std::optional<std::vector<std::string>> addressCountryCodes;
};

Cache& cache() {
  static Cache it;
  return it;
}

std::optional<JsonObject> objectInResource(std::string_view name, QNError* error) {
  const auto text = fileContent(resourcePath(name), kLargestFile);
  return mr_objectFromJSONStringWithError(text.value_or(""), error);
}

std::shared_ptr<QNTemplate> identityTemplate() {
  {
    const std::lock_guard guard(cache().mutex);
    if (cache().identityTemplate != nullptr) return cache().identityTemplate;
  }
  auto found = QNTemplateManager::sharedManager().templateWithUUID(QNCategoryUUIDIdentity);
  const std::lock_guard guard(cache().mutex);
  return cache().identityTemplate = std::move(found);
}

// The codes of the file that have a name, beside that name.
std::vector<std::pair<std::string, std::string>> namedCodes(const JsonObject& countries) {
  std::vector<std::pair<std::string, std::string>> named;
  for (const auto& member : countries) {
    const std::string_view code = member.key();
    std::string name = QNAddressFormat::localizedCountryForCode(code);
    if (name.starts_with(kCountryMenu)) {
      MRLogger::sharedLogger().error(DEBUG_APP, "QNAddressFormat",
                                     "No localized country name for {}", code);
    } else {
      named.emplace_back(std::move(name), code);
    }
  }
  return named;
}

std::string displayedCountry(std::optional<std::string_view> code) {
  std::string text = QNAddressFormat::localizedCountryForCode(code);
  if (!text.starts_with(kCountryMenu)) return text;
  for (auto at = text.find(kCountryMenu); at != std::string::npos; at = text.find(kCountryMenu)) {
    text.erase(at, kCountryMenu.size());
  }
  return text;
}

std::string capitalized(std::string_view key) {
  std::string made(key);
  for (char& c : made) c = lowercaseASCII(c);
  if (!made.empty()) made.front() = uppercaseASCII(made.front());
  return made;
}

std::string inCapitals(std::string_view key) {
  std::string made(key);
  for (char& c : made) c = uppercaseASCII(c);
  return made;
}

}  // namespace

QNAddressFormat::Definition QNAddressFormat::addressFormats() {
  {
    const std::lock_guard guard(cache().mutex);
    if (cache().addressFormats != nullptr) return cache().addressFormats;
  }
  QNError error;
  auto read = objectInResource("addressFormats.json", &error);
  if (!read) {
    MRLogger::sharedLogger().error(DEBUG_APP, "QNAddressFormat",
                                   "Error parsing address formats: {}", error.domainCodeString());
    return nullptr;
  }
  auto made = std::make_shared<const JsonObject>(std::move(*read));
  const std::lock_guard guard(cache().mutex);
  return cache().addressFormats = std::move(made);
}

QNAddressFormat QNAddressFormat::addressFormatForCountryCode(std::optional<std::string_view> code) {
  const Definition all = addressFormats();
  if (all == nullptr) return QNAddressFormat(nullptr, nullptr);
  const std::string country = code ? std::string(*code) : currentCountryCode().value_or("");
  const auto entry = [&all](std::string_view key) {
    const Json* const found = mr_objectForKey(*all, key, JsonKind::object);
    return found == nullptr ? nullptr : &found->get_object();
  };
  const JsonObject* definition = entry(country);
  if (definition == nullptr) definition = entry(kDefaultDefinition);
  return QNAddressFormat(Definition(all, definition), entry(kDefaultKeyboardSettings));
}

std::string QNAddressFormat::localizedCountryForCode(std::optional<std::string_view> code) {
  if (!code) return {};
  const std::string key = std::string(kCountryMenu).append(*code);
  const auto names = identityTemplate();
  return names == nullptr ? key : names->localizedStringForKey(key);
}

std::vector<std::string> QNAddressFormat::countryCodes() {
  {
    const std::lock_guard guard(cache().mutex);
    if (cache().addressCountryCodes) return *cache().addressCountryCodes;
  }
  QNError error;
  const auto countries = objectInResource("countries.json", &error);
  if (!countries || countries->empty()) {
    MRLogger::sharedLogger().error(DEBUG_APP, "QNAddressFormat",
                                   "Failed to obtain the country codes: <{}>",
                                   countries ? "(null)" : error.domainCodeString());
  }
  auto named = namedCodes(countries ? *countries : JsonObject());
  std::stable_sort(named.begin(), named.end(), [](const auto& a, const auto& b) {
    return localizedCompare(a.first, b.first) < 0;
  });
  std::vector<std::string> codes;
  for (auto& entry : named) codes.push_back(std::move(entry.second));
  const std::lock_guard guard(cache().mutex);
  cache().addressCountryCodes = codes;
  return codes;
}

QNAddressFormat::QNAddressFormat(Definition initWithDefinition, const JsonObject* keyboardSettings)
    : _addressFormatDict(std::move(initWithDefinition)) {
  if (keyboardSettings != nullptr) _keyboardSettings = *keyboardSettings;
  const Json* const own =
      _addressFormatDict == nullptr
          ? nullptr
          : mr_objectForKey(*_addressFormatDict, kKeyboardSettings, JsonKind::object);
  if (own == nullptr) return;
  for (const auto& member : own->get_object()) _keyboardSettings[member.key()] = member.value();
}

std::string_view QNAddressFormat::displayFormat() const {
  if (_addressFormatDict == nullptr) return kBuiltInFormat;
  return mr_validStringValueForKey(*_addressFormatDict, kFormat).value_or(kBuiltInFormat);
}

std::optional<std::string_view> QNAddressFormat::editFormat() const {
  if (_addressFormatDict == nullptr) return std::nullopt;
  return mr_validStringValueForKey(*_addressFormatDict, kEditFormat);
}

// Only the first occurrence of a part is replaced; a later one stays in the text as the word.
QNSecret QNAddressFormat::displayTextForAddressValue(const QNAddressValue& value) const {
  struct Token {
    std::string_view name;
    std::string_view text;
    std::size_t place;
  };
  const std::string country = displayedCountry(value.country());
  std::array<Token, 6> tokens{{
      {QNAddressFieldIdentifierStreet, value.street().value_or(""), 0},
      {QNAddressFieldIdentifierCity, value.city().value_or(""), 0},
      {QNAddressFieldIdentifierZip, value.zip().value_or(""), 0},
      {QNAddressFieldIdentifierRegion, value.region().value_or(""), 0},
      {QNAddressFieldIdentifierState, value.state().value_or(""), 0},
      {QNAddressFieldIdentifierCountry, country, 0},
  }};
  const std::string_view format = displayFormat();
  for (Token& token : tokens) token.place = format.find(token.name);
  std::sort(tokens.begin(), tokens.end(),
            [](const Token& a, const Token& b) { return a.place < b.place; });
  QNSecret shown;
  std::size_t position = 0;
  for (const Token& token : tokens) {
    if (token.place == std::string_view::npos) break;
    shown.append(format.substr(position, token.place - position));
    shown.append(token.text);
    position = token.place + token.name.size();
  }
  shown.append(format.substr(position));
  return shown;
}

std::optional<std::string_view> QNAddressFormat::placeholderStringForKey(
    std::string_view key) const {
  if (_addressFormatDict == nullptr) return std::nullopt;
  for (const std::string& tried : {std::string(key), capitalized(key), inCapitals(key)}) {
    if (const auto found = mr_validStringValueForKey(*_addressFormatDict, tried)) return found;
  }
  return std::nullopt;
}

std::vector<std::string_view> QNAddressFormat::rows(bool editMode) const {
  std::vector<std::string_view> lines;
  const auto format = editMode ? editFormat() : displayFormat();
  if (!format) return lines;
  std::size_t start = 0;
  for (auto end = format->find('\n'); end != std::string_view::npos;
       end = format->find('\n', start)) {
    lines.push_back(format->substr(start, end - start));
    start = end + 1;
  }
  lines.push_back(format->substr(start));
  return lines;
}

std::vector<std::string> QNAddressFormat::componentsForRow(std::size_t row, bool editMode) const {
  const auto lines = rows(editMode);
  std::vector<std::string> words;
  if (row >= lines.size()) return words;
  bool inWord = false;
  for (const char c : lines[row]) {
    const bool blank = c == ' ' || c == '\t' || c == '\r';
    if (!blank && !inWord) words.emplace_back();
    if (!blank) words.back() += c;
    inWord = !blank;
  }
  return words;
}

std::size_t QNAddressFormat::numberOfRows(bool editMode) const {
  return rows(editMode).size();
}

}  // namespace quillon
