#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillon {

/// Texts of the user interface. The English text is the key; a missing translation shows it.
/// Tables are `Locales/LANGUAGE.lproj/Localizable.strings` in the resource folder: lines of
/// "key" = "text";, UTF-8, with comments. A table is read once, at the first text asked of its
/// language; "pt-BR" falls back on "pt", and then on the key. Any thread may use it, a sink of the
/// log included: files are read and broken lines reported outside the lock.
class QNLocalization final {
 public:
  static QNLocalization& sharedLocalization();

  /// A BCP 47 tag. Starts as the current locale.
  [[nodiscard]] std::string language() const;
  void setLanguage(std::string_view tag);

  /// `comment` is for the translator only.
  [[nodiscard]] std::string localizedStringForKey(std::string_view key,
                                                  std::string_view comment = {}) const;
  /// The same in a language that was asked for before: for several texts that must agree, which
  /// another thread's setLanguage() would otherwise part.
  [[nodiscard]] std::string localizedStringForKey(std::string_view key, std::string_view comment,
                                                  std::string_view language) const;

  /// Letters, digits and hyphens. A tag names a folder, so nothing that could lead to another one
  /// is looked up.
  static bool isLanguageTag(std::string_view text);

  // Reading: QNLocalization+Strings.cpp
  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const noexcept {
      return std::hash<std::string_view>()(key);
    }
  };
  using Table = std::unordered_map<std::string, std::string, KeyHash, std::equal_to<>>;
  /// Reads one table's text. A broken line gives a log line, with `name` in it, and is skipped.
  static Table parseStrings(std::string_view text, std::string_view name);

 private:
  struct Strings {
    Table table;
    std::vector<std::ptrdiff_t> brokenLines;  // from 1
  };
  QNLocalization();
  static Strings readStrings(std::string_view text);
  static Strings stringsOfLanguage(const std::string& language);
  static void reportBrokenLines(const Strings& strings, std::string_view name);
  const Table& tableFor(const std::string& language) const;
  const Table* knownTable(const std::string& language) const;

  mutable std::mutex _mutex;  // guards both
  std::string _language;
  mutable std::map<std::string, Table> _tables;  // none changes or goes once it is in
};

/// The text for an English key in the user's language.
std::string QNLocalizedString(std::string_view key);
/// The same, with its one placeholder ("%@" or "%jd") filled in.
std::string localizedFormat(std::string_view key, std::string_view argument);
/// The same with two "%@", which keep their order in every language.
std::string localizedFormat(std::string_view key, std::string_view first, std::string_view second);

}  // namespace quillon
