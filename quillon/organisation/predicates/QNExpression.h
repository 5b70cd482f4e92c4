#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "quillon/organisation/predicates/QNKeyPathSource.h"

namespace quillon {

/// What an expression is; stored in archives.
enum class QNExpressionType : std::int32_t { constantValue = 0, keyPath = 3 };

/// One side of a comparison: a key path, or a constant. A value, always valid.
class QNExpression final {
 public:
  struct Nil {
    friend bool operator==(Nil, Nil) { return true; }
  };
  using List = std::vector<QNExpression>;
  using Content = std::variant<Nil, bool, std::int64_t, double, std::chrono::sys_seconds,
                               std::string, List, QNKeyPath>;

  /// Days that a text form has: years 1 to 9999.
  static constexpr std::int64_t kFirstSecond = -62135596800, kLastSecond = 253402300799;

  QNExpression() = default;  // nil
  static QNExpression boolean(bool value) { return QNExpression(value); }
  static QNExpression integer(std::int64_t value) { return QNExpression(value); }
  /// Nothing if it isn't finite.
  static std::optional<QNExpression> real(double value);
  /// Nothing outside kFirstSecond to kLastSecond.
  static std::optional<QNExpression> date(std::chrono::sys_seconds value);
  /// Nothing if it isn't UTF-8.
  static std::optional<QNExpression> text(std::string_view value);
  /// Nothing if an element is a list or a key path.
  static std::optional<QNExpression> list(List elements);
  /// Nothing if `name` isn't a key path's.
  static std::optional<QNExpression> keyPath(std::string_view name);

  [[nodiscard]] QNExpressionType expressionType() const noexcept;
  /// Null for a constant.
  [[nodiscard]] const QNKeyPath* asKeyPath() const noexcept {
    return std::get_if<QNKeyPath>(&_content);
  }
  [[nodiscard]] const Content& content() const noexcept { return _content; }
  /// The text form. A key path that is a word of the grammar too has "#" before it.
  [[nodiscard]] std::string description() const;
  /// The same with "…" for texts.
  [[nodiscard]] std::string descriptionForLogging() const;
  friend bool operator==(const QNExpression& a, const QNExpression& b);

 private:
  explicit QNExpression(Content content) : _content(std::move(content)) {}
  Content _content;
};

}  // namespace quillon
