#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace quillon {

/// How often an account vault's item was used, and which version of it last: what is reported to
/// the account. Times are whole seconds since 1970.
class H9ItemUsage final {
 public:
  [[nodiscard]] const std::optional<std::string>& itemUUID() const { return _itemUUID; }
  void setItemUUID(std::optional<std::string> uuid) { _itemUUID = std::move(uuid); }
  [[nodiscard]] const std::optional<std::string>& vaultUUID() const { return _vaultUUID; }
  void setVaultUUID(std::optional<std::string> uuid) { _vaultUUID = std::move(uuid); }
  /// The row id of the account.
  [[nodiscard]] std::uint64_t accountId() const { return _accountId; }
  void setAccountId(std::uint64_t oid) { _accountId = oid; }
  [[nodiscard]] std::uint64_t lastUsedAt() const { return _lastUsedAt; }
  void setLastUsedAt(std::uint64_t seconds) { _lastUsedAt = seconds; }
  [[nodiscard]] std::uint64_t lastUsedVersion() const { return _lastUsedVersion; }
  void setLastUsedVersion(std::uint64_t version) { _lastUsedVersion = version; }
  [[nodiscard]] std::int64_t localEditCount() const { return _localEditCount; }
  void setLocalEditCount(std::int64_t count) { _localEditCount = count; }
  [[nodiscard]] std::int64_t usageCounter() const { return _usageCounter; }
  void setUsageCounter(std::int64_t count) { _usageCounter = count; }

 private:
  std::optional<std::string> _itemUUID;
  std::optional<std::string> _vaultUUID;
  std::uint64_t _accountId = 0;
  std::uint64_t _lastUsedAt = 0;
  std::uint64_t _lastUsedVersion = 0;
  std::int64_t _localEditCount = 0;
  std::int64_t _usageCounter = 0;
};

}  // namespace quillon
