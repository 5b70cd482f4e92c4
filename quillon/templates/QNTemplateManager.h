#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// How a template presents its category. The names are in the user's language; the keys of its
/// string table stand in for names that it doesn't have.
struct QNTemplatePresentation {
  std::string localizedTitle = "__title__";
  std::string localizedPluralTitle = "__pluralTitle__";
  std::optional<std::string> listIconName;
  std::optional<std::string> detailIconName;
  bool hidden = false;  // not offered for new items
  /// Its other texts in the user's language.
  std::map<std::string, std::string, std::less<>> localizedStrings = {};
};

/// What new items of a category are built from.
class QNTemplate {
 public:
  explicit QNTemplate(std::string uuid, QNTemplatePresentation presentation = {})
      : _uuid(std::move(uuid)), _presentation(std::move(presentation)) {}
  [[nodiscard]] const std::string& uuid() const { return _uuid; }
  [[nodiscard]] const std::string& localizedTitle() const { return _presentation.localizedTitle; }
  [[nodiscard]] const std::string& localizedPluralTitle() const {
    return _presentation.localizedPluralTitle;
  }
  [[nodiscard]] const std::optional<std::string>& listIconName() const {
    return _presentation.listIconName;
  }
  [[nodiscard]] const std::optional<std::string>& detailIconName() const {
    return _presentation.detailIconName;
  }
  [[nodiscard]] bool hidden() const { return _presentation.hidden; }
  /// The text for a key of its string table; the key itself if there is none.
  [[nodiscard]] std::string localizedStringForKey(std::string_view key) const {
    const auto found = _presentation.localizedStrings.find(key);
    return found == _presentation.localizedStrings.end() ? std::string(key) : found->second;
  }

 private:
  std::string _uuid;
  QNTemplatePresentation _presentation;
};

/// The templates of the process, by category identifier. Template files aren't read yet, so it
/// holds what is added by hand.
class QNTemplateManager final {
 public:
  static QNTemplateManager& sharedManager();
  [[nodiscard]] std::shared_ptr<QNTemplate> findTemplateWithUUID(
      std::optional<std::string_view> uuid) const;
  [[nodiscard]] std::shared_ptr<QNTemplate> templateWithUUID(
      std::optional<std::string_view> uuid) const {
    return findTemplateWithUUID(uuid);
  }
  [[nodiscard]] std::vector<std::shared_ptr<QNTemplate>> templates() const;
  void addTemplate(const std::shared_ptr<QNTemplate>& added);
  void removeTemplateWithUUID(std::string_view uuid);

 private:
  mutable std::mutex _mutex;
  std::map<std::string, std::shared_ptr<QNTemplate>, std::less<>> _templates;
};

}  // namespace quillon
