#pragma once
// What the user asked for, as values: one type for each command. Made by parseArguments().

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "quillon/platform/passwords/QNSPG.h"

namespace quillon {

/// Where a password comes from. Never an argument: every user of the machine sees those.
struct QNPasswordSource {
  enum class Kind { terminal, file, descriptor, standardInput };
  Kind kind = Kind::terminal;
  std::filesystem::path file;
  int descriptor = -1;
  std::string prefix;  // of its options: "password" for --password-file and the others
};

class QNKeptVaults;

struct QNGlobalArguments {
  std::filesystem::path store;
  std::string vault;  // by name; empty for the first one, which every store has
  bool json = false;
  /// A BCP 47 tag; empty for the language of the environment.
  std::string language;
  QNPasswordSource password;
  /// What the shell that the command was typed in keeps open; null outside one.
  QNKeptVaults* kept = nullptr;
};

/// Where the password of an item comes from.
enum class QNItemPassword { none, prompt, standardInput, generate };

/// What every item has, or a login, outside its fields, as `--set` and `--field` name it.
enum class QNFieldName { title, username, password, url, notes };
std::optional<QNFieldName> fieldNamed(std::string_view name);
std::string_view nameOfField(QNFieldName field);

/// Why a secret in an argument is refused.
inline constexpr const char* kNoSecretArguments =
    "a password isn't taken from an argument, which every user of the machine could read: leave "
    "it out to be asked, or give \"-\" to have it read from standard input";

/// A value for a field, as it was given. An argument of "-" means standard input where the field
/// holds a secret, and is a value like any other elsewhere.
struct QNGivenValue {
  enum class From { argument, prompt, file };
  From from = From::argument;
  std::string text;
  std::filesystem::path file;
};
/// Which field it is for, as the user names it.
struct QNFieldSetting {
  std::string field;
  QNGivenValue value;
};
/// A field to be made, in the section of that identifier or title.
struct QNFieldAddition {
  std::string section;  // empty for the one without a name
  std::string title;
  std::string kind;
  QNGivenValue value;
};
/// Changes to the content of one item: fields are added, then set, then removed.
struct QNItemEdits {
  std::vector<std::string> tags;
  std::vector<std::string> tagsToRemove;
  std::optional<bool> favorite;
  std::vector<QNFieldAddition> additions;
  std::vector<QNFieldSetting> settings;
  std::vector<std::string> removals;
  bool generate = false;  // a new password
  [[nodiscard]] bool empty() const {
    return tags.empty() && tagsToRemove.empty() && !favorite && additions.empty() &&
           settings.empty() && removals.empty() && !generate;
  }
};

struct QNInitArguments {
  std::optional<std::string> hint;
};
struct QNImportArguments {
  std::filesystem::path file;
  bool dryRun = false;
};
/// Which items a listing shows: those that all of this holds for.
struct QNFilterArguments {
  std::optional<std::string> category;
  std::optional<std::string> tag;
  std::optional<std::string> folder;
  bool favorites = false;
  bool nested = true;  // of a tag or folder also what lies below it
};
enum class QNListOrder { title, updated, created, category, strength };
struct QNListArguments {
  QNFilterArguments filter;
  bool trashed = false;
  bool withUUIDs = false;
  bool sections = false;
  QNListOrder order = QNListOrder::title;
};
/// Where words are looked for; each place costs more than the one before.
enum class QNFindLevel { title, overview, words, contents };
/// Either words or a predicate.
struct QNFindArguments {
  QNFilterArguments filter;
  std::vector<std::string> words;
  QNFindLevel level = QNFindLevel::overview;
  std::optional<std::string> predicate;
  bool withUUIDs = false;
};
/// The items of a web page.
struct QNForArguments {
  QNFilterArguments filter;
  std::string url;
  bool withUUIDs = false;
};
struct QNShowArguments {
  std::string item;
  bool reveal = false;
  std::optional<std::string> field;
};
/// An item of any category.
struct QNAddArguments {
  std::string category;
  std::string title;
  std::optional<std::string> notes;
  bool favorite = false;
  QNItemEdits edits;
};
struct QNAddLoginArguments {
  std::string title;
  std::optional<std::string> username;
  std::vector<std::string> urls;
  std::optional<std::string> notes;
  std::vector<std::string> tags;
  QNItemPassword password = QNItemPassword::none;
  bool favorite = false;
};
struct QNEditArguments {
  std::string item;
  QNItemEdits edits;
};
struct QNTrashArguments {
  std::string item;
};
struct QNRestoreArguments {
  std::string item;
};
struct QNDeleteArguments {
  std::string item;
  bool force = false;  // also an item that isn't in the trash
};
struct QNFavoriteArguments {
  std::string item;
  bool off = false;
};
/// Into a folder, or out of any.
struct QNMoveArguments {
  std::string item;
  std::optional<std::string> folder;
};
struct QNTagListArguments {};
struct QNTagAddArguments {
  std::string tag;
  std::vector<std::string> items;
};
/// From those items, or from every item that has it.
struct QNTagRemoveArguments {
  std::string tag;
  std::vector<std::string> items;
  bool all = false;
  bool nested = false;  // also the tags below it
};
struct QNTagRenameArguments {
  std::string tag;
  std::string name;
};
struct QNFolderListArguments {
  bool withUUIDs = false;
};
struct QNFolderAddArguments {
  std::string path;
};
/// Into another folder, or to the top.
struct QNFolderMoveArguments {
  std::string folder;
  std::optional<std::string> parent;
};
struct QNFolderRenameArguments {
  std::string folder;
  std::string title;
};
struct QNFolderDeleteArguments {
  std::string folder;
};
struct QNSmartListArguments {
  bool withUUIDs = false;
};
struct QNSmartAddArguments {
  std::string path;
  std::string predicate;
};
struct QNSmartShowArguments {
  std::string folder;
  bool withUUIDs = false;
  bool sections = false;
  QNListOrder order = QNListOrder::title;
};
struct QNSmartDeleteArguments {
  std::string folder;
};
struct QNHistoryArguments {
  std::string item;
  bool reveal = false;
};
struct QNDuplicateArguments {
  std::string item;
};
struct QNFingerprintArguments {
  std::string item;
};
struct QNCopyArguments {
  std::string item;
  std::string vault;            // where it goes
  std::filesystem::path store;  // empty for the store that the item is in
  QNPasswordSource password;    // of that other store
};
struct QNExportArguments {
  std::filesystem::path file;  // empty for standard output
  bool plaintext = false;      // must be given
  bool force = false;          // even to a terminal
};
struct QNMergeArguments {
  std::filesystem::path other;
  std::string vault;          // of the other store; empty for the name of the own one
  QNPasswordSource password;  // of the other store
  bool dryRun = false;
};
struct QNConflictsArguments {
  bool reveal = false;
};
/// Whose value an item gets: what it has, or what a merge put aside.
enum class QNConflictSide { mine, theirs };
struct QNConflictChoice {
  std::string field;
  QNConflictSide side = QNConflictSide::mine;
};
/// Either one side for all of them, or one for each field that is named.
struct QNResolveArguments {
  std::string item;
  std::optional<QNConflictSide> keep;
  std::vector<QNConflictChoice> choices;
};
struct QNPasswdArguments {
  QNPasswordSource newPassword;
};
struct QNCategoriesArguments {};
struct QNTemplateArguments {
  std::string category;
};
struct QNInfoArguments {};
struct QNCheckArguments {
  bool repair = false;  // folders that lie nowhere
};
struct QNBackupArguments {
  std::filesystem::path file;
};
/// Characters, unless words or the digits of a PIN are asked for.
struct QNGenerateArguments {
  QNSPG::Characters recipe;
  std::optional<QNSPG::Words> words;
  std::optional<std::uint32_t> pinDigits;
  std::uint32_t count = 1;
};
/// Of an item, or of a URL that comes from an argument, standard input ("-") or a file.
struct QNOTPArguments {
  std::optional<std::string> item;
  std::optional<std::string> url;
  std::filesystem::path urlFile;
  bool drawsQRCode = false;
  std::optional<std::int64_t> at;  // seconds since 1970; now if there is none
};
struct QNVaultListArguments {};
struct QNVaultAddArguments {
  std::string name;
  std::optional<std::string> hint;
  bool hasOwnPassword = false;
  QNPasswordSource ownPassword;
};
/// Tells of the icon if neither is asked.
struct QNVaultIconArguments {
  std::filesystem::path set;
  std::filesystem::path save;
  bool clear = false;
};
struct QNVaultColorArguments {
  std::optional<std::string> set;  // "#RRGGBB", or without the "#"
  bool clear = false;
};
struct QNShellArguments {
  std::chrono::seconds idle{300};  // until the vault is locked; 0 for never
  bool keepsHistory = true;
};
/// Prints the chosen field or copies it.
struct QNPickArguments {
  std::vector<std::string> words;
  QNFilterArguments filter;
  enum class Use { print, copy };
  Use use = Use::print;
  std::optional<std::string> field;  // chosen in the finder if there is none
  std::string clipboard;             // a program, or "terminal"; empty for what the desktop has
  std::chrono::seconds clear{45};    // until the clipboard is cleared; 0 for never
};
struct QNCompletionArguments {
  std::string shell;
};
/// A help or version text that was asked for.
struct QNTextArguments {
  std::string name;
  std::string text;
};

struct QNArguments {
  QNGlobalArguments global;
  std::variant<
      QNTextArguments, QNInitArguments, QNImportArguments, QNExportArguments, QNListArguments,
      QNFindArguments, QNForArguments, QNShowArguments, QNAddArguments, QNAddLoginArguments,
      QNEditArguments, QNTrashArguments, QNRestoreArguments, QNDeleteArguments, QNFavoriteArguments,
      QNMoveArguments, QNTagListArguments, QNTagAddArguments, QNTagRemoveArguments,
      QNTagRenameArguments, QNFolderListArguments, QNFolderAddArguments, QNFolderMoveArguments,
      QNFolderRenameArguments, QNFolderDeleteArguments, QNSmartListArguments, QNSmartAddArguments,
      QNSmartShowArguments, QNSmartDeleteArguments, QNHistoryArguments, QNDuplicateArguments,
      QNCopyArguments, QNFingerprintArguments, QNCategoriesArguments, QNTemplateArguments,
      QNPasswdArguments, QNInfoArguments, QNCheckArguments, QNBackupArguments, QNMergeArguments,
      QNConflictsArguments, QNResolveArguments, QNVaultListArguments, QNVaultAddArguments,
      QNVaultIconArguments, QNVaultColorArguments, QNOTPArguments, QNGenerateArguments,
      QNCompletionArguments, QNShellArguments, QNPickArguments>
      command;
};

}  // namespace quillon
