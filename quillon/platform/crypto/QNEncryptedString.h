#pragma once

#include <memory>
#include <string_view>

#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/memory/QNLockedMemory.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// A text that lies in memory in sealed form, under a key of this object alone in locked memory:
/// a password that is kept while its vault is open. Guards against a glance at memory or a core
/// file, not against a debugger.
class QNEncryptedString final {
 public:
  static std::unique_ptr<QNEncryptedString> encryptedStringWithString(std::string_view text);
  [[nodiscard]] QNSecret stringValue() const;

 private:
  QNEncryptedString() = default;
  QNKeyBytes _key;
  Bytes _sealed;
};

}  // namespace quillon
