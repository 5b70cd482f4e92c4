#pragma once

#include <cstdint>

namespace quillon {

/// How much work a question may make before it is given up. A step is about a byte of text looked
/// at, about a nanosecond. One thread's.
class QNPredicateBudget final {
 public:
  /// What one object alone may cost, and what each further one adds.
  static constexpr std::uint64_t kStepsAtFirst = std::uint64_t{1} << 26;
  static constexpr std::uint64_t kStepsPerObject = std::uint64_t{1} << 16;

  /// A comparison, and an element of a list that is compared.
  static constexpr std::uint64_t kStepsPerComparison = 64;

  /// For a question that is asked of so many objects.
  explicit QNPredicateBudget(std::uint64_t objects = 1)
      : _left(kStepsAtFirst + kStepsPerObject * objects) {}
  /// False if there aren't as many left: nothing is left then.
  bool spend(std::uint64_t steps) noexcept {
    const bool enough = steps <= _left;
    _left = enough ? _left - steps : 0;
    return enough;
  }
  [[nodiscard]] std::uint64_t left() const noexcept { return _left; }

 private:
  std::uint64_t _left;
};

}  // namespace quillon
