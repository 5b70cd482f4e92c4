#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/arguments/QNArguments.h"
#include "cli/fields/QNFieldTexts.h"
#include "cli/pick/QNPickList.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// What of an item can be printed or copied: all that has a value, secrets shown as dots, and the
/// one-time password of now. The item must outlive it.
class QNPickFields final {
 public:
  explicit QNPickFields(QNItem& item);
  QNPickList& list() { return _list; }
  /// As `--print` takes it.
  [[nodiscard]] const std::string& nameOf(std::size_t index) const { return _fields[index].name; }
  [[nodiscard]] QNResult<QNSecret> valueOf(std::size_t index) const;
  /// By a name, as `show --field` takes it, and "otp" for a one-time password.
  [[nodiscard]] QNResult<QNSecret> valueOfNamed(std::string_view name) const;

 private:
  struct Field {
    std::string name;
    std::optional<QNFieldName> own;
    QNItemFieldRef field;  // null for what is the item's own, and for the one-time password
  };
  void addOwn(QNFieldName name, std::string_view label);
  void addCode();
  void addSections();
  void add(Field field, std::string title, std::string shown);

  QNItem& _item;
  QNFieldTexts _texts;
  QNPickList _list;
  std::vector<Field> _fields;
};

}  // namespace quillon
