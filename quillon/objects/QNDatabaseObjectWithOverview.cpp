#include "quillon/objects/QNDatabaseObjectWithOverview.h"

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNFormat.h"

namespace quillon {
namespace {

constexpr std::string_view kCoderOverviewData = "kOverviewData";  // bytes, only when present
constexpr std::string_view kAttributeOverview = "overview";
// "{}" is the shortest overview in clear: anything shorter stands for none at all.
constexpr std::size_t kMinOverviewDataSize = 2;

// A report names the operation that was called, whichever helper finds the fault.
MRLogText whileReading(std::string_view text, int line = __builtin_LINE()) {
  return {text, __builtin_FILE(), line, "mutableOverview"};
}
MRLogText whileSaving(std::string_view text, int line = __builtin_LINE()) {
  return {text, __builtin_FILE(), line, "willSave"};
}

}  // namespace

QNDatabaseObjectWithOverview::QNDatabaseObjectWithOverview(QNNew) : QNDatabaseObject(initNew) {
  _overview.emplace(jsonStorage());
}

QNDatabaseObjectWithOverview::QNDatabaseObjectWithOverview(QNDecoder& coder)
    : QNDatabaseObject(coder), _overviewData(coder.decodeBytes(kCoderOverviewData)) {}

std::string QNDatabaseObjectWithOverview::descriptionForLogging() const {
  const QNSharedString name = uuid();
  return formatted("<{}-{}-{} {}>", className(), name != nullptr ? *name : "(null)",
                   static_cast<std::int64_t>(oid()), static_cast<const void*>(this));
}

QNSharedString QNDatabaseObjectWithOverview::uuid() const {
  static const QNSharedString none = sharedString("no_uuid");
  return none;
}

bool QNDatabaseObjectWithOverview::overviewIsParsed() const {
  const std::lock_guard lock(_monitor);
  return _overview.has_value();
}

JsonObject* QNDatabaseObjectWithOverview::mutableOverview() {
  const std::lock_guard lock(_monitor);
  if (_overview) return &*_overview;
  if (profile() == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Profile is missing");
    return nullptr;
  }
  if (!_overviewData || _overviewData->size() < kMinOverviewDataSize) {
    return &_overview.emplace(jsonStorage());
  }
  const auto clear = decryptedOverviewData();
  if (!clear || !parseOverview(*clear)) return nullptr;
  return _overview ? &*_overview : nullptr;  // didParseOverview() may have dropped it
}

bool QNDatabaseObjectWithOverview::parseOverview(ByteView clear) {
  QNError error;
  _overview = mr_compactObjectFromJSONDataWithError(clear, _overviewBlock, &error);
  if (!_overview) {
    const std::string description = descriptionForLogging();
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, description,
                                       whileReading("Failed to parse overview: {} for object {}"),
                                       description, error.domainCodeString());
    return false;
  }
  didParseOverview();
  return true;
}

std::optional<Bytes> QNDatabaseObjectWithOverview::decryptedOverviewData() {
  if (profileType() == kProfileTypeAccountVault) return decryptedAccountOverviewData();
  std::optional<Bytes> clear;
  if (profileType() == kProfileTypeLocalVault) {
    clear = profile()->decryptOverview(*_overviewData);
  } else {
    const std::string description = descriptionForLogging();
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, description,
                                       whileReading("Unsupported profile type: {} for item: {}"),
                                       profileType(), description);
  }
  if (!clear) reportUndecryptedOverview();
  return clear;
}

std::optional<Bytes> QNDatabaseObjectWithOverview::decryptedAccountOverviewData() {
  QNError error;
  const auto envelope = mr_objectFromJSONDataWithError(*_overviewData, &error);
  if (!envelope) {
    reportForeignOverview(error);
    return std::nullopt;
  }
  const auto vault = std::dynamic_pointer_cast<QNServerProfile>(profile());
  auto clear = vault != nullptr ? vault->decryptWithMasterSymmetricKey(*envelope) : std::nullopt;
  if (!clear) {
    const std::string description = descriptionForLogging();
    MRLogger::sharedLogger().error(DEBUG_DATABASE, description,
                                   whileReading("Failed to decrypt details for object {}"),
                                   description);
    reportUndecryptedOverview();
  }
  return clear;
}

// What a local vault sealed is never JSON: it shows here, before anything is opened.
void QNDatabaseObjectWithOverview::reportForeignOverview(const QNError& error) {
  const std::string description = descriptionForLogging();
  MRLogger::sharedLogger().assertion(
      DEBUG_DATABASE, description,
      whileReading("Error serializing object {}. EncrytpedDataDictionary:{}"), description,
      error.domainCodeString());
  if (isQNProfileEncrypted(*_overviewData)) {
    MRLogger::sharedLogger().assertion(
        DEBUG_DATABASE, description,
        whileReading("Overview data for object {} is encrypted by an QNProfile, not a H9Profile."),
        description);
  }
}

void QNDatabaseObjectWithOverview::reportUndecryptedOverview() {
  const std::string description = descriptionForLogging();
  MRLogger::sharedLogger().assertion(
      DEBUG_DATABASE, description,
      whileReading(
          "Decrypted overview for object {} is nil. Overview data is {}. Profile is {}locked."),
      description, _overviewData ? "not nil" : "nil", profile()->isLocked() ? "" : "not ");
}

std::optional<JsonObject> QNDatabaseObjectWithOverview::overviewCopy() {
  const std::lock_guard lock(_monitor);
  const JsonObject* const overview = mutableOverview();
  if (overview == nullptr) return std::nullopt;
  return mr_deepMutableCopy(*overview);
}

