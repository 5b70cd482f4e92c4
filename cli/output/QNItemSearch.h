#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/arguments/QNArguments.h"
#include "cli/output/QNTitleSearch.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// Finds items in which every word occurs, case and accents apart, and ranks them.
class QNItemSearch final {
 public:
  /// Loads the details of a listed item; false if they don't open.
  using Load = std::function<bool(QNItem&)>;

  QNItemSearch(const std::vector<std::string>& words, QNFindLevel level, Load load);
  /// By the place of its worst word: 0 if the title begins with it, 1 if a word of the title does,
  /// 2 elsewhere in the title, 3 in what else a list shows, 4 in the contents. Nothing if one is
  /// missing. Details are loaded only where the level needs them.
  [[nodiscard]] std::optional<std::uint32_t> rankOf(QNItem& item) const;

 private:
  enum Place : std::uint32_t { inTitle = 2, inOverview = 3, inContents = 4 };
  [[nodiscard]] std::optional<Place> lowestPlace(QNItem& item) const;
  QNFindLevel _level;
  Load _load;
  std::vector<std::string> _words;     // in small letters
  std::vector<QNTitleSearch> _titles;  // of one word each
};

}  // namespace quillon
