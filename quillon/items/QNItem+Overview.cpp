#include "quillon/fields/QNItemField.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

// Each reader copies what it found before it gives up the monitor: a save on another thread may
// write into the overview.

namespace quillon {

std::string QNItem::title() {
  const std::lock_guard lock(monitor());
  if (const auto title = overviewTextForKey(kOverviewTitle)) return std::string(*title);
  return QNLocalizedString("Unnamed");
}

void QNItem::setTitle(std::optional<std::string_view> title) {
  setOverviewText(title, kOverviewTitle);
}

std::optional<std::string> QNItem::additionalInformation() {
  const std::lock_guard lock(monitor());
  const auto text = overviewTextForKey(kOverviewAdditionalInformation);
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

void QNItem::setAdditionalInformation(std::optional<std::string_view> text) {
  dropURLCaches();
  setOverviewText(text, kOverviewAdditionalInformation);
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

std::set<std::string> QNItem::tags() {
  const std::lock_guard lock(monitor());
  const Json* const stored = overviewObjectForKey(kTags);
  std::set<std::string> tags;
  if (stored == nullptr || !stored->is_array()) return tags;
  for (const Json& tag : stored->get_array()) {
    if (const auto* const text = tag.if_string()) tags.emplace(*text);
  }
  return tags;
}

void QNItem::setTags(const std::set<std::string>& tags) {
  if (tags == this->tags()) return;
  JsonArray list(jsonStorage());
  for (const std::string& tag : tags) list.emplace_back(tag);
  setOverviewObject(Json(std::move(list)), kTags);
}

std::optional<std::string> QNItem::h9UserUUID() {
  const std::lock_guard lock(monitor());
  const auto uuid = overviewTextForKey(QNItemOverviewH9UserUUIDKey);
  return uuid ? std::optional<std::string>(*uuid) : std::nullopt;
}

void QNItem::setH9UserUUID(std::optional<std::string_view> uuid) {
  setOverviewText(uuid, QNItemOverviewH9UserUUIDKey);
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
