#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNItem.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

void QNItem::requireLoadedAttachments() const {
  if (loadingAttachments() || attachmentsLoaded()) return;
  MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                     "Item attachments must be loaded");
}

// An account vault keeps files as fields, and answers without the check.
std::vector<std::shared_ptr<QNItemAttachment>> QNItem::attachmentsIncludeTombstones(
    bool /*include*/) {
  if (profileType() != kProfileTypeAccountVault) requireLoadedAttachments();
  return {};
}

std::vector<std::shared_ptr<QNItemAttachment>> QNItem::attachmentsAwaitingBurial() {
  if (profileType() != kProfileTypeAccountVault) requireLoadedAttachments();
  return {};
}

std::int32_t QNItem::numberOfAttachments() {
  if (profileType() != kProfileTypeAccountVault) return _numberOfAttachments;
  return static_cast<std::int32_t>(h9Attachments().size());
}

std::vector<std::shared_ptr<QNItemField>> QNItem::h9Attachments() {
  const std::lock_guard lock(monitor());
  std::vector<std::shared_ptr<QNItemField>> files;
  for (const auto& section : fieldSections()) {
    for (const auto& field : section->fields()) {
      if (field->isFileField()) files.push_back(field);
    }
  }
  return files;
}

}  // namespace quillon
