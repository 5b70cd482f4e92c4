#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "quillon/items/H9ItemProperties.h"
#include "quillon/items/QNGenericListObject.h"
#include "quillon/items/QNItemConstants.h"
#include "quillon/items/QNPreviouslyUsedPassword.h"
#include "quillon/items/QNSecretSet.h"
#include "quillon/items/QNSortableItem.h"
#include "quillon/objects/QNDatabaseObjectWithOverview.h"
#include "quillon/platform/crypto/QNAESKey.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

class QNAddressValue;
class QNCharacterSet;
class QNFieldSection;
class QNFieldValue;
class QNGenericCategory;
class QNItemAttachment;
class QNItemField;
class QNItemSpecifier;
class QNItemURL;
class QNLogin;
class QNPredicateCache;
class QNQuickAccessShortcut;
class QNSearchPredicate;
class QNTombstone;

/// What copying an item into another vault needs; which of it is enough, the caller decides.
enum class QNCopyRequirement : std::int64_t {
  nothing = 0,
  /// The item's files stay where they are, and some have no key to sign references to them.
  signingKeys = 1,
  /// The vault can't hold the item's files.
  vaultForFiles = 2,
  /// The item's files can't move to an account on another server.
  sameServer = 3,
};

/// How much of an item a search looks at; each looks at what the one before it does, and more.
enum class QNSearchLevel { title, overview, contents };

