#include "quillon/sync/QNSyncSource.h"

#include <algorithm>
#include <array>
#include <set>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/images/QNImage.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/sync/QNSyncState.h"

// Short identifiers of old records, and what is stored for them, in small letters:
//
//   given        stored
//   "iCloud"     /Users/LOGIN NAME/Library/Mobile Documents/
//                7QXK3M9R1T~com~marlowworks~quillon/quillon_data
//   "Dropbox"    LIBRARY FOLDER/Dropbox/Quillon.marlowkeychain
//   "Documents"  DOCUMENTS FOLDER/Quillon.marlowkeychain

namespace quillon {
namespace {

constexpr std::array kUbiquityContainers = {
    std::string_view("/7qxk3m9r1t~com~marlowworks~quillon/"),
    std::string_view("/5hd41pw29v~com~marlowworks~beta~quillon/")};
constexpr std::array kDropboxFolders = {
    std::string_view("/dropbox/"), std::string_view("/dropbox "), std::string_view("/dropbox_")};
constexpr std::string_view kDropboxFolderAtEnd = "/dropbox";
constexpr std::string_view kWiFiScheme = "bonjour://";

// Tested in this order; what is none of them is the last. An address of the local network may have
// a folder of another kind in its path.
struct Kind {
  bool (*names)(std::string_view identifier);
  std::string_view title;
  std::string_view icon;
};
constexpr std::array kKinds = {
    Kind{QNSyncSource::isDropboxKeychainIdentifier, "Dropbox", "dropbox-icon-choice"},
    Kind{QNSyncSource::isUbiquityKeychainIdentifier, "iCloud", "icloud-icon-choice"},
    Kind{QNSyncSource::isWiFiKeychainIdentifier, "WLAN Server", "wifi-icon-choice"},
    Kind{[](std::string_view) { return true; }, "File Sharing", "itunes-icon-choice"}};

const Kind& kindOf(const std::optional<std::string>& identifier) {
  return *std::find_if(kKinds.begin(), kKinds.end(), [&identifier](const Kind& kind) {
    return kind.names(identifier.value_or(""));
  });
}

template <std::size_t Count>
bool containsAny(std::string_view text, const std::array<std::string_view, Count>& parts) {
  return std::any_of(parts.begin(), parts.end(), [text](std::string_view part) {
    return text.find(part) != std::string_view::npos;
  });
}

/// Nothing for an identifier that isn't one of the short ones.
std::optional<std::string> pathOfShortIdentifier(std::string_view identifier) {
  if (identifier == "iCloud") {
    return formatted(
        "/Users/{}/Library/Mobile Documents/7QXK3M9R1T~com~marlowworks~quillon/quillon_data",
        currentUser().loginName);
  }
  if (identifier == "Dropbox") {
    return (std::filesystem::path("/") / currentUser().libraryFolder /
            "Dropbox/Quillon.marlowkeychain")
        .string();
  }
  if (identifier == "Documents") {
    return (currentUser().documentsFolder / "Quillon.marlowkeychain").string();
  }
  return std::nullopt;
}

}  // namespace

std::string QNSyncSource::description() const {
  return formatted("{}: ({}) '{}'", QNDatabaseObject::description(),
                   _keychainType.value_or("(null)"), _keychainIdentifier.value_or("(null)"));
}

// Kinds

bool QNSyncSource::isUbiquityKeychainIdentifier(std::string_view identifier) {
  return containsAny(identifier, kUbiquityContainers);
}

bool QNSyncSource::isDropboxKeychainIdentifier(std::string_view identifier) {
  return containsAny(identifier, kDropboxFolders) || identifier.ends_with(kDropboxFolderAtEnd);
}

bool QNSyncSource::isWiFiKeychainIdentifier(std::string_view identifier) {
  return identifier.starts_with(kWiFiScheme);
}

bool QNSyncSource::importOnly() const {
  return _keychainIdentifier == QNSyncSourceLocationImport;
}

bool QNSyncSource::isWiFiSyncSource() const {
  return isWiFiKeychainIdentifier(_keychainIdentifier.value_or(""));
}

std::string QNSyncSource::localizedTitle() const {
  return QNLocalizedString(kindOf(_keychainIdentifier).title);
}

std::shared_ptr<const QNImage> QNSyncSource::icon() const {
  return mr_imageNamed(kindOf(_keychainIdentifier).icon);
}

// Columns

void QNSyncSource::setKeychainIdentifier(std::optional<std::string> identifier) {
  const auto path = identifier ? pathOfShortIdentifier(*identifier) : std::nullopt;
  if (!path) return set(_keychainIdentifier, std::move(identifier));
  set(_keychainIdentifier, std::optional(lowercaseIdentifier(*path)));
  set(_legacySyncSource, true);
}

void QNSyncSource::restoreKeychainIdentifier(std::optional<std::string> identifier, bool legacy) {
  set(_keychainIdentifier, std::move(identifier));
  set(_legacySyncSource, legacy);
}

// States

void QNSyncSource::setStates(IndexedStates& indexed, States states) {
  std::set<QNSyncState*> seen;
  std::erase_if(states, [&seen](const auto& state) {
    return state == nullptr || !seen.insert(state.get()).second;
  });
  indexed.byUUID.reset();
  set(indexed.states, std::move(states));
}

std::shared_ptr<QNSyncState> QNSyncSource::stateIn(const IndexedStates& indexed,
                                                   std::optional<std::string_view> uuid) {
  if (!uuid) return nullptr;
  if (!indexed.byUUID) {
    indexed.byUUID.emplace();
    for (const auto& state : indexed.states) {
      if (const auto& key = state->objectUUID()) indexed.byUUID->insert_or_assign(*key, state);
    }
  }
  const auto found = indexed.byUUID->find(*uuid);
  return found == indexed.byUUID->end() ? nullptr : found->second;
}

std::shared_ptr<QNSyncState> QNSyncSource::syncStateForObjectType(
    std::int32_t type, std::optional<std::string_view> uuid) const {
  switch (type) {
    case static_cast<std::int32_t>(QNObjectType::item):
      return syncStateForItemUUID(uuid);
    case static_cast<std::int32_t>(QNObjectType::folder):
      return syncStateForFolderUUID(uuid);
    case static_cast<std::int32_t>(QNObjectType::attachment):
      return syncStateForAttachmentUUID(uuid);
    default:
      MRLogger::sharedLogger().assertion(DEBUG_DATABASE, description(), "Unknown object type.");
      return nullptr;
  }
}

}  // namespace quillon
