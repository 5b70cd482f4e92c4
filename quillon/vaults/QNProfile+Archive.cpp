#include <charconv>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/passwords/QNObfuscation.h"
#include "quillon/platform/passwords/QNSPG.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/vaults/QNProfile.h"

// A vault in a keyed archive. One of an unlocked vault holds its keys in clear and its password
// scrambled: it is only ever stored sealed, as the twin archive that lets another vault open this
// one. A value that is absent has no key.
//
//   uuid profileName passwordHint lastUpdatedBy      texts
//   createdAt updatedAt iterations                   numbers
//   eMasterKey eOverviewKey salt iconData            bytes
//   hasColor                                         true; then cH cS cB cA, 32-bit floats
//   pp                                               text, the scrambled password; unlocked only
//   overviewKey masterKey                            bytes, in clear; unlocked only
//   categories                                       list of QNCategory; not if empty
//   tags                                             JSON object, number to text; not if empty

namespace quillon {
namespace {

constexpr std::int64_t kErrorTwin = 103;

std::optional<std::uint64_t> numberFromText(std::string_view text) {
  std::uint64_t number = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isWhole = failure == std::errc() && end == text.data() + text.size();
  return isWhole ? std::optional(number) : std::nullopt;
}

bool isOfSize(const std::optional<QNKeyBytes>& key, std::int32_t size) {
  return key && key->size() == static_cast<std::size_t>(size);
}

std::optional<QNColor> decodedColor(QNDecoder& coder) {
  if (!coder.decodeBool("hasColor").value_or(false)) return std::nullopt;
  return QNColor{coder.decodeFloat("cH").value_or(0), coder.decodeFloat("cS").value_or(0),
                 coder.decodeFloat("cB").value_or(0), coder.decodeFloat("cA").value_or(0)};
}

}  // namespace

QNProfile::QNProfile(Passkey, QNDecoder& coder) : QNDatabaseObjectWithOverview(coder) {
  if (auto uuid = coder.decodeString("uuid")) _uuid = sharedString(std::move(*uuid));
  _profileName = coder.decodeString("profileName");
  _createdAt = coder.decodeInt64("createdAt").value_or(0);
  _updatedAt = coder.decodeInt64("updatedAt").value_or(0);
  _encryptedMasterKey = coder.decodeBytes("eMasterKey");
  _encryptedOverviewKey = coder.decodeBytes("eOverviewKey");
  _salt = coder.decodeBytes("salt");
  _iterations = static_cast<std::uint32_t>(coder.decodeInt32("iterations").value_or(0));
  _passwordHint = coder.decodeString("passwordHint");
  _iconData = coder.decodeBytes("iconData");
  setProfileColor(decodedColor(coder));
  _lastUpdatedBy = coder.decodeString("lastUpdatedBy");
  if (auto scrambled = coder.decodeString("pp")) {
    const auto password = persistentDeobfuscatedString(*scrambled);
    wipe(scrambled->data(), scrambled->size());
    if (password) setProfilePassword(password->reveal());
  }
  if (const auto key = coder.decodeBytes("overviewKey")) setOverviewKey(*key);
  if (const auto key = coder.decodeBytes("masterKey")) setMasterKey(*key);
  if (const Json* const tags = coder.decodeJson("tags"); tags != nullptr && tags->is_object()) {
    for (const auto& [number, tag] : tags->get_object()) {
      const auto id = numberFromText(number);
      if (id && tag.is_string()) addTag(tag.get_string(), *id);
    }
  }
}

std::shared_ptr<QNProfile> QNProfile::initWithCoder(QNDecoder& coder) {
  auto vault = std::make_shared<QNProfile>(Passkey(), coder);
  for (const auto& decoded : coder.decodeObjects("categories")) {
    const auto category = std::dynamic_pointer_cast<QNCategory>(decoded);
    if (category == nullptr) continue;
    category->setProfile(vault);
    vault->addCategory(category);
  }
  return vault;
}

void QNProfile::encodeWithCoder(QNEncoder& coder) {
  QNDatabaseObjectWithOverview::encodeWithCoder(coder);
  if (_uuid != nullptr) coder.encodeString(*_uuid, "uuid");
  encodeIfPresent(coder, _profileName, "profileName");
  coder.encodeInt64(_createdAt, "createdAt");
  coder.encodeInt64(_updatedAt, "updatedAt");
  encodeIfPresent(coder, _encryptedMasterKey, "eMasterKey");
  encodeIfPresent(coder, _encryptedOverviewKey, "eOverviewKey");
  encodeIfPresent(coder, _salt, "salt");
  coder.encodeInt32(static_cast<std::int32_t>(_iterations), "iterations");
  encodeIfPresent(coder, _passwordHint, "passwordHint");
  encodeIfPresent(coder, _iconData, "iconData");
  if (_profileColor) {
    coder.encodeBool(true, "hasColor");
    coder.encodeFloat(_profileColor->hue, "cH");
    coder.encodeFloat(_profileColor->saturation, "cS");
    coder.encodeFloat(_profileColor->brightness, "cB");
    coder.encodeFloat(_profileColor->alpha, "cA");
  }
  encodeIfPresent(coder, _lastUpdatedBy, "lastUpdatedBy");
  if (const auto password = profilePassword()) {
    coder.encodeString(persistentObfuscatedString(password->reveal()).reveal(), "pp");
  }
  encodeIfPresent(coder, _overviewKey, "overviewKey");
  encodeIfPresent(coder, _masterKey, "masterKey");
  encodeRegistries(coder);
}

void QNProfile::encodeRegistries(QNEncoder& coder) {
  std::vector<std::shared_ptr<QNCoding>> categories;
  for (const auto& category : allCategories()) {
    if (auto stored = std::dynamic_pointer_cast<QNCategory>(category)) {
      categories.push_back(std::move(stored));
    }
  }
  if (!categories.empty()) coder.encodeObjects(categories, "categories");
  JsonObject tags(jsonStorage());
  {
    const std::lock_guard lock(_tagsLock);
    for (const auto& [id, tag] : _tagsById) setJsonText(tags, std::to_string(id), tag);
  }
  if (!tags.empty()) coder.encodeJson(Json(std::move(tags)), "tags");
}

bool QNProfile::encryptAttributesWithPrimaryProfile(const std::shared_ptr<QNProfile>& primary,
                                                    QNError* /*error*/) {
  if (primary == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Primary profile is not available");
    return false;
  }
  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(*this);
  if (!archive.ok()) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Failed to archive profile: {}",
                                   archive.error().domainCodeString());
    return false;
  }
  auto sealed = primary->encryptOverview(archive.value());
  if (!sealed) return false;
  setAttributesData(std::move(sealed));
  return true;
}

