#include "store/internal/QNLedger.h"

#include <algorithm>
#include <array>
#include <span>

namespace quillon {

namespace {

// Offset  size  content
//      0    16  "quillon ledger 2"
//     16     8  rows of items
//     24     8  lastTx
//     32     8  vaultRevision
//     40    16  sum of the items' terms
//     56     8  rows of folders
//     64    16  sum of the folders' terms
//     80     n  the vault's uuid
//
// Before there were folders: "quillon ledger 1", and the uuid at 56.
constexpr std::string_view kTag = "quillon ledger 2";
constexpr std::string_view kTagWithoutFolders = "quillon ledger 1";
static_assert(kTag.size() == kTagWithoutFolders.size());

/// In the order of the form.
std::array<std::uint64_t*, 8> numbersOf(QNLedger& ledger) {
  return {&ledger.items.rows, &ledger.lastTx,       &ledger.vaultRevision, &ledger.items.high,
          &ledger.items.low,  &ledger.folders.rows, &ledger.folders.high,  &ledger.folders.low};
}
constexpr std::size_t kNumbersWithoutFolders = 5;

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

void QNRowSum::add(const QNSeal& seal) {
  const std::uint64_t before = low;
  low += numberAt(seal.term, 8);
  high += numberAt(seal.term, 0) + (low < before ? 1 : 0);
  ++rows;
}

void QNRowSum::remove(const QNSeal& seal) {
  const std::uint64_t before = low;
  low -= numberAt(seal.term, 8);
  high -= numberAt(seal.term, 0) + (low > before ? 1 : 0);
  --rows;
}

std::uint64_t QNLedger::nextTx(std::uint64_t now) {
  lastTx = std::max(now, lastTx + 1);
  return lastTx;
}

std::optional<Bytes> QNLedger::sealed(QNProfile& vault) const {
  Bytes clear = toBytes(bytesOf(kTag));
  QNLedger written = *this;
  for (const std::uint64_t* number : numbersOf(written)) append(clear, *number);
  const ByteView uuid = bytesOf(*vault.uuid());
  clear.insert(clear.end(), uuid.begin(), uuid.end());
  return vault.encryptOverview(clear);
}

std::optional<QNLedger> QNLedger::open(QNProfile& vault, ByteView content) {
  const std::optional<Bytes> clear = vault.decryptOverview(content);
  if (!clear) return std::nullopt;
  const std::string_view text = textOf(*clear);
  const bool hasFolders = text.starts_with(kTag);
  if (!hasFolders && !text.starts_with(kTagWithoutFolders)) return std::nullopt;
  QNLedger ledger;
  const auto all = numbersOf(ledger);
  const auto numbers = std::span(all).first(hasFolders ? all.size() : kNumbersWithoutFolders);
  const std::size_t headSize = kTag.size() + 8 * numbers.size();
  if (text.size() < headSize || text.substr(headSize) != *vault.uuid()) return std::nullopt;
  std::size_t offset = kTag.size();
  for (std::uint64_t* number : numbers) {
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

bool QNRowCount::agreesWith(const QNRowSum& sum) const {
  if (_genuine.rows + _others != sum.rows) return false;
  return _others > 0 || (_genuine.high == sum.high && _genuine.low == sum.low);
}

}  // namespace quillon
