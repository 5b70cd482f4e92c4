#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <string_view>

#include "quillon/items/QNSearchPredicate.h"

namespace quillon {

/// Tests by the text that they search for, the last few that were asked for: one more puts out the
/// one that was asked for longest ago. Any thread may use it.
class QNPredicateCache final {
 public:
  static constexpr std::size_t kCountLimit = 10;
  using Predicate = std::shared_ptr<const QNSearchPredicate>;

  /// The one that is kept, or one that is made.
  Predicate predicateForString(std::string_view string);
  void removeAllObjects();
  [[nodiscard]] std::size_t count() const;

 private:
  mutable std::mutex _mutex;
  std::list<Predicate> _predicates;  // the last one asked for first
};

}  // namespace quillon
