#include "quillon/items/H9ItemProperties.h"

// Archive, part of the stored format:
//
//   key                     kind             left out when
//   "itemVersion"           64-bit integer
//   "localEditCount"        64-bit integer
//   "rejectedBuildVersion"  64-bit integer
//   "rejectionReason"       text             absent
//   "changerUUID"           text             absent

namespace quillon {

H9ItemProperties::H9ItemProperties(QNDecoder& coder)
    : _itemVersion(coder.decodeInt64(kItemVersion).value_or(0)),
      _localEditCount(coder.decodeInt64(kLocalEditCount).value_or(0)),
      _rejectedBuildVersion(coder.decodeInt64(kRejectedBuildVersion).value_or(0)),
      _rejectionReason(coder.decodeString(kRejectionReason)),
      _changerUUID(coder.decodeString(kChangerUUID)) {}

void H9ItemProperties::encodeWithCoder(QNEncoder& coder) {
  coder.encodeInt64(_itemVersion, kItemVersion);
  coder.encodeInt64(_localEditCount, kLocalEditCount);
  coder.encodeInt64(_rejectedBuildVersion, kRejectedBuildVersion);
  if (_rejectionReason) coder.encodeString(*_rejectionReason, kRejectionReason);
  if (_changerUUID) coder.encodeString(*_changerUUID, kChangerUUID);
}

}  // namespace quillon
