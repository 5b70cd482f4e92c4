#pragma once
// The stored form of encrypt(): a head, then the plain text in sealed segments.
//
//   offset  size  meaning
//   0       4     magic "QNE1"
//   4       12    random: the message key is derived from it
//   16      7     random: the beginning of every segment's nonce
//   23      5     random: authenticated with every segment
//   28      n+16  segments, each of n plain bytes sealed and its tag; n is 65,536 but in the last
//
// The nonce of a segment is bytes 16 to 22 of the head, its number from 0 (4 bytes, big-endian)
// and 1 for the last segment, else 0. Its associated data is bytes 0 to 3 and 23 to 27 of the head.
// The last segment holds 1 to 65,536 bytes; 0 only where the whole text is empty.

#include <array>
#include <cstdint>
#include <optional>

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/crypto/internal/QNAESGCM.h"

namespace quillon {

enum class QNSegmentPlace : std::uint8_t { inside = 0, last = 1 };

/// One message: its segments are sealed or opened in their order, each once.
class QNSegmentCipher final {
 public:
  static constexpr std::size_t kHeadSize = 28;
  static constexpr std::size_t kSealedSegmentSize = QNAESKey::kSegmentSize + kGCMTagSize;

  /// Draws the head of a new message. Nothing for the key of absent data.
  static std::optional<QNSegmentCipher> forNewMessage(const QNAESKey& key);
  /// Nothing for the key of absent data, or a head that isn't 28 bytes with our magic.
  static std::optional<QNSegmentCipher> forHead(const QNAESKey& key, ByteView head);

  /// For tests: goes on as if that many segments had passed.
  void skipTo(std::uint64_t segment) noexcept { _next = segment; }
  [[nodiscard]] ByteView head() const noexcept { return _head; }
  /// Seals the next segment into `out`, plain.size() + 16 bytes. False for a size that its place
  /// doesn't allow, or after the last segment.
  [[nodiscard]] bool seal(ByteView plain, QNSegmentPlace place, std::span<std::uint8_t> out);
  /// Opens the next segment into `out`, sealed.size() - 16 bytes. False, with nothing of the text
  /// in `out`, if it isn't the very segment that was sealed in this place.
  [[nodiscard]] bool open(ByteView sealed, QNSegmentPlace place, std::span<std::uint8_t> out);

 private:
  using Head = std::array<std::uint8_t, kHeadSize>;
  QNSegmentCipher(const Head& head, QNMessageKey&& key);
  static std::optional<QNSegmentCipher> make(const QNAESKey& key, const Head& head);
  bool beginSegment(std::size_t plainSize, QNSegmentPlace place);

  Head _head;
  QNMessageKey _key;
  std::array<std::uint8_t, 9> _associated;
  std::array<std::uint8_t, 12> _nonce;  // of the segment at hand
  std::uint64_t _next = 0;              // the number of the next segment
  bool _ended = false;
};

}  // namespace quillon
