#include "cli/import/QNKnownItems.h"

#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/data/MRData.h"

namespace quillon {
namespace {

// Texts one behind the other, each with its length before it, so that no two lists of texts give
// the same bytes. Absent and empty count as the same here.
class TextList {
 public:
  void add(std::string_view text) {
    const std::uint64_t size = text.size();
    append(bytesOf({reinterpret_cast<const char*>(&size), sizeof size}));
    append(bytesOf(text));
  }
  [[nodiscard]] ByteView bytes() const { return _bytes; }

 private:
  void append(ByteView bytes) { _bytes.insert(_bytes.end(), bytes.begin(), bytes.end()); }
  Bytes _bytes;
};

}  // namespace

QNKnownItems::QNKnownItems(QNStore& store, std::shared_ptr<QNProfile> vault)
    : _store(&store), _vault(std::move(vault)), _key(32) {
  fillRandomKey(_key);
}

QNResult<QNKnownItems> QNKnownItems::ofVault(QNStore& store,
                                             const std::shared_ptr<QNProfile>& vault) {
  QNKnownItems known(store, vault);
  const auto remember = [&known](const std::shared_ptr<QNItem>& item) {
    known._unopened[known.faceOf(*item)].push_back(*item->uuid());
  };
  auto report = store.list(vault, QNStore::Which::normal, remember);
  if (!report) return report.error();
  known._report = std::move(report).value();
  return known;
}

QNKnownItems::Digest QNKnownItems::faceOf(QNItem& item) const {
  TextList texts;
  texts.add(item.title());
  texts.add(item.URLString().value_or(""));
  return hmacSHA256(_key, texts.bytes());
}

QNKnownItems::Digest QNKnownItems::fingerprintOf(QNItem& item) const {
  TextList texts;
  texts.add(item.categoryUUID().value_or(""));
  texts.add(item.title());
  texts.add(item.username().value_or(""));
  const auto password = item.password();
  texts.add(password ? password->reveal() : "");  // into bytes that wipe themselves
  texts.add(item.notesPlain().value_or(""));
  const auto oneTimePassword = item.firstTOTPString();
  texts.add(oneTimePassword ? oneTimePassword->reveal() : "");  // into the same bytes
  for (const auto& url : item.URLs()) texts.add(url->URLString().value_or(""));
  return hmacSHA256(_key, texts.bytes());
}

QNResult<QNDone> QNKnownItems::openLookalikes(const Digest& face) {
  const auto found = _unopened.extract(face);
  if (found.empty()) return QNDone{};
  for (const std::string& uuid : found.mapped()) {
    const auto item = _store->item(_vault, uuid);
    if (item) {
      _fingerprints.insert(fingerprintOf(*item.value()));
    } else if (!isStoreError(item.error(), QNStoreErrorCode::damaged)) {
      return item.error();  // a damaged one is like nothing
    }
  }
  return QNDone{};
}

QNResult<bool> QNKnownItems::addIfNew(QNItem& item) {
  if (const auto opened = openLookalikes(faceOf(item)); !opened) return opened.error();
  return _fingerprints.insert(fingerprintOf(item)).second;
}

}  // namespace quillon
