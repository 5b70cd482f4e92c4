#include "quillon/objects/H9DatabaseObject.h"

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNFormat.h"

namespace quillon {

H9DatabaseObject::H9DatabaseObject(QNDecoder& coder)
    : _oid(coder.decodeInt64(H9DatabaseObjectCoderKeyOID).value_or(0)) {}

std::string H9DatabaseObject::description() const {
  return formatted("<{}-{} {}>", className(), static_cast<std::int64_t>(_oid),
                   static_cast<const void*>(this));
}

void H9DatabaseObject::willSave() {
  if (_createdAt == 0) _createdAt = secondsNow();
  if (_updatedAt == 0) _updatedAt = _createdAt;
}

void H9DatabaseObject::encodeWithCoder(QNEncoder& coder) {
  coder.encodeInt64(_oid, H9DatabaseObjectCoderKeyOID);
}

}  // namespace quillon
