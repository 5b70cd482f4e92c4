#include "quillon/fields/QNItemField.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

// Each reader copies what it found before it gives up the monitor: a save on another thread may
// write into the overview. Each setter drops what was made of a text once the new one is there:
// before that, a search would make it of the old one again.

namespace quillon {

std::string QNItem::title() {
  const std::lock_guard lock(monitor());
  if (const auto title = overviewTextForKey(kOverviewTitle)) return std::string(*title);
  return QNLocalizedString("Unnamed");
}

void QNItem::setTitle(std::optional<std::string_view> title) {
  setOverviewText(title, kOverviewTitle);
  dropSearchTexts();
}

std::optional<std::string> QNItem::additionalInformation() {
  const std::lock_guard lock(monitor());
  const auto text = overviewTextForKey(kOverviewAdditionalInformation);
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

void QNItem::setAdditionalInformation(std::optional<std::string_view> text) {
  setOverviewText(text, kOverviewAdditionalInformation);
  dropURLCaches();
  dropOverviewForSearch();
}

std::optional<std::string> QNItem::_additionalInformation() {
  if (auto present = additionalInformation()) return present;
  return fastmailAlias().value_or("");
}

std::optional<std::string> QNItem::fastmailAlias() {
  if (hasUsername()) return std::nullopt;
  const std::lock_guard lock(monitor());
  const auto field = findFastmailAliasField();
  const auto alias = field == nullptr ? std::nullopt : field->stringValue();
  // A mail address, shown in lists: it leaves for the overview.
  return alias ? std::optional<std::string>(alias->reveal()) : std::nullopt;
}

std::optional<std::string> QNItem::h9UserUUID() {
  const std::lock_guard lock(monitor());
  const auto uuid = overviewTextForKey(QNItemOverviewH9UserUUIDKey);
  return uuid ? std::optional<std::string>(*uuid) : std::nullopt;
}

void QNItem::setH9UserUUID(std::optional<std::string_view> uuid) {
  setOverviewText(uuid, QNItemOverviewH9UserUUIDKey);
}

std::string QNItem::sectionName() {
  const std::lock_guard lock(monitor());
  if (_sectionName) return *_sectionName;
  std::string letter = firstLetterOfString(title());
  // What didn't open reads as a title of its own, whose letter isn't kept.
  if (overviewIsParsed()) _sectionName = letter;
  return letter;
}

void QNItem::setSectionName(std::optional<std::string> name) {
  const std::lock_guard lock(monitor());
  _sectionName = std::move(name);
}

std::string QNItem::firstLetterOfString(std::string_view text) {
  std::string letter = uppercaseText(firstComposedCharacter(text));
  return isLettersOnly(letter) ? letter : "#";
}

void QNItem::removeQN4CustomIconData() {
  setOverviewObject(std::nullopt, kCustomIcon);
}

void QNItem::removeH9CustomIconData() {
  setOverviewObject(std::nullopt, kCustomIconAttributes);
}

void QNItem::removeH9PendingCustomIconData() {
  setOverviewObject(std::nullopt, kPendingCustomIcon);
}

}  // namespace quillon
