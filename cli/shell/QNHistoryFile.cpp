#include "cli/shell/QNHistoryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "cli/QNToolError.h"
#include "cli/output/QNNewFile.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNInput.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{16} << 20;

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    if (!line.empty() && isUTF8(line) && shownText(line) == line) lines.emplace_back(line);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return lines;
}

// A link, which isn't followed, might lead into a file of somebody else; a pipe isn't waited for.
int openPlainly(const std::filesystem::path& file, int flags) {
  return ::open(file.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
}

QNResult<QNDone> requirePlain(int descriptor, const std::filesystem::path& file) {
  struct stat about {};
  if (::fstat(descriptor, &about) != 0) return fileError(file, errno);
  if (S_ISREG(about.st_mode) && about.st_uid == ::geteuid()) return QNDone{};
  return fileError(file, EPERM);
}

void makeFolder(const std::filesystem::path& folder) {
  if (folder.has_parent_path() && !std::filesystem::exists(folder.parent_path())) {
    makeFolder(folder.parent_path());
  }
  ::mkdir(folder.c_str(), 0700);  // a failure shows when the file is opened
}

}  // namespace

std::filesystem::path QNHistoryFile::defaultPlace() {
  const std::filesystem::path data = currentUser().libraryFolder;
  return data.empty() ? data : data / "quillon" / "shell-history";
}

QNResult<std::vector<std::string>> QNHistoryFile::read() {
  const int descriptor = openPlainly(_file, O_RDONLY);
  if (descriptor < 0) {
    if (errno == ENOENT) return std::vector<std::string>();
    return fileError(_file, errno);
  }
  const auto plain = requirePlain(descriptor, _file);
  const auto content = plain ? readOpenFile(descriptor, _file, kMaxBytes) : plain.error();
  ::close(descriptor);
  if (!content) return content.error();
  std::vector<std::string> lines = linesOf(textOf(content.value()));
  if (lines.size() <= kMaxLines) return lines;
  const bool isLong = lines.size() > 2 * kMaxLines;
  lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(kMaxLines));
  if (isLong) {
    const auto replaced = replaceWith(lines);
    if (!replaced) return replaced.error();
  }
  return lines;
}

QNResult<QNDone> QNHistoryFile::append(std::string_view line) {
  makeFolder(_file.parent_path());
  const int descriptor = openPlainly(_file, O_WRONLY | O_CREAT | O_APPEND);
  if (descriptor < 0) return fileError(_file, errno);
  QNResult<QNDone> done = requirePlain(descriptor, _file);
  // One write, so that the lines of two shells don't mix.
  const std::string whole = std::string(line) + '\n';
  if (done &&
      (::fchmod(descriptor, 0600) != 0 || ::write(descriptor, whole.data(), whole.size()) < 0)) {
    done = fileError(_file, errno);
  }
  ::close(descriptor);
  return done;
}

QNResult<QNDone> QNHistoryFile::replaceWith(const std::vector<std::string>& lines) {
  std::string whole;
  for (const std::string& line : lines) whole += line + '\n';
  std::filesystem::path newer = _file;
  newer += ".new";
  std::error_code ignored;
  std::filesystem::remove(newer, ignored);  // of a shell that was killed
  const auto written = writeNewFile(newer, bytesOf(whole));
  if (!written) return written;
  if (::rename(newer.c_str(), _file.c_str()) != 0) return fileError(_file, errno);
  return QNDone{};
}

}  // namespace quillon
