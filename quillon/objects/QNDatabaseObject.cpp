#include "quillon/objects/QNDatabaseObject.h"

#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNFormat.h"

// Archive, part of the stored format:
//
//   key            kind             field
//   "oid"          64-bit integer   _oid
//   "objectFlags"  32-bit integer   the whole flag word
//   "profileID"    64-bit integer   _profileId
//   "profileType"  64-bit integer   _profileType

namespace quillon {
namespace {

constexpr std::string_view kCoderOID = "oid";
constexpr std::string_view kCoderFlags = "objectFlags";
constexpr std::string_view kCoderProfileID = "profileID";
constexpr std::string_view kCoderProfileType = "profileType";

}  // namespace

QNDatabaseObject::QNDatabaseObject(QNDecoder& coder)
    : _objectFlags(static_cast<std::uint32_t>(coder.decodeInt32(kCoderFlags).value_or(0))),
      _oid(coder.decodeInt64(kCoderOID).value_or(0)),
      _profileId(coder.decodeInt64(kCoderProfileID).value_or(0)),
      _profileType(coder.decodeInt64(kCoderProfileType).value_or(0)) {}

std::string QNDatabaseObject::description() const {
  return formatted("<{}-{} {}>", className(), static_cast<std::int64_t>(_oid),
                   static_cast<const void*>(this));
}

void QNDatabaseObject::setProfile(const std::shared_ptr<QNGenericProfile>& profile) {
  const std::shared_ptr<QNGenericProfile> old = this->profile();
  if (profile == old) return;
  const std::uint64_t newId = profile != nullptr ? profile->oid() : 0;
  // Without an old profile the id may still be known, from an archive.
  if (newId != (old != nullptr ? old->oid() : _profileId)) {
    _profileId = newId;
    if (old != nullptr) markRowDirty();
  }
  _profile = profile;
  _profileType = profile != nullptr ? profile->profileType() : 0;
}

void QNDatabaseObject::setAuthentic(bool authentic) {
  _objectFlags = authentic ? _objectFlags | kAuthentic : _objectFlags & ~kAuthentic;
}

void QNDatabaseObject::setTrashed(bool trashed) {
  const std::uint32_t wanted = trashed ? 1 : 0;
  if (status() != wanted) setStatus(wanted);
}

void QNDatabaseObject::markDeleted() {
  if (!deleted()) setStatus(2);
}

void QNDatabaseObject::setStatus(std::uint32_t status) {
  markRowDirty();
  _objectFlags = (_objectFlags & ~kStatusMask) | (status << kStatusShift);
}

JsonObject QNDatabaseObject::allAttributes() {
  if (loaded()) willSerialize();
  JsonObject attributes(jsonStorage());
  saveAllAttributes(attributes);
  return attributes;
}

std::shared_ptr<QNDatabaseObject> QNDatabaseObject::mergeWithConflict(
    const std::shared_ptr<QNDatabaseObject>& /*other*/) {
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, QNDatabaseObject::description(),
                                     "Must be implemented");
  return nullptr;
}

void QNDatabaseObject::encodeWithCoder(QNEncoder& coder) {
  if (dirtyRow()) willSave();  // an archive never holds stale encrypted forms
  coder.encodeInt64(_oid, kCoderOID);
  coder.encodeInt32(static_cast<std::int32_t>(_objectFlags), kCoderFlags);
  coder.encodeInt64(_profileId, kCoderProfileID);
  coder.encodeInt64(_profileType, kCoderProfileType);
}

}  // namespace quillon
