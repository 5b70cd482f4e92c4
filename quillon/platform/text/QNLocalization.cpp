#include "quillon/platform/text/QNLocalization.h"

#include <algorithm>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/files/QNResources.h"

namespace quillon {
namespace {

constexpr std::size_t kMaxTableBytes = 4 << 20;
constexpr std::string_view kTextPlaceholder = "%@";

}  // namespace

QNLocalization::QNLocalization() : _language(currentLocale()) {}

QNLocalization& QNLocalization::sharedLocalization() {
  static QNLocalization shared;
  return shared;
}

std::string QNLocalization::language() const {
  const std::lock_guard lock(_mutex);
  return _language;
}

void QNLocalization::setLanguage(std::string_view tag) {
  const std::lock_guard lock(_mutex);
  _language = tag;
}

const QNLocalization::Table* QNLocalization::knownTable(const std::string& language) const {
  const std::lock_guard lock(_mutex);
  const auto found = _tables.find(language);
  return found == _tables.end() ? nullptr : &found->second;
}

bool QNLocalization::isLanguageTag(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  });
}

QNLocalization::Strings QNLocalization::stringsOfLanguage(const std::string& language) {
  if (!isLanguageTag(language)) return {};
  const auto path = resourcePath("Locales/" + language + ".lproj/Localizable.strings");
  const auto text = fileContent(path, kMaxTableBytes);
  return text ? readStrings(*text) : Strings();
}

// A report comes last: the sink that gets it may ask for a text of the same table. Of two threads
// that read a table at once, the first to put it in reports.
const QNLocalization::Table& QNLocalization::tableFor(const std::string& language) const {
  if (const Table* const known = knownTable(language)) return *known;
  Strings read = stringsOfLanguage(language);
  std::unique_lock lock(_mutex);
  const auto [place, isNew] = _tables.try_emplace(language, std::move(read.table));
  const Table& table = place->second;
  lock.unlock();
  if (isNew) reportBrokenLines(read, language);
  return table;
}

std::string QNLocalization::localizedStringForKey(std::string_view key,
                                                  std::string_view comment) const {
  return localizedStringForKey(key, comment, language());
}

std::string QNLocalization::localizedStringForKey(std::string_view key,
                                                  std::string_view /*comment*/,
                                                  std::string_view language) const {
  for (std::string tag(language); !tag.empty();) {
    const Table& table = tableFor(tag);
    if (const auto found = table.find(key); found != table.end()) return found->second;
    const std::size_t lastSubtag = tag.rfind('-');
    tag.resize(lastSubtag == std::string::npos ? 0 : lastSubtag);
  }
  return std::string(key);
}

std::string QNLocalizedString(std::string_view key) {
  return QNLocalization::sharedLocalization().localizedStringForKey(key);
}

std::string localizedFormat(std::string_view key, std::string_view argument) {
  constexpr std::string_view number = "%jd";
  std::string filled = QNLocalizedString(key);
  const std::size_t atText = filled.find(kTextPlaceholder);
  const std::size_t atNumber = filled.find(number);
  if (atText < atNumber) return filled.replace(atText, kTextPlaceholder.size(), argument);
  if (atNumber != std::string::npos) filled.replace(atNumber, number.size(), argument);
  return filled;
}

std::string localizedFormat(std::string_view key, std::string_view first, std::string_view second) {
  std::string filled = QNLocalizedString(key);
  std::size_t from = 0;
  for (const std::string_view argument : {first, second}) {
    const std::size_t at = filled.find(kTextPlaceholder, from);
    if (at == std::string::npos) break;
    filled.replace(at, kTextPlaceholder.size(), argument);
    from = at + argument.size();
  }
  return filled;
}

}  // namespace quillon
