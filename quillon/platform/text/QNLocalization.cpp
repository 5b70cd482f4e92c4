#include "quillon/platform/text/QNLocalization.h"

#include <algorithm>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/files/QNResources.h"

namespace quillon {
namespace {

constexpr std::size_t kMaxTableBytes = 4 << 20;

// A tag names a folder, so nothing that could lead to another one is looked up.
bool isLanguageTag(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  });
}

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

const QNLocalization::Table& QNLocalization::tableFor(const std::string& language) const {
  const auto [place, isNew] = _tables.try_emplace(language);
  if (isNew && isLanguageTag(language)) {
    const auto path = resourceFolder() / "Locales" / (language + ".lproj") / "Localizable.strings";
    if (const auto text = fileContent(path, kMaxTableBytes)) {
      place->second = parseStrings(*text, language);
    }
  }
  return place->second;
}

std::string QNLocalization::localizedStringForKey(std::string_view key,
                                                  std::string_view /*comment*/) const {
  const std::lock_guard lock(_mutex);
  for (std::string tag = _language; !tag.empty();) {
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
  constexpr std::string_view text = "%@";
  constexpr std::string_view number = "%jd";
  std::string filled = QNLocalizedString(key);
  const std::size_t atText = filled.find(text);
  const std::size_t atNumber = filled.find(number);
  if (atText < atNumber) return filled.replace(atText, text.size(), argument);
  if (atNumber != std::string::npos) filled.replace(atNumber, number.size(), argument);
  return filled;
}

}  // namespace quillon
