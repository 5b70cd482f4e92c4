#pragma once

#include <cstdint>
#include <memory>
#include <utility>

namespace quillon {

class QNItemField;

/// A field that a user reaches for often, and the key that copies it: 1, 2 or 3, or 0 for none.
/// Which keys these are, an application decides. For reading and copying.
/// DANGER: a change of the field is lost: one that was made for this belongs to nobody, and one of
/// the item dirties no row. Use the item's setters, or markRowDirty(). The shortcut keeps its value
/// in clear, after a lock of the vault too.
class QNQuickAccessShortcut final {
 public:
  QNQuickAccessShortcut(std::shared_ptr<QNItemField> initWithField, std::uint64_t command)
      : _field(std::move(initWithField)), _keyCommand(command) {}
  [[nodiscard]] const std::shared_ptr<QNItemField>& field() const { return _field; }
  [[nodiscard]] std::uint64_t keyCommand() const { return _keyCommand; }

 private:
  std::shared_ptr<QNItemField> _field;
  std::uint64_t _keyCommand;
};

}  // namespace quillon
