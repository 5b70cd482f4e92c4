#pragma once
// What an item keeps apart from itself, so that an item in a list weighs little.

#include <array>
#include <optional>
#include <vector>

#include "quillon/items/QNItem.h"
#include "quillon/platform/json/QNForeignElements.h"

namespace quillon {

struct QNItem::OpenState {
  /// The item key as a local vault wrapped it: the only form of it that is stored.
  std::array<std::uint8_t, QNAESKey::kWrappedKeySize> encryptedKeyBuffer{};
  QNAESKeyRef key;
  /// Absent, beside present data: not decrypted yet.
  std::optional<JsonObject> details;
  std::optional<Bytes> detailsData;
  /// The password as it stood when the details were parsed or the row was first dirtied: what
  /// the next save retires.
  std::optional<QNSecret> originalPassword;
  /// The entropy that was last turned into a strength.
  double originalPasswordBitsEntropy = 0;
  /// Absent until there is a first one. A list that has become empty is another thing: it clears
  /// the address that the overview mirrors.
  std::optional<std::vector<std::shared_ptr<QNItemURL>>> URLs;
  std::vector<std::shared_ptr<QNItemURL>> deletedURLs;  // with a row that is to be deleted
  /// Built from details "passwordHistory" at the first use.
  std::optional<std::vector<QNPreviouslyUsedPassword>> previouslyUsedPasswords;
  /// Built from details "sections" at the first use; what is no object there stays beside them.
  std::optional<FieldSections> fieldSections;
  QNForeignElements foreignSections;
  std::optional<std::string> cachedNakedDomain;
  std::optional<std::string> cachedDerivedDomain;
};

struct QNItem::RareColumns {
  std::optional<std::string> scope;
  std::optional<std::string> folderUUID;
  std::optional<H9ItemProperties> h9ItemProperties;
  std::optional<Bytes> encryptedExportOverview;
  std::optional<Bytes> encryptedExportDetails;
};

}  // namespace quillon
