#include "cli/terminal/QNInput.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "cli/QNToolError.h"
#include "cli/terminal/QNHeldSignals.h"

namespace quillon {
namespace {

class OpenFile {
 public:
  explicit OpenFile(const std::filesystem::path& file)
      : _descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~OpenFile() {
    if (_descriptor >= 0) close(_descriptor);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  [[nodiscard]] int descriptor() const { return _descriptor; }

 private:
  int _descriptor;
};

// As read(2), going on after a signal, unless the user gave up.
ssize_t readSome(int descriptor, void* place, std::size_t size) {
  ssize_t count = 0;
  do {
    count = read(descriptor, place, size);
  } while (count < 0 && errno == EINTR && !QNInterruption::happened());
  return count;
}

constexpr std::string_view kPassword = "the password";

}  // namespace

QNResult<std::optional<QNSecret>> readLineIfAny(int descriptor, std::string_view what) {
  QNSecret line;
  for (;;) {
    char c = 0;
    const ssize_t count = readSome(descriptor, &c, 1);
    if (count < 0) return fileError(what, errno);
    if (count == 0 && line.empty()) return std::optional<QNSecret>();
    if (count == 0 || c == '\n') return std::optional<QNSecret>(std::move(line));
    if (line.size() == kMaxPasswordBytes) {
      return toolError(QNExit::wrongUsage, fmt::format("{} is too long", what));
    }
    line.append({&c, 1});
  }
}

QNResult<QNSecret> readLine(int descriptor) {
  auto line = readLineIfAny(descriptor, kPassword);
  if (!line) return line.error();
  if (!line.value()) return toolError(QNExit::wrongUsage, "no password was given");
  return *std::move(line).value();
}

QNResult<QNSecret> readSecret(int descriptor) {
  QNSecret secret;
  Bytes buffer(4096);
  for (;;) {
    const ssize_t count = readSome(descriptor, buffer.data(), buffer.size());
    if (count < 0) return fileError(kPassword, errno);
    // A producer that failed must not take a stored secret away.
    if (count == 0 && secret.empty()) {
      return toolError(QNExit::wrongUsage, "there was nothing on standard input");
    }
    if (count == 0) break;
    secret.append(textOf({buffer.data(), static_cast<std::size_t>(count)}));
    if (secret.size() > kMaxSecretBytes) {
      return toolError(QNExit::wrongUsage,
                       fmt::format("standard input is longer than {} MiB", kMaxSecretBytes >> 20));
    }
  }
  if (secret.reveal().ends_with('\n')) secret.removeLast();  // looks at its last byte only
  return secret;
}

QNResult<Bytes> readFile(const std::filesystem::path& file, std::size_t limit) {
  const OpenFile opened(file);
  if (opened.descriptor() < 0) return fileError(file, errno);
  return readOpenFile(opened.descriptor(), file, limit);
}

QNResult<Bytes> readOpenFile(int descriptor, const std::filesystem::path& file, std::size_t limit) {
  constexpr std::size_t kFirstSize = 64 * 1024;
  Bytes content(kFirstSize);
  std::size_t size = 0;
  for (;;) {
    if (size == content.size()) content.resize(size * 2);
    const ssize_t count = readSome(descriptor, content.data() + size, content.size() - size);
    if (count < 0) return fileError(file, errno);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size > limit) {
      return toolError(QNExit::fileError,
                       fmt::format("{}: longer than {} MiB", file.string(), limit >> 20));
    }
  }
  content.resize(size);
  return content;
}

}  // namespace quillon
