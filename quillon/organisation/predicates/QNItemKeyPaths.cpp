#include "quillon/organisation/predicates/QNItemKeyPaths.h"

#include <algorithm>
#include <array>

#include "quillon/items/QNItem.h"
#include "quillon/platform/text/QNSecretText.h"

// What items answer. A view lies in the item; a secret is the answer's own.
//
//   key path              value      read from
//   "title"               text       overview; localized "Unnamed" without one
//   "tagsForSearch"       texts      overview
//   "passwordStrength"    number     overview
//   "categoryUUID"        text       row
//   "folderUUID"          text       row
//   "numberOfAttachments" number     row; details in an account vault
//   "createdAtAsDate"     moment     row
//   "updatedAtAsDate"     moment     row
//   "username"            text       details
//   "password"            text       details
//   "notesPlain"          text       details
//   "URLStringsForSearch" texts      details, whose row holds the addresses
//   "allValuesForSearch"  texts      details

namespace quillon {
namespace {

using Answer = std::optional<QNKeyPathValue>;

Answer valueOf(std::optional<std::string> text) {
  if (!text) return QNKeyPathValue();
  return secretOf(std::move(*text));
}

Answer valueOf(std::optional<QNSecret> secret) {
  if (!secret) return QNKeyPathValue();
  return std::move(*secret);
}

Answer valueOf(std::vector<std::string> texts) {
  std::vector<QNSecret> secrets;
  secrets.reserve(texts.size());
  for (std::string& text : texts) secrets.push_back(secretOf(std::move(text)));
  return secrets;
}

Answer title(QNItem& item) {
  if (const auto text = item.overviewTextForKey(kOverviewTitle)) return *text;
  return valueOf(std::optional(item.title()));
}

Answer tags(QNItem& item) {
  const Json* const stored = item.overviewObjectForKey(kTags);
  const JsonArray* const list = stored == nullptr ? nullptr : stored->if_array();
  if (list == nullptr) return std::vector<QNSecret>();
  return list;
}

Answer categoryUUID(QNItem& item) {
  if (!item.categoryUUID()) return QNKeyPathValue();
  return std::string_view(*item.categoryUUID());
}

constexpr std::array kKeyPaths = {
    QNItemKeyPath{"title", QNKeyPathHome::overview, title},
    QNItemKeyPath{"username", QNKeyPathHome::details,
                  [](QNItem& item) { return valueOf(item.username()); }},
    QNItemKeyPath{"tagsForSearch", QNKeyPathHome::overview, tags},
    QNItemKeyPath{"allValuesForSearch", QNKeyPathHome::details,
                  [](QNItem& item) { return Answer(item.allValuesForSearch()); }},
    QNItemKeyPath{"URLStringsForSearch", QNKeyPathHome::details,
                  [](QNItem& item) { return valueOf(item.URLStringsForSearch()); }},
    QNItemKeyPath{"password", QNKeyPathHome::details,
                  [](QNItem& item) { return valueOf(item.password()); }},
    QNItemKeyPath{"createdAtAsDate", QNKeyPathHome::overview,
                  [](QNItem& item) { return Answer(item.createdAtAsDate()); }},
    QNItemKeyPath{"updatedAtAsDate", QNKeyPathHome::overview,
                  [](QNItem& item) { return Answer(item.updatedAtAsDate()); }},
    QNItemKeyPath{"notesPlain", QNKeyPathHome::details,
                  [](QNItem& item) { return valueOf(item.notesPlain()); }},
    QNItemKeyPath{"categoryUUID", QNKeyPathHome::overview, categoryUUID},
    QNItemKeyPath{"passwordStrength", QNKeyPathHome::overview,
                  [](QNItem& item) { return Answer(std::int64_t{item.passwordStrength()}); }},
    QNItemKeyPath{"numberOfAttachments", QNKeyPathHome::detailsInAccounts,
                  [](QNItem& item) { return Answer(std::int64_t{item.numberOfAttachments()}); }},
    QNItemKeyPath{"folderUUID", QNKeyPathHome::overview,
                  [](QNItem& item) { return valueOf(item.folderUUID()); }},
};

}  // namespace

std::span<const QNItemKeyPath> itemKeyPaths() {
  return kKeyPaths;
}

const QNItemKeyPath* itemKeyPathNamed(std::string_view name) {
  const auto* const found =
      std::find_if(kKeyPaths.begin(), kKeyPaths.end(),
                   [name](const QNItemKeyPath& it) { return it.name == name; });
  return found == kKeyPaths.end() ? nullptr : found;
}

QNItemKeyPathSource::QNItemKeyPathSource(QNItem& item) : _item(item), _lock(item.monitor()) {}

std::optional<QNKeyPathValue> QNItemKeyPathSource::valueForKeyPath(const QNKeyPath& keyPath) {
  if (keyPath.ofItem() == nullptr) return std::nullopt;
  return keyPath.ofItem()->value(_item);
}

bool QNItemKeyPathSource::needsDetails(const QNKeyPath& keyPath) const {
  const QNItemKeyPath* const known = keyPath.ofItem();
  if (known == nullptr || known->home == QNKeyPathHome::overview) return false;
  return known->home == QNKeyPathHome::details || _item.profileType() == kProfileTypeAccountVault;
}

}  // namespace quillon
