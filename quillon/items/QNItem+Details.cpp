#include "quillon/items/internal/QNItemState.h"
#include "quillon/items/internal/QNItemVault.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// The reports of one run of cleanseDetailsFieldsFromDetails().
struct CleansingReport {
  std::string item;
  std::string_view uuid;
  template <class... Args>
  void error(MRLogText text, const Args&... args) const {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, item, text, args...);
  }
};

bool isInputTrait(std::string_view key) {
  return key == "a" || key == "inputTraits";
}

// Other nulls stay: the kind of the field decides what they mean.
void cleanseField(JsonObject& field, const CleansingReport& report) {
  for (auto at = field.begin(); at != field.end();) {
    if (!at->value().is_null()) {
      ++at;
      continue;
    }
    const std::string_view key = at->key();
    report.error("Field for item {} has NSNull for field key: {}", report.item, key);
    if (key == "n") {
      report.error("Found a null field identifier in item {}", report.uuid);
      at->value().emplace_string().assign(mr_uuid());
    }
    at = isInputTrait(key) ? field.stable_erase(at) : at + 1;
  }
}

// In the list's order: `work` with each object, and every other element is taken out.
template <class Report, class Work>
void cleanseElements(JsonArray& list, const Report& report, const Work& work) {
  for (auto at = list.begin(); at != list.end();) {
    if (JsonObject* const object = at->if_object()) {
      work(*object);
      ++at;
      continue;
    }
    report(boost::json::to_string(at->kind()));
    at = list.erase(at);
  }
}

void cleanseSection(JsonObject& section, const CleansingReport& report) {
  Json* const fields = section.if_contains("fields");
  if (fields == nullptr || !fields->is_array()) return;
  cleanseElements(
      fields->get_array(),
      [&report](std::string_view kind) {
        report.error("Field is not an NSDictionary but instead a {}; removing from section!", kind);
      },
      [&report](JsonObject& field) { cleanseField(field, report); });
}

}  // namespace

JsonObject* QNItem::mutableDetails() {
  const std::lock_guard lock(monitor());
  OpenState& open = openState();
  if (open.details) return &*open.details;
  if (loadingDetails() || !detailsLoaded()) {
    MRLogger::sharedLogger().assertion(
        DEBUG_DATABASE, descriptionForLogging(),
        loadingDetails() ? "Failed to provide details info, item {} is still loading"
                         : "Failed to provide details info, item {} is not loaded",
        description());
    return nullptr;
  }
  if (profile() == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Item is missing its profile");
  }
  if (profileType() == kProfileTypeLocalVault) unwrapKeyIfNeeded();
  if (open.detailsData) {
    decryptDetailsDataIfNeeded();
  } else {
    open.details.emplace(jsonStorage());
  }
  return open.details ? &*open.details : nullptr;
}

std::optional<JsonObject> QNItem::detailsCopy() {
  const std::lock_guard lock(monitor());
  const JsonObject* const live = details();
  return live == nullptr ? std::nullopt : std::optional<JsonObject>(mr_deepMutableCopy(*live));
}

const Json* QNItem::detailsObjectForKey(std::string_view key) {
  const std::lock_guard lock(monitor());
  const JsonObject* const live = details();
  const Json* const found = live == nullptr ? nullptr : live->if_contains(key);
  return found == nullptr || found->is_null() ? nullptr : found;
}

void QNItem::setDetailsObject(std::optional<Json> object, std::string_view forKey) {
  const std::lock_guard lock(monitor());
  JsonObject* const live = mutableDetails();
  if (live == nullptr) return;
  const auto present = live->find(forKey);
  if (object ? present != live->end() && equalJson(present->value(), *object)
             : present == live->end()) {
    return;
  }
  markRowDirty();
  if (object) {
    (*live)[forKey] = std::move(*object);
  } else {
    live->stable_erase(present);
  }
}

void QNItem::setDetailsText(std::optional<std::string_view> text, std::string_view forKey) {
  if (!text) return setDetailsObject(std::nullopt, forKey);
  const std::lock_guard lock(monitor());
  JsonObject* const live = mutableDetails();
  if (live == nullptr || mr_validStringValueForKey(*live, forKey) == text) return;
  markRowDirty();
  setJsonText(*live, forKey, *text);
}

void QNItem::copyDetails(const JsonObject& details) {
  const std::lock_guard lock(monitor());
  auto& present = openState().details;
  if (present && (&*present == &details || equalJson(*present, details))) return;
  markRowDirty();
  present = mr_deepMutableCopy(details);
  dropObjectsOfDetails();
}

