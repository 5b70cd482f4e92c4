#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "quillon/objects/QNProtocols.h"
#include "quillon/platform/archive/QNCoding.h"
#include "quillon/vaults/QNGenericProfile.h"

namespace quillon {

/// Base of everything that a vault of the local generation persists: row identity, the owning
/// profile, and a word of state flags. Identity, profile and flags aren't guarded: two threads must
/// not change the flags of one object at once, nor set its profile beside any other use of it.
class QNDatabaseObject : public MRDatabaseObject, public QNCoding {
 public:
  /// The flag word is stored in archives: the bits never move.
  enum Flag : std::uint32_t {
    kDirtyRow = 1u << 0,
    kDirtyDisplayOrder = 1u << 1,
    kLoadingDetails = 1u << 2,
    kDetailsLoaded = 1u << 3,
    kLoadingAttachments = 1u << 4,
    kAttachmentsLoaded = 1u << 5,
    kStatusShift = 6,  // two bits: 0 normal, 1 trashed, 2 deleted
    kStatusMask = 3u << 6,
    kAuthentic = 1u << 8,
  };
  /// Flags of an object without a row: there is nothing to load, and all to save.
  static constexpr std::uint32_t kNewFlags =
      kDirtyRow | kDetailsLoaded | kAttachmentsLoaded | kAuthentic;

  QNDatabaseObject(const QNDatabaseObject&) = delete;
  QNDatabaseObject& operator=(const QNDatabaseObject&) = delete;
  ~QNDatabaseObject() override = default;

  /// "<CLASS-OID ADDRESS>".
  [[nodiscard]] virtual std::string description() const;

  // Identity
  [[nodiscard]] std::uint64_t oid() const override { return _oid; }
  [[nodiscard]] bool hasOid() const override { return _oid != 0; }
  void _setOid(std::uint64_t oid) override { _oid = oid; }

  // Owning profile
  [[nodiscard]] virtual std::shared_ptr<QNGenericProfile> profile() const { return _profile; }
  /// A first profile dirties nothing; a change to a profile with another row id dirties the row. An
  /// object with an overview opens it before it leaves its old profile.
  virtual void setProfile(const std::shared_ptr<QNGenericProfile>& profile);
  [[nodiscard]] std::uint64_t profileId() const { return _profileId; }
  [[nodiscard]] virtual std::uint64_t profileType() const { return _profileType; }
  void setProfileType(std::uint64_t type) { _profileType = type; }

  // Flags
  [[nodiscard]] std::uint32_t intValue() const { return _objectFlags; }
  [[nodiscard]] virtual bool dirtyRow() const { return hasFlag(kDirtyRow); }
  [[nodiscard]] bool dirtyDisplayOrder() const { return hasFlag(kDirtyDisplayOrder); }
  virtual void markRowDirty() { _objectFlags |= kDirtyRow; }
  void markDisplayOrderDirty() { _objectFlags |= kDirtyDisplayOrder; }
  [[nodiscard]] bool loadingDetails() const { return hasFlag(kLoadingDetails); }
  [[nodiscard]] bool detailsLoaded() const { return hasFlag(kDetailsLoaded); }
  void markLoadingDetails() { exchangeFlags(kDetailsLoaded, kLoadingDetails); }
  void markDetailsLoaded() { exchangeFlags(kLoadingDetails, kDetailsLoaded); }
  [[nodiscard]] bool loadingAttachments() const { return hasFlag(kLoadingAttachments); }
  [[nodiscard]] bool attachmentsLoaded() const { return hasFlag(kAttachmentsLoaded); }
  void markLoadingAttachments() { exchangeFlags(kAttachmentsLoaded, kLoadingAttachments); }
  void markAttachmentsLoaded() { exchangeFlags(kLoadingAttachments, kAttachmentsLoaded); }
  [[nodiscard]] bool loaded() const { return detailsLoaded() && attachmentsLoaded(); }
  [[nodiscard]] virtual bool authentic() const { return hasFlag(kAuthentic); }
  virtual void setAuthentic(bool authentic);

  // Status: 0 normal, 1 trashed, 2 deleted
  [[nodiscard]] std::uint32_t status() const {
    return (_objectFlags & kStatusMask) >> kStatusShift;
  }
  [[nodiscard]] virtual bool trashed() const { return status() == 1; }
  [[nodiscard]] bool deleted() const { return status() == 2; }
  /// Also brings a deleted object back, with either argument.
  virtual void setTrashed(bool trashed);
  void markDeleted();

  // Lifecycle: called by the database layer. didSave and didLoad leave the object clean.
  virtual void willSerialize() {}
  virtual void willSave() { willSerialize(); }
  virtual void didSave() { markClean(); }
  virtual void didLoad() { markClean(); }

  // Attributes: the object's row dictionary, in clear. allAttributes() of a loaded object runs
  // willSerialize() first, and so may dirty the row.
  JsonObject allAttributes();
  void setAllAttributes(const JsonObject& attributes) { restoreAllAttributes(attributes); }
  virtual void saveAllAttributes(JsonObject& attributes) { static_cast<void>(attributes); }
  virtual void restoreAllAttributes(const JsonObject& attributes) { static_cast<void>(attributes); }
  virtual bool validateAndRepairImportedProperties() { return true; }

  /// Overridden by each synchronised class; here an assertion log, and nothing.
  virtual std::shared_ptr<QNDatabaseObject> mergeWithConflict(
      const std::shared_ptr<QNDatabaseObject>& other);

  /// Calls willSave() first if the row is dirty: see there what it does while the profile is
  /// locked.
  void encodeWithCoder(QNEncoder& coder) override;

 protected:
  explicit QNDatabaseObject(QNNew) : _objectFlags(kNewFlags) {}
  explicit QNDatabaseObject(QNExisting existing) : _objectFlags(kAuthentic), _oid(existing.oid) {}
  explicit QNDatabaseObject(QNDecoder& coder);

 private:
  [[nodiscard]] bool hasFlag(Flag flag) const { return (_objectFlags & flag) != 0; }
  void exchangeFlags(Flag clear, Flag set) { _objectFlags = (_objectFlags & ~clear) | set; }
  void markClean() { _objectFlags &= ~(kDirtyRow | kDirtyDisplayOrder); }
  void setStatus(std::uint32_t status);

  std::uint32_t _objectFlags = 0;
  std::uint64_t _oid = 0;
  std::uint64_t _profileId = 0;
  std::shared_ptr<QNGenericProfile> _profile;
  std::uint64_t _profileType = 0;
};

}  // namespace quillon
