#pragma once

namespace quillon {

class QNItem;

/// Can both be read, overview and loaded details? False, with an error log of `into`, if not: what
/// can't be read would pass for merged, and be lost where it is stored. An item always opens to
/// itself.
[[nodiscard]] bool openToMerge(QNItem& theirs, QNItem& into);

}  // namespace quillon
