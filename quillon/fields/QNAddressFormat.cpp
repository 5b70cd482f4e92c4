#include "quillon/fields/QNAddressFormat.h"

#include <algorithm>
#include <array>
#include <mutex>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/text/QNUTF8.h"
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
constexpr std::size_t kLongestCountryCode = 3;
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

// What a file of countries may hold. Any other text isn't looked up: it is a person's own, and
// would leave its wiping memory as a key.
bool isCountryCode(std::string_view text) {
  return text.size() <= kLongestCountryCode && std::all_of(text.begin(), text.end(), [](char c) {
           return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
         });
}

// One pass: what the removal brings together stays.
QNSecret withoutCountryMenu(std::string_view text) {
  QNSecret left;
  std::size_t start = 0;
  for (auto at = text.find(kCountryMenu); at != std::string_view::npos;
       at = text.find(kCountryMenu, start)) {
    left.append(text.substr(start, at - start));
    start = at + kCountryMenu.size();
  }
  left.append(text.substr(start));
  return left;
}

QNSecret displayedCountry(std::optional<std::string_view> code) {
  if (!code) return {};
  if (!isCountryCode(*code)) return withoutCountryMenu(*code);
  const std::string name = QNAddressFormat::localizedCountryForCode(code);
  return name.starts_with(kCountryMenu) ? withoutCountryMenu(name) : QNSecret(name);
}

// Each word begins with a capital.
std::string capitalized(std::string_view key) {
  std::string made(key);
  bool inWord = false;
  for (char& c : made) {
    c = inWord ? lowercaseASCII(c) : uppercaseASCII(c);
    inWord = c != ' ';
  }
  return made;
}

// Split by what Unicode takes for a blank.
std::vector<std::string_view> wordsOf(std::string_view line) {
  std::vector<std::string_view> words;
  bool inWord = false;
  for (std::size_t start = 0, end = 0; start < line.size(); start = end) {
    for (end = start + 1; end < line.size() && continuesCharacter(line[end]);) ++end;
    const std::string_view character = line.substr(start, end - start);
    const bool blank = isBlankText(character);
    if (!blank && !inWord) words.push_back(character);
    if (!blank && inWord) {
      words.back() = {words.back().data(), words.back().size() + character.size()};
    }
    inWord = !blank;
  }
  return words;
}

std::string inCapitals(std::string_view key) {
  std::string made(key);
  for (char& c : made) c = uppercaseASCII(c);
  return made;
}

const JsonObject* entryOf(const QNAddressFormat::Definition& all, std::string_view key) {
  const Json* const found = all == nullptr ? nullptr : mr_objectForKey(*all, key, JsonKind::object);
  return found == nullptr ? nullptr : &found->get_object();
}

// A view of what a person wrote is enough to look it up: it must not be copied.
QNAddressFormat::Definition definitionForCountryCode(const QNAddressFormat::Definition& all,
                                                     std::optional<std::string_view> code) {
  const std::string here = code ? "" : currentCountryCode().value_or("");
  const JsonObject* definition = entryOf(all, code.value_or(here));
  if (definition == nullptr) definition = entryOf(all, kDefaultDefinition);
  return definition == nullptr ? nullptr : QNAddressFormat::Definition(all, definition);
}

std::string_view displayFormatOf(const QNAddressFormat::Definition& definition) {
  if (definition == nullptr) return kBuiltInFormat;
  return mr_validStringValueForKey(*definition, kFormat).value_or(kBuiltInFormat);
}

// Only the first occurrence of a part is replaced; a later one stays in the text as the word.
QNSecret displayTextInFormat(std::string_view format, const QNAddressValue& value) {
  struct Token {
    std::string_view name;
    std::string_view text;
    std::size_t place;
  };
  const QNSecret country = displayedCountry(value.country());
  std::array<Token, 6> tokens{{
      {QNAddressFieldIdentifierStreet, value.street().value_or(""), 0},
      {QNAddressFieldIdentifierCity, value.city().value_or(""), 0},
      {QNAddressFieldIdentifierZip, value.zip().value_or(""), 0},
      {QNAddressFieldIdentifierRegion, value.region().value_or(""), 0},
      {QNAddressFieldIdentifierState, value.state().value_or(""), 0},
      {QNAddressFieldIdentifierCountry, country.reveal(), 0},  // into another secret
  }};
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
  const JsonObject* const settings = entryOf(all, kDefaultKeyboardSettings);
  return {definitionForCountryCode(all, code), settings};
}

QNSecret QNAddressFormat::displayTextOf(const QNAddressValue& value) {
  const Definition found = definitionForCountryCode(addressFormats(), value.country());
  return displayTextInFormat(displayFormatOf(found), value);
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
  return displayFormatOf(_addressFormatDict);
}

std::optional<std::string_view> QNAddressFormat::editFormat() const {
  if (_addressFormatDict == nullptr) return std::nullopt;
  return mr_validStringValueForKey(*_addressFormatDict, kEditFormat);
}

QNSecret QNAddressFormat::displayTextForAddressValue(const QNAddressValue& value) const {
  return displayTextInFormat(displayFormat(), value);
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
  for (const std::string_view word : wordsOf(lines[row])) words.emplace_back(word);
  return words;
}

std::size_t QNAddressFormat::numberOfRows(bool editMode) const {
  return rows(editMode).size();
}

}  // namespace quillon
