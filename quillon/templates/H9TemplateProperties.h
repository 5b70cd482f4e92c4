#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quillon/platform/archive/QNCoding.h"
#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// What a server says of a template beside its definition.
class H9TemplateProperties final : public QNCoding {
 public:
  /// Active, hidden, deleted.
  enum State : std::int64_t { kActive = 0, kHidden = 1, kDeleted = 2 };

  H9TemplateProperties() = default;
  /// Null leaves everything empty and active.
  explicit H9TemplateProperties(const JsonObject* initWithTemplateDictionary);
  /// The identifier isn't archived: it comes back empty.
  explicit H9TemplateProperties(QNDecoder& coder);
  void encodeWithCoder(QNEncoder& coder) override;
  [[nodiscard]] std::string_view className() const override { return "H9TemplateProperties"; }

  std::optional<std::string> title;
  std::optional<std::string> uuid;
  std::optional<std::string> pluralTitle;
  /// Comes from archives alone.
  std::optional<std::string> templateDescription;
  std::int64_t state = kActive;
};

}  // namespace quillon
