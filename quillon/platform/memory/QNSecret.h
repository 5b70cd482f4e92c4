#pragma once

#include <iosfwd>
#include <string_view>
#include <vector>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

/// Text that must not outlive its use: a password, a one-time seed. Wiped when destroyed or
/// outgrown. Moves; copies only by clone(), which shows in review.
class QNSecret final {
 public:
  QNSecret() = default;
  explicit QNSecret(std::string_view text) : _text(text.begin(), text.end()) {}
  QNSecret(QNSecret&&) noexcept = default;
  QNSecret& operator=(QNSecret&&) noexcept = default;
  [[nodiscard]] QNSecret clone() const { return QNSecret(reveal()); }
  /// The text; valid while this object lives and isn't assigned to. Say at each call why it
  /// must leave: the calls of reveal() are the list that an auditor reads.
  [[nodiscard]] std::string_view reveal() const noexcept { return {_text.data(), _text.size()}; }
  [[nodiscard]] bool empty() const noexcept { return _text.empty(); }
  [[nodiscard]] std::size_t size() const noexcept { return _text.size(); }
  /// For text that is built up or read from a stream.
  void append(std::string_view more) { _text.insert(_text.end(), more.begin(), more.end()); }
  void removeLast() noexcept;
  /// Equal text? The time taken depends on the lengths only.
  [[nodiscard]] bool equals(std::string_view other) const noexcept;
  [[nodiscard]] bool equals(const QNSecret& other) const noexcept { return equals(other.reveal()); }

 private:
  // A vector, since a short std::string keeps its bytes inside the object, where no
  // allocator gets to wipe them.
  std::vector<char, QNWipingAllocator<char>> _text;
};

/// Prints "[secret]", so that a secret can't reach a log or a test's output by accident.
std::ostream& operator<<(std::ostream& out, const QNSecret& secret);

}  // namespace quillon
