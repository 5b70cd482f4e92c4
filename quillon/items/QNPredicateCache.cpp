#include "quillon/items/QNPredicateCache.h"

#include <algorithm>

namespace quillon {

QNPredicateCache::Predicate QNPredicateCache::predicateForString(std::string_view string) {
  const std::lock_guard lock(_mutex);
  const auto found =
      std::find_if(_predicates.begin(), _predicates.end(),
                   [string](const Predicate& kept) { return kept->searched() == string; });
  if (found != _predicates.end()) {
    _predicates.splice(_predicates.begin(), _predicates, found);
    return *found;
  }
  _predicates.push_front(std::make_shared<const QNSearchPredicate>(string));
  if (_predicates.size() > kCountLimit) _predicates.pop_back();
  return _predicates.front();
}

void QNPredicateCache::removeAllObjects() {
  const std::lock_guard lock(_mutex);
  _predicates.clear();
}

std::size_t QNPredicateCache::count() const {
  const std::lock_guard lock(_mutex);
  return _predicates.size();
}

}  // namespace quillon
