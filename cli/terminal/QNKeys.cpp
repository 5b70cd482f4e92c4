#include "cli/terminal/QNKeys.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <array>

namespace quillon {
namespace {

constexpr char kEscape = '\x1b';
// A sequence is never longer: what pretends to be is dropped.
constexpr std::size_t kMaxSequence = 32;

struct ControlKey {
  char byte;
  QNKey key;
};
constexpr std::array<ControlKey, 14> kControls = {{
    {'\r', QNKey::enter},
    {'\n', QNKey::enter},
    {'\x03', QNKey::leave},
    {'\x07', QNKey::leave},
    {'\x04', QNKey::endOfInput},
    {'\x1a', QNKey::suspend},
    {'\x0e', QNKey::down},  // Ctrl-N
    {'\x10', QNKey::up},    // Ctrl-P
    {'\x01', QNKey::home},  // Ctrl-A
    {'\x05', QNKey::end},   // Ctrl-E
    {'\x08', QNKey::erase},
    {'\x7f', QNKey::erase},
    {'\x17', QNKey::eraseWord},
    {'\x15', QNKey::eraseAll},
}};

// What stands behind "ESC [" or "ESC O".
struct SequenceKey {
  std::string_view text;
  QNKey key;
};
constexpr std::array<SequenceKey, 12> kSequences = {{
    {"A", QNKey::up},
    {"B", QNKey::down},
    {"H", QNKey::home},
    {"F", QNKey::end},
    {"1~", QNKey::home},
    {"4~", QNKey::end},
    {"7~", QNKey::home},
    {"8~", QNKey::end},
    {"5~", QNKey::pageUp},
    {"6~", QNKey::pageDown},
    {"3~", QNKey::unknown},
    {"2~", QNKey::unknown},
}};

bool endsSequence(char c) {
  return c >= 0x40 && c <= 0x7e;
}

QNKey keyOfSequence(std::string_view text) {
  const auto* const found =
      std::find_if(kSequences.begin(), kSequences.end(),
                   [&](const SequenceKey& sequence) { return sequence.text == text; });
  return found == kSequences.end() ? QNKey::unknown : found->key;
}

}  // namespace

QNKeyPress QNKeyReader::taken(std::size_t count, QNKey key) {
  QNKeyPress press{key, key == QNKey::text ? _bytes.substr(0, count) : std::string()};
  _bytes.erase(0, count);
  return press;
}

std::optional<QNKeyPress> QNKeyReader::take() {
  if (_bytes.empty()) return std::nullopt;
  if (_bytes.front() == kEscape) return takeSequence();
  const auto* const control =
      std::find_if(kControls.begin(), kControls.end(),
                   [this](const ControlKey& known) { return known.byte == _bytes.front(); });
  if (control != kControls.end()) return taken(1, control->key);
  const bool isControl = static_cast<unsigned char>(_bytes.front()) < 0x20;
  return isControl ? taken(1, QNKey::unknown) : takeText();
}

std::optional<QNKeyPress> QNKeyReader::takeSequence() {
  if (_bytes.size() < 2) return std::nullopt;
  // Alt with a key; two Esc are two.
  if (_bytes[1] != '[' && _bytes[1] != 'O') {
    return _bytes[1] == kEscape ? taken(1, QNKey::leave) : taken(2, QNKey::unknown);
  }
  const auto last = std::find_if(_bytes.begin() + 2, _bytes.end(), endsSequence);
  if (last == _bytes.end()) {
    if (_bytes.size() > kMaxSequence) return taken(_bytes.size(), QNKey::unknown);
    return std::nullopt;
  }
  const auto size = static_cast<std::size_t>(last - _bytes.begin()) + 1;
  return taken(size, keyOfSequence(std::string_view(_bytes).substr(2, size - 2)));
}

std::optional<QNKeyPress> QNKeyReader::takeText() {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(_bytes.data());
  const auto wanted = static_cast<std::size_t>(U8_COUNT_TRAIL_BYTES(bytes[0])) + 1;
  std::size_t size = 0;
  UChar32 c = 0;
  U8_NEXT(bytes, size, _bytes.size(), c);
  if (c >= 0) return taken(size, QNKey::text);
  // A character that hasn't come whole; anything else is no text.
  if (_bytes.size() < wanted && size == _bytes.size()) return std::nullopt;
  return taken(size, QNKey::unknown);
}

QNKeyPress QNKeyReader::takeWaiting() {
  const bool isEscape = _bytes.size() == 1 && _bytes.front() == kEscape;
  return taken(_bytes.size(), isEscape ? QNKey::leave : QNKey::unknown);
}

}  // namespace quillon
