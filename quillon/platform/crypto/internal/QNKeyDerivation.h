#pragma once
// How a raw key is made from key data and from a password.

#include <cstdint>
#include <string_view>

#include "quillon/platform/memory/QNBytes.h"
#include "quillon/platform/memory/QNLockedMemory.h"

namespace quillon {

/// `size` bytes by HKDF (RFC 5869). `digest` is OpenSSL's name of the hash: "SHA512" for keys. An
/// empty salt is no salt. Empty if OpenSSL refuses: no key material, or too large a size.
QNKeyBytes hkdf(const char* digest, ByteView keyMaterial, ByteView salt, ByteView info,
                std::size_t size);

/// `size` bytes by Argon2id version 1.3: three passes, one lane, `kibibytes` of memory, over the
/// NFKD form of the password. The salt must be of 16 bytes. Empty if the password isn't UTF-8, or
/// if the memory can't be had.
QNKeyBytes argon2id(std::string_view password, ByteView salt, std::uint32_t kibibytes,
                    std::size_t size);

/// Calls of argon2id() so far in this process, whatever came of them: what an unlock costs.
std::uint64_t numberOfPasswordDerivations() noexcept;

/// The iteration count for about half a second, when the least calibrated count took `seconds`.
std::uint32_t calibratedIterations(double seconds);

}  // namespace quillon
