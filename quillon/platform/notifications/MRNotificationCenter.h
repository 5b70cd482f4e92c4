#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace quillon {

/// Calls observers by notification name, synchronously, on the posting thread, in the order in
/// which they were added. An observer may add and remove observers, itself included.
/// It must not throw: what posts is in the middle of a change.
class MRNotificationCenter final {
 public:
  /// `object` is the address of what posts; it is valid during the call only.
  using Observer = std::function<void(std::string_view name, const void* object)>;
  using Token = std::uint64_t;

  static MRNotificationCenter& defaultCenter();

  /// An empty name observes every notification; a null object the posts of every object.
  Token addObserver(std::string_view name, const void* object, Observer observer);
  void removeObserver(Token token);
  void postNotificationName(std::string_view name, const void* object);

 private:
  struct Entry {
    std::string name;
    const void* object;
    Observer observer;
  };
  std::mutex _mutex;
  Token _next = 1;
  std::map<Token, Entry> _entries;
};

}  // namespace quillon
