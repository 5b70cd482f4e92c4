#pragma once

#include <array>
#include <chrono>
#include <csignal>
#include <optional>

namespace quillon {

/// While it lives, signals that end or stop the process, and perhaps those of a window's new size,
/// are noted and wait: they are let in during wait() only, so that none arrives unseen just before
/// it. One of these at a time.
class QNHeldSignals final {
 public:
  enum class Sizes { ignored, noted };
  explicit QNHeldSignals(Sizes sizes);
  /// What was noted stays to be delivered.
  ~QNHeldSignals();
  QNHeldSignals(const QNHeldSignals&) = delete;
  QNHeldSignals& operator=(const QNHeldSignals&) = delete;

  enum class End { readable, timedOut, signal };
  /// Until there is something to read, at most so long. A signal that was noted before counts.
  [[nodiscard]] End wait(int descriptor,
                         std::optional<std::chrono::milliseconds> atMost = std::nullopt) const;
  /// For so long, or until any signal comes.
  void pause(std::chrono::milliseconds time) const;

  /// The signal that came, 0 for none; forgotten by this call. One that ends the process goes
  /// before one that stops it, and both go before a new size.
  static int takeCaught();
  /// Did one come that ends the process? It stays to be taken.
  [[nodiscard]] static bool mustEnd();
  /// Sends a signal to the process itself. To be called when this is gone: it does what it does
  /// elsewhere, and a process that was stopped goes on behind the call.
  static void deliver(int number);

 private:
  static constexpr std::array kSignals = {SIGINT,  SIGTERM, SIGHUP,  SIGQUIT, SIGUSR1,
                                          SIGUSR2, SIGALRM, SIGXCPU, SIGTSTP, SIGWINCH};
  std::size_t _count;  // of them: the last one is of sizes
  sigset_t _maskBefore{};
  std::array<struct sigaction, kSignals.size()> _actionsBefore{};
};

/// While it lives, Ctrl-C doesn't end the process: whatever waits for an answer gives up instead.
/// For the shell, which goes on with its next line.
class QNInterruption final {
 public:
  QNInterruption();
  ~QNInterruption();
  QNInterruption(const QNInterruption&) = delete;
  QNInterruption& operator=(const QNInterruption&) = delete;

  /// Was Ctrl-C pressed since this began, or since forget()? Never without one of these.
  [[nodiscard]] static bool happened() noexcept;
  static void forget() noexcept;

 private:
  struct sigaction _before {};
};

}  // namespace quillon
