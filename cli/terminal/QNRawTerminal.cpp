#include "cli/terminal/QNRawTerminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "cli/QNToolError.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;

// The other screen, and lines that are too long are cut, not wrapped.
constexpr std::string_view kOwnScreen = "\x1b[?1049h\x1b[?7l";
constexpr std::string_view kFormerScreen = "\x1b[?7h\x1b[?25h\x1b[?1049l";
// How long the rest of a key's sequence may take, over a slow line, too.
constexpr auto kSequenceTime = 50ms;

}  // namespace

QNResult<std::unique_ptr<QNRawTerminal>> QNRawTerminal::open(Screen screen) {
  const int descriptor = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) return toolError(QNExit::wrongUsage, "no terminal to show a choice on");
  return std::unique_ptr<QNRawTerminal>(new QNRawTerminal(descriptor, screen));
}

QNRawTerminal::QNRawTerminal(int descriptor, Screen screen)
    : _descriptor(descriptor), _screen(screen) {
  enter();
}

QNRawTerminal::~QNRawTerminal() {
  const int caught = _endedBy != 0 ? _endedBy : QNHeldSignals::takeCaught();
  leave();
  ::close(_descriptor);
  if (caught != 0) QNHeldSignals::deliver(caught);
}

void QNRawTerminal::enter() {
  _signals.emplace(QNHeldSignals::Sizes::noted);
  tcgetattr(_descriptor, &_before);
  termios raw = _before;
  raw.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG | IEXTEN);
  raw.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL);
  raw.c_cc[VMIN] = 1;
  raw.c_cc[VTIME] = 0;
  tcsetattr(_descriptor, TCSADRAIN, &raw);  // what was typed already stays
  if (_screen == Screen::own) write(kOwnScreen);
}

void QNRawTerminal::leave() {
  if (_screen == Screen::own) write(kFormerScreen);
  tcsetattr(_descriptor, TCSADRAIN, &_before);
  _signals.reset();
}

QNRawTerminal::Size QNRawTerminal::size() const {
  winsize given{};
  if (ioctl(_descriptor, TIOCGWINSZ, &given) != 0 || given.ws_row == 0 || given.ws_col == 0) {
    return {};
  }
  return {given.ws_row, given.ws_col};
}

void QNRawTerminal::write(std::string_view text) const {
  while (!text.empty()) {
    const ssize_t count = ::write(_descriptor, text.data(), text.size());
    if (count < 0 && errno != EINTR) return;  // the next read tells
    if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
  }
}

QNRawTerminal::Next QNRawTerminal::next(std::optional<std::chrono::milliseconds> atMost) {
  for (;;) {
    if (auto press = _keys.take()) return {Event::key, std::move(*press)};
    const bool isInside = _keys.isWaiting();
    switch (_signals->wait(_descriptor, isInside ? kSequenceTime : atMost)) {
      case QNHeldSignals::End::readable:
        if (!readMore()) return {Event::ended, {}};
        break;
      case QNHeldSignals::End::timedOut:
        if (!isInside) return {Event::timedOut, {}};
        return {Event::key, _keys.takeWaiting()};
      case QNHeldSignals::End::signal: {
        const int caught = QNHeldSignals::takeCaught();
        if (caught == SIGTSTP) suspend();
        if (caught == SIGTSTP || caught == SIGWINCH) return {Event::resized, {}};
        _endedBy = caught;
        return {Event::ended, {}};
      }
    }
  }
}

void QNRawTerminal::suspend() {
  if (_beforeStop) _beforeStop();
  leave();
  QNHeldSignals::deliver(SIGTSTP);
  enter();
}

void QNRawTerminal::forgetTyped() {
  tcflush(_descriptor, TCIFLUSH);
  _keys = {};
}

bool QNRawTerminal::pause(std::chrono::milliseconds time) const {
  _signals->pause(time);
  return !QNHeldSignals::mustEnd();
}

bool QNRawTerminal::readMore() {
  std::array<char, 256> buffer{};
  ssize_t count = 0;
  do {
    count = ::read(_descriptor, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  if (count <= 0) return false;
  _keys.add({buffer.data(), static_cast<std::size_t>(count)});
  wipe(buffer.data(), buffer.size());
  return true;
}

}  // namespace quillon
