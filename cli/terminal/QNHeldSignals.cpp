#include "cli/terminal/QNHeldSignals.h"

#include <poll.h>
#include <unistd.h>

namespace quillon {
namespace {

volatile std::sig_atomic_t caughtSignal = 0;
volatile std::sig_atomic_t wasInterrupted = 0;

// What ends the process goes first: it may come together with one that stops it.
int urgencyOf(int number) {
  if (number == 0) return 0;
  if (number == SIGWINCH) return 1;
  return number == SIGTSTP ? 2 : 3;
}

extern "C" void noteSignal(int number) {
  if (urgencyOf(number) > urgencyOf(caughtSignal)) caughtSignal = number;
}

extern "C" void noteInterruption(int) {
  wasInterrupted = 1;
}

timespec timeOf(std::chrono::milliseconds time) {
  return {static_cast<time_t>(time.count() / 1000),
          static_cast<long>(time.count() % 1000) * 1'000'000};
}

}  // namespace

QNHeldSignals::QNHeldSignals(Sizes sizes)
    : _count(sizes == Sizes::noted ? kSignals.size() : kSignals.size() - 1) {
  caughtSignal = 0;
  sigset_t held;
  sigemptyset(&held);
  struct sigaction noting {};
  noting.sa_handler = noteSignal;
  for (std::size_t i = 0; i < _count; ++i) {
    sigaddset(&held, kSignals[i]);
    sigaction(kSignals[i], &noting, &_actionsBefore[i]);
  }
  sigprocmask(SIG_BLOCK, &held, &_maskBefore);
}

QNHeldSignals::~QNHeldSignals() {
  for (std::size_t i = 0; i < _count; ++i) {
    sigaction(kSignals[i], &_actionsBefore[i], nullptr);
  }
  sigprocmask(SIG_SETMASK, &_maskBefore, nullptr);
}

QNHeldSignals::End QNHeldSignals::wait(int descriptor,
                                       std::optional<std::chrono::milliseconds> atMost) const {
  if (caughtSignal != 0) return End::signal;
  pollfd waiting{descriptor, POLLIN, 0};
  const timespec time = timeOf(atMost.value_or(std::chrono::milliseconds::zero()));
  const int ready = ppoll(&waiting, 1, atMost ? &time : nullptr, &_maskBefore);
  if (caughtSignal != 0) return End::signal;
  return ready == 0 ? End::timedOut : End::readable;
}

void QNHeldSignals::pause(std::chrono::milliseconds time) const {
  const timespec atMost = timeOf(time);
  ppoll(nullptr, 0, &atMost, &_maskBefore);
}

bool QNHeldSignals::mustEnd() {
  return urgencyOf(caughtSignal) == urgencyOf(SIGTERM);
}

int QNHeldSignals::takeCaught() {
  const int number = caughtSignal;
  caughtSignal = 0;
  return number;
}

void QNHeldSignals::deliver(int number) {
  kill(getpid(), number);
}

QNInterruption::QNInterruption() {
  forget();
  struct sigaction noting {};
  noting.sa_handler = noteInterruption;  // no SA_RESTART: what reads an answer must see it
  sigaction(SIGINT, &noting, &_before);
}

QNInterruption::~QNInterruption() {
  sigaction(SIGINT, &_before, nullptr);
  forget();
}

bool QNInterruption::happened() noexcept {
  return wasInterrupted != 0;
}

void QNInterruption::forget() noexcept {
  wasInterrupted = 0;
}

}  // namespace quillon