// Nothing but a vault and its categories is made of foreign bytes.
std::shared_ptr<QNProfile> QNProfile::twinInArchive(ByteView archive) {
  constexpr QNDecodableClass classes[] = {
      {"QNProfile",
       [](QNDecoder& coder) -> std::shared_ptr<QNCoding> { return initWithCoder(coder); }},
      {"QNCategory", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return std::make_shared<QNCategory>(coder);
       }}};
  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(classes, archive);
  return read.ok() ? std::dynamic_pointer_cast<QNProfile>(read.value()) : nullptr;
}

bool QNProfile::decryptAttributesWithPrimaryProfile(const std::shared_ptr<QNProfile>& primary,
                                                    QNError* error) {
  MRLogger& logger = MRLogger::sharedLogger();
  const auto failed = [error](std::string_view text) {
    setError(error, {std::string(QNErrorDomain), kErrorTwin, std::string(text)});
    return false;
  };
  if (primary == nullptr) {
    logger.assertion(DEBUG_DATABASE, descriptionForLogging(), "Primary profile is not available");
    return failed("Primary profile is not available");
  }
  if (!_attributesData) {
    logger.error(DEBUG_DATABASE, descriptionForLogging(), "No profile attributes");
    return failed("No profile attributes");
  }
  const auto archive = primary->decryptOverview(*_attributesData);
  if (!archive) {
    logger.error(DEBUG_DATABASE, descriptionForLogging(),
                 "Failed to decrypt profile attributes with primary profile.");
    return failed("Failed to decrypt profile attributes with primary profile");
  }
  const auto twin = twinInArchive(*archive);
  if (twin == nullptr || !hasUUIDOf(*twin)) {
    logger.error(DEBUG_DATABASE, descriptionForLogging(), "Failed to unarchive twin profile");
    return failed("Failed to unarchive twin profile");
  }
  const std::string missing = takeKeysOfTwin(*twin);
  return missing.empty() || failed(missing);
}

// Another vault's keys would open nothing here, and a later password change would seal them in the
// place of this vault's own: its data would be lost.
bool QNProfile::hasUUIDOf(const QNProfile& twin) const {
  if (_uuid == nullptr || twin._uuid == nullptr) return _uuid == twin._uuid;
  return *_uuid == *twin._uuid;
}

// Gives what is missing; the vault is then untouched. A key of another size counts as missing, as
// it does where a password opens it.
std::string QNProfile::takeKeysOfTwin(const QNProfile& twin) {
  auto password = twin.profilePassword();
  if (!password) {
    // The words are wanted as they stand, though no identifier is made.
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "profilePassword is nil, setting profilePassword to UUID.");
    password = QNSPG::generateCharactersPassword();
  }
  std::string missing;
  if (!isOfSize(twin.overviewKey(), OVERVIEW_KEY_SIZE)) missing += "overviewKey is nil. ";
  if (!isOfSize(twin.masterKey(), MASTER_KEY_SIZE)) missing += "masterKey is nil. ";
  if (password->empty()) missing += "profilePassword is nil.";
  if (!missing.empty()) return missing;
  const auto self = shared_from_this();  // an observer may drop the vault
  postNotificationName(QNProfileWillUnlockNotification);
  setOverviewKey(*twin.overviewKey());
  setMasterKey(*twin.masterKey());
  setProfilePassword(password->reveal());
  postNotificationName(QNProfileDidUnlockNotification);
  return missing;
}

}  // namespace quillon
