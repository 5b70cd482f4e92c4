#pragma once
// The one way out for what goes wrong inside the library. Texts hold names, sizes and codes;
// never titles, addresses, user names or secrets. Success is silent.

#include <fmt/core.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// Subsystem flags; a logger lets through what its enabled flags name.
enum MRSubsystem : std::uint32_t {
  DEBUG_DATABASE = 1u << 0,
  DEBUG_H9 = 1u << 1,
  DEBUG_CRYPTO = 1u << 2,
  DEBUG_APP = 1u << 3,
  DEBUG_UI = 1u << 4,
  DEBUG_XPC = 1u << 5,
  DEBUG_IMAGESERVICE = 1u << 6,
};

enum class MRLogKind { error, assertion, status, enter, exit };

/// One report. `object` is the description of the object that reports, or empty. `file`, `line`
/// and `elapsedSeconds` have a meaning for assertions and exits only.
struct MRLogRecord {
  MRLogKind kind{};
  std::uint32_t subsystem = 0;
  std::string object;
  std::string method;
  std::string file;
  int line = 0;
  double elapsedSeconds = 0;
  std::string text;
};

/// A format text ("{}" placeholders) together with the place that it stands at.
struct MRLogText {
  template <class Text>
  requires std::convertible_to<const Text&, std::string_view> MRLogText(
      const Text& format, const char* inFile = __builtin_FILE(),  // NOLINT: a text converts
      int atLine = __builtin_LINE(), const char* inFunction = __builtin_FUNCTION())
      : text(format), file(inFile), line(atLine), function(inFunction) {}
  std::string_view text;
  const char* file;
  int line;
  const char* function;
};

/// Process-wide. Any thread may log; sinks are called on the logging thread, one at a time. The
/// caller may hold an object's lock: a sink may log, and must call nothing that takes such a lock.
class MRLogger final {
 public:
  using Sink = std::function<void(const MRLogRecord&)>;

  static MRLogger& sharedLogger();

  /// A precondition that didn't hold. The program goes on.
  template <class... Args>
  void assertion(MRSubsystem subsystem, std::string_view object, MRLogText text,
                 const Args&... args) {
    report(MRLogKind::assertion, subsystem, object, text, fmt::make_format_args(args...));
  }
  /// Something failed.
  template <class... Args>
  void error(MRSubsystem subsystem, std::string_view object, MRLogText text, const Args&... args) {
    report(MRLogKind::error, subsystem, object, text, fmt::make_format_args(args...));
  }
  /// Information; written only while status logs are allowed for the subsystem.
  template <class... Args>
  void status(MRSubsystem subsystem, std::string_view object, MRLogText text, const Args&... args) {
    if (allowsStatus(subsystem)) {
      report(MRLogKind::status, subsystem, object, text, fmt::make_format_args(args...));
    }
  }
  void enter(MRSubsystem subsystem, std::string_view object, MRLogText text);
  void exit(MRSubsystem subsystem, std::string_view object, double elapsedSeconds, MRLogText text);

  /// Status, entry and exit logs are off by default; errors and assertions always pass.
  void allowStatus(std::uint32_t subsystems) noexcept;
  [[nodiscard]] bool allowsStatus(std::uint32_t subsystem) const noexcept;

  /// Where reports go; an empty sink drops them. The first sink prints errors and assertions to
  /// standard error, a line each. Gives back the sink that was there.
  Sink setSink(Sink sink);

 private:
  void report(MRLogKind kind, std::uint32_t subsystem, std::string_view object,
              const MRLogText& text, fmt::format_args args);
  void deliver(const MRLogRecord& record);

  std::recursive_mutex _mutex;  // a sink may itself log
  Sink _sink;
  std::atomic<std::uint32_t> _statusAllowed{0};
  MRLogger();
};

/// A plain error log that needs no object.
template <class... Args>
void log_error(MRSubsystem subsystem, MRLogText text, const Args&... args) {
  MRLogger::sharedLogger().error(subsystem, {}, text, args...);
}

/// Guards a status log whose arguments are costly to make.
inline bool LOGGER_ALLOW_LOG_STATUS(MRSubsystem subsystem) {
  return MRLogger::sharedLogger().allowsStatus(subsystem);
}

/// Keeps every report while it lives, and puts the earlier sink back at its end. For tests.
class MRCapturingSink final {
 public:
  MRCapturingSink();
  ~MRCapturingSink();
  MRCapturingSink(const MRCapturingSink&) = delete;
  MRCapturingSink& operator=(const MRCapturingSink&) = delete;
  [[nodiscard]] std::vector<MRLogRecord> records() const;
  /// The texts of all reports of one kind, in order.
  [[nodiscard]] std::vector<std::string> texts(MRLogKind kind) const;
  void clear();

 private:
  struct State;
  std::shared_ptr<State> _state;
  MRLogger::Sink _before;
};

}  // namespace quillon
