#include "quillon/platform/json/QNJsonBlock.h"

#include <algorithm>
#include <new>

#include "quillon/platform/json/internal/QNJsonReader.h"

namespace quillon {
namespace {

// Each place is a multiple of this, so that a copy needs what its source needed, in any order.
constexpr std::size_t kGrain = 8;
constexpr std::size_t kStep = 256;
// What a parsed object takes for each byte of its text, about; scratch memory grows if it's more.
constexpr std::size_t kParsedPerText = 3;
constexpr std::size_t kUsualText = 4096;

constexpr std::size_t roundedUp(std::size_t size, std::size_t to) noexcept {
  return (size + to - 1) / to * to;
}

// What a request takes wherever it comes to stand.
constexpr std::size_t taken(std::size_t size, std::size_t align) noexcept {
  return roundedUp(size, kGrain) + (align > kGrain ? align - kGrain : 0);
}

}  // namespace

// The bytes stand behind it.
struct alignas(kGrain) QNJsonBlock::Piece {
  Piece* before;
  std::size_t size;
  std::size_t used = 0;
  [[nodiscard]] unsigned char* bytes() noexcept {
    return reinterpret_cast<unsigned char*>(this + 1);
  }
};

void QNJsonBlock::takePiece(std::size_t size) {
  _latest = new (::operator new(sizeof(Piece) + size)) Piece{_latest, size};
}

void QNJsonBlock::reset(std::size_t size) {
  release();
  takePiece(roundedUp(size, kGrain));
}

void QNJsonBlock::release() noexcept {
  while (_latest != nullptr) {
    Piece* const piece = std::exchange(_latest, _latest->before);
    releaseWiped(piece, sizeof(Piece) + piece->size);
  }
}

std::size_t QNJsonBlock::used() const noexcept {
  std::size_t sum = 0;
  for (const Piece* piece = _latest; piece != nullptr; piece = piece->before) sum += piece->used;
  return sum;
}

std::size_t QNJsonBlock::size() const noexcept {
  std::size_t sum = 0;
  for (const Piece* piece = _latest; piece != nullptr; piece = piece->before) sum += piece->size;
  return sum;
}

void* QNJsonBlock::do_allocate(std::size_t bytes, std::size_t align) {
  const std::size_t wanted = taken(bytes, align);
  if (_latest == nullptr || _latest->size - _latest->used < wanted) {
    takePiece(std::max({wanted, kStep, size() / 2}));
  }
  const auto place = reinterpret_cast<std::uintptr_t>(_latest->bytes() + _latest->used);
  _latest->used += wanted;
  return reinterpret_cast<void*>(roundedUp(place, align));
}

// The last place given out can be given out again: a text that changes often takes no more. Where
// a wide alignment left a gap before or behind the place, its end doesn't tell whether it's the
// last.
void QNJsonBlock::do_deallocate(void* place, std::size_t size, std::size_t align) {
  wipe(place, size);
  const std::size_t freed = taken(size, align);
  if (align <= kGrain && _latest->used >= freed &&
      place == _latest->bytes() + _latest->used - freed) {
    _latest->used -= freed;
  }
}

// Read into scratch memory first, which tells the size; copied to where it stays.
std::optional<JsonObject> mr_compactObjectFromJSONDataWithError(ByteView data, QNJsonBlock& block,
                                                                QNError* error) {
  QNJsonBlock scratch;
  scratch.reset(kParsedPerText * std::min(data.size(), kUsualText));
  const auto value = readJson(data, &scratch, error);
  if (!value) return std::nullopt;
  if (!value->is_object()) {
    setError(error, QNError::unreadable("the JSON text isn't an object"));
    return std::nullopt;
  }
  block.reset(scratch.used());
  return JsonObject(value->get_object(), &block);
}

}  // namespace quillon
