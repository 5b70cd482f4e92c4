// What a row stores of an address; whole in docs/formats.md:
//
//   overview "url"              the address as it was entered
//   overview "label"            the label; may be missing
//   nakedHash, derivedHash      HMAC-SHA256 of naked domain and host, key: the vault's uuid
//   archive "kDisplayOrder"     64-bit integer, only if it isn't 0

#include "quillon/logins/QNItemURL.h"

#include <algorithm>
#include <functional>

#include "quillon/items/QNItem.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/urls/QNURLTools.h"

namespace quillon {
namespace {

constexpr std::string_view kLabel = "label";
constexpr std::string_view kCoderDisplayOrder = "kDisplayOrder";

std::optional<std::string> ownText(std::optional<std::string_view> text) {
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view lowerPrefix) {
  return text.size() >= lowerPrefix.size() &&
         std::equal(lowerPrefix.begin(), lowerPrefix.end(), text.begin(),
                    [](char expected, char c) { return expected == lowercaseASCII(c); });
}

}  // namespace

QNItemURL::QNItemURL(QNDecoder& coder) : QNDatabaseObjectWithOverview(coder) {
  _displayOrder = coder.decodeInt64(kCoderDisplayOrder).value_or(0);
}

void QNItemURL::encodeWithCoder(QNEncoder& coder) {
  QNDatabaseObjectWithOverview::encodeWithCoder(coder);
  if (_displayOrder != 0) coder.encodeInt64(_displayOrder, kCoderDisplayOrder);
}

std::shared_ptr<QNItemURL> QNItemURL::urlForItem(const std::shared_ptr<QNItem>& item,
                                                 const JsonObject& withDict) {
  if (item == nullptr) return nullptr;
  auto url = std::make_shared<QNItemURL>(initNew);
  url->setItem(item);
  url->setProfile(item->profile());
  url->setAllAttributes(withDict);
  return url;
}

std::string QNItemURL::extractSearchStringFromURLString(std::string_view url) {
  constexpr std::string_view separator = "://";
  const std::size_t scheme = url.find(separator);
  if (scheme != std::string_view::npos) url.remove_prefix(scheme + separator.size());
  // A host doesn't follow the locale: "EXAMPLE.IT" is example.it in Turkey too.
  return lowercaseIdentifier(url.substr(0, url.find_first_of("?/:")));
}

std::optional<std::string> QNItemURL::URLString() {
  return ownText(overviewTextForKey(kOverviewURLString));
}

std::string QNItemURL::searchString() {
  const std::lock_guard lock(monitor());
  return extractSearchStringFromURLString(overviewTextForKey(kOverviewURLString).value_or(""));
}

void QNItemURL::setURLString(std::optional<std::string_view> url) {
  if (!setOverviewText(url, kOverviewURLString)) return;
  _nakedHash.reset();
  _derivedHash.reset();
}

std::optional<std::string> QNItemURL::label() {
  return ownText(overviewTextForKey(kLabel));
}

void QNItemURL::setLabel(std::optional<std::string_view> label) {
  if (label) setOverviewText(label, kLabel);
}

void QNItemURL::setLabelObject(const Json& label) {
  if (label.is_null()) return;
  if (!label.is_string()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "The label of a URL isn't a text");
    return setLabel("");
  }
  setLabel(std::string_view(label.get_string()));
}

std::string QNItemURL::calculatedLabel() {
  auto own = label();
  if (own && !own->empty()) return *std::move(own);
  const auto owner = item();
  if (owner == nullptr) return "";
  const auto urls = owner->URLs();
  const auto place =
      std::find_if(urls.begin(), urls.end(), [this](const auto& url) { return url.get() == this; });
  return place == urls.end() ? ""
                             : labelShownAtIndex(static_cast<std::size_t>(place - urls.begin()));
}

std::string QNItemURL::labelShownAtIndex(std::size_t index) {
  auto own = label();
  if (own && !own->empty()) return *std::move(own);
  if (index == 0) return QNLocalizedString("website");
  return localizedFormat("website %jd", std::to_string(index + 1));
}

std::optional<std::string> QNItemURL::URLStringWithoutScheme() {
  auto url = URLString();
  if (!url) return std::nullopt;
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (startsWithIgnoringCase(*url, scheme)) return url->substr(scheme.size());
  }
  return url;
}

std::optional<std::string> QNItemURL::URLStringWithoutSchemeAndQueryString() {
  const auto url = URLStringWithoutScheme();
  return url ? std::optional(url->substr(0, url->find('?'))) : std::nullopt;
}

void QNItemURL::setNakedHash(std::optional<std::string> hash) {
  if (hash == _nakedHash) return;
  markRowDirty();
  _nakedHash = std::move(hash);
}

void QNItemURL::setDerivedHash(std::optional<std::string> hash) {
  if (hash == _derivedHash) return;
  markRowDirty();
  _derivedHash = std::move(hash);
}

void QNItemURL::setHashVersion(std::uint64_t version) {
  if (version == _hashVersion) return;
  markRowDirty();
  _hashVersion = version;
}

void QNItemURL::setDisplayOrder(std::uint64_t order) {
  if (order == _displayOrder) return;
  if (_displayOrder != 0) markDisplayOrderDirty();
  _displayOrder = order;
}

void QNItemURL::replaceWith(QNItemURL& other) {
  const auto overview = other.overviewCopy();
  if (!overview) return;
  markRowDirty();
  copyOverview(*overview);
  _nakedHash = other._nakedHash;
  _derivedHash = other._derivedHash;
  _hashVersion = other._hashVersion;
  _displayOrder = other._displayOrder;
}

bool QNItemURL::isEqualToItemURL(QNItemURL& other) {
  return label() == other.label() && URLString() == other.URLString();
}

std::size_t QNItemURL::hash() {
  const std::hash<std::string> hashOf;
  return hashOf(label().value_or("")) ^ hashOf(URLString().value_or(""));
}

void QNItemURL::willSave() {
  updateHashes();
  QNDatabaseObjectWithOverview::willSave();
}

// The uuid of the item's vault is the salt: nobody can tell that two vaults know the same site.
// Without the salt, or with an overview that doesn't open, the hashes stay beside the stored
// overview that they belong to: a row without them is never found for its page again.
void QNItemURL::updateHashes() {
  const auto owner = item();
  const auto vault = owner == nullptr ? nullptr : owner->profile();
  const QNSharedString salt = vault == nullptr ? nullptr : vault->uuid();
  if (salt == nullptr || mutableOverview() == nullptr) return;
  const auto url = URLString();
  const QNURLTools& tools = QNURLTools::shared();
  setDerivedHash(url ? tools.derivedHashWithSalt(*salt, *url) : std::nullopt);
  setNakedHash(url ? tools.nakedHashWithSalt(*salt, *url) : std::nullopt);
  setHashVersion(tools.hashVersion());
}

}  // namespace quillon
