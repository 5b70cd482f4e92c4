#include "quillon/platform/notifications/MRNotificationCenter.h"

#include <vector>

namespace quillon {

MRNotificationCenter& MRNotificationCenter::defaultCenter() {
  static MRNotificationCenter* const center = new MRNotificationCenter;
  return *center;
}

MRNotificationCenter::Token MRNotificationCenter::addObserver(std::string_view name,
                                                              const void* object,
                                                              Observer observer) {
  const std::lock_guard guard(_mutex);
  const Token token = _next++;
  _entries.emplace(token, Entry{std::string(name), object, std::move(observer)});
  return token;
}

void MRNotificationCenter::removeObserver(Token token) {
  const std::lock_guard guard(_mutex);
  _entries.erase(token);
}

void MRNotificationCenter::postNotificationName(std::string_view name, const void* object) {
  std::vector<Token> matching;
  {
    const std::lock_guard guard(_mutex);
    for (const auto& [token, entry] : _entries) {
      const bool named = entry.name.empty() || entry.name == name;
      const bool of = entry.object == nullptr || entry.object == object;
      if (named && of) matching.push_back(token);
    }
  }
  for (const Token token : matching) {
    Observer observer;
    {
      // Looked up again: an earlier observer may have removed this one.
      const std::lock_guard guard(_mutex);
      const auto found = _entries.find(token);
      if (found == _entries.end()) continue;
      observer = found->second.observer;
    }
    observer(name, object);
  }
}

}  // namespace quillon
