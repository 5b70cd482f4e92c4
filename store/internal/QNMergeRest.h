#pragma once
// What QNItem::mergeWithConflict() would let go of an item that is merged into another.

#include <string_view>

#include "quillon/items/QNItem.h"

namespace quillon {

/// Of the item that won't stay, as it is before the merge, which uses it up. In clear, in the
/// wiping resource. It must open.
class QNMergeRest final {
 public:
  explicit QNMergeRest(QNItem& item);
  /// Adds to what the merge has made: each member of overview and details that it lacks, written by
  /// a newer version or another program; and a title that lost, as a field of the section of
  /// conflicts. The same merge again adds nothing.
  void addTo(QNItem& joined) const;

 private:
  static void addTitleTo(QNItem& joined, std::string_view title);

  JsonObject _overview, _details;
};

}  // namespace quillon
