#pragma once

#include "quillon/items/QNItem.h"

namespace quillon {

class QNTemplate;

/// A person's particulars, category "004".
class QNIdentity final : public QNItem {
 public:
  /// From the shared template of identities. Null, with an assertion log, if there is none.
  static std::shared_ptr<QNIdentity> initNewIdentity();
  /// Always of category "004", whatever template it is. Null, with an assertion log, for none.
  static std::shared_ptr<QNIdentity> initNewWithTemplate(const std::shared_ptr<QNTemplate>& from);
  explicit QNIdentity(QNNew);
  explicit QNIdentity(QNExisting existing);
  explicit QNIdentity(QNDecoder& coder) : QNItem(coder) {}
  [[nodiscard]] std::string_view className() const override { return "QNIdentity"; }
};

}  // namespace quillon
