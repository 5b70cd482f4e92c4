#include <algorithm>
#include <utility>

#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/crypto/internal/QNSegmentCipher.h"

namespace quillon {
namespace {

constexpr std::string_view kNoKey = "the key holds no key data";
constexpr std::string_view kNoEnds = "no reader or writer";
constexpr std::string_view kReadFailed = "the reader failed";
constexpr std::string_view kWriteFailed = "the writer stopped";

// What a reader gives, cut into pieces of one size. It reads one piece ahead, since a piece must
// be known to be the last before it is sealed or opened; and once more behind a short piece, since
// a reader that stopped short in the middle, as one over a pipe may, would cut the text.
class Pieces final {
 public:
  Pieces(const QNAESKey::Reader& reader, std::size_t size) : _reader(reader), _size(size) {}
  // The first call reads the first piece. False if the reader fails, or gives more behind a short
  // piece.
  [[nodiscard]] bool advance() {
    if (!_started && !readAhead()) return false;
    _started = true;
    std::swap(_piece, _ahead);
    _ahead.clear();
    return readAhead() && (_piece.size() == _size || _ahead.empty());
  }
  [[nodiscard]] ByteView piece() const noexcept { return _piece; }
  [[nodiscard]] QNSegmentPlace place() const noexcept {
    return _ahead.empty() ? QNSegmentPlace::last : QNSegmentPlace::inside;
  }

 private:
  bool readAhead() {
    auto bytes = _reader(_size);
    if (!bytes || bytes->size() > _size) return false;
    _ahead = std::move(*bytes);
    return true;
  }

  const QNAESKey::Reader& _reader;
  std::size_t _size;
  bool _started = false;
  Bytes _piece;
  Bytes _ahead;
};

QNResult<QNDone> seal(const QNAESKey& key, const QNAESKey::Reader& reader,
                      const QNAESKey::Writer& writer) {
  if (!reader || !writer) return QNError::unreadable(kNoEnds);
  auto message = QNSegmentCipher::forNewMessage(key);
  if (!message) return QNError::unreadable(kNoKey);
  if (!writer(message->head())) return QNError::unreadable(kWriteFailed);
  Pieces plain(reader, QNAESKey::kSegmentSize);
  Bytes sealed;
  do {
    if (!plain.advance()) return QNError::unreadable(kReadFailed);
    sealed.resize(plain.piece().size() + kGCMTagSize);
    if (!message->seal(plain.piece(), plain.place(), sealed)) {
      return QNError::unreadable("a segment can't be sealed");
    }
    if (!writer(sealed)) return QNError::unreadable(kWriteFailed);
  } while (plain.place() != QNSegmentPlace::last);
  return QNDone{};
}

QNResult<QNDone> open(const QNAESKey& key, const QNAESKey::Reader& reader,
                      const QNAESKey::Writer& writer) {
  if (!reader || !writer) return QNError::unreadable(kNoEnds);
  if (key.rawKey() == nullptr) return QNError::unreadable(kNoKey);
  const auto head = reader(QNSegmentCipher::kHeadSize);
  if (!head) return QNError::unreadable(kReadFailed);
  auto message = QNSegmentCipher::forHead(key, *head);
  if (!message) return QNError::unreadable("the data doesn't begin as sealed data does");
  Pieces sealed(reader, QNSegmentCipher::kSealedSegmentSize);
  Bytes plain;
  do {
    if (!sealed.advance()) return QNError::unreadable(kReadFailed);
    const ByteView piece = sealed.piece();
    plain.resize(piece.size() - std::min(piece.size(), kGCMTagSize));
    if (!message->open(piece, sealed.place(), plain)) {
      return QNError::unreadable("wrong key or damaged data");
    }
    if (!plain.empty() && !writer(plain)) return QNError::unreadable(kWriteFailed);
  } while (sealed.place() != QNSegmentPlace::last);
  return QNDone{};
}

bool reported(const QNResult<QNDone>& result, QNError* error) {
  if (!result) setError(error, result.error());
  return result.ok();
}

}  // namespace

bool QNAESKey::decryptDataWithReader(const Reader& reader, const Writer& writer,
                                     QNError* error) const {
  return reported(open(*this, reader, writer), error);
}

bool QNAESKey::encryptDataWithReader(const Reader& reader, const Writer& writer,
                                     QNError* error) const {
  return reported(seal(*this, reader, writer), error);
}

}  // namespace quillon
