#pragma once
// Category identifiers. Part of every stored vault: three characters, byte exact.

#include <string_view>

namespace quillon {

inline constexpr std::string_view QNCategoryUUIDLogin = "001";
inline constexpr std::string_view QNCategoryUUIDCreditCard = "002";
inline constexpr std::string_view QNCategoryUUIDSecureNote = "003";
inline constexpr std::string_view QNCategoryUUIDIdentity = "004";
inline constexpr std::string_view QNCategoryUUIDPassword = "005";
inline constexpr std::string_view QNCategoryUUIDDocument = "006";
inline constexpr std::string_view QNCategoryUUIDTombstone = "099";
inline constexpr std::string_view QNCategoryUUIDSoftwareLicense = "100";
inline constexpr std::string_view QNCategoryUUIDBankAccount = "101";
inline constexpr std::string_view QNCategoryUUIDDatabase = "102";
inline constexpr std::string_view QNCategoryUUIDDriverLicense = "103";
inline constexpr std::string_view QNCategoryUUIDOutdoorLicense = "104";
inline constexpr std::string_view QNCategoryUUIDMembership = "105";
inline constexpr std::string_view QNCategoryUUIDPassport = "106";
inline constexpr std::string_view QNCategoryUUIDRewards = "107";
inline constexpr std::string_view QNCategoryUUIDSocialSecurityNumber = "108";
inline constexpr std::string_view QNCategoryUUIDRouter = "109";
inline constexpr std::string_view QNCategoryUUIDServer = "110";
inline constexpr std::string_view QNCategoryUUIDEmail = "111";
inline constexpr std::string_view QNCategoryUUIDAPICredential = "112";
inline constexpr std::string_view QNCategoryUUIDMedicalRecord = "113";
inline constexpr std::string_view QNCategoryUUIDSSHKey = "114";
inline constexpr std::string_view QNCategoryUUIDCryptoWallet = "115";
inline constexpr std::string_view QNCategoryUUIDPrivacyComLogin = "800";
inline constexpr std::string_view QNCategoryUUIDPlaceholder = "0??";

}  // namespace quillon
