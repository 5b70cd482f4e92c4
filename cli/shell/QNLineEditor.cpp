#include "cli/shell/QNLineEditor.h"

#include <fcntl.h>
#include <histedit.h>
#include <langinfo.h>
#include <poll.h>
#include <unicode/utf8.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <exception>

#include "cli/QNToolError.h"
#include "cli/output/QNShownText.h"
#include "cli/shell/QNWideText.h"
#include "cli/terminal/QNHeldSignals.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {
namespace {

constexpr int kMaxRemembered = 1000;
constexpr std::size_t kMaxShownChoices = 200;
constexpr std::size_t kListWidth = 78;
constexpr int kTrailMilliseconds = 100;  // between the bytes of one character

// libedit asks the C library what characters are and how wide. The tool writes UTF-8 whatever the
// environment says.
void useUTF8() {
  std::setlocale(LC_CTYPE, "");
  if (std::string_view(nl_langinfo(CODESET)) != "UTF-8") std::setlocale(LC_CTYPE, "C.UTF-8");
}

// Columns as a directory's listing has them.
std::string listOf(const std::vector<std::string>& choices) {
  std::size_t width = 0;
  for (const std::string& choice : choices) width = std::max(width, shownWidth(shownText(choice)));
  const std::size_t columns = std::max<std::size_t>(kListWidth / (width + 2), 1);
  std::string list;
  for (std::size_t i = 0; i < std::min(choices.size(), kMaxShownChoices); ++i) {
    const bool endsRow = (i + 1) % columns == 0 || i + 1 == choices.size();
    const std::string shown = shownText(choices[i]);
    list += endsRow ? shown + "\n" : padded(shown, width + 2);
  }
  if (choices.size() > kMaxShownChoices) list += "...\n";
  return list;
}

}  // namespace

struct QNLineEditor::Editor {
  explicit Editor(Calls given, FILE* opened) : calls(std::move(given)), terminal(opened) {
    edit = el_init("quillon", terminal, terminal, terminal);
    past = history_winit();
    HistEventW event{};
    history_w(past, &event, H_SETSIZE, kMaxRemembered);
    history_w(past, &event, H_SETUNIQUE, 1);
    el_wset(edit, EL_CLIENTDATA, this);
    el_wset(edit, EL_PROMPT, promptOf);
    el_wset(edit, EL_GETCFN, readCharacter);
    el_wset(edit, EL_HIST, history_w, past);
    el_wset(edit, EL_EDITOR, L"emacs");
    // Keys of signals come as characters: Ctrl-C ends the line alone.
    el_wset(edit, EL_SETTY, L"-d", L"-isig", nullptr);
    el_wset(edit, EL_ADDFN, L"quillon-complete", L"completes the word", complete);
    el_wset(edit, EL_ADDFN, L"quillon-give-up", L"gives the line up", giveUp);
    el_wset(edit, EL_ADDFN, L"quillon-suspend", L"stops the process", suspend);
    el_wset(edit, EL_BIND, L"^I", L"quillon-complete", nullptr);
    el_wset(edit, EL_BIND, L"^C", L"quillon-give-up", nullptr);
    el_wset(edit, EL_BIND, L"^Z", L"quillon-suspend", nullptr);
    el_wset(edit, EL_BIND, L"^R", L"em-inc-search-prev", nullptr);
  }
  ~Editor() {
    el_end(edit);
    history_wend(past);
    std::fclose(terminal);
  }
  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  static Editor& of(EditLine* edit) {
    void* self = nullptr;
    el_wget(edit, EL_CLIENTDATA, &self);
    return *static_cast<Editor*>(self);
  }
  // libedit calls these, and nothing may be thrown through it.
  static wchar_t* promptOf(EditLine* edit) noexcept {
    Editor& self = of(edit);
    self.prompt = wideText(self.calls.prompt());
    return self.prompt.data();
  }
  static int readCharacter(EditLine* edit, wchar_t* place) noexcept {
    return of(edit).next(*place);
  }
  static unsigned char complete(EditLine* edit, int) noexcept {
    try {
      return of(edit).completeWord();
    } catch (const std::exception&) {  // memory is short
      return CC_ERROR;
    }
  }
  static unsigned char giveUp(EditLine* edit, int) {
    of(edit).isGivenUp = true;
    return CC_NEWLINE;
  }
  static unsigned char suspend(EditLine* edit, int) {
    of(edit).leaveFor(SIGTSTP);
    of(edit).redraw();
    return CC_NORM;
  }