const Json* QNDatabaseObjectWithOverview::overviewObjectForKey(std::string_view key) {
  const JsonObject* const overview = mutableOverview();
  const Json* const found = overview != nullptr ? memberForKey(*overview, key) : nullptr;
  return found != nullptr && !found->is_null() ? found : nullptr;
}

std::optional<std::string_view> QNDatabaseObjectWithOverview::overviewTextForKey(
    std::string_view key) {
  const JsonObject* const overview = mutableOverview();
  return overview != nullptr ? mr_validStringValueForKey(*overview, key) : std::nullopt;
}

bool QNDatabaseObjectWithOverview::setOverviewObject(std::optional<Json> object,
                                                     std::string_view forKey) {
  const std::lock_guard lock(_monitor);
  JsonObject* const overview = mutableOverview();
  if (overview == nullptr) return false;
  const Json* const present = overview->if_contains(forKey);
  if (object ? present != nullptr && equalJson(*present, *object) : present == nullptr)
    return false;
  markRowDirty();
  if (object) {
    (*overview)[forKey] = std::move(*object);
  } else {
    overview->stable_erase(forKey);
  }
  return true;
}

bool QNDatabaseObjectWithOverview::setOverviewText(std::optional<std::string_view> text,
                                                   std::string_view forKey) {
  if (!text) return setOverviewObject(std::nullopt, forKey);
  const std::lock_guard lock(_monitor);
  JsonObject* const overview = mutableOverview();
  if (overview == nullptr || mr_validStringValueForKey(*overview, forKey) == text) return false;
  markRowDirty();
  setJsonText(*overview, forKey, *text);
  return true;
}

void QNDatabaseObjectWithOverview::copyOverview(const JsonObject& overview) {
  const std::lock_guard lock(_monitor);
  if (_overview && equalJson(*_overview, overview)) return;
  markRowDirty();
  _overview.emplace(mr_deepMutableCopy(overview));
  _overviewBlock.release();
}

void QNDatabaseObjectWithOverview::setOverviewData(std::optional<Bytes> data) {
  const std::lock_guard lock(_monitor);
  _overviewData = std::move(data);
  _overview.reset();
  _overviewBlock.release();
}

void QNDatabaseObjectWithOverview::setProfile(const std::shared_ptr<QNGenericProfile>& profile) {
  const auto old = this->profile();
  // In clear before the key that opens it goes away.
  if (old != nullptr && old != profile) mutableOverview();
  QNDatabaseObject::setProfile(profile);
}

void QNDatabaseObjectWithOverview::willSave() {
  const std::lock_guard lock(_monitor);
  if (profile() == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Profile is missing");
    return;
  }
  QNDatabaseObject::willSave();
  const JsonObject* const overview = mutableOverview();
  QNError error = QNError::unreadable("there is no overview to save");
  const auto clear = overview != nullptr ? mr_JSONDataWithError(*overview, &error) : std::nullopt;
  if (!clear) return reportUnsavedOverview(error);
  encryptOverviewData(*clear);
}

void QNDatabaseObjectWithOverview::encryptOverviewData(ByteView clear) {
  if (profileType() == kProfileTypeLocalVault) {
    _overviewData = profile()->encryptOverview(clear);
  } else if (profileType() == kProfileTypeAccountVault) {
    encryptAccountOverviewData(clear);
  } else {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       whileSaving("Unsupported profile type: {}"), profileType());
  }
}

// A locked vault keeps the stored form, without a word: its items can't have changed in clear.
void QNDatabaseObjectWithOverview::encryptAccountOverviewData(ByteView clear) {
  if (!profile()->isUnlocked()) return;
  const auto vault = std::dynamic_pointer_cast<QNServerProfile>(profile());
  QNError error = QNError::unreadable("the profile is no account vault");
  const auto envelope =
      vault != nullptr ? vault->encryptWithMasterSymmetricKey(clear, &error) : std::nullopt;
  if (!envelope) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   whileSaving("Failed to encrypt overview: {}"),
                                   error.domainCodeString());
    return;
  }
  auto data = mr_JSONDataWithError(*envelope, &error);
  if (!data) return reportUnsavedOverview(error);
  _overviewData = std::move(data);
}

void QNDatabaseObjectWithOverview::reportUnsavedOverview(const QNError& error) {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                     whileSaving("Unable to convert overview to JSON: {}"),
                                     error.domainCodeString());
}

void QNDatabaseObjectWithOverview::saveAllAttributes(JsonObject& attributes) {
  if (auto overview = overviewCopy()) attributes[kAttributeOverview] = std::move(*overview);
}

void QNDatabaseObjectWithOverview::restoreAllAttributes(const JsonObject& attributes) {
  const Json* const overview = mr_objectForKey(attributes, kAttributeOverview, JsonKind::object);
  if (overview != nullptr) copyOverview(overview->get_object());
}

bool QNDatabaseObjectWithOverview::validateAndRepairImportedProperties() {
  if (!QNDatabaseObject::validateAndRepairImportedProperties()) return false;
  const std::lock_guard lock(_monitor);
  if (JsonObject* const overview = mutableOverview()) mr_removeNSNullValues(*overview);
  return true;
}

void QNDatabaseObjectWithOverview::encodeWithCoder(QNEncoder& coder) {
  const std::lock_guard lock(_monitor);
  QNDatabaseObject::encodeWithCoder(coder);
  if (_overviewData) coder.encodeBytes(*_overviewData, kCoderOverviewData);
}

}  // namespace quillon
