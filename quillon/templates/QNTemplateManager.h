#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// What new items of a category are built from.
class QNTemplate {
 public:
  explicit QNTemplate(std::string uuid) : _uuid(std::move(uuid)) {}
  [[nodiscard]] const std::string& uuid() const { return _uuid; }

 private:
  std::string _uuid;
};

/// The templates of the process, by category identifier. Template files aren't read yet, so it
/// holds what is added by hand.
class QNTemplateManager final {
 public:
  static QNTemplateManager& sharedManager();
  [[nodiscard]] std::shared_ptr<QNTemplate> findTemplateWithUUID(
      std::optional<std::string_view> uuid) const;
  [[nodiscard]] std::vector<std::shared_ptr<QNTemplate>> templates() const;
  void addTemplate(const std::shared_ptr<QNTemplate>& added);
  void removeTemplateWithUUID(std::string_view uuid);

 private:
  mutable std::mutex _mutex;
  std::map<std::string, std::shared_ptr<QNTemplate>, std::less<>> _templates;
};

}  // namespace quillon
