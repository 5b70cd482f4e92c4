#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "store/internal/QNRowSeal.h"

namespace quillon {

/// What rows add up to: their number, and the sum of their terms modulo 2^128, high half first.
struct QNRowSum {
  std::uint64_t rows = 0;
  std::uint64_t high = 0;
  std::uint64_t low = 0;

  void add(const QNSeal& seal);
  void remove(const QNSeal& seal);
};

/// What a vault's rows must add up to: so a row that was taken away, added, or put back from an
/// older state is noticed, which its own seal can't tell. A save changes it by the terms of the
/// old and the new row. Stored encrypted and authenticated under the vault's overview key, bound
/// to the vault: the sum has to stay secret, as the terms do.
struct QNLedger {
  QNRowSum items;  // tombstones with them
  QNRowSum folders;
  /// The highest tx_timestamp given to a row so far.
  std::uint64_t lastTx = 0;
  /// The revision of the vault's own row.
  std::uint64_t vaultRevision = 0;

  /// A revision for the next row: the present second, or one more than the last if that is later.
  std::uint64_t nextTx(std::uint64_t now);

  /// Nothing if the vault is locked.
  [[nodiscard]] std::optional<Bytes> sealed(QNProfile& vault) const;
  /// Nothing if it isn't a ledger of this vault.
  static std::optional<QNLedger> open(QNProfile& vault, ByteView content);
};

/// What rows that are read add up to.
class QNRowCount final {
 public:
  /// True if the seal is the one that stands in the row.
  bool add(const std::optional<QNSeal>& seal, ByteView stored);
  /// Rows whose seal doesn't fit leave only their number to be compared.
  [[nodiscard]] bool agreesWith(const QNRowSum& sum) const;

 private:
  QNRowSum _genuine;
  std::uint64_t _others = 0;
};

}  // namespace quillon
