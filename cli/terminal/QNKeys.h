#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

enum class QNKey {
  text,
  enter,
  leave,    // Esc, Ctrl-C or Ctrl-G
  suspend,  // Ctrl-Z
  up,
  down,
  pageUp,
  pageDown,
  home,
  end,
  erase,       // the character before the cursor
  eraseWord,   // Ctrl-W
  eraseAll,    // Ctrl-U
  endOfInput,  // Ctrl-D
  unknown,
};

struct QNKeyPress {
  QNKey key = QNKey::unknown;
  std::string text;  // of QNKey::text: one character
};

/// Makes keys of the bytes that a terminal sends.
class QNKeyReader final {
 public:
  void add(std::string_view bytes) { _bytes.append(bytes); }
  /// The next whole key; nothing if the bytes so far are none.
  std::optional<QNKeyPress> take();
  /// Bytes wait for more: an Esc that began a sequence, or was pressed. A terminal sends the rest
  /// of a sequence at once.
  [[nodiscard]] bool isWaiting() const { return !_bytes.empty(); }
  /// Nothing came: what waits is a key of its own.
  QNKeyPress takeWaiting();

 private:
  std::optional<QNKeyPress> takeSequence();
  std::optional<QNKeyPress> takeText();
  QNKeyPress taken(std::size_t count, QNKey key);
  std::string _bytes;
};

}  // namespace quillon
