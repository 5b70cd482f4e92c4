#pragma once
// Rows as the store reads and writes them, and the seals that bind them. Bytes of every form:
// docs/formats.md, "store".

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "quillon/vaults/QNProfile.h"

namespace quillon {

/// One half of an HMAC-SHA256 under the vault's HMAC key. The first half of a row's HMAC stands in
/// the row. The second stays secret: sums of it make the ledger, and whoever knew the terms could
/// find other rows of the same sum.
using QNSealHalf = std::array<std::uint8_t, 16>;
struct QNSeal {
  QNSealHalf tag;
  QNSealHalf term;
};

/// A row of `items`. Views: valid as long as the query stands on the row, or the item that it was
/// made of isn't changed.
struct QNItemRow {
  std::uint64_t oid = 0;
  std::uint64_t status = 0;
  std::uint64_t faveIndex = 0;
  std::uint64_t createdAt = 0;
  std::uint64_t updatedAt = 0;
  std::uint64_t txTimestamp = 0;
  std::uint64_t timesUsed = 0;
  std::uint64_t lastUsed = 0;
  std::uint64_t inbox = 0;
  std::uint64_t attachments = 0;
  std::string_view categoryUUID;
  std::optional<std::string_view> scope;
  std::optional<std::string_view> folderUUID;
  std::string_view uuid;
  ByteView bodyHash;
  ByteView seal;
  ByteView overview;
};

/// A row of `urls`; the same rule for its views.
struct QNURLRow {
  std::uint64_t oid = 0;
  std::uint64_t displayOrder = 0;
  std::uint64_t hashVersion = 0;
  std::optional<std::string_view> nakedHash;
  std::optional<std::string_view> derivedHash;
  ByteView overview;
};

/// A row of `vaults`; the same rule for its views.
struct QNVaultRow {
  std::uint64_t oid = 0;
  std::string_view uuid;
  std::string_view name;
  std::uint64_t revision = 0;
  std::uint64_t status = 0;
  std::uint64_t createdAt = 0;
  std::uint64_t updatedAt = 0;
  ByteView masterKey;
  ByteView overviewKey;
  ByteView salt;
  std::uint64_t iterations = 0;
  std::optional<std::string_view> hint;
  std::optional<std::string_view> lastUpdatedBy;
  std::optional<ByteView> icon;
  std::optional<std::string_view> color;
  std::optional<ByteView> attributes;
  ByteView seal;
};

/// A row of `sync_sources`, and one of `sync_states`; the same rule for their views.
struct QNSyncSourceRow {
  std::uint64_t oid = 0;
  std::uint64_t revision = 0;
  std::uint64_t legacy = 0;
  std::optional<std::string_view> keychainIdentifier;
  std::optional<std::string_view> keychainType;
  std::optional<std::string_view> remoteProfileUUID;
  std::uint64_t remoteProfileTimestamp = 0;
  std::optional<ByteView> remoteProfileAttributes;
  std::optional<std::string_view> localProfileUUID;
  std::uint64_t localProfileTimestamp = 0;
  std::optional<ByteView> localProfileAttributes;
  ByteView statesHash;  // stands in no column
  ByteView seal;
};
struct QNSyncStateRow {
  std::uint64_t kind = 0;
  std::uint64_t objectType = 0;
  std::uint64_t objectID = 0;
  std::optional<std::string_view> objectUUID;
  std::uint64_t syncedAt = 0;
  std::uint64_t sourceTimestamp = 0;
  std::uint64_t localTimestamp = 0;
};

/// A row of `folders`; the same rule for its views. A deleted one has the status 2 and no content.
struct QNFolderRow {
  std::uint64_t oid = 0;
  std::uint64_t status = 0;
  std::uint64_t createdAt = 0;
  std::uint64_t updatedAt = 0;
  std::uint64_t txTimestamp = 0;
  std::uint64_t smart = 0;
  std::uint64_t displayOrder = 0;
  std::optional<std::string_view> parentUUID;
  std::string_view uuid;
  std::optional<ByteView> icon;  // sealed as the overview is
  ByteView seal;
  ByteView overview;
};

/// SHA-256 over an item's wrapped key, details and URLs, these in display order.
std::array<std::uint8_t, 32> bodyHash(ByteView wrappedKey, ByteView details,
                                      std::span<const QNURLRow> urls);
/// SHA-256 over a source's states, by kind and place.
std::array<std::uint8_t, 32> statesHash(std::span<const QNSyncStateRow> states);

/// Makes the seals of one unlocked vault; reuses its memory from row to row. A row's own `seal` is
/// no part of what is sealed.
class QNRowSealer final {
 public:
  explicit QNRowSealer(const QNProfile& vault) : _vault(vault) {}
  /// Nothing if the vault is locked.
  [[nodiscard]] std::optional<QNSeal> seal(const QNItemRow& row);
  [[nodiscard]] std::optional<QNSeal> seal(const QNVaultRow& row);
  [[nodiscard]] std::optional<QNSeal> seal(const QNSyncSourceRow& row);
  [[nodiscard]] std::optional<QNSeal> seal(const QNFolderRow& row);

 private:
  [[nodiscard]] std::optional<QNSeal> sealForm() const;
  const QNProfile& _vault;
  Bytes _form;
};

/// Is the tag the one that stands in the row?
[[nodiscard]] bool sealFits(const std::optional<QNSeal>& seal, ByteView stored);

}  // namespace quillon
