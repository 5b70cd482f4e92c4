#pragma once

#include <string>
#include <string_view>

#include "quillon/objects/QNProtocols.h"
#include "quillon/platform/archive/QNCoding.h"

namespace quillon {

inline constexpr std::string_view H9DatabaseObjectCoderKeyOID = "oid";

/// Base of the records of the account generation: a row id and two times, in whole seconds since
/// 1970. The times are no part of its archive; a subclass that wants them there codes them.
class H9DatabaseObject : public MRDatabaseObject, public QNCoding {
 public:
  H9DatabaseObject(const H9DatabaseObject&) = delete;
  H9DatabaseObject& operator=(const H9DatabaseObject&) = delete;

  /// "<CLASS-OID ADDRESS>".
  [[nodiscard]] virtual std::string description() const;
  [[nodiscard]] std::uint64_t oid() const override { return _oid; }
  [[nodiscard]] bool hasOid() const override { return _oid != 0; }
  void _setOid(std::uint64_t oid) override { _oid = oid; }
  void setOid(std::uint64_t oid) { _oid = oid; }
  [[nodiscard]] std::uint64_t createdAt() const { return _createdAt; }
  void setCreatedAt(std::uint64_t seconds) { _createdAt = seconds; }
  [[nodiscard]] std::uint64_t updatedAt() const { return _updatedAt; }
  void setUpdatedAt(std::uint64_t seconds) { _updatedAt = seconds; }

  /// Fills in times that are 0: createdAt with now, updatedAt with createdAt.
  virtual void willSave();
  virtual void didSave() {}
  void encodeWithCoder(QNEncoder& coder) override;

 protected:
  explicit H9DatabaseObject(QNNew) {}
  explicit H9DatabaseObject(QNExisting existing) : _oid(existing.oid) {}
  explicit H9DatabaseObject(QNDecoder& coder);

 private:
  std::uint64_t _updatedAt = 0;
  std::uint64_t _createdAt = 0;
  std::uint64_t _oid = 0;
};

}  // namespace quillon