/// What a person keeps in a vault. Two JSON objects make up an item: the overview, which a vault
/// opens for every item to draw lists, and the details, which hold the secrets and are opened
/// with the item. The monitor guards both; URLs and everything else are one thread's business.
/// Edited through setters, which dirty the row; encrypted in willSave() and nowhere else.
/// Made with std::make_shared: its URLs know it by a weak pointer.
class QNItem : public QNDatabaseObjectWithOverview,
               public QNSyncable,
               public QNDisplayOrderable,
               public QNSortableItem,
               public QNGenericListObject,
               public std::enable_shared_from_this<QNItem> {
 public:
  explicit QNItem(QNNew);
  explicit QNItem(QNExisting existing);
  /// Its addresses don't know it yet: decodedAs() tells them.
  explicit QNItem(QNDecoder& coder);
  ~QNItem() override;

  // Identity: QNItem.cpp
  [[nodiscard]] std::string_view className() const override { return "QNItem"; }
  [[nodiscard]] std::string description() const override { return descriptionForLogging(); }
  /// A short uuid for an account vault, a long one for a local vault; null, with an assertion
  /// log, for another profile type.
  static QNSharedString uuidForProfileType(std::uint64_t type);
  [[nodiscard]] QNSharedString uuid() const override { return _uuid; }
  void setUuid(QNSharedString uuid) override;
  void updateUuid(QNSharedString uuid, std::uint64_t ifProfileTypeMatches);
  void regenerateUuid();
  [[nodiscard]] bool isEqual(const QNItem& other) const;
  [[nodiscard]] std::size_t hash() const;
  /// The same uuid object, the same updatedAt and the same profile uuid object: a test for "did
  /// this row change since I drew it", where equal content in another object means it was reloaded.
  [[nodiscard]] bool isEqualToItem(const QNItem& other) const;
  [[nodiscard]] bool isSameRevisionAsItem(const QNItem& other) const;
  [[nodiscard]] bool isModifiedCopyOf(QNItem& other);
  /// allAttributes() as JSON text, in clear: yours to wipe. Runs willSerialize(), which may change
  /// and dirty the item.
  std::optional<std::string> json();
  std::string descriptionWithSizeInformation();
  [[nodiscard]] std::shared_ptr<const QNItemSpecifier> itemSpecifier() override;
  [[nodiscard]] QNObjectType objectType() const override { return QNObjectType::item; }
  [[nodiscard]] bool isTombstone() const override { return false; }
  [[nodiscard]] bool isFolder() const override { return false; }

  // Profile: QNItem+Profile.cpp
  /// A first profile gives the item its uuid. A move between vaults gives it a new one; between
  /// generations, also a new key, with details brought into the clear first. Null takes the uuid
  /// away, with an assertion log: an item without a vault is a new one. The union profile is
  /// refused, with an assertion log. Load the details first: what isn't loaded doesn't move.
  void setProfile(const std::shared_ptr<QNGenericProfile>& profile) override;
  [[nodiscard]] bool shouldRegenerateUUIDMovingFromProfile(
      const std::shared_ptr<QNGenericProfile>& from, std::uint64_t profileType,
      const std::shared_ptr<QNGenericProfile>& toProfile) const;
  [[nodiscard]] std::shared_ptr<QNGenericCategory> category() const;
  [[nodiscard]] bool isUIEditable() const;

  // Overview: QNItem+Overview.cpp
  /// The title, or localized "Unnamed".
  [[nodiscard]] std::string title() override;
  void setTitle(std::optional<std::string_view> title);
  [[nodiscard]] std::optional<std::string> additionalInformation() override;
  void setAdditionalInformation(std::optional<std::string_view> text);
  [[nodiscard]] virtual std::optional<std::string> _additionalInformation();
  [[nodiscard]] std::optional<std::string> fastmailAlias();
  [[nodiscard]] std::optional<std::string> h9UserUUID();
  void setH9UserUUID(std::optional<std::string_view> uuid);
  /// First letter of a title for grouping a list, or "#".
  static std::string firstLetterOfString(std::string_view text);
  void removeQN4CustomIconData();
  void removeH9CustomIconData();
  void removeH9PendingCustomIconData();

  // Tags: QNItem+Tags.cpp. A tag is a path whose parts are separated by "/".
  [[nodiscard]] std::set<std::string> tags();
  /// As they are: what a user typed goes through setTagsFromUI().
  void setTags(const std::set<std::string>& tags);
  [[nodiscard]] bool hasTags() { return !tags().empty(); }
  [[nodiscard]] std::size_t numberOfTags() { return tags().size(); }
  /// Joined by ", ".
  [[nodiscard]] std::optional<std::string> tagsPlain();
  /// The tag without empty levels, blanks around levels, and white space other than blanks.
  /// Nothing, with an error log, if nothing is left of it.
  static std::optional<std::string> processTagForAdding(std::optional<std::string_view> tag);
  /// Those of which something is left replace what there was.
  void setTagsFromUI(const std::vector<std::string>& tags);
  void addTag(std::optional<std::string_view> tag);
  /// That exact text.
  void removeTag(std::string_view tag);
  /// The tags below a level, which ends in "/"; any other prefix removes nothing.
  void removeTagsWithPrefix(std::string_view prefix);
  /// Case apart.
  [[nodiscard]] std::set<std::string> tagsMatchingTag(std::string_view tag);
  [[nodiscard]] bool isTaggedForAppleWatch();
  // Case apart, unlike the former.
  [[nodiscard]] bool isTaggedFor2FA();
  [[nodiscard]] bool isTaggedForHttp();
  // Each dirties the row.
  void toggleTagForAppleWatch();
  void toggleTagFor2FA();
  void toggleTagForHttp();

  // Search: QNItem+Search.cpp. A text is found without regard to case and diacritics, where nothing
  // else is said. Search for texts in small letters, as lowercaseIdentifier() makes them. The
  // answer of the title and the overview level is what was in the item at the first search, or at
  // the last call of setTitle(), and for the overview of setAdditionalInformation() (a save too)
  // and setURLString(): copyOverview() and setOverviewData() don't count, nor does what happens to
  // an address itself.
  /// Cuts what a user typed into texts to search for: white space.
  static const QNCharacterSet& searchSeparatorSet();
  /// What is neither a letter, nor a mark, nor a number.
  static const QNCharacterSet& helperSearchWordSeparators();
  /// The tests of the last few searches, for all items of the process.
  static QNPredicateCache& predicateCache();
  static std::shared_ptr<const QNSearchPredicate> cachedPredicateForSearchString(
      std::string_view string);
  /// Empties that cache; a vault's lock calls it.
  static void clearCaches();
  [[nodiscard]] std::string lowercaseTitle();
  /// Title, host of the main address and additional information, those that aren't empty, the first
  /// two with a blank behind them.
  [[nodiscard]] std::string lowercaseOverviewStringForSearch();
  /// The three with a blank between them, empty or not. The two operations share a cache: which of
  /// them ran first decides what both give.
  [[nodiscard]] std::string lowercaseOverviewStringForSearch2();
  [[nodiscard]] bool titleMatchesLowercaseString(std::string_view string);
  /// The whole uuid matches too.
  [[nodiscard]] bool overviewMatchesLowercaseString(std::string_view string);
  /// Opens the details, which stay open until the item is released: values, concealed and retired
  /// ones too, tags, titles of fields and sections. Without details, what the overview gives.
  [[nodiscard]] bool contentsMatchesLowercaseString(std::string_view string);
  // Does each of the strings match? True for none.
  using SearchStrings = std::vector<std::string>;
  [[nodiscard]] bool titleMatchesLowercaseStrings(const SearchStrings& strings);
  [[nodiscard]] bool overviewMatchesLowercaseStrings(const SearchStrings& strings);
  [[nodiscard]] bool contentsMatchesLowercaseStrings(const SearchStrings& strings);
  /// Those whose answer at that level is true, in order, nulls left out. For many items: several
  /// times as fast as to ask each. The contents level leaves open what it opened, as above.
  static std::vector<std::shared_ptr<QNItem>> itemsMatchingLowercaseStrings(
      std::span<const std::shared_ptr<QNItem>> items, const SearchStrings& strings,
      QNSearchLevel level);
  // What a search reads. Empty texts are left out, except in the first.
  /// What is stored as tags, of whatever kind; an empty list if there is nothing in it.
  [[nodiscard]] Json tagsForSearch();
  [[nodiscard]] std::string folderUUIDForSearch() const { return folderUUID().value_or(""); }
  [[nodiscard]] std::vector<std::string> URLStringsForSearch();
  [[nodiscard]] std::vector<std::string> nakedHashesForSearch();
  [[nodiscard]] virtual std::vector<QNSecret> allValuesForSearch();
  [[nodiscard]] virtual std::vector<QNSecret> allPasswordsForSearch();
  [[nodiscard]] virtual std::vector<QNSecret> allFieldTitlesForSearch();
  [[nodiscard]] std::vector<QNSecret> allSectionTitlesForSearch();

  // Search by words of title and hosts: QNItem+SearchWords.cpp. Kept until setTitle(), addURL(),
  // removeURL() or removeURLAtIndex(). Load the details first: hosts that aren't there stay none.
  /// In small letters. One of them is empty where two separators meet, or one stands at an end.
  [[nodiscard]] std::set<std::string> helperSearchWords();
  /// Does each of the strings match? A string of one word is looked for in the words, or at their
  /// beginning, without regard to case and diacritics. Any other, exactly, in title and hosts; the
  /// first of those that the title contains decides for all that follow.
  [[nodiscard]] bool matchesHelperSearchStrings(const SearchStrings& strings, bool prefixMatch);

  // Quick access: QNItem+QuickAccess.cpp. What a user reaches for often, each with the key that
  // copies it. For reading and copying: what becomes of a change is told in
  // QNQuickAccessShortcut.h. Fields without a value are left out (an empty text is a value, and so
  // is a fresh address), concealed ones also without the right to reveal; a one-time password is
  // offered in any case.
  [[nodiscard]] virtual std::vector<QNQuickAccessShortcut> quickAccessFields();
  [[nodiscard]] std::vector<QNQuickAccessShortcut> createQuickAccessFields();
  [[nodiscard]] std::vector<QNQuickAccessShortcut> createQuickAccessFieldsFromFirstSection();
  void addFieldWithIdentifier(std::string_view identifier, std::uint64_t requestedCopyKey,
                              std::vector<QNQuickAccessShortcut>& ifPossibleToArray);
  void addOneTimePasswordFieldRequestingCopyKey(
      std::uint64_t copyKey, std::vector<QNQuickAccessShortcut>& ifPossibleToArray);

  // For others: QNItem+Metadata.cpp
  /// In clear, for an index of the system. The keys and their order: QNMetadataConstants.h. Without
  /// loaded details there is an assertion log, and no address.
  [[nodiscard]] JsonObject spotlightMetadata();
  /// Of cards, passports, licenses of two kinds and memberships; nothing of others. Of a month and
  /// year, a card's is the last day, the others' the first, at its first moment in the user's time
  /// zone; of a date, that moment.
  [[nodiscard]] std::optional<std::chrono::sys_seconds> expirationDate();
  /// The user name; without one, the mail alias.
  [[nodiscard]] std::optional<std::string> fillableUsername();

  // Sorting: QNItem+Sorting.cpp. By title, for a person. Without the user's setting
  // QNPrefAdvancedHashSectionIsSortedFirst, titles that are empty or begin with a digit, a
  // punctuation mark or a symbol stand behind all others.
  static std::vector<std::shared_ptr<QNItem>> sortAlphabetically(
      std::vector<std::shared_ptr<QNItem>> items) {
    return sortAlphabetically(std::move(items), false);
  }
  static std::vector<std::shared_ptr<QNItem>> sortAlphabetically(
      std::vector<std::shared_ptr<QNItem>> items, bool favoritesOnTop);

  // As a row of a mixed list: QNItem.cpp
  /// Names the item across vaults; empty, with an assertion log, for an item without a uuid.
  [[nodiscard]] std::string identifier() override;
  [[nodiscard]] std::optional<std::string> subtitle() override { return additionalInformation(); }
  [[nodiscard]] bool read() override { return false; }
  [[nodiscard]] std::optional<std::string> accessoryText() override { return std::nullopt; }
  [[nodiscard]] QNListItemType listItemType() override { return QNListItemType::item; }

  // Strength: QNItem+Strength.cpp
  [[nodiscard]] std::optional<double> passwordBitsEntropy();
  [[nodiscard]] bool passwordGeneratedByRandomNumberGenerator();
  [[nodiscard]] virtual std::int16_t passwordStrength();
  [[nodiscard]] bool shouldShowPasswordStrength();
  void updatePassword(std::optional<std::string_view> password,
                      bool generatedByRandomNumberGenerator, double bitsEntropy);

  // Details: QNItem+Details.cpp. What hands out a pointer into them hands out what the next
  // change may move: hold monitor() while you look, if another thread knows the item.
  /// The live object, decrypted at the first call; null on failure, with detailsData() untouched.
  JsonObject* mutableDetails();
  JsonObject* details() { return mutableDetails(); }
  std::optional<JsonObject> detailsCopy();
  const Json* detailsObjectForKey(std::string_view key);
  /// An equal value changes nothing and dirties nothing. Nothing removes the key.
  void setDetailsObject(std::optional<Json> object, std::string_view forKey);
  /// The same for a text, which never lies outside the wiping resource.
  void setDetailsText(std::optional<std::string_view> text, std::string_view forKey);
  virtual void copyDetails(const JsonObject& details);
  virtual void setDetailsData(std::optional<Bytes> data);
  /// The live bytes: hold monitor() while they are read, unless the item is one thread's.
  [[nodiscard]] const std::optional<Bytes>& detailsData() const;
  void decryptDetailsDataIfNeeded();
  /// Without trailing white space. The copy is yours to wipe: notesSecret() wipes its own.
  [[nodiscard]] std::optional<std::string> notesPlain();
  void setNotesPlain(std::optional<std::string_view> notes);
  /// Takes care of JSON nulls and wrong types in details of an account vault.
  void cleanseDetailsFieldsFromDetails(JsonObject& details);

  // Key and saving: QNItem+Encryption.cpp
  /// Unwrapped by the local vault at the first need, and kept after its lock. Null, with an error
  /// log, if it doesn't open; outside a local vault whatever was set, with an assertion log.
  [[nodiscard]] QNAESKeyRef key();
  /// Dirties nothing. Details that are still sealed under the old key must be opened first.
  void setKey(QNAESKeyRef key);
  /// A view of the 112 bytes in the item: valid as long as it lives, changed by a save. Not for
  /// another thread to hold across one.
  [[nodiscard]] ByteView encryptedKey() const;
  /// Any other length than 112 is refused with an assertion log. Leaves a key that is already
  /// open: give setKey(nullptr) first where the row may have another one.
  void setEncryptedKey(ByteView wrapped);
  /// Encrypts everything afresh, dirty or not. Stored details stay as they are where new ones
  /// can't be made (no key, a locked account); a locked local vault leaves no overview bytes.
  void willSave() override;
  /// Takes the row's id, and with a local vault on either side the other's key too.
  void copyOidFrom(const std::shared_ptr<QNDatabaseObject>& other) override;

  // Backup keys: QNItem+BackupKeys.cpp
  [[nodiscard]] QNSecretSet backupKeysBase64Encoded();
  /// Adds to the list. Without a profile there is no list to add to: a second call replaces the
  /// first.
  void addBackupKeysBase64Encoded(QNSecretSet keys);
  [[nodiscard]] std::vector<QNAESKeyRef> backupAESKeys();
  /// Takes the present key out of the list and keeps it out at saves. Not stored: an item that is
  /// loaded again puts it back at its next save.
  void disableBackupKeys();
  /// The next save puts the present key back.
  void enableBackupKeys() { setBackupKeysDisabled(false); }
  void clearBackupKeys() { setDetailsObject(std::nullopt, kDetailsBackupKeys); }
  [[nodiscard]] bool isBackupKeysDisabled() const { return _backupKeysDisabled; }
  void setBackupKeysDisabled(bool disabled) { _backupKeysDisabled = disabled; }
  void mergeBackupKeysWithConflict(QNItem& other);
  void test_only_clearAndDisableBackupKeys() {}
  /// While true the item behaves as if it had no backup keys. Set by tests alone: attachments
  /// under an old key don't open then.
  bool _test_only_isBackupKeysCompletelyDisabled = false;

  // Lifecycle: QNItem+Serialize.cpp
  void willSerialize() override;
  void didSave() override;
  void markRowDirty() override;
  void noteOriginalPassword();

  // Row dictionaries: QNItem+Rows.cpp. In clear, secrets included.
  /// A new item of the dictionary's category or, if that has an "oid", the shell of that row; null
  /// if the vault makes none.
  static std::shared_ptr<QNItem> itemWithAttributes(
      const JsonObject& attributes, const std::shared_ptr<QNGenericProfile>& forProfile);
  void saveAllAttributes(JsonObject& attributes) override;
  /// An account vault's item keeps its uuid. Former keys stay, attachments too; all else of the
  /// details and every address is replaced, unsaved edits of sections and form entries included.
  /// Details that don't open, as in a locked vault, stay as they are: the former keys lie in them.
  /// Not beside a save on another thread.
  void restoreAllAttributes(const JsonObject& attributes) override;
  static void removePendingIconFromAttributesDictionary(JsonObject& attributes);
  /// Of an imported item: fills in what is missing, silently. False without a category.
  bool validateAndRepairImportedProperties() override;

  // Archive: QNItem+Archive.cpp. Encrypted buffers as they are, and nothing in clear but columns.
  void encodeWithCoder(QNEncoder& coder) override;
  /// Every class that the archive of an item may hold.
  static std::span<const QNDecodableClass> decodableClasses();
  template <class Item>
  static std::shared_ptr<QNCoding> decodedAs(QNDecoder& coder) {
    auto item = std::make_shared<Item>(coder);
    item->adoptDecodedURLs();
    return item;
  }

  // Fingerprint: QNItem+Fingerprint.cpp. Equal for equal content, whoever keeps it where and since
  // when. Each call runs willSerialize(), and marks a local item's attachments as loaded.
  /// In clear. Nothing if overview, details or an address doesn't open.
  [[nodiscard]] std::optional<JsonObject> fingerprint_jsonDictionary() {
    return fingerprint_jsonDictionaryIgnoringDocumentFingerprint(false);
  }
  /// A document never equals another, nor itself, unless `ignoring`.
  [[nodiscard]] std::optional<JsonObject> fingerprint_jsonDictionaryIgnoringDocumentFingerprint(
      bool ignoring);
  /// In clear: yours to wipe. Nothing, with an error log, for what has no JSON form.
  [[nodiscard]] std::optional<std::string> fingerprint_jsonString() {
    return fingerprint_jsonStringIgnoringDocumentFingerprint(false);
  }
  [[nodiscard]] std::optional<std::string> fingerprint_jsonStringIgnoringDocumentFingerprint(
      bool ignoring);
  /// SHA-256 of that text, in 64 lower-case hexadecimal digits. DANGER: whoever has it can try
  /// guesses of what the item hides.
  [[nodiscard]] std::optional<std::string> fingerprint_fingerprint();
  /// [TEXT, "FINGERPRINT"], in clear: yours to wipe.
  [[nodiscard]] std::optional<std::string> fingerprint_debugJSON();

  // Copies: QNItem+Copying.cpp. Of a loaded item, else an assertion log; a copy is null then.
  [[nodiscard]] std::shared_ptr<QNItem> makeCopy() { return makeCopyWithAttachments(true); }
  [[nodiscard]] std::shared_ptr<QNItem> makeCopyWithoutAttachments() {
    return makeCopyWithAttachments(false);
  }
  /// The same uuid in the same vault, without a row. A dirty item runs willSave() on the way. Null
  /// if what changed can't be sealed anew; without an unlocked vault nothing is touched then.
  [[nodiscard]] std::shared_ptr<QNItem> makeCopyWithAttachments(bool attachments);
  /// What a user takes for a copy: a uuid and a time of its own, no history, "- Copy" in its title.
  /// Null in a locked vault.
  [[nodiscard]] std::shared_ptr<QNItem> makeDuplicateWithoutAttachments();
  /// The details must be open. Files of an account vault's item that can't be seen are taken to be
  /// there, and to have no signing keys.
  [[nodiscard]] QNCopyRequirement requirementForCopyingFromProfile(
      const std::shared_ptr<QNGenericProfile>& from,
      const std::shared_ptr<QNGenericProfile>& toProfile);
  [[nodiscard]] bool hasFileReferencesWithoutSigningKeys();

  // URLs: QNItem+URLs.cpp. Details must be loaded or loading; otherwise an assertion log.
  [[nodiscard]] std::vector<std::shared_ptr<QNItemURL>> URLs();
  /// Removed ones with a row, until didSave().
  [[nodiscard]] std::vector<std::shared_ptr<QNItemURL>> deletedURLs();
  [[nodiscard]] bool hasURLs() { return numberOfURLs() > 0; }
  [[nodiscard]] std::size_t numberOfURLs();
  [[nodiscard]] std::shared_ptr<QNItemURL> URLAtIndex(std::size_t index);
  // Exact: case counts, and so does a slash at the end.
  [[nodiscard]] std::shared_ptr<QNItemURL> URLWithLabel(std::string_view label);
  [[nodiscard]] std::shared_ptr<QNItemURL> URLWithURLString(std::string_view url);
  [[nodiscard]] bool hasURLWithString(std::string_view url) {
    return URLWithURLString(url) != nullptr;
  }
  /// The first address. Without details, the copy that the overview holds.
  [[nodiscard]] std::optional<std::string> URLString();
  /// Changes or adds the first; an equal address dirties the row too. Given nothing, it removes
  /// the first.
  void setURLString(std::optional<std::string_view> url);
  /// Sets the URL's item and profile, and an order of 0 to the last one's + 100. An object that is
  /// in the list already is ignored; one that was removed is no longer deleted.
  void addURL(const std::shared_ptr<QNItemURL>& url);
  /// Needs a profile, else an assertion log; ignores "".
  void addURLString(std::string_view url) { addURLString(url, std::nullopt); }
  void addURLString(std::string_view url, std::optional<std::string_view> withLabel);
  /// By identity of the object.
  void removeURL(const std::shared_ptr<QNItemURL>& url);
  void removeURLAtIndex(std::size_t index);
  /// Renumbers all of them from 1.
  void moveURL(const std::shared_ptr<QNItemURL>& url, std::size_t toIndex);
  /// Of equal addresses (exactly equal) the first stays.
  void removeDuplicateURLs();
  /// Both are cached, under the lock.
  [[nodiscard]] std::optional<std::string> nakedDomain();
  /// The host of the address.
  [[nodiscard]] std::optional<std::string> derivedDomain();
  [[nodiscard]] std::optional<std::string> goAndFillURLString();
  [[nodiscard]] std::string defaultLabelForNewURL();

  // Password history: QNItem+History.cpp. Pointers are valid until the history changes, which a
  // save does too.
  [[nodiscard]] std::vector<QNPreviouslyUsedPassword>* mutablePreviouslyUsedPasswords();
  /// A copy; empty while the details can't be read.
  [[nodiscard]] std::vector<QNPreviouslyUsedPassword> previouslyUsedPasswords();
  [[nodiscard]] bool hasPreviouslyUsedPasswords() { return numberOfPreviouslyUsedPasswords() > 0; }
  [[nodiscard]] std::size_t numberOfPreviouslyUsedPasswords();
  [[nodiscard]] const QNPreviouslyUsedPassword* previouslyUsedPasswordAtIndex(std::size_t index);
  [[nodiscard]] const QNPreviouslyUsedPassword* previouslyUsedPasswordWithValue(
      std::string_view value);
  void addPreviouslyUsedPassword(QNPreviouslyUsedPassword entry);
  void removePreviouslyUsedPasswordAtIndex(std::size_t index);
  [[nodiscard]] bool containsPasswordValue(std::string_view value);

  // Sections: QNItem+Sections.cpp. Objects of details "sections", built at the first use and
  // written back by a save, over what the details hold by then: once they are built, change them
  // and not the JSON. A change to a section or a field dirties nothing, unless it says so.
  using FieldSections = std::vector<std::shared_ptr<QNFieldSection>>;
  /// What details hold as `sections`, empty objects left out.
  static JsonArray jsonFromFieldSections(const FieldSections& sections,
                                         bool excludingFileFields = false);
  /// Elements that are no objects are skipped; null, or no list, gives none.
  static FieldSections fieldSectionsFromJSON(const Json* sections);
  /// The live list; null while the details can't be read. It holds no null, and must get none.
  FieldSections* mutableFieldSections();
  [[nodiscard]] FieldSections fieldSections();
  [[nodiscard]] std::size_t numberOfFieldSections();
  /// Null if the index is out of range.
  [[nodiscard]] std::shared_ptr<QNFieldSection> fieldSectionAtIndex(std::size_t index);
  void addFieldSection(const std::shared_ptr<QNFieldSection>& section);
  void removeFieldSection(const std::shared_ptr<QNFieldSection>& section);
  void removeFieldSectionAtIndex(std::size_t index);
  /// A section of a name that is there already gives its fields to that one. Nulls are skipped.
  void addFieldSections(const FieldSections& sections);
  void saveFieldSections();
  [[nodiscard]] std::shared_ptr<QNFieldSection> findSectionWithName(
      std::optional<std::string_view> name);
  [[nodiscard]] std::shared_ptr<QNFieldSection> findSectionWithTitle(
      std::optional<std::string_view> title);
  /// The section of that name, made with that title if there is none.
  std::shared_ptr<QNFieldSection> fieldSectionWithName(std::string_view name,
                                                       std::string_view title);
  std::shared_ptr<QNFieldSection> sectionForConflictsCreatedIfNeeded();
  std::shared_ptr<QNFieldSection> sectionForReferencesCreatedIfNeeded();
  std::shared_ptr<QNFieldSection> sectionForFileCreatedIfNeeded();
  [[nodiscard]] bool hasSectionForConflicts();

  // Fields: QNItem+Fields.cpp. The first in order of sections and fields, or null.
  [[nodiscard]] std::shared_ptr<QNItemField> findFieldWithIdentifier(
      std::optional<std::string_view> identifier);
  [[nodiscard]] std::shared_ptr<QNItemField> findFieldWithValue(const QNFieldValue& value);
  [[nodiscard]] std::shared_ptr<QNItemField> findFieldEqualToField(const QNItemField& field);
  [[nodiscard]] std::shared_ptr<QNItemField> findNonEmptyPasswordField();
  [[nodiscard]] std::shared_ptr<QNItemField> findNonEmptyConcealedField();
  [[nodiscard]] std::shared_ptr<QNItemField> findFastmailAliasField();
  [[nodiscard]] bool hasFieldWithIdentifierPrefix(std::string_view prefix);
  [[nodiscard]] bool hasReferenceFields();
  [[nodiscard]] bool hasFileFields();
  /// Nothing happens unless the field is there and of the string classes, or an address.
  void setStringFieldValue(std::optional<std::string_view> value, std::string_view withIdentifier);
  void setAddressFieldValue(const QNAddressValue& value, std::string_view withIdentifier);
  /// Marks the row dirty, unless an argument is null. To the last place if the index lies beyond
  /// it. Another section gets the field even if `fromSection` doesn't have it; within one section
  /// nothing moves then.
  void moveField(const std::shared_ptr<QNItemField>& field,
                 const std::shared_ptr<QNFieldSection>& fromSection,
                 const std::shared_ptr<QNFieldSection>& toSection, std::size_t toIndex);
  /// Marks the row dirty for each that goes.
  void stripReferenceFields();
  /// The password as a field of its own, which is no part of the item; null if it is empty.
  [[nodiscard]] std::shared_ptr<QNItemField> itemFieldForPassword();

  // One-time passwords: QNItem+TOTP.cpp. Of the first such field that has a value, in order of
  // sections and fields: is there one, its value, its section, itself. Nothing or null without.
  [[nodiscard]] bool hasTOTP();
  [[nodiscard]] std::optional<QNSecret> firstTOTPString();
  [[nodiscard]] std::shared_ptr<QNFieldSection> firstTOTPSection();
  [[nodiscard]] std::shared_ptr<QNItemField> firstTOTPField();

  // Attachments: QNItem+Attachments.cpp. Attachments must be loaded or loading.
  [[nodiscard]] std::vector<std::shared_ptr<QNItemAttachment>> attachmentsIncludeTombstones(
      bool include);
  [[nodiscard]] std::vector<std::shared_ptr<QNItemAttachment>> attachmentsAwaitingBurial();
  [[nodiscard]] std::int32_t numberOfAttachments();
  void setNumberOfAttachments(std::int32_t count) { _numberOfAttachments = count; }
  [[nodiscard]] std::vector<std::shared_ptr<QNItemField>> h9Attachments();

  // What a subclass answers
  [[nodiscard]] virtual std::optional<std::string> username() { return std::nullopt; }
  [[nodiscard]] virtual std::optional<QNSecret> password();
  virtual void setUsername(std::optional<std::string_view> username);
  virtual void setPassword(std::optional<std::string_view> password);
  [[nodiscard]] bool hasUsername();
  [[nodiscard]] bool hasPassword();
  [[nodiscard]] bool hasUsernameOrPassword() { return hasUsername() || hasPassword(); }
  [[nodiscard]] bool hasRevealableFields();
  /// Is the frame of the library's icons laid over a custom one?
  [[nodiscard]] virtual bool useOverlayInCustomIcon() const { return true; }
  [[nodiscard]] virtual bool hasLoginFields() { return false; }
  [[nodiscard]] virtual bool isCreatedByBrowserExtension() { return false; }
  [[nodiscard]] virtual std::optional<QNSecret> clipboardValue() { return std::nullopt; }

  // Account vault only; an error log and nothing otherwise: QNItem+Account.cpp
  [[nodiscard]] H9ItemProperties* h9ItemProperties();
  void setH9ItemProperties(std::optional<H9ItemProperties> properties);
  [[nodiscard]] std::optional<Bytes> encryptedExportOverview();
  [[nodiscard]] std::optional<Bytes> encryptedExportDetails();

  // Favourites and scope: QNItem.cpp
  static std::uint64_t newItemFaveIndex() { return kNewItemFaveIndex; }
  [[nodiscard]] bool isFavorite() const { return _faveIndex != 0; }
  [[nodiscard]] std::uint64_t faveIndex() const { return _faveIndex; }
  /// At most kNewItemFaveIndex; dirties the row.
  void setFaveIndex(std::uint64_t index);
  [[nodiscard]] std::uint64_t favoriteSortDescriptorOrder() const;
  [[nodiscard]] std::uint64_t displayOrder() const override { return _faveIndex; }
  /// The same number without the limit; dirties the order only.
  void setDisplayOrder(std::uint64_t order) override;
  [[nodiscard]] std::optional<std::string> scope() const;
  void setScope(std::optional<std::string> scope);
  [[nodiscard]] bool hasNeverScope() const;
  [[nodiscard]] bool hasRegularScope() const { return !hasNeverScope(); }
  [[nodiscard]] bool isShownInBrowser() const { return hasRegularScope(); }
  void setShownInBrowser(bool shown);
  static std::string localizedScopeDescriptionForValue(std::optional<std::string_view> scope);
  [[nodiscard]] std::string localizedScopeDescription() const;

  // Times: QNItem+Times.cpp. Whole seconds since 1970.
  [[nodiscard]] std::int64_t createdAtDaysAgo() const;
  [[nodiscard]] std::int64_t updatedAtDaysAgo() const;
  /// Since lastPasswordChange(); a number without a meaning for an item without a password.
  [[nodiscard]] std::int64_t passwordAgeInDays();
  /// kNotFound if it was never used.
  [[nodiscard]] std::int64_t lastUsedDaysAgo() const;
  /// The last retirement of a password, or the creation; 0 without a password.
  [[nodiscard]] std::uint64_t lastPasswordChange();
  [[nodiscard]] std::chrono::sys_seconds createdAtAsDate() const;
  [[nodiscard]] std::chrono::sys_seconds updatedAtAsDate() const;
  [[nodiscard]] std::optional<std::chrono::sys_seconds> lastUsedAtAsDate() const;

  // Row columns. The first three compare and dirty; the rest are plain stores.
  [[nodiscard]] const std::optional<std::string>& categoryUUID() const { return _categoryUUID; }
  void setCategoryUUID(std::optional<std::string> uuid);
  [[nodiscard]] std::optional<std::string> folderUUID() const;
  void setFolderUUID(std::optional<std::string> uuid);
  /// Dirties the row only if there was a folder uuid.
  void clearFolder();
  [[nodiscard]] std::uint64_t folderId() const { return _folderId; }
  void setFolderId(std::uint64_t id) { _folderId = id; }
  [[nodiscard]] std::uint64_t categoryId() const { return _categoryId; }
  void setCategoryId(std::uint64_t id) { _categoryId = id; }
  /// Once it was set or asked for, it stays until a save derives it anew.
  [[nodiscard]] std::string sectionName() override;
  void setSectionName(std::optional<std::string> name);
  [[nodiscard]] std::uint64_t createdAt() const { return _createdAt; }
  void setCreatedAt(std::uint64_t seconds) { _createdAt = seconds; }
  [[nodiscard]] std::uint64_t updatedAt() const override { return _updatedAt; }
  void setUpdatedAt(std::uint64_t seconds) override { _updatedAt = seconds; }
  [[nodiscard]] std::uint64_t txTimestamp() const override { return _txTimestamp; }
  void setTxTimestamp(std::uint64_t timestamp) override { _txTimestamp = timestamp; }
  [[nodiscard]] std::uint64_t lastUsedTimestamp() const { return _lastUsedTimestamp; }
  void setLastUsedTimestamp(std::uint64_t seconds) { _lastUsedTimestamp = seconds; }
  [[nodiscard]] std::int32_t numberOfTimesUsed() const { return _numberOfTimesUsed; }
  void setNumberOfTimesUsed(std::int32_t count) { _numberOfTimesUsed = count; }
  [[nodiscard]] bool inboxItem() const { return _inboxItem; }
  void setInboxItem(bool inbox) { _inboxItem = inbox; }
  /// True until the item is handed to a cache. This library never reads it.
  [[nodiscard]] bool isMutable() const { return _mutable; }
  void setMutable(bool isMutable) { _mutable = isMutable; }
  void addedToCache() { setMutable(false); }

  // One object per row: what two bases declare is the same thing
  void _setOid(std::uint64_t oid) override { QNDatabaseObject::_setOid(oid); }
  [[nodiscard]] std::uint64_t oid() const override { return QNDatabaseObject::oid(); }
  [[nodiscard]] bool dirtyRow() const override { return QNDatabaseObject::dirtyRow(); }
  [[nodiscard]] bool authentic() const override { return QNDatabaseObject::authentic(); }
  void setAuthentic(bool authentic) override { QNDatabaseObject::setAuthentic(authentic); }
  [[nodiscard]] bool trashed() const override { return QNDatabaseObject::trashed(); }
  void setTrashed(bool trashed) override { QNDatabaseObject::setTrashed(trashed); }

  // Merging: QNItem+Merge.cpp, +MergeSections.cpp, +MergeURLs.cpp, +Replace.cpp. What becomes of
  // each part: docs/merge.md. Both items must be loaded, and nobody may use either meanwhile.
  // Fields and addresses of `other` come over as the very objects: let go of `other` afterwards.
  /// Keeps this item and folds in what only `other` has. Gives the item that stays: this one, or a
  /// live `other` in place of a tombstone. Null, with an assertion log, for another category. What
  /// is no item changes nothing, with an error log.
  std::shared_ptr<QNDatabaseObject> mergeWithConflict(
      const std::shared_ptr<QNDatabaseObject>& other) override;
  /// Lets `other` win as it was last saved, in this object, which keeps its row, uuid and key.
  /// Gives the item that stays: this one, its tombstone in place of a tombstone, or `other` in
  /// place of this one's own tombstone. One that doesn't open wins nothing, with an error log.
  std::shared_ptr<QNDatabaseObject> objectByReplacingWith(
      const std::shared_ptr<QNDatabaseObject>& other) override;
  void mergeNotesWithConflict(std::optional<std::string_view> theirs);
  void mergeURLsWithConflict(const std::vector<std::shared_ptr<QNItemURL>>& theirs);
  void mergeSectionsWithConflict(const FieldSections& theirs);
  void mergeConflictSection(const QNFieldSection& theirs);
  void mergePreviouslyUsedPasswordsWithConflict(
      const std::vector<QNPreviouslyUsedPassword>& theirs);
  /// The same number of sections, with the same values in the same order.
  [[nodiscard]] bool hasFieldSectionsEqualTo(const FieldSections& sections);
  [[nodiscard]] static std::shared_ptr<QNItemField> newConflictFieldBasedOnField(
      const QNItemField& field, const QNFieldSection& inSection);
  [[nodiscard]] static std::string uniqueFieldIdentifierForConflict(
      const QNItemField& field, const QNFieldSection& inSection);
  /// What is saved in place of this item to delete it: its row, uuid and wrapped key, and no
  /// content; its save deletes the rows of the addresses. QNItem+Tombstone.cpp
  [[nodiscard]] std::shared_ptr<QNTombstone> makeTombstone();
  /// A login of this item's row and content. Addresses and sections move: let go of this item
  /// afterwards. Attachments stay with the row. Null, with an assertion log and nothing moved, if
  /// overview or details don't open. Nobody may use this item meanwhile. QNItem+Login.cpp
  [[nodiscard]] std::shared_ptr<QNLogin> convertToLogin();

 protected:
  /// May the vault's user see concealed values? QNItem+QuickAccess.cpp
  [[nodiscard]] bool mayReveal() const;
  /// `other` as an item; null, with an error log, if it is none.
  std::shared_ptr<QNItem> itemToMerge(const std::shared_ptr<QNDatabaseObject>& other) const;
  /// An assertion log with both items and their categories, for which `text` has four "{}".
  void reportForeignCategory(MRLogText text, const QNItem& other) const;
  /// Has it content to replace this item's? Otherwise there is an error log.
  bool opensToReplaceThis(QNItem& winner) const;
  /// What notesPlain() gives.
  [[nodiscard]] std::optional<QNSecret> notesSecret();
  /// For a new item: the sections that it starts with, none for nothing.
  void _setFieldSections(std::optional<FieldSections> sections);
  /// Runs after details were parsed, inside the lock.
  virtual void didParseDetails();
  /// Writes what was built from the details back into them.
  virtual void saveObjectsOfDetails();

 private:
  struct OpenState;    // what an item has once somebody opens or edits it
  struct RareColumns;  // columns that most items leave empty
  class SearchTexts;   // what searches have made of the overview
  OpenState& openState() const;
  RareColumns& rareColumns();
  static std::string_view uuidForLogging(const QNSharedString& uuid);

  void unwrapKeyIfNeeded();
  std::optional<JsonObject> decryptedLocalDetails(QNError& error);
  std::optional<JsonObject> decryptedAccountDetails(QNError& error);
  void wrapKey();
  static QNSecretSet backupKeyOf(const QNAESKeyRef& key);
  void writeBackupKeys(const QNSecretSet& keys);
  void updateBackupKeys();
  std::uint64_t lastRetirement();
  void encryptDetails();
  std::optional<Bytes> encryptedDetails(ByteView clear);
  void dropObjectsOfDetails();

  void saveURLs(JsonObject& attributes);
  void restoreDetails(const JsonObject& attributes);
  void restoreURLs(const JsonObject& attributes);
  void removeNullsFromDetails();
  void decodeDetails(QNDecoder& coder);
  void encodeDetails(QNEncoder& coder);
  void adoptDecodedURLs();
  std::optional<JsonObject> fingerprintOverview();
  std::optional<JsonObject> fingerprintDetails();
  std::optional<Bytes> fingerprintText(bool ignoringDocumentFingerprint);
  const JsonObject* documentRecord();
  const JsonObject* customIconRecord();
  static bool hasSigningKey(const JsonObject& fileRecord);

  void serializeDetails();
  void updateStrengthOfGeneratedPassword();
  void updateStrength(const std::optional<QNSecret>& present);
  void retireOriginalPassword(const std::optional<QNSecret>& present);
  void _savePreviouslyUsedPasswords();
  void storeFieldSections(Json& stored);
  void mergeContentOf(QNItem& other);
  void mergeField(const std::shared_ptr<QNItemField>& theirs, const QNFieldSection& ofSection);
  [[nodiscard]] bool hasFieldOfSameValue(const QNItemField& theirs);
  std::shared_ptr<QNFieldSection> sectionLike(const QNFieldSection& theirs);
  void copyColumnsOf(const QNItem& other);
  void copyContentOf(QNItem& other);
  void forgetOriginalPasswordThatIsHistory();
  void replaceURLsWithThoseOf(QNItem& other);
  void keepRowsOfURLs();
  void buryURLsOf(QNItem& item);
  void copyColumnsToLogin(QNLogin& login) const;
  void copyOverviewToLogin(QNLogin& login);
  void moveDetailsToLogin(QNLogin& login);
  template <class Find>
  std::shared_ptr<QNItemField> firstField(const Find& find);
  template <class Test>
  bool anyField(const Test& test);

  // The monitor is held, and as long as the texts are looked at.
  SearchTexts& searchTexts();
  SearchTexts& searchTextsWithOverview(bool withBlanksOfEmptyParts);
  SearchTexts& searchTextsWithWords();
  SearchTexts& keepSearchTexts(SearchTexts* texts);
  void dropSearchTexts();
  void dropOverviewForSearch();
  void dropSearchWords();
  void fetchForSearch() const noexcept;
  void fetchSearchTexts() const noexcept;
  [[nodiscard]] bool hasLowercaseUUID(std::string_view string) const;
  [[nodiscard]] bool titleMatches(const QNSearchPredicate& test);
  [[nodiscard]] bool overviewMatches(const QNSearchPredicate& test);
  [[nodiscard]] bool contentsMatches(const QNSearchPredicate& test);
  [[nodiscard]] bool matches(const QNSearchPredicate& test, QNSearchLevel level);
  [[nodiscard]] bool matchesAll(const SearchStrings& strings, QNSearchLevel level);
  [[nodiscard]] bool matchesHelperSearchWord(std::string_view string, bool prefixMatch);
  [[nodiscard]] bool hasHostWith(std::string_view string);
  void toggleTagWhateverItsCase(std::string_view tag);

  [[nodiscard]] bool URLsAreAvailable() const;
  [[nodiscard]] static bool allOpen(const std::vector<std::shared_ptr<QNItemURL>>& urls);
  void reportUnsharedItem() const;
  std::vector<std::shared_ptr<QNItemURL>>& mutableURLs();
  void dropURLCaches();
  void requireLoadedAttachments() const;
  [[nodiscard]] bool belongsToAccount() const;

  // Small ones first: they fill up what stands before them.
  bool _inboxItem = false;
  bool _mutable = true;
  bool _backupKeysDisabled = false;
  std::int32_t _numberOfAttachments = 0;
  std::int32_t _numberOfTimesUsed = 0;
  QNSharedString _uuid;
  std::atomic<SearchTexts*> _search{nullptr};  // owned; made at the first search
  std::optional<std::string> _categoryUUID;
  std::optional<std::string> _sectionName;
  std::uint64_t _txTimestamp = 0;
  std::uint64_t _lastUsedTimestamp = 0;
  std::uint64_t _createdAt = 0;
  std::uint64_t _updatedAt = 0;
  std::uint64_t _folderId = 0;
  std::uint64_t _categoryId = 0;
  std::uint64_t _faveIndex = 0;
  std::shared_ptr<const QNItemSpecifier> _itemSpecifier;  // made at the first need
  mutable std::unique_ptr<OpenState> _open;  // made at the first need, under the monitor
  std::unique_ptr<RareColumns> _rare;
};

}  // namespace quillon
