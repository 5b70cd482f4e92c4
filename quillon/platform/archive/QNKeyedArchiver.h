#pragma once

#include "quillon/platform/archive/QNCoding.h"

namespace quillon {

/// Limits of what is read back; an archive beyond them is refused whole.
inline constexpr std::size_t kMaxArchiveDepth = 16;
inline constexpr std::size_t kMaxArchiveBytes = std::size_t{64} << 20;

/// Makes archives. An archive of something unlocked holds clear keys: never write one to disk in
/// the clear. The bytes wipe themselves.
class QNKeyedArchiver final {
 public:
  /// Error 114 of QNErrorDomain if a value has no JSON form, or objects nest deeper than
  /// kMaxArchiveDepth.
  static QNResult<Bytes> archivedDataWithRootObject(QNCoding& root);
};

/// Reads archives of foreign bytes: builds only classes on the list.
class QNKeyedUnarchiver final {
 public:
  /// Error 114 of QNErrorDomain: not an archive, a newer version, too deep, too large, a root of
  /// a class that isn't on the list. An inner object of such a class reads as nothing.
  static QNResult<std::shared_ptr<QNCoding>> unarchivedObjectOfClasses(
      std::span<const QNDecodableClass> classes, ByteView archive);
};

}  // namespace quillon
