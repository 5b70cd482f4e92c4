#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

struct QNItemKeyPath;

/// A name by which an object is asked for a value: letters, digits and "_", parted by ".".
class QNKeyPath final {
 public:
  static constexpr std::size_t kMaxBytes = 255;
  /// Nothing if `name` is no such name.
  static std::optional<QNKeyPath> named(std::string_view name);
  [[nodiscard]] const std::string& name() const noexcept { return _name; }
  /// How an item answers it; null if it doesn't.
  [[nodiscard]] const QNItemKeyPath* ofItem() const noexcept { return _ofItem; }
  friend bool operator==(const QNKeyPath& a, const QNKeyPath& b) { return a._name == b._name; }

 private:
  QNKeyPath(std::string_view name, const QNItemKeyPath* ofItem) : _name(name), _ofItem(ofItem) {}
  std::string _name;
  const QNItemKeyPath* _ofItem;  // looked up once, for many items
};

/// What an object answers: nothing, yes or no, a whole number, another number, a moment, a text or a
/// list that lies in the object (valid until it changes; only texts in it count, and it isn't null),
/// a text of its own, or texts.
using QNKeyPathValue =
    std::variant<std::monostate, bool, std::int64_t, double, std::chrono::sys_seconds,
                 std::string_view, const JsonArray*, QNSecret, std::vector<QNSecret>>;

/// An object that predicates ask.
class QNKeyPathSource {
 public:
  virtual ~QNKeyPathSource() = default;
  /// Nothing for a key path that it doesn't have; a value that is absent is another thing.
  [[nodiscard]] virtual std::optional<QNKeyPathValue> valueForKeyPath(const QNKeyPath& keyPath) = 0;
  /// Must details be opened for it?
  [[nodiscard]] virtual bool needsDetails(const QNKeyPath& keyPath) const = 0;
};

}  // namespace quillon
