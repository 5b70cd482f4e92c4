#pragma once

#include <mutex>

#include "quillon/objects/QNDatabaseObject.h"
#include "quillon/platform/json/QNJsonBlock.h"

namespace quillon {

/// Adds the overview envelope: a JSON object of private data that lives encrypted in a buffer
/// and is parsed on first use. The object's monitor guards both forms.
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
  /// another thread may change it; nothing that takes another object's lock belongs inside.
  std::recursive_mutex& monitor() const { return _monitor; }

  // Writing
  /// True if something changed, and the row is dirty then. Nothing removes the key.
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

  void setProfile(const std::shared_ptr<QNGenericProfile>& profile) override;
  void willSave() override;
  void saveAllAttributes(JsonObject& attributes) override;
  void restoreAllAttributes(const JsonObject& attributes) override;
  bool validateAndRepairImportedProperties() override;
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
