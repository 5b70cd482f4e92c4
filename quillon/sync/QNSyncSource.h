#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/objects/QNDatabaseObject.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

class QNImage;
class QNSyncState;

/// Fixed identifiers of partners that no path names.
inline constexpr std::string_view QNSyncKeychainIdentifierH9Syncer = "H9SyncTransactionIdentifier";
inline constexpr std::string_view QNSyncKeychainIdentifierDatabaseMigration = "DatabaseMigration";
inline constexpr std::string_view QNSyncKeychainIdentifierWiFiSyncServer = "WiFiSyncServer";
/// A source that is imported from once.
inline constexpr std::string_view QNSyncSourceLocationImport = "Import";

/// Keys in the user info of a database's notifications: was it a sync's transaction, and whose.
inline constexpr std::string_view QNDatabaseNotificationSyncTransactionFlagKey = "SyncTransaction";
inline constexpr std::string_view QNDatabaseNotificationSyncedKeychainIdentifierKey =
    "SyncedKeychain";

/// A partner that a local vault is kept in step with, and what must be remembered of it from one
/// sync to the next. One thread's business, as every database object's flags are.
class QNSyncSource final : public QNDatabaseObject {
 public:
  /// A set: an object that is given twice stands once. Kept in the order that it came in.
  using States = std::vector<std::shared_ptr<QNSyncState>>;

  explicit QNSyncSource(QNNew) : QNDatabaseObject(initNew) {}
  explicit QNSyncSource(QNExisting existing) : QNDatabaseObject(existing) {}
  [[nodiscard]] std::string_view className() const override { return "QNSyncSource"; }
  /// "DESCRIPTION: (TYPE) 'IDENTIFIER'".
  [[nodiscard]] std::string description() const override;

  // Kinds of partners. Case matters: meant for identifiers in small letters.
  [[nodiscard]] static bool isUbiquityKeychainIdentifier(std::string_view identifier);
  [[nodiscard]] static bool isDropboxKeychainIdentifier(std::string_view identifier);
  [[nodiscard]] static bool isWiFiKeychainIdentifier(std::string_view identifier);
  [[nodiscard]] bool importOnly() const;
  [[nodiscard]] bool isWiFiSyncSource() const;
  [[nodiscard]] std::string localizedTitle() const;
  [[nodiscard]] std::shared_ptr<const QNImage> icon() const;

  // Columns. Setters compare, and dirty the row.
  /// Was the identifier ever given as "iCloud", "Dropbox" or "Documents"?
  [[nodiscard]] bool legacySyncSource() const { return _legacySyncSource; }
  [[nodiscard]] const std::optional<std::string>& keychainIdentifier() const {
    return _keychainIdentifier;
  }
  /// Where the partner is. The three short names of old records become whole paths, in small
  /// letters; anything else is kept as it is.
  void setKeychainIdentifier(std::optional<std::string> identifier);
  /// What a database does with its column: the flag, and an identifier that isn't translated.
  void restoreKeychainIdentifier(std::optional<std::string> identifier, bool legacy);
  [[nodiscard]] const std::optional<std::string>& keychainType() const { return _keychainType; }
  void setKeychainType(std::optional<std::string> type) { set(_keychainType, std::move(type)); }
  [[nodiscard]] const std::optional<std::string>& remoteProfileUUID() const {
    return _remoteProfileUUID;
  }
  void setRemoteProfileUUID(std::optional<std::string> uuid) {
    set(_remoteProfileUUID, std::move(uuid));
  }
  [[nodiscard]] std::uint64_t remoteProfileTimestamp() const { return _remoteProfileTimestamp; }
  void setRemoteProfileTimestamp(std::uint64_t timestamp) {
    set(_remoteProfileTimestamp, timestamp);
  }
  [[nodiscard]] const std::optional<Bytes>& remoteProfileAttributesEncryptedWithLocal() const {
    return _remoteProfileAttributesEncryptedWithLocal;
  }
  void setRemoteProfileAttributesEncryptedWithLocal(std::optional<Bytes> sealed) {
    set(_remoteProfileAttributesEncryptedWithLocal, std::move(sealed));
  }
  [[nodiscard]] const std::optional<std::string>& localProfileUUID() const {
    return _localProfileUUID;
  }
  void setLocalProfileUUID(std::optional<std::string> uuid) {
    set(_localProfileUUID, std::move(uuid));
  }
  [[nodiscard]] std::uint64_t localProfileTimestamp() const { return _localProfileTimestamp; }
  void setLocalProfileTimestamp(std::uint64_t timestamp) { set(_localProfileTimestamp, timestamp); }
  [[nodiscard]] const std::optional<Bytes>& localProfileAttributesEncryptedWithRemote() const {
    return _localProfileAttributesEncryptedWithRemote;
  }
  void setLocalProfileAttributesEncryptedWithRemote(std::optional<Bytes> sealed) {
    set(_localProfileAttributesEncryptedWithRemote, std::move(sealed));
  }

