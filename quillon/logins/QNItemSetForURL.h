#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

class QNItem;
class QNProfile;

/// Ranks the items that were found for a web page. The caller looks items up by hash, sets the
/// inputs, and reads the outputs; they are computed at the first read of either, once. The sets
/// must not overlap, and each must hold an item once: nothing here looks for a second one. For one
/// thread at a time.
class QNItemSetForURL final {
 public:
  using Items = std::vector<std::shared_ptr<QNItem>>;
  /// Negative, 0 or positive, as strcmp.
  using SortDescriptor = std::function<int(QNItem&, QNItem&)>;

  QNItemSetForURL();
  explicit QNItemSetForURL(std::string initWithURLString);

  // Inputs. Plain members: each is only kept, and nothing follows from setting it until the first
  // read of an output. Setting one after that has no effect.
  std::optional<std::string> URLString;
  std::shared_ptr<QNProfile> profile;
  Items derivedLogins;
  Items nakedLogins;
  Items derivedPasswords;
  Items nakedPasswords;
  bool quickFillMode = false;
  bool limitMatchesToDerivedDomain = false;
  bool limitMatchesToRegularScope = false;
  /// Favourites in their order, then title (localized, case apart), then the older item.
  std::vector<SortDescriptor> sortDescriptors;

  // Outputs
  [[nodiscard]] const Items& matchingItems();
  /// How many of them to show at the top level.
  [[nodiscard]] std::uint64_t topLevelToDisplay();

  static Items filterLogins(Items logins, const std::vector<SortDescriptor>& sortedUsingDescriptors,
                            bool limitedToRegularScope);

 private:
  void matchItems();
  void matchLimitedToDerivedDomain();
  void matchAll();

  bool _matched = false;
  Items _matchingItems;
  std::uint64_t _topLevelToDisplay = 0;
};

}  // namespace quillon
