#pragma once
// The table `sync_states`: docs/formats-store.md.

#include <array>
#include <cstdint>
#include <deque>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/internal/QNDatabase.h"
#include "store/internal/QNRowSeal.h"

namespace quillon {

/// The states of one sync source as they stand in its store, in the order in which they are sealed.
/// Whether they are genuine tells the source's seal.
class QNSyncStates final {
 public:
  /// Of items, folders and attachments: 1, 2, 3 in a row.
  static constexpr std::size_t kKinds = 3;
  static constexpr std::uint64_t kKindOfItems = 1;

  QNSyncStates() = default;
  QNSyncStates(QNSyncStates&&) noexcept = default;
  QNSyncStates& operator=(QNSyncStates&&) noexcept = default;
  QNSyncStates(const QNSyncStates&) = delete;  // the rows look into it
  QNSyncStates& operator=(const QNSyncStates&) = delete;

  static QNSyncStates read(QNDatabase& file, std::uint64_t sourceOid);
  /// Writes `rows` in place of all that the source has.
  static void writeAll(QNDatabase& file, std::uint64_t sourceOid,
                       std::span<const QNSyncStateRow> rows);

  /// Valid until the next setItemState(). Texts as long as this object, or what it was moved to.
  [[nodiscard]] std::span<const QNSyncStateRow> rows() const { return _rows; }
  [[nodiscard]] std::array<std::uint8_t, 32> hash() const { return statesHash(_rows); }
  /// Of two with one uuid the later; null if there is none. Valid as rows() is.
  [[nodiscard]] const QNSyncStateRow* itemState(std::string_view uuid) const;
  /// Takes the place of the state of that uuid, or stands behind those of the other items. Written
  /// by writeChanges(), and only what was changed.
  void setItemState(std::string_view uuid, QNSyncStateRow state);
  [[nodiscard]] bool hasChanges() const { return !_changed.empty(); }
  void writeChanges(QNDatabase& file, std::uint64_t sourceOid);

 private:
  std::string_view keep(std::string_view uuid) { return _uuids.emplace_back(uuid); }

  std::vector<QNSyncStateRow> _rows;  // items first
  std::vector<std::uint64_t> _places;
  std::size_t _items = 0;
  std::unordered_map<std::string_view, std::size_t> _itemIndex;
  std::deque<std::string> _uuids;  // of all rows
  std::set<std::size_t> _changed;
};

}  // namespace quillon
