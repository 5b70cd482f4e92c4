#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace quillon {

/// Error domains. The codes are stored in other people's logs and scripts; they never change.
inline constexpr std::string_view QNErrorDomain = "QNErrorDomain";
inline constexpr std::string_view MRErrorDomain = "MRErrorDomain";
inline constexpr std::string_view H9ClientErrorDomain = "H9ClientErrorDomain";
inline constexpr std::string_view latticeErrorDomain = "latticeErrorDomain";

/// Data that can't be read or serialised, in QNErrorDomain and MRErrorDomain.
inline constexpr std::int64_t kErrorUnreadableData = 114;

/// Why something failed: names, sizes and codes, never titles, addresses or secrets.
struct QNError {
  std::string domain;
  std::int64_t code = 0;
  std::string message;

  /// "DOMAIN CODE", the form that logs show.
  [[nodiscard]] std::string domainCodeString() const;
  /// The same error with "WHERE: " before its message.
  [[nodiscard]] QNError within(std::string_view where) const;
  /// Code 114 of MRErrorDomain.
  static QNError unreadable(std::string_view message);
};

/// Stores `error` in an error slot that may be absent.
inline void setError(QNError* slot, QNError error) {
  if (slot != nullptr) *slot = std::move(error);
}

/// A value or the reason why there is none.
template <class T>
class [[nodiscard]] QNResult final {
 public:
  QNResult(T value) : _content(std::move(value)) {}        // NOLINT: `return value;` reads best
  QNResult(QNError error) : _content(std::move(error)) {}  // NOLINT: `return error;` reads best
  [[nodiscard]] bool ok() const noexcept { return _content.index() == 0; }
  explicit operator bool() const noexcept { return ok(); }
  /// Only if ok().
  [[nodiscard]] T& value() & { return std::get<0>(_content); }
  [[nodiscard]] const T& value() const& { return std::get<0>(_content); }
  [[nodiscard]] T&& value() && { return std::get<0>(std::move(_content)); }
  /// Only if not ok().
  [[nodiscard]] const QNError& error() const { return std::get<1>(_content); }

 private:
  std::variant<T, QNError> _content;
};

/// The result of an operation that has nothing to give back.
struct QNDone {};

}  // namespace quillon