  // 1 with a character, 0 at the end, -1 for an error, as libedit wants it.
  int next(wchar_t& place) {
    waitForKey();
    calls.keyPressed();
    std::array<char, U8_MAX_LENGTH> bytes{};
    int count = 1;
    if (readByte(bytes[0]) <= 0) return 0;
    const int trail = U8_COUNT_TRAIL_BYTES(static_cast<std::uint8_t>(bytes[0]));
    while (count <= trail && comesSoon() && readByte(bytes[static_cast<std::size_t>(count)]) > 0) {
      ++count;
    }
    place = wideText({bytes.data(), static_cast<std::size_t>(count)})[0];
    wipe(bytes.data(), bytes.size());
    return 1;
  }
  // A key sends its bytes together. Of a piece of one, U+FFFD is made.
  [[nodiscard]] bool comesSoon() const {
    pollfd waiting{fileno(terminal), POLLIN, 0};
    return ::poll(&waiting, 1, kTrailMilliseconds) > 0;
  }
  ssize_t readByte(char& byte) const {
    ssize_t count = 0;
    do {
      count = ::read(fileno(terminal), &byte, 1);
    } while (count < 0 && errno == EINTR);
    return count;
  }

  void waitForKey() {
    for (;;) {
      const auto left = calls.timeout();
      // Before a key that came while the process was stopped.
      if (left && left->count() == 0 && calls.timedOut()) {
        redraw();
        continue;
      }
      switch (signals->wait(fileno(terminal), left)) {
        case QNHeldSignals::End::readable:
          return;
        case QNHeldSignals::End::timedOut:
          break;
        case QNHeldSignals::End::signal:
          handle(QNHeldSignals::takeCaught());
          break;
      }
    }
  }
  void handle(int signal) {
    if (signal == SIGWINCH) {
      el_resize(edit);
    } else {
      leaveFor(signal);
      redraw();
    }
  }
  // The terminal as it was before, for as long as the signal takes.
  void leaveFor(int signal) {
    el_wset(edit, EL_PREP_TERM, 0);
    signals.reset();
    QNHeldSignals::deliver(signal);
    signals.emplace(QNHeldSignals::Sizes::noted);
    el_wset(edit, EL_PREP_TERM, 1);
  }
  // On a line of its own: what stands in this one may be longer than the new prompt leaves room.
  void redraw() {
    std::fputs("\r\n", terminal);
    el_wset(edit, EL_REFRESH);
  }

  unsigned char completeWord() {
    const LineInfoW* const line = el_wline(edit);
    const auto before = static_cast<std::size_t>(line->cursor - line->buffer);
    const std::string text = textOfWide({line->buffer, before});
    const QNLineCompletion completion = calls.complete(text);
    const std::string former = text.substr(completion.start);
    if (completion.word != former) {
      el_wdeletestr(edit, static_cast<int>(wideText(former).size()));
      if (el_winsertstr(edit, wideText(completion.word).c_str()) != 0) return CC_ERROR;
      if (completion.choices.size() > 1) return CC_REFRESH;
    }
    if (completion.choices.empty()) return CC_REFRESH_BEEP;
    if (completion.choices.size() == 1) return CC_REFRESH;
    show("\n");
    show(listOf(completion.choices));
    return CC_REDISPLAY;
  }

  // Past the stream, whose buffer would keep the names of a vault that is locked by then.
  void show(std::string_view text) const {
    std::fflush(terminal);
    for (std::size_t done = 0; done < text.size();) {
      const ssize_t count = ::write(fileno(terminal), text.data() + done, text.size() - done);
      if (count <= 0) return;  // nobody sees it
      done += static_cast<std::size_t>(count);
    }
  }

  Calls calls;
  FILE* terminal;
  EditLine* edit = nullptr;
  HistoryW* past = nullptr;
  std::wstring prompt;  // libedit keeps a pointer to it
  std::optional<QNHeldSignals> signals;
  bool isGivenUp = false;
};

QNLineEditor::QNLineEditor(std::unique_ptr<Editor> editor) : _editor(std::move(editor)) {}
QNLineEditor::~QNLineEditor() = default;

QNResult<std::unique_ptr<QNLineEditor>> QNLineEditor::open(Calls calls) {
  const int descriptor = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) return toolError(QNExit::wrongUsage, "no terminal to type on");
  FILE* const terminal = ::fdopen(descriptor, "w");
  if (terminal == nullptr) return fileError("/dev/tty", errno);
  useUTF8();
  return std::unique_ptr<QNLineEditor>(
      new QNLineEditor(std::make_unique<Editor>(std::move(calls), terminal)));
}

QNLineEditor::Read QNLineEditor::read() {
  Editor& editor = *_editor;
  editor.isGivenUp = false;
  editor.signals.emplace(QNHeldSignals::Sizes::noted);
  // Before the prompt: a key that is pressed as soon as it shows is one of the line.
  el_wset(editor.edit, EL_PREP_TERM, 1);
  int count = 0;
  const wchar_t* const typed = el_wgets(editor.edit, &count);
  editor.signals.reset();
  if (editor.isGivenUp) {
    std::fputs("\n", editor.terminal);
    std::fflush(editor.terminal);
    return {End::givenUp, ""};
  }
  if (typed == nullptr || count <= 0) return {End::endOfInput, ""};
  std::string line = textOfWide({typed, static_cast<std::size_t>(count)});
  if (line.ends_with('\n')) line.pop_back();
  return {End::line, std::move(line)};
}

void QNLineEditor::remember(std::string_view line) {
  HistEventW event{};
  history_w(_editor->past, &event, H_ENTER, wideText(line).c_str());
}

}  // namespace quillon
