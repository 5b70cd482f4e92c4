#pragma once

#include <cstdint>
#include <string_view>

#include "quillon/platform/json/QNJson.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// The test "holds this text", without regard to case and diacritics, made ready to be asked of
/// many texts. What is told apart and what isn't: foldedForSearch(). Every text holds the empty
/// one. A value that never changes: any thread may ask it.
class QNSearchPredicate final {
 public:
  enum class Place { anywhere, beginning };
  explicit QNSearchPredicate(std::string_view searched, Place place = Place::anywhere);

  [[nodiscard]] bool matches(std::string_view text) const;
  /// Of a text that is folded already, as secretFoldedForSearch() gives it.
  [[nodiscard]] bool matchesFolded(std::string_view folded) const noexcept;
  /// What is searched for, as it was given.
  [[nodiscard]] std::string_view searched() const noexcept { return _searched.reveal(); }

 private:
  QNSecret _searched;  // people paste passwords into search fields
  QNSecret _folded;
  Place _place;
};

/// Does a stored value hold the text: a list or an object in one of its values at any depth, a
/// number in its digits? Names of members aren't looked at. False for nothing, and for a JSON null.
[[nodiscard]] bool objectMatchesLowercaseString(const Json* object, std::string_view string);
[[nodiscard]] bool objectMatches(const Json* object, const QNSearchPredicate& test);

}  // namespace quillon
