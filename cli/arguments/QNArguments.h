#pragma once
// What the user asked for, as values: one type for each command. Made by parseArguments().

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
};

struct QNGlobalArguments {
  std::filesystem::path store;
  std::string vault;  // by name; empty for the first one, which every store has
  bool json = false;
  QNPasswordSource password;
};

/// Where the password of an item comes from.
enum class QNItemPassword { none, prompt, standardInput, generate };

/// What `edit --set` and `show --field` name.
enum class QNFieldName { title, username, password, url, notes };
std::optional<QNFieldName> fieldNamed(std::string_view name);
std::string_view nameOfField(QNFieldName field);

struct QNInitArguments {
  std::optional<std::string> hint;
};
struct QNImportArguments {
  std::filesystem::path file;
  bool dryRun = false;
};
enum class QNListOrder { title, updated, created };
struct QNListArguments {
  bool trashed = false;
  bool withUUIDs = false;
  QNListOrder order = QNListOrder::title;
};
/// Either words or an address.
struct QNFindArguments {
  std::vector<std::string> words;
  std::optional<std::string> url;
  bool withUUIDs = false;
};
struct QNShowArguments {
  std::string item;
  bool reveal = false;
  std::optional<QNFieldName> field;
};
struct QNAddLoginArguments {
  std::string title;
  std::optional<std::string> username;
  std::vector<std::string> urls;
  std::optional<std::string> notes;
  QNItemPassword password = QNItemPassword::none;
  bool favorite = false;
};
struct QNFieldEdit {
  QNFieldName field{};
  std::string value;
};
struct QNEditArguments {
  std::string item;
  std::vector<QNFieldEdit> edits;
  QNItemPassword password = QNItemPassword::none;
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
struct QNPasswdArguments {
  QNPasswordSource newPassword;
};
struct QNInfoArguments {};
struct QNCheckArguments {};
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
  std::variant<QNTextArguments, QNInitArguments, QNImportArguments, QNListArguments,
               QNFindArguments, QNShowArguments, QNAddLoginArguments, QNEditArguments,
               QNTrashArguments, QNRestoreArguments, QNDeleteArguments, QNPasswdArguments,
               QNInfoArguments, QNCheckArguments, QNBackupArguments, QNOTPArguments,
               QNVaultListArguments, QNVaultAddArguments, QNVaultIconArguments,
               QNVaultColorArguments, QNGenerateArguments, QNCompletionArguments>
      command;
};

}  // namespace quillon
