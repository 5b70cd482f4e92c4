#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace quillon {

/// Values by uuid. Who asks in the order in which they were added, as tables of one vault lie
/// beside each other, gets each without a search; the first other question makes an index of all.
template <class Value>
class QNUUIDTable final {
 public:
  struct Entry {
    std::string uuid;
    Value value;
  };

  /// The uuid must not be there yet. Entries stay where they are as long as the table, or what it
  /// is moved to, lives.
  Entry& add(std::string_view uuid, Value value) {
    Entry& added = _entries.emplace_back(Entry{std::string(uuid), std::move(value)});
    if (_isIndexed) _index.emplace(added.uuid, _entries.size() - 1);
    return added;
  }
  /// Null if there is none.
  [[nodiscard]] Value* find(std::string_view uuid) {
    if (_next >= _entries.size()) _next = 0;
    if (_next >= _entries.size()) return nullptr;
    if (_entries[_next].uuid != uuid) {
      makeIndex();
      const auto found = _index.find(uuid);
      if (found == _index.end()) return nullptr;
      _next = found->second;
    }
    return &_entries[_next++].value;
  }
  [[nodiscard]] std::size_t size() const { return _entries.size(); }
  [[nodiscard]] auto begin() const { return _entries.begin(); }
  [[nodiscard]] auto end() const { return _entries.end(); }

 private:
  void makeIndex() {
    if (std::exchange(_isIndexed, true)) return;
    _index.reserve(_entries.size());
    for (std::size_t i = 0; i < _entries.size(); ++i) _index.emplace(_entries[i].uuid, i);
  }

  std::deque<Entry> _entries;
  std::unordered_map<std::string_view, std::size_t> _index;
  bool _isIndexed = false;
  std::size_t _next = 0;  // behind the last one that was found
};

}  // namespace quillon
