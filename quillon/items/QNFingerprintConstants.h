#pragma once
// Keys of the document that an item's fingerprint is made of. A change of any makes other
// fingerprints of the same content.

#include <string_view>

namespace quillon {

inline constexpr std::string_view FingerprintCategoryUUID = "templateUUID";
inline constexpr std::string_view FingerprintFaveIndex = "faveIndex";
inline constexpr std::string_view FingerprintTrashed = "trashed";
inline constexpr std::string_view FingerprintHasCustomIcon = "hasCustomIcon";
inline constexpr std::string_view FingerprintDocumentFingerprint = "documentFingerprint";
inline constexpr std::string_view FingerprintOverview = "overview";
inline constexpr std::string_view FingerprintDetails = "details";

// In the overview
inline constexpr std::string_view FingerprintOverviewTags = "tags";
inline constexpr std::string_view FingerprintOverviewIcons = "icons";
inline constexpr std::string_view FingerprintOverviewAdditionalInformation = "ainfo";
inline constexpr std::string_view FingerprintOverviewIcon = "icon";
inline constexpr std::string_view FingerprintOverviewIconHash = "iconHash";
inline constexpr std::string_view FingerprintOverviewURLs = "urls";
inline constexpr std::string_view FingerprintOverviewScope = "scope";

// In the details
inline constexpr std::string_view FingerprintDetailsBackupKeys = "backupKeys";
inline constexpr std::string_view FingerprintDetailsLoginFields = "fields";
inline constexpr std::string_view FingerprintDetailsSections = "sections";
inline constexpr std::string_view FingerprintDetailsSectionFields = "fields";
inline constexpr std::string_view FingerprintDetailsSectionFieldConcealedKey = "k";
inline constexpr std::string_view FingerprintDetailsSectionFieldConcealedValue = "concealed";
inline constexpr std::string_view FingerprintDetailsSectionFieldTOTPKey = "n";
inline constexpr std::string_view FingerprintDetailsSectionFieldTOTPValuePrefix = "TOTP_";
inline constexpr std::string_view FingerprintDetailsAttachments = "attachments";
inline constexpr std::string_view FingerprintDetailsAttachmentsFilename = "filename";
inline constexpr std::string_view FingerprintDetailsAttachmentsContentHash = "contentHash";
inline constexpr std::string_view FingerprintDetailsAttachmentsIconHash = "iconHash";

}  // namespace quillon
