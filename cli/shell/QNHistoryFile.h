#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// Lines of former sessions, one a line, the newest last; for their owner alone (0600, in a folder
/// of 0700). What is written must have gone through historyLineOf(). Several shells may write to
/// one file; what one writes while another drops old lines may be lost.
class QNHistoryFile final {
 public:
  static constexpr std::size_t kMaxLines = 1000;

  explicit QNHistoryFile(std::filesystem::path file) : _file(std::move(file)) {}
  /// "shell-history" beside the default store; empty if nobody knows where.
  static std::filesystem::path defaultPlace();

  /// The newest lines, at most kMaxLines; older ones are dropped from the file once it has more
  /// than twice as many. What a terminal might obey isn't among them. None if there is no file.
  /// Error with exit code 7 for one that can't be read, or that isn't a plain file of this user.
  QNResult<std::vector<std::string>> read();
  /// Error with exit code 7.
  QNResult<QNDone> append(std::string_view line);

 private:
  QNResult<QNDone> replaceWith(const std::vector<std::string>& lines);
  std::filesystem::path _file;
};

}  // namespace quillon
