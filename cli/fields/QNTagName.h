#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// The tag as an item takes it; nothing if separators and white space are all that it has.
std::optional<std::string> cleanedTag(std::string_view tag);

/// A tag as a person names it: a path whose parts are separated by "/".
class QNTagName final {
 public:
  explicit QNTagName(std::string_view given);
  /// Is the name compared letter by letter, or case and accents apart and without what an item
  /// leaves out of a tag?
  enum class Match { exact, loose };
  /// Of this tag and of those that lie below it, what stands behind the name: "", or "/" and more.
  /// Nothing for any other tag.
  [[nodiscard]] std::optional<std::string_view> restOf(std::string_view tag, Match match) const;

 private:
  struct Form {
    std::string text;
    std::size_t parts = 0;
  };
  static Form formOf(std::string text);
  Form _exact;
  Form _loose;  // folded
};

}  // namespace quillon
