#include "cli/commands/QNItemChoice.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/QNToolError.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

struct Match {
  std::string uuid;
  std::string title;
};
using Matches = std::vector<Match>;

// Equal titles first, and the preferred side of the trash before the other.
class MatchesByTitle {
 public:
  MatchesByTitle(std::string_view title, QNTrashPreference preference)
      : _title(title), _folded(foldedForSearch(title)), _preference(preference) {}

  void look(QNItem& item) {
    std::string title = item.title();
    const bool isEqual = title == _title;
    if (!isEqual && foldedForSearch(title) != _folded) return;
    const bool isPreferred = item.trashed() == (_preference == QNTrashPreference::trashedFirst);
    _tiers[(isPreferred ? 0 : 2) + (isEqual ? 0 : 1)].push_back({*item.uuid(), std::move(title)});
  }

  [[nodiscard]] const Matches& best() const {
    const auto found = std::find_if(_tiers.begin(), _tiers.end() - 1,
                                    [](const Matches& tier) { return !tier.empty(); });
    return *found;
  }

 private:
  std::string_view _title;
  std::string _folded;
  QNTrashPreference _preference;
  std::array<Matches, 4> _tiers;
};

// What people type in capitals too. An item from elsewhere may have a uuid of another form.
bool looksLikeUUID(std::string_view name) {
  constexpr std::string_view kForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  const auto fits = [](char c, char form) {
    return form == '-' ? c == '-'
                       : std::string_view("0123456789abcdef").find(c) != std::string_view::npos;
  };
  return name.size() == kForm.size() && std::equal(name.begin(), name.end(), kForm.begin(), fits);
}

QNError ambiguous(const Matches& matches) {
  for (const Match& match : matches) {
    printRaw(fmt::format("{}  {}\n", shownText(match.uuid), shownText(match.title)));
  }
  return toolError(QNExit::ambiguous,
                   fmt::format("{} items have that title; name one by its uuid", matches.size()));
}

QNResult<std::string> uuidOfTitle(const QNVaultSession& session, std::string_view title,
                                  QNTrashPreference preference) {
  MatchesByTitle found(title, preference);
  const auto report =
      session.store().list(session.vault(), QNStore::Which::all,
                           [&](const std::shared_ptr<QNItem>& item) { found.look(*item); });
  if (!report) return report.error();
  warnOfDamage(report.value());
  const Matches& matches = found.best();
  if (matches.size() > 1) return ambiguous(matches);
  if (matches.empty()) return toolError(QNExit::notFound, "no item has that uuid or title");
  return matches.front().uuid;
}

}  // namespace

QNResult<std::shared_ptr<QNItem>> chooseItem(const QNVaultSession& session, std::string_view name,
                                             QNTrashPreference preference) {
  const std::string lowered = lowercaseText(name);
  const std::string_view asUUID = looksLikeUUID(lowered) ? std::string_view(lowered) : name;
  auto item = session.store().item(session.vault(), asUUID);
  if (item.ok() || !isStoreError(item.error(), QNStoreErrorCode::notFound)) return item;
  const auto uuid = uuidOfTitle(session, name, preference);
  if (!uuid) return uuid.error();
  return session.store().item(session.vault(), uuid.value());
}

}  // namespace quillon
