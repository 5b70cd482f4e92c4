#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/objects/QNTags.h"
#include "quillon/platform/archive/QNCoding.h"

namespace quillon {

class QNItem;

/// An item's uuid together with its vault's: how the world outside a vault names an item. A
/// value; it holds no reference to the item, and a copy of it has what it has.
class QNItemSpecifier final : public QNCoding {
 public:
  /// Two of these are compared by `*a == *b`: without the stars it is whether they are one object.
  using Ref = std::shared_ptr<const QNItemSpecifier>;
  using Refs = std::span<const Ref>;
  using Items = std::span<const std::shared_ptr<QNItem>>;

  // Making. Null, with an assertion log, without an item uuid. Without a profile uuid the profile
  // is "unknown" and a fresh identifier, so that two such specifiers are never equal.
  static std::shared_ptr<QNItemSpecifier> initWithUUID(std::optional<std::string_view> uuid,
                                                       std::optional<std::string_view> profileUUID);
  static Ref specifierWithItemUUID(std::optional<std::string_view> uuid,
                                   std::optional<std::string_view> profileUUID) {
    return initWithUUID(uuid, profileUUID);
  }
  static Ref initWithItem(const QNItem& item);
  static Ref specifierWithItem(const QNItem& item) { return initWithItem(item); }
  /// One for each, in their order. Nulls, and items that there is none of, are left out.
  static std::vector<Ref> specifiersWithItems(Items items);

  QNItemSpecifier(const QNItemSpecifier&) = default;  // no move: it would leave one without texts
  QNItemSpecifier& operator=(const QNItemSpecifier&) = default;

  [[nodiscard]] const std::string& uuid() const { return *_uuid; }
  [[nodiscard]] const std::string& profileUUID() const { return *_profileUUID; }
  friend bool operator==(const QNItemSpecifier& a, const QNItemSpecifier& b) {
    return a.uuid() == b.uuid() && a.profileUUID() == b.profileUUID();
  }
  [[nodiscard]] std::size_t hash() const;
  /// False for an item without a profile.
  [[nodiscard]] bool matchesItem(const QNItem& item) const;
  [[nodiscard]] std::string debugDescription() const;

  // Texts. Who reads one with a separator inside an identifier gets another specifier, or none.
  /// "PROFILE_ITEM".
  [[nodiscard]] std::string stringRepresentation() const;
  /// ":PROFILE:ITEM".
  [[nodiscard]] std::string coreStringRepresentation() const;
  /// In the order of the items. Nulls, and items without a uuid, are left out.
  static std::vector<std::string> stringRepresentationsForItems(Items items);
  static Ref specifierWithStringRepresentation(std::string_view text) {
    return specifierWithStringRepresentation(text, "_");
  }
  static Ref specifierWithCoreRepresentation(std::string_view text) {
    return specifierWithStringRepresentation(text, ":");
  }
  /// Two parts are profile and item, and so are the last two of three. Null for any other number.
  static Ref specifierWithStringRepresentation(std::string_view text, std::string_view separator);

  // Many at once
  /// Gives each profile, in the order of their identifiers, with the uuids of its items, in the
  /// order of the specifiers; then runs `completion` if there is one. Nulls are left out.
  static void iterateOverProfilesInSpecifiers(
      Refs specifiers,
      const std::function<void(const std::string& profileUUID,
                               const std::vector<std::string>& itemUUIDs)>& withBlock,
      const std::function<void()>& completion = {});
  /// The items that the specifiers name, in the order of these. Of equal items the last.
  static std::vector<std::shared_ptr<QNItem>> itemsMatchingSpecifiers(Items items, Refs specifiers);

  // Stored forms
  [[nodiscard]] std::string_view className() const override { return "QNItemSpecifier"; }
  /// Null without a uuid.
  static std::shared_ptr<QNCoding> initWithCoder(QNDecoder& coder);
  void encodeWithCoder(QNEncoder& coder) override;
  [[nodiscard]] JsonObject json() const;
  /// Error 114 of MRErrorDomain if one of the two identifiers is missing, or is no text.
  static QNResult<Ref> specifierWithJson(const Json& json);

 private:
  QNItemSpecifier(QNSharedString uuid, QNSharedString profileUUID);
  static std::shared_ptr<QNItemSpecifier> initWithTexts(QNSharedString uuid,
                                                        QNSharedString profileUUID);
  // Never null. Made of an item, it shares the item's text and its vault's.
  QNSharedString _uuid;
  QNSharedString _profileUUID;
};

}  // namespace quillon
