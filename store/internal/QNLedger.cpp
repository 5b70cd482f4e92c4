#include "store/internal/QNLedger.h"

#include <algorithm>

namespace quillon {

namespace {

// Offset  size  content
//      0    16  "quillon ledger 1"
//     16     8  rows
//     24     8  lastTx
//     32     8  vaultRevision
//     40    16  sum
//     56     n  the vault's uuid
constexpr std::string_view kTag = "quillon ledger 1";
constexpr std::size_t kNumbers = 5;
constexpr std::size_t kHeadSize = 16 + 8 * kNumbers;

void append(Bytes& bytes, std::uint64_t value) {
  for (int shift = 56; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<std::uint8_t>(value >> shift));
  }
}

std::uint64_t numberAt(ByteView bytes, std::size_t offset) {
  std::uint64_t value = 0;
  for (const std::uint8_t byte : bytes.subspan(offset, 8)) value = value << 8 | byte;
  return value;
}

}  // namespace

void QNLedger::add(const QNSeal& seal) {
  const std::uint64_t before = sumLow;
  sumLow += numberAt(seal.term, 8);
  sumHigh += numberAt(seal.term, 0) + (sumLow < before ? 1 : 0);
  ++rows;
}

void QNLedger::remove(const QNSeal& seal) {
  const std::uint64_t before = sumLow;
  sumLow -= numberAt(seal.term, 8);
  sumHigh -= numberAt(seal.term, 0) + (sumLow > before ? 1 : 0);
  --rows;
}

std::uint64_t QNLedger::nextTx(std::uint64_t now) {
  lastTx = std::max(now, lastTx + 1);
  return lastTx;
}

std::optional<Bytes> QNLedger::sealed(QNProfile& vault) const {
  Bytes clear = toBytes(bytesOf(kTag));
  for (const std::uint64_t number : {rows, lastTx, vaultRevision, sumHigh, sumLow}) {
    append(clear, number);
  }
  const ByteView uuid = bytesOf(*vault.uuid());
  clear.insert(clear.end(), uuid.begin(), uuid.end());
  return vault.encryptOverview(clear);
}

std::optional<QNLedger> QNLedger::open(QNProfile& vault, ByteView content) {
  const std::optional<Bytes> clear = vault.decryptOverview(content);
  if (!clear || clear->size() < kHeadSize) return std::nullopt;
  const std::string_view text = textOf(*clear);
  if (!text.starts_with(kTag) || text.substr(kHeadSize) != *vault.uuid()) return std::nullopt;
  QNLedger ledger;
  std::size_t offset = kTag.size();
  for (std::uint64_t* number :
       {&ledger.rows, &ledger.lastTx, &ledger.vaultRevision, &ledger.sumHigh, &ledger.sumLow}) {
    *number = numberAt(*clear, offset);
    offset += 8;
  }
  return ledger;
}

bool QNRowCount::add(const std::optional<QNSeal>& seal, ByteView stored) {
  const bool genuine = sealFits(seal, stored);
  if (genuine) {
    _genuine.add(*seal);
  } else {
    ++_others;
  }
  return genuine;
}

bool QNRowCount::agreesWith(const QNLedger& ledger) const {
  if (_genuine.rows + _others != ledger.rows) return false;
  return _others > 0 || (_genuine.sumHigh == ledger.sumHigh && _genuine.sumLow == ledger.sumLow);
}

}  // namespace quillon
