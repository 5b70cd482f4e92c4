#pragma once
// For tests: what two versions of an item are made of, and what a merge left of them.

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"

namespace quillon {

/// A clean item of that vault, category "003".
inline QNSampleItemRef versionIn(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = newItem(vault);
  item->setCategoryUUID("003");
  item->didSave();
  return item;
}

/// The same row read again: clean, with nothing that a merge would have to join.
inline QNSampleItemRef twinOf(QNItem& item, const std::shared_ptr<QNGenericProfile>& vault) {
  save(item);
  auto twin = opened(item, vault);
  twin->mutableOverview();
  twin->mutableDetails();
  twin->didLoad();
  return twin;
}

/// The row read again, as one of that class.
template <class Class>
std::shared_ptr<Class> readAgainAs(QNItem& row, const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = std::make_shared<Class>(QNExisting{row.oid()});
  item->setProfile(vault);
  item->setOverviewData(row.overviewData());
  item->markLoadingDetails();
  item->setEncryptedKey(row.encryptedKey());
  item->setDetailsData(row.detailsData());
  item->markDetailsLoaded();
  item->didLoad();
  return item;
}

/// The row read again, as one of that class whose details don't open, with one address.
template <class Class>
std::shared_ptr<Class> damagedTwinOf(QNItem& row, const std::shared_ptr<QNGenericProfile>& vault) {
  save(row);
  auto twin = std::make_shared<Class>(QNExisting{row.oid()});
  twin->setProfile(vault);
  twin->setUuid(row.uuid());
  twin->setOverviewData(row.overviewData());
  twin->markLoadingDetails();
  twin->setEncryptedKey(row.encryptedKey());
  twin->setDetailsData(Bytes(64, 1));
  twin->addURLString("https://damaged.example/deep");
  twin->markDetailsLoaded();
  twin->markAttachmentsLoaded();
  twin->didLoad();
  return twin;
}

/// An address of that item that is a label and no more.
inline std::shared_ptr<QNItemURL> addLabel(QNItem& item, std::string_view label) {
  auto url = std::make_shared<QNItemURL>(initNew);
  url->setProfile(item.profile());
  url->setLabel(label);
  item.addURL(url);
  return url;
}

/// Into the section of that name, which is made if it isn't there.
inline QNItemFieldRef addField(QNItem& item, std::string_view section,
                               std::optional<std::string_view> identifier, std::string_view value,
                               std::string_view type = "string") {
  auto field = QNItemField::fieldWithType(type, identifier);
  if (!identifier) field->setIdentifier(std::nullopt);
  field->setRawValue(value);
  item.fieldSectionWithName(section, section)->addField(field);
  return field;
}

inline std::string shown(std::optional<std::string_view> text) {
  return std::string(text.value_or("(none)"));
}

/// "SECTION/IDENTIFIER=VALUE" of each field, in order.
inline std::vector<std::string> fieldsOf(QNItem& item) {
  std::vector<std::string> texts;
  for (const auto& section : item.fieldSections()) {
    for (const auto& field : section->fields()) {
      const auto value = field->stringValue();
      texts.push_back(shown(section->name()) + "/" + shown(field->identifier()) + "=" +
                      (value ? std::string(value->reveal()) : "(none)"));
    }
  }
  return texts;
}

inline std::vector<std::string> addressesOf(QNItem& item) {
  std::vector<std::string> addresses;
  for (const auto& url : item.URLs()) addresses.push_back(shown(url->URLString()));
  return addresses;
}

/// "VALUE@TIME" of each entry, in order.
inline std::vector<std::string> historyOf(QNItem& item) {
  std::vector<std::string> texts;
  for (const auto& entry : item.previouslyUsedPasswords()) {
    const std::string value(entry.value() ? entry.value()->reveal() : "(none)");
    texts.push_back(value + "@" + std::to_string(entry.retiredAt()));
  }
  return texts;
}

inline std::string detailsTextOf(QNItem& item) {
  const auto details = item.detailsCopy();
  return details ? mr_JSONStringWithError(*details).value_or("(no form)") : "(none)";
}

/// What is no item: the other kind of row.
inline std::shared_ptr<QNItemURL> noItem() {
  return std::make_shared<QNItemURL>(QNExisting{77});
}

}  // namespace quillon
