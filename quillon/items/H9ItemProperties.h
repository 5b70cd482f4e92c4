#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "quillon/platform/archive/QNCoding.h"

namespace quillon {

// Keys in an archive
inline constexpr std::string_view kItemVersion = "itemVersion";
inline constexpr std::string_view kLocalEditCount = "localEditCount";
inline constexpr std::string_view kRejectedBuildVersion = "rejectedBuildVersion";
inline constexpr std::string_view kRejectionReason = "rejectionReason";
inline constexpr std::string_view kChangerUUID = "changerUUID";

/// Bookkeeping of an item of an account vault: which server version it is, how often it was edited
/// here since, who changed it last, and why the server refused an edit.
class H9ItemProperties final : public QNCoding {
 public:
  H9ItemProperties() = default;
  explicit H9ItemProperties(QNDecoder& coder);
  [[nodiscard]] std::string_view className() const override { return "H9ItemProperties"; }

  [[nodiscard]] std::uint64_t itemVersion() const { return _itemVersion; }
  void setItemVersion(std::uint64_t version) { _itemVersion = version; }
  void _setItemVersion(std::uint64_t version) { setItemVersion(version); }
  [[nodiscard]] std::uint64_t localEditCount() const { return _localEditCount; }
  void setLocalEditCount(std::uint64_t count) { _localEditCount = count; }
  void _setLocalEditCount(std::uint64_t count) { setLocalEditCount(count); }
  /// The build of the application whose edit the server refused.
  [[nodiscard]] std::uint64_t rejectedBuildVersion() const { return _rejectedBuildVersion; }
  void setRejectedBuildVersion(std::uint64_t version) { _rejectedBuildVersion = version; }
  [[nodiscard]] const std::optional<std::string>& rejectionReason() const {
    return _rejectionReason;
  }
  void setRejectionReason(std::optional<std::string> reason) {
    _rejectionReason = std::move(reason);
  }
  [[nodiscard]] const std::optional<std::string>& changerUUID() const { return _changerUUID; }
  void setChangerUUID(std::optional<std::string> uuid) { _changerUUID = std::move(uuid); }
  void _setChangerUUID(std::optional<std::string> uuid) { setChangerUUID(std::move(uuid)); }

  void encodeWithCoder(QNEncoder& coder) override;

 private:
  std::uint64_t _itemVersion = 0;
  std::uint64_t _localEditCount = 0;
  std::uint64_t _rejectedBuildVersion = 0;
  std::optional<std::string> _rejectionReason;
  std::optional<std::string> _changerUUID;
};

}  // namespace quillon
