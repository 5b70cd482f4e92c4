#include "quillon/items/QNItem.h"
#include "quillon/platform/text/QNCharacterSet.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// Without white space other than the blank, and with every separator once and of one kind.
std::string withPlainSeparators(std::string_view tag) {
  std::string plain;
  for (const std::string_view piece : QNCharacterSet::whitespaceButBlank().piecesOf(tag)) {
    for (const char c : piece) {
      const bool separates = c == '/' || c == '\\';
      if (!separates) plain += c;
      if (separates && !plain.ends_with('/')) plain += '/';
    }
  }
  return plain;
}

std::string_view withoutBlankEnds(std::string_view level) {
  const std::size_t first = level.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return level.substr(first, level.find_last_not_of(' ') + 1 - first);
}

std::string levelsJoined(std::string_view tag) {
  std::string joined;
  for (const std::string_view given : componentsSeparatedByString(tag, QNTagSeparatorString)) {
    const std::string_view level = withoutBlankEnds(given);
    if (!level.empty() && !joined.empty()) joined += QNTagSeparatorString;
    joined += level;
  }
  return joined;
}

}  // namespace

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

// Whatever changes tags reads them and writes them under one lock: what another thread has added
// in between would be lost.

void QNItem::setTags(const std::set<std::string>& tags) {
  const std::lock_guard lock(monitor());
  if (tags == this->tags()) return;
  JsonArray list(jsonStorage());
  for (const std::string& tag : tags) list.emplace_back(tag);
  setOverviewObject(Json(std::move(list)), kTags);
}

std::optional<std::string> QNItem::tagsPlain() {
  const auto tags = this->tags();
  if (tags.empty()) return std::nullopt;
  std::string joined;
  for (const std::string& tag : tags) joined.append(joined.empty() ? "" : ", ").append(tag);
  return joined;
}

std::optional<std::string> QNItem::processTagForAdding(std::optional<std::string_view> tag) {
  if (!tag) {
    log_error(DEBUG_DATABASE, "Attempt to process a nil tag.");
    return std::nullopt;
  }
  std::string processed = levelsJoined(withPlainSeparators(*tag));
  if (processed.empty()) {
    log_error(DEBUG_DATABASE, "Trying to add a nil or empty tag: {}", "not nil");
    return std::nullopt;
  }
  return processed;
}

void QNItem::setTagsFromUI(const std::vector<std::string>& tags) {
  std::set<std::string> processed;
  for (const std::string& tag : tags) {
    if (auto added = processTagForAdding(tag)) processed.insert(std::move(*added));
  }
  setTags(processed);
}

void QNItem::addTag(std::optional<std::string_view> tag) {
  const std::lock_guard lock(monitor());
  if (!tag) return;
  auto added = processTagForAdding(tag);
  if (!added) return;
  auto tags = this->tags();
  tags.insert(std::move(*added));
  setTags(tags);
}

void QNItem::removeTag(std::string_view tag) {
  const std::lock_guard lock(monitor());
  auto tags = this->tags();
  tags.erase(std::string(tag));
  setTags(tags);
}

void QNItem::removeTagsWithPrefix(std::string_view prefix) {
  const std::lock_guard lock(monitor());
  if (!prefix.ends_with(QNTagSeparatorString)) return;
  auto tags = this->tags();
  std::erase_if(tags, [prefix](const std::string& tag) { return tag.starts_with(prefix); });
  setTags(tags);
}

std::set<std::string> QNItem::tagsMatchingTag(std::string_view tag) {
  auto tags = this->tags();
  std::erase_if(tags, [lowercase = lowercaseIdentifier(tag)](const std::string& kept) {
    return lowercaseIdentifier(kept) != lowercase;
  });
  return tags;
}

bool QNItem::isTaggedForAppleWatch() {
  return tags().contains(std::string(QNAppleWatchTag));
}

bool QNItem::isTaggedFor2FA() {
  return !tagsMatchingTag(QN2FATag).empty();
}

bool QNItem::isTaggedForHttp() {
  return !tagsMatchingTag(QNHttpTag).empty();
}

void QNItem::toggleTagForAppleWatch() {
  const std::lock_guard lock(monitor());
  if (isTaggedForAppleWatch()) {
    removeTag(QNAppleWatchTag);
  } else {
    addTag(QNAppleWatchTag);
  }
  markRowDirty();
}

void QNItem::toggleTagFor2FA() {
  toggleTagWhateverItsCase(QN2FATag);
}

void QNItem::toggleTagForHttp() {
  toggleTagWhateverItsCase(QNHttpTag);
}

void QNItem::toggleTagWhateverItsCase(std::string_view tag) {
  const std::lock_guard lock(monitor());
  const auto present = tagsMatchingTag(tag);
  if (present.empty()) addTag(tag);
  for (const std::string& each : present) removeTag(each);
  markRowDirty();
}

}  // namespace quillon
