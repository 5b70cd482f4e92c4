#pragma once

#include <vector>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// The elements of a stored list that no object was made of, with their places, so that the list
/// is written with them again. Places are those in the list as it was read: a list that has
/// become shorter has them at its end.
class QNForeignElements final {
 public:
  /// An element never comes before one that was added earlier, whatever its place. Copied into the
  /// wiping resource.
  void add(std::size_t place, const Json& element);
  [[nodiscard]] bool empty() const { return _elements.empty(); }
  [[nodiscard]] std::size_t count() const { return _elements.size(); }
  void clear() { _elements.clear(); }

  /// Goes through the list to be written, in order: own(0) to own(ownCount - 1), and foreign(Json)
  /// in the places between. `own` answers whether it made an element.
  template <class Own, class Foreign>
  void interleave(std::size_t ownCount, const Own& own, const Foreign& foreign) const {
    std::size_t place = 0;
    std::size_t next = 0;
    const auto emitForeign = [&](bool all) {
      for (; next < _elements.size() && (all || _elements[next].place <= place); ++next, ++place) {
        foreign(_elements[next].element);
      }
    };
    for (std::size_t i = 0; i < ownCount; ++i) {
      emitForeign(false);
      if (own(i)) ++place;
    }
    emitForeign(true);
  }

 private:
  struct Element {
    std::size_t place;
    Json element;
  };
  std::vector<Element> _elements;
};

}  // namespace quillon
