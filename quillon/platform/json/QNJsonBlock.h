#pragma once

#include <boost/json.hpp>
#include <optional>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// Memory for one JSON value, in a piece that is just large enough: for what is kept by the
/// hundred thousand and seldom changed. Half the memory of many small pieces, and quicker. A
/// change works as in any memory; what it replaces is wiped at once, and reused at the end only.
/// Not locked. Must outlive the value.
class QNJsonBlock final : public boost::json::memory_resource {
 public:
  QNJsonBlock() = default;
  ~QNJsonBlock() override { release(); }
  QNJsonBlock(const QNJsonBlock&) = delete;
  QNJsonBlock& operator=(const QNJsonBlock&) = delete;
  /// Gives everything back, wiped, and takes a piece of that size. More is taken in steps.
  void reset(std::size_t size);
  void release() noexcept;
  /// Bytes handed out so far.
  [[nodiscard]] std::size_t used() const noexcept;
  /// Bytes taken from the heap so far.
  [[nodiscard]] std::size_t size() const noexcept;

 private:
  struct Piece;
  void takePiece(std::size_t size);
  void* do_allocate(std::size_t size, std::size_t align) override;
  void do_deallocate(void* place, std::size_t size, std::size_t align) override;
  bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }

  Piece* _latest = nullptr;
};

/// Reads text that must be an object into `block`, in which nothing may be left that is in use.
/// Otherwise as mr_objectFromJSONDataWithError().
std::optional<JsonObject> mr_compactObjectFromJSONDataWithError(ByteView data, QNJsonBlock& block,
                                                                QNError* error = nullptr);

}  // namespace quillon
