#pragma once

#include <mutex>

#include "quillon/objects/QNDatabaseObject.h"
#include "quillon/platform/json/QNJsonBlock.h"

namespace quillon {

/// Adds the overview envelope: a JSON object of private data that lives encrypted in a buffer
/// and is parsed on first use. The object's monitor guards both forms, and nothing of what the base
/// holds: no setProfile() beside any other use of the object.
class QNDatabaseObjectWithOverview : public QNDatabaseObject {
 public:
  /// "<CLASS-UUID-OID ADDRESS>".
  [[nodiscard]] virtual std::string descriptionForLogging() const;
  /// "no_uuid" in the base.
  [[nodiscard]] virtual QNSharedString uuid() const;

  // Reading. A failure leaves the stored bytes as they are: the next call tries again.
  /// The live object, decrypted and parsed at the first call; null on failure. Valid until the
  /// overview is dropped or replaced.
  JsonObject* mutableOverview();
  /// A copy that shares nothing; nothing on failure.
  std::optional<JsonObject> overviewCopy();
  /// The member; null if it is absent or a JSON null. Valid until the overview changes.
  const Json* overviewObjectForKey(std::string_view key);
  /// The member if it is a text.
  std::optional<std::string_view> overviewTextForKey(std::string_view key);

  /// The object's recursive lock. For whoever looks at what an object hands out by pointer while
  /// another thread may change it. Order: an item before its URLs, and nothing else inside; a
  /// URL's own monitor must not be held when it is asked about its item.
  std::recursive_mutex& monitor() const { return _monitor; }

  // Writing
  /// True if something changed, and the row is dirty then. An absent object removes the key; a JSON
  /// null is stored as a null. Texts go through setOverviewText(), and containers are made with
  /// jsonStorage(): what is in clear must be wiped when it goes.
  bool setOverviewObject(std::optional<Json> object, std::string_view forKey);
  bool setOverviewText(std::optional<std::string_view> text, std::string_view forKey);
  /// Replaces the whole. Compared with the parsed form as it stands: with none, the row is dirty.
  void copyOverview(const JsonObject& overview);
  /// The stored form; drops the parsed one. Dirties nothing.
  void setOverviewData(std::optional<Bytes> data);
  /// The live bytes: hold the monitor while they are read, unless the object is one thread's.
  [[nodiscard]] const std::optional<Bytes>& overviewData() const { return _overviewData; }
  /// Has the overview been decrypted? For counters and tests; reads nothing.
  [[nodiscard]] bool overviewIsParsed() const;

  /// Opens the overview first if the object leaves another profile.
  void setProfile(const std::shared_ptr<QNGenericProfile>& profile) override;
  /// Seals the overview. While a local vault is locked, an overview that was opened before loses
  /// its stored form, with an assertion log: save before the vault locks, or not at all. A locked
  /// account vault keeps the stored form as it is, silently.
  void willSave() override;
  void saveAllAttributes(JsonObject& attributes) override;
  void restoreAllAttributes(const JsonObject& attributes) override;
  bool validateAndRepairImportedProperties() override;
  /// Of a dirty row this saves first, with what willSave() does to the stored form in a locked
  /// vault.
  void encodeWithCoder(QNEncoder& coder) override;

 protected:
  explicit QNDatabaseObjectWithOverview(QNNew);
  explicit QNDatabaseObjectWithOverview(QNExisting existing) : QNDatabaseObject(existing) {}
  explicit QNDatabaseObjectWithOverview(QNDecoder& coder);

  /// Called after a successful parse, inside the lock.
  virtual void didParseOverview() {}

 private:
  std::optional<Bytes> decryptedOverviewData();
  std::optional<Bytes> decryptedAccountOverviewData();
  bool parseOverview(ByteView clear);
  void encryptOverviewData(ByteView clear);
  void encryptAccountOverviewData(ByteView clear);
  void reportForeignOverview(const QNError& error);
  void reportUndecryptedOverview();
  void reportUnsavedOverview(const QNError& error);

  mutable std::recursive_mutex _monitor;
  QNJsonBlock _overviewBlock;  // where a parsed overview lies
  std::optional<JsonObject> _overview;
  std::optional<Bytes> _overviewData;
};

}  // namespace quillon
