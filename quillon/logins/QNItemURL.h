#pragma once

#include "quillon/objects/QNDatabaseObjectWithOverview.h"

namespace quillon {

class QNItem;

/// One website address of an item: its own row with its own overview ("url", "label"), and salted
/// hashes of its domain, by which items are found for a page without decrypting them. Belongs to
/// its item, which it holds weakly. The monitor guards the overview alone: everything else, and a
/// change of any kind, is the business of the one thread that edits the item.
class QNItemURL final : public QNDatabaseObjectWithOverview, public QNDisplayOrderable {
 public:
  explicit QNItemURL(QNNew) : QNDatabaseObjectWithOverview(initNew) {}
  explicit QNItemURL(QNExisting existing) : QNDatabaseObjectWithOverview(existing) {}
  explicit QNItemURL(QNDecoder& coder);

  /// "HTTPS://Example.COM:8443/a?b" gives "example.com".
  static std::string extractSearchStringFromURLString(std::string_view url);
  /// A new object for that item and its profile, filled from an attribute dictionary. Null without
  /// an item.
  static std::shared_ptr<QNItemURL> urlForItem(const std::shared_ptr<QNItem>& item,
                                               const JsonObject& withDict);

  [[nodiscard]] std::string_view className() const override { return "QNItemURL"; }
  [[nodiscard]] std::shared_ptr<QNItem> item() const { return _item.lock(); }
  void setItem(const std::shared_ptr<QNItem>& item) { _item = item; }

  /// The address as the user entered it.
  [[nodiscard]] std::optional<std::string> URLString();
  /// What extractSearchStringFromURLString() makes of it, without a copy of the rest.
  [[nodiscard]] std::string searchString();
  /// A new value drops both hashes. Dirties this row alone, and the item keeps the domains that it
  /// knows: to change an item's main address use QNItem::setURLString().
  void setURLString(std::optional<std::string_view> url);
  [[nodiscard]] std::optional<std::string> label();
  /// Nothing changes nothing; a JSON value that isn't a text logs an assertion and stores "".
  void setLabel(std::optional<std::string_view> label);
  void setLabelObject(const Json& label);
  [[nodiscard]] std::string calculatedLabel();
  /// The label, or localized "website", "website 2", ... by the place in the item's list.
  [[nodiscard]] std::string labelShownAtIndex(std::size_t index);
  [[nodiscard]] std::optional<std::string> URLStringWithoutScheme();
  [[nodiscard]] std::optional<std::string> URLStringWithoutSchemeAndQueryString();

  // Hash setters dirty the row on a change.
  [[nodiscard]] const std::optional<std::string>& nakedHash() const { return _nakedHash; }
  void setNakedHash(std::optional<std::string> hash);
  [[nodiscard]] const std::optional<std::string>& derivedHash() const { return _derivedHash; }
  void setDerivedHash(std::optional<std::string> hash);
  [[nodiscard]] std::uint64_t hashVersion() const { return _hashVersion; }
  void setHashVersion(std::uint64_t version);
  [[nodiscard]] std::uint64_t displayOrder() const override { return _displayOrder; }
  /// Marks the display order dirty, and only if the old value wasn't 0.
  void setDisplayOrder(std::uint64_t order) override;

  void replaceWith(QNItemURL& other);
  /// Equal label and address; owner, order and hashes don't count.
  [[nodiscard]] bool isEqualToItemURL(QNItemURL& other);
  [[nodiscard]] bool isEqual(QNItemURL& other) { return isEqualToItemURL(other); }
  [[nodiscard]] std::size_t hash();

  /// Computes both hashes and their version anew. They stay as they are without an item in a vault,
  /// and where the overview doesn't open.
  void willSave() override;
  void encodeWithCoder(QNEncoder& coder) override;

 private:
  void updateHashes();

  std::optional<std::string> _nakedHash;
  std::weak_ptr<QNItem> _item;
  std::optional<std::string> _derivedHash;
  std::uint64_t _hashVersion = 0;
  std::uint64_t _displayOrder = 0;
};

}  // namespace quillon
