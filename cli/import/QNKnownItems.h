#pragma once

#include <array>
#include <cstring>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "quillon/platform/memory/QNLockedMemory.h"
#include "store/QNStore.h"

namespace quillon {

/// Tells whether an item of a vault is there already: one of the same kind, with the same title,
/// addresses, user name, password, notes and one-time password. Such a likeness is kept as a
/// fingerprint, under a random key that dies with this object. Overviews are looked at for every
/// item; only those whose title and first address are asked for are opened.
class QNKnownItems final {
 public:
  /// The items of the vault that aren't in the trash.
  static QNResult<QNKnownItems> ofVault(QNStore& store, const std::shared_ptr<QNProfile>& vault);

  /// False if an equal item is known. A new one is known from now on.
  QNResult<bool> addIfNew(QNItem& item);
  /// What the list of the vault reported.
  [[nodiscard]] const QNListReport& report() const { return _report; }

 private:
  using Digest = std::array<std::uint8_t, 32>;
  struct HashOfDigest {
    std::size_t operator()(const Digest& digest) const noexcept {
      std::size_t hash = 0;
      std::memcpy(&hash, digest.data(), sizeof hash);
      return hash;
    }
  };

  QNKnownItems(QNStore& store, std::shared_ptr<QNProfile> vault);
  QNResult<QNDone> openLookalikes(const Digest& face);
  [[nodiscard]] Digest faceOf(QNItem& item) const;
  [[nodiscard]] Digest fingerprintOf(QNItem& item) const;

  QNStore* _store;
  std::shared_ptr<QNProfile> _vault;
  QNKeyBytes _key;
  QNListReport _report;
  // uuids of the items that were not opened yet, by title and first address
  std::unordered_map<Digest, std::vector<std::string>, HashOfDigest> _unopened;
  std::unordered_set<Digest, HashOfDigest> _fingerprints;
};

}  // namespace quillon
