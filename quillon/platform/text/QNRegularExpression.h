#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// A regular expression in ICU's syntax, tried on whole texts. Never changed: any thread may match.
class QNRegularExpression final {
 public:
  /// Longest expression, in bytes; the engine's time for one text, in its own units of some
  /// milliseconds; and the memory in which it remembers where to try again.
  static constexpr std::size_t kMaxBytes = 4096;
  static constexpr std::int32_t kMaxTime = 500;
  static constexpr std::int32_t kMaxStackBytes = 4 << 20;
  /// How much work lies between two calls of `spend`.
  static constexpr std::uint64_t kStepsBetweenCalls = 10'000;

  enum class Match { no, yes, tooCostly };

  /// Error 114 of QNErrorDomain for a text that is no expression, or too long.
  static QNResult<std::shared_ptr<const QNRegularExpression>> compiled(std::string_view expression,
                                                                       bool ignoringCase);
  ~QNRegularExpression();
  QNRegularExpression(const QNRegularExpression&) = delete;
  QNRegularExpression& operator=(const QNRegularExpression&) = delete;

  /// Is all of `text` such as the expression says? `spend` is told of work as it is done, and ends
  /// it with false.
  [[nodiscard]] Match matches(std::string_view text,
                              const std::function<bool(std::uint64_t steps)>& spend) const;

 private:
  struct Pattern;
  explicit QNRegularExpression(std::unique_ptr<const Pattern> pattern);
  std::unique_ptr<const Pattern> _pattern;
};

}  // namespace quillon
