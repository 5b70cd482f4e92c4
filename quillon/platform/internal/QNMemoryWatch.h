#pragma once
// For tests: does a secret stay behind in memory that nobody owns any more?
// The program that links QNMemoryWatch.cpp has its operator new and delete replaced by ones
// that look at each block before it is freed.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quillon {

/// Counts the heap blocks that are freed with `needle` in them while this lives. Up to eight
/// watches at a time, and any thread may free. The needle's own copy isn't counted.
class QNFreedBlockWatch final {
 public:
  explicit QNFreedBlockWatch(std::string_view needle);
  ~QNFreedBlockWatch();
  QNFreedBlockWatch(const QNFreedBlockWatch&) = delete;
  QNFreedBlockWatch& operator=(const QNFreedBlockWatch&) = delete;
  [[nodiscard]] std::size_t found() const noexcept;

 private:
  std::size_t _slot = 0;
};

/// Runs `work` twice, the second time on a thread with a stack of its own, and answers how often
/// `needle` stands in that stack afterwards. `work` must not copy the needle into locals of its
/// own.
std::size_t remainsOnStack(std::string_view needle, const std::function<void()>& work);

}  // namespace quillon
