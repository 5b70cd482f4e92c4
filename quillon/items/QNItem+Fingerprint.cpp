#include "quillon/files/H9Document.h"
#include "quillon/items/QNFingerprintConstants.h"
#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLoginField.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/json/QNJsonSorting.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategoryUUID.h"

// The document of a fingerprint, whole in docs/formats.md:
//
//   key                    present                           value
//   "templateUUID"         always                            the category, or null
//   "faveIndex"            of a favourite                    true, whatever its place
//   "trashed"              always                            true or false
//   "hasCustomIcon"        of an icon with a signing key     true
//   "documentFingerprint"  of a document, unless ignored     drawn at each call
//   "overview"             always                            without what is derived or personal
//   "details"              always                            without former keys, with attachments

namespace quillon {
namespace {

constexpr std::string_view kURLLabel = "l";
constexpr std::string_view kURLAddress = "u";

void hashIcon(JsonObject& overview) {
  const Json* const icon = overview.if_contains(FingerprintOverviewIcon);
  if (icon == nullptr) return;
  const auto* const text = icon->if_string();
  const auto bytes =
      text == nullptr ? mr_JSONDataWithError(*icon) : std::optional(mr_asData(*text));
  if (bytes) setJsonText(overview, FingerprintOverviewIconHash, mr_SHA256hex(*bytes));
  overview.stable_erase(FingerprintOverviewIcon);
}

void putIfAny(JsonObject& object, std::string_view key, const std::optional<std::string>& text) {
  if (text && !text->empty()) setJsonText(object, key, *text);
}

JsonArray listOfURLs(const std::vector<std::shared_ptr<QNItemURL>>& urls) {
  JsonArray list(jsonStorage());
  for (const auto& url : urls) {
    JsonObject stored(jsonStorage());
    putIfAny(stored, kURLLabel, url->label());
    putIfAny(stored, kURLAddress, url->URLString());
    if (!stored.empty()) list.emplace_back(std::move(stored));
  }
  return list;
}

// Calls `work` with each object of the list under that key, if there is one.
template <class Work>
void forEachObject(JsonObject& holder, std::string_view key, const Work& work) {
  Json* const list = holder.if_contains(key);
  if (list == nullptr || !list->is_array()) return;
  for (Json& element : list->get_array()) {
    if (JsonObject* const object = element.if_object()) work(*object);
  }
}

// An id that is empty is as good as none.
void dropEmptyHtmlId(JsonObject& field) {
  if (mr_validStringValueForKey(field, QNLoginFieldKeyHtmlId) == "") {
    field.stable_erase(QNLoginFieldKeyHtmlId);
  }
}

// The identifier of a one-time password is drawn anew at each reading.
void dropIdentifierOfTOTP(JsonObject& field) {
  const auto textOf = [&field](std::string_view key) {
    return mr_validStringValueForKey(field, key).value_or("");
  };
  if (textOf(FingerprintDetailsSectionFieldConcealedKey) ==
          FingerprintDetailsSectionFieldConcealedValue &&
      textOf(FingerprintDetailsSectionFieldTOTPKey)
          .starts_with(FingerprintDetailsSectionFieldTOTPValuePrefix)) {
    field.stable_erase(FingerprintDetailsSectionFieldTOTPKey);
  }
}

}  // namespace

std::optional<JsonObject> QNItem::fingerprint_jsonDictionaryIgnoringDocumentFingerprint(
    bool ignoring) {
  const std::lock_guard lock(monitor());
  willSerialize();
  JsonObject document(jsonStorage());
  document[FingerprintCategoryUUID] = nullptr;
  if (_categoryUUID) setJsonText(document, FingerprintCategoryUUID, *_categoryUUID);
  if (isFavorite()) document[FingerprintFaveIndex] = true;
  document[FingerprintTrashed] = trashed();
  const JsonObject* const icon = customIconRecord();
  if (icon != nullptr && hasSigningKey(*icon)) document[FingerprintHasCustomIcon] = true;
  const bool isDocument =
      _categoryUUID == QNCategoryUUIDDocument && dynamic_cast<const H9Document*>(this) != nullptr;
  if (isDocument && !ignoring) setJsonText(document, FingerprintDocumentFingerprint, mr_uuid());
  auto overview = fingerprintOverview();
  auto details = overview ? fingerprintDetails() : std::nullopt;
  if (!details) return std::nullopt;
  document[FingerprintOverview] = *std::move(overview);
  document[FingerprintDetails] = *std::move(details);
  return document;
}

std::optional<JsonObject> QNItem::fingerprintOverview() {
  auto overview = overviewCopy();
  const auto urls = URLs();
  if (!overview || !allOpen(urls)) return std::nullopt;
  for (const std::string_view key : {FingerprintOverviewTags, FingerprintOverviewIcons,
                                     FingerprintOverviewAdditionalInformation}) {
    overview->stable_erase(key);
  }
  hashIcon(*overview);
  JsonArray list = listOfURLs(urls);
  if (!list.empty()) (*overview)[FingerprintOverviewURLs] = std::move(list);
  if (const auto text = scope()) setJsonText(*overview, FingerprintOverviewScope, *text);
  return overview;
}

std::optional<JsonObject> QNItem::fingerprintDetails() {
  auto details = detailsCopy();
  if (!details) return std::nullopt;
  details->stable_erase(FingerprintDetailsBackupKeys);
  forEachObject(*details, FingerprintDetailsLoginFields, dropEmptyHtmlId);
  forEachObject(*details, FingerprintDetailsSections, [](JsonObject& section) {
    forEachObject(section, FingerprintDetailsSectionFields, dropIdentifierOfTOTP);
  });
  if (profileType() == kProfileTypeLocalVault) {
    markAttachmentsLoaded();
    // One object for each, once an attachment has a class.
    (*details)[FingerprintDetailsAttachments] = JsonArray(jsonStorage());
  }
  return details;
}

// In bytes that wipe themselves: the text is the item in clear.
std::optional<Bytes> QNItem::fingerprintText(bool ignoringDocumentFingerprint) {
  auto document =
      fingerprint_jsonDictionaryIgnoringDocumentFingerprint(ignoringDocumentFingerprint);
  auto text = document ? mr_JSONDataWithError(
                             mr_arrayByDeepSortingDictionariesInJSONObject(std::move(*document)))
                       : std::nullopt;
  if (!text) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Failed to obtain JSON from item: {}", description());
  }
  return text;
}

std::optional<std::string> QNItem::fingerprint_jsonStringIgnoringDocumentFingerprint(
    bool ignoring) {
  const auto text = fingerprintText(ignoring);
  return text ? std::optional<std::string>(textOf(*text)) : std::nullopt;
}

std::optional<std::string> QNItem::fingerprint_fingerprint() {
  const auto text = fingerprintText(false);
  return text ? std::optional(mr_SHA256hex(*text)) : std::nullopt;
}

// A text and its fingerprint each from a call of their own would differ for a document. The whole
// length at once: a text that grows leaves what it held in memory that nobody wipes.
std::optional<std::string> QNItem::fingerprint_debugJSON() {
  const auto text = fingerprintText(false);
  if (!text) return std::nullopt;
  constexpr std::string_view begin = "[", between = ", \"", end = "\"]";
  const std::string hash = mr_SHA256hex(*text);
  std::string debug;
  debug.reserve(begin.size() + text->size() + between.size() + hash.size() + end.size());
  debug.append(begin).append(textOf(*text)).append(between).append(hash).append(end);
  return debug;
}

}  // namespace quillon
