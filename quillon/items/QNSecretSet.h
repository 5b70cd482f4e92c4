#pragma once

#include <set>

#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// Any order will do for a set; this one tells nobody anything that has no access to it.
struct QNSecretOrder {
  bool operator()(const QNSecret& a, const QNSecret& b) const noexcept {
    return a.reveal() < b.reveal();
  }
};

/// Secrets without order and without duplicates.
using QNSecretSet = std::set<QNSecret, QNSecretOrder>;

}  // namespace quillon
