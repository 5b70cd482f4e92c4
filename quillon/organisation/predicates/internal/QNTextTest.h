#pragma once

#include <string_view>

#include "quillon/organisation/predicates/QNComparisonPredicate.h"
#include "quillon/organisation/predicates/internal/QNPredicateRun.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {

/// Steps for each byte of a text that is taken apart to be folded.
inline constexpr std::uint64_t kStepsToFold = 16;

/// A text, and whether what a comparison leaves aside is gone from it already.
struct QNComparedText {
  QNComparedText(std::string_view given, bool folded) : text(given), isFolded(folded) {}
  std::string_view text;
  bool isFolded = false;
};

QNFolding foldingForOptions(std::uint32_t options);

/// Compares two texts by any operator but MATCHES, IN and BETWEEN. A fault of the run is false.
bool compareTexts(QNOperatorType operatorType, QNFolding folding, const QNComparedText& left,
                  const QNComparedText& right, QNPredicateRun& run);

}  // namespace quillon
