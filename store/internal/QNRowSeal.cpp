#include "store/internal/QNRowSeal.h"

#include <algorithm>

#include "quillon/platform/data/MRData.h"

namespace quillon {

namespace {

// Every form begins with a tag of its own, and no tag is the beginning of another. Behind it
// stand numbers of 8 bytes and texts or bytes with their length before them, so that no two
// different rows have one form.
constexpr std::string_view kItemTag = "quillon row 1";
constexpr std::string_view kBodyTag = "quillon body 1";
constexpr std::string_view kVaultTag = "quillon vault 1";
constexpr std::string_view kSyncSourceTag = "quillon sync source 1";
constexpr std::string_view kSyncStatesTag = "quillon sync states 1";
constexpr std::string_view kFolderTag = "quillon folder 1";

class Form final {
 public:
  Form(Bytes& bytes, std::string_view tag) : _bytes(bytes) {
    _bytes.clear();
    append(bytesOf(tag));
  }
  Form& number(std::uint64_t value) {
    std::array<std::uint8_t, 8> bigEndian{};
    for (std::size_t i = 0; i < bigEndian.size(); ++i) {
      bigEndian[i] = static_cast<std::uint8_t>(value >> (56 - 8 * i));
    }
    append(bigEndian);
    return *this;
  }
  Form& bytes(ByteView value) {
    number(value.size());
    append(value);
    return *this;
  }
  Form& text(std::string_view value) { return bytes(bytesOf(value)); }
  Form& optionalText(std::optional<std::string_view> value) {
    _bytes.push_back(value ? 1 : 0);
    return value ? text(*value) : *this;
  }
  Form& optionalBytes(std::optional<ByteView> value) {
    _bytes.push_back(value ? 1 : 0);
    return value ? bytes(*value) : *this;
  }

 private:
  void append(ByteView value) { _bytes.insert(_bytes.end(), value.begin(), value.end()); }
  Bytes& _bytes;
};

std::string_view uuidOf(const QNProfile& vault) {
  const QNSharedString uuid = vault.uuid();
  return uuid == nullptr ? std::string_view() : std::string_view(*uuid);  // the vault holds it
}

}  // namespace

std::array<std::uint8_t, 32> bodyHash(ByteView wrappedKey, ByteView details,
                                      std::span<const QNURLRow> urls) {
  Bytes bytes;
  Form form(bytes, kBodyTag);
  form.bytes(wrappedKey).bytes(details).number(urls.size());
  for (const QNURLRow& url : urls) {
    form.number(url.displayOrder).number(url.hashVersion).optionalText(url.nakedHash);
    form.optionalText(url.derivedHash).bytes(url.overview);
  }
  return sha256(bytes);
}

std::array<std::uint8_t, 32> statesHash(std::span<const QNSyncStateRow> states) {
  Bytes bytes;
  Form form(bytes, kSyncStatesTag);
  form.number(states.size());
  for (const QNSyncStateRow& state : states) {
    form.number(state.kind).number(state.objectType).number(state.objectID);
    form.optionalText(state.objectUUID).number(state.syncedAt);
    form.number(state.sourceTimestamp).number(state.localTimestamp);
  }
  return sha256(bytes);
}

std::optional<QNSeal> QNRowSealer::seal(const QNItemRow& row) {
  Form form(_form, kItemTag);
  form.text(uuidOf(_vault)).number(row.oid).number(row.status).number(row.faveIndex);
  form.number(row.createdAt).number(row.updatedAt).number(row.txTimestamp);
  form.number(row.timesUsed).number(row.lastUsed).number(row.inbox).number(row.attachments);
  form.text(row.categoryUUID).optionalText(row.scope).optionalText(row.folderUUID).text(row.uuid);
  form.bytes(row.bodyHash).bytes(row.overview);
  return sealForm();
}

std::optional<QNSeal> QNRowSealer::seal(const QNVaultRow& row) {
  Form form(_form, kVaultTag);
  form.number(row.oid).text(row.uuid).text(row.name).number(row.revision).number(row.status);
  form.number(row.createdAt).number(row.updatedAt);
  form.bytes(row.masterKey).bytes(row.overviewKey).bytes(row.salt).number(row.iterations);
  form.optionalText(row.hint).optionalText(row.lastUpdatedBy).optionalBytes(row.icon);
  form.optionalText(row.color).optionalBytes(row.attributes);
  return sealForm();
}

std::optional<QNSeal> QNRowSealer::seal(const QNSyncSourceRow& row) {
  Form form(_form, kSyncSourceTag);
  form.text(uuidOf(_vault)).number(row.oid).number(row.revision).number(row.legacy);
  form.optionalText(row.keychainIdentifier).optionalText(row.keychainType);
  form.optionalText(row.remoteProfileUUID).number(row.remoteProfileTimestamp);
  form.optionalBytes(row.remoteProfileAttributes);
  form.optionalText(row.localProfileUUID).number(row.localProfileTimestamp);
  form.optionalBytes(row.localProfileAttributes).bytes(row.statesHash);
  return sealForm();
}

std::optional<QNSeal> QNRowSealer::seal(const QNFolderRow& row) {
  Form form(_form, kFolderTag);
  form.text(uuidOf(_vault)).number(row.oid).number(row.status).number(row.createdAt);
  form.number(row.updatedAt).number(row.txTimestamp).number(row.smart).number(row.displayOrder);
  form.optionalText(row.parentUUID).text(row.uuid).optionalBytes(row.icon).bytes(row.overview);
  return sealForm();
}

std::optional<QNSeal> QNRowSealer::sealForm() const {
  const auto code = _vault.hmacForData(ByteView(_form));
  if (!code) return std::nullopt;
  QNSeal seal{};
  std::copy_n(code->begin(), seal.tag.size(), seal.tag.begin());
  std::copy_n(code->begin() + seal.tag.size(), seal.term.size(), seal.term.begin());
  return seal;
}

bool sealFits(const std::optional<QNSeal>& seal, ByteView stored) {
  return seal && equalInConstantTime(seal->tag, stored);
}

}  // namespace quillon
