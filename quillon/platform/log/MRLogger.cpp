#include "quillon/platform/log/MRLogger.h"

#include <fmt/format.h>

#include <cstdio>

namespace quillon {
namespace {

void printToStandardError(const MRLogRecord& record) {
  if (record.kind != MRLogKind::error && record.kind != MRLogKind::assertion) return;
  fmt::print(stderr, "quillon: {}{}{}\n", record.object, record.object.empty() ? "" : ": ",
             record.text);
}

// A text whose placeholders don't fit its arguments is reported as it stands: a report must not
// become a failure of its own.
std::string formatted(std::string_view text, fmt::format_args args) {
  try {
    return fmt::vformat(text, args);
  } catch (const fmt::format_error&) {
    return std::string(text);
  }
}

}  // namespace

MRLogger::MRLogger() : _sink(printToStandardError) {}

MRLogger& MRLogger::sharedLogger() {
  static MRLogger* const logger = new MRLogger;  // static objects may log at exit
  return *logger;
}

void MRLogger::report(MRLogKind kind, std::uint32_t subsystem, std::string_view object,
                      const MRLogText& text, fmt::format_args args) {
  deliver({kind, subsystem, std::string(object), text.function, text.file, text.line, 0,
           formatted(text.text, args)});
}

void MRLogger::enter(MRSubsystem subsystem, std::string_view object, MRLogText text) {
  if (!allowsStatus(subsystem)) return;
  deliver({MRLogKind::enter, subsystem, std::string(object), text.function, text.file, text.line, 0,
           std::string(text.text)});
}

void MRLogger::exit(MRSubsystem subsystem, std::string_view object, double elapsedSeconds,
                    MRLogText text) {
  if (!allowsStatus(subsystem)) return;
  deliver({MRLogKind::exit, subsystem, std::string(object), text.function, text.file, text.line,
           elapsedSeconds, std::string(text.text)});
}

void MRLogger::allowStatus(std::uint32_t subsystems) noexcept {
  _statusAllowed = subsystems;
}

bool MRLogger::allowsStatus(std::uint32_t subsystem) const noexcept {
  return (_statusAllowed & subsystem) != 0;
}

MRLogger::Sink MRLogger::setSink(Sink sink) {
  const std::lock_guard guard(_mutex);
  std::swap(sink, _sink);
  return sink;
}

void MRLogger::deliver(const MRLogRecord& record) {
  const std::lock_guard guard(_mutex);
  if (_sink) _sink(record);
}

struct MRCapturingSink::State {
  mutable std::mutex mutex;
  std::vector<MRLogRecord> records;
};

MRCapturingSink::MRCapturingSink() : _state(std::make_shared<State>()) {
  _before = MRLogger::sharedLogger().setSink([state = _state](const MRLogRecord& record) {
    const std::lock_guard guard(state->mutex);
    state->records.push_back(record);
  });
}

MRCapturingSink::~MRCapturingSink() {
  MRLogger::sharedLogger().setSink(std::move(_before));
}

std::vector<MRLogRecord> MRCapturingSink::records() const {
  const std::lock_guard guard(_state->mutex);
  return _state->records;
}

std::vector<std::string> MRCapturingSink::texts(MRLogKind kind) const {
  std::vector<std::string> found;
  for (const MRLogRecord& record : records()) {
    if (record.kind == kind) found.push_back(record.text);
  }
  return found;
}

void MRCapturingSink::clear() {
  const std::lock_guard guard(_state->mutex);
  _state->records.clear();
}

}  // namespace quillon