  // States. A change inside one of them dirties nothing here.
  [[nodiscard]] const States& itemStates() const { return _itemStates.states; }
  void setItemStates(States states) { setStates(_itemStates, std::move(states)); }
  [[nodiscard]] const States& folderStates() const { return _folderStates.states; }
  void setFolderStates(States states) { setStates(_folderStates, std::move(states)); }
  [[nodiscard]] const States& attachmentStates() const { return _attachmentStates.states; }
  void setAttachmentStates(States states) { setStates(_attachmentStates, std::move(states)); }

  // Looking up. From an index that is made at the first question after a set was given: an object
  // uuid that is changed later isn't seen. Of two states with one uuid the later counts. Null for
  // an unknown uuid.
  /// Null, with an assertion log, for a type that isn't 1, 2 or 3.
  [[nodiscard]] std::shared_ptr<QNSyncState> syncStateForObjectType(
      std::int32_t type, std::optional<std::string_view> uuid) const;
  [[nodiscard]] std::shared_ptr<QNSyncState> syncStateForItemUUID(
      std::optional<std::string_view> uuid) const {
    return stateIn(_itemStates, uuid);
  }
  [[nodiscard]] std::shared_ptr<QNSyncState> syncStateForFolderUUID(
      std::optional<std::string_view> uuid) const {
    return stateIn(_folderStates, uuid);
  }
  [[nodiscard]] std::shared_ptr<QNSyncState> syncStateForAttachmentUUID(
      std::optional<std::string_view> uuid) const {
    return stateIn(_attachmentStates, uuid);
  }

 private:
  struct IndexedStates {
    States states;
    using Index = std::map<std::string, std::shared_ptr<QNSyncState>, std::less<>>;
    mutable std::optional<Index> byUUID;
  };
  static std::shared_ptr<QNSyncState> stateIn(const IndexedStates& indexed,
                                              std::optional<std::string_view> uuid);
  void setStates(IndexedStates& indexed, States states);

  template <class Value>
  void set(Value& column, Value value) {
    if (column == value) return;
    column = std::move(value);
    markRowDirty();
  }

  IndexedStates _itemStates;
  IndexedStates _folderStates;
  IndexedStates _attachmentStates;
  bool _legacySyncSource = false;
  std::optional<std::string> _keychainIdentifier;
  std::optional<std::string> _keychainType;
  std::optional<std::string> _remoteProfileUUID;
  std::uint64_t _remoteProfileTimestamp = 0;
  std::optional<Bytes> _remoteProfileAttributesEncryptedWithLocal;
  std::optional<std::string> _localProfileUUID;
  std::uint64_t _localProfileTimestamp = 0;
  std::optional<Bytes> _localProfileAttributesEncryptedWithRemote;
};

}  // namespace quillon
