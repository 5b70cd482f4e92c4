#include "cli/arguments/QNArguments.h"

#include <array>

namespace quillon {
namespace {

// In the order of QNFieldName.
constexpr std::array<std::string_view, 5> kNames = {"title", "username", "password", "url",
                                                    "notes"};

}  // namespace

std::optional<QNFieldName> fieldNamed(std::string_view name) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (kNames[i] == name) return static_cast<QNFieldName>(i);
  }
  return std::nullopt;
}

std::string_view nameOfField(QNFieldName field) {
  return kNames[static_cast<std::size_t>(field)];
}

}  // namespace quillon