void QNItem::setDetailsData(std::optional<Bytes> data) {
  const std::lock_guard lock(monitor());
  OpenState& open = openState();
  open.detailsData = std::move(data);
  open.details.reset();
  dropObjectsOfDetails();
}

void QNItem::dropObjectsOfDetails() {
  OpenState& open = openState();
  open.previouslyUsedPasswords.reset();
  open.fieldSections.reset();
  open.foreignSections.clear();
}

const std::optional<Bytes>& QNItem::detailsData() const {
  return openState().detailsData;
}

// A failure is told and leaves the data for a later attempt.
void QNItem::decryptDetailsDataIfNeeded() {
  const std::lock_guard lock(monitor());
  auto& details = openState().details;
  if (details) return;
  QNError error;
  if (profileType() == kProfileTypeLocalVault) {
    details = decryptedLocalDetails(error);
  } else if (profileType() == kProfileTypeAccountVault) {
    details = decryptedAccountDetails(error);
  } else {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Unsupported profile type: {}", profileType());
  }
  if (details) return didParseDetails();
  MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                 "Unable to parse details: {}. Details data is {}",
                                 error.domain.empty() ? "(null)" : error.domainCodeString(),
                                 detailsData() ? "not nil" : "nil");
}

// What doesn't open reads as no bytes, for which the parser has the error.
std::optional<JsonObject> QNItem::decryptedLocalDetails(QNError& error) {
  const OpenState& open = openState();
  const auto clear =
      open.key != nullptr && open.detailsData ? open.key->decrypt(*open.detailsData) : std::nullopt;
  return mr_mutableObjectFromJSONDataWithError(clear ? ByteView(*clear) : ByteView(), &error);
}

std::optional<JsonObject> QNItem::decryptedAccountDetails(QNError& error) {
  MRLogger& logger = MRLogger::sharedLogger();
  const auto& data = detailsData();
  if (!data) {
    logger.assertion(DEBUG_DATABASE, descriptionForLogging(), "nil details data for item: {}!",
                     description());
    return std::nullopt;
  }
  const auto envelope = mr_objectFromJSONDataWithError(*data, &error);
  if (!envelope) {
    logger.error(DEBUG_DATABASE, descriptionForLogging(),
                 "Error serializing details data for item {}: {}, {}", description(), error.domain,
                 error.code);
  }
  const auto vault = accountVaultOf(*this);
  const auto clear = envelope && vault != nullptr
                         ? vault->decryptWithMasterSymmetricKey(*envelope, &error)
                         : std::nullopt;
  auto details = clear ? mr_mutableObjectFromJSONDataWithError(*clear, &error) : std::nullopt;
  if (details) {
    cleanseDetailsFieldsFromDetails(*details);
  } else if (isQNProfileEncrypted(*data)) {
    logger.assertion(DEBUG_DATABASE, descriptionForLogging(),
                     "Details data is encrypted by an QNProfile, not a H9Profile.");
  } else {
    logger.error(DEBUG_DATABASE, descriptionForLogging(), "Failed to decrypt details for item {}",
                 description());
  }
  return details;
}

void QNItem::didParseDetails() {
  const auto& original = openState().originalPassword;
  if (!original || original->empty()) noteOriginalPassword();
}

std::optional<std::string> QNItem::notesPlain() {
  const auto notes = notesSecret();
  return notes ? std::optional<std::string>(notes->reveal()) : std::nullopt;
}

std::optional<QNSecret> QNItem::notesSecret() {
  const std::lock_guard lock(monitor());
  const JsonObject* const live = details();
  if (live == nullptr) return std::nullopt;
  const auto notes = mr_validStringValueForKey(*live, kDetailsNotesPlain);
  return notes ? std::optional<QNSecret>(trimmedRightView(*notes)) : std::nullopt;
}

void QNItem::setNotesPlain(std::optional<std::string_view> notes) {
  setDetailsText(notes ? std::optional(trimmedRightView(*notes)) : std::nullopt,
                 kDetailsNotesPlain);
}

void QNItem::cleanseDetailsFieldsFromDetails(JsonObject& details) {
  Json* const sections = details.if_contains(kDetailsSections);
  if (sections == nullptr) return;
  if (sections->is_null()) sections->emplace_array();
  if (!sections->is_array()) return;
  const CleansingReport report{description(), uuidForLogging(_uuid)};
  cleanseElements(
      sections->get_array(),
      [&report](std::string_view kind) {
        report.error("Section is not an NSDictionary but instead a {}; removing from details!",
                     kind);
      },
      [&report](JsonObject& section) { cleanseSection(section, report); });
}

}  // namespace quillon
