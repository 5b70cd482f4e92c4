#!/usr/bin/env python3
"""Uses `quillon pick` on a terminal as a person does, who sees what a screen shows:
pick_test.py TOOL [TEST...]
"""
import base64
import fcntl
import json
import os
import re
import signal
import struct
import sys
import termios
import time
import unicodedata
import unittest

import tool_test
from tool_test import DOTS, PASSWORD, Terminal, ToolTest, code_at

ROWS, COLUMNS = 12, 72
OWN_SCREEN, FORMER_SCREEN = "\x1b[?1049h", "\x1b[?1049l"


class Screen:
    """What a terminal makes of the bytes that it gets: places, clearing, colours, wide letters."""

    SEQUENCE = re.compile(r"\x1b\[([?0-9;]*)([A-Za-z])")

    def __init__(self, rows, columns):
        self.rows, self.columns = rows, columns
        self.lines = [[" "] * columns for _ in range(rows)]
        self.inverse = set()
        self.row = self.column = 0
        self.is_inverse = False
        self.rest = ""

    def feed(self, text):
        text = self.rest + text
        self.rest = ""
        while text:
            match = self.SEQUENCE.match(text)
            if match:
                self.obey(match)
                text = text[match.end():]
            elif text[0] == "\x1b":
                self.rest = text
                return
            else:
                self.show(text[0])
                text = text[1:]

    def obey(self, match):
        numbers, command = match.groups()
        if command == "H":
            self.row, self.column = (int(number) - 1 for number in (numbers + ";1").split(";")[:2])
        elif command == "K":
            self.lines[self.row][self.column:] = [" "] * (self.columns - self.column)
            self.inverse.discard(self.row)
        elif command == "m":
            self.is_inverse = numbers == "7"
        else:
            assert numbers in ("?1049", "?25", "?7") and command in "hl", match.group()

    def show(self, c):
        if c == "\r":
            self.column = 0
            return
        if c == "\n":
            self.row = min(self.row + 1, self.rows - 1)
            return
        assert unicodedata.category(c)[0] != "C", f"a terminal might obey {c!r}"
        if unicodedata.combining(c):
            place = self.column - 1
            while self.lines[self.row][place] == "":
                place -= 1
            self.lines[self.row][place] += c
            return
        width = 2 if unicodedata.east_asian_width(c) in "WF" else 1
        assert self.column + width <= self.columns, f"row {self.row} is too long at {c!r}"
        self.lines[self.row][self.column:self.column + width] = [c, ""][:width]
        self.column += width
        if self.is_inverse:
            self.inverse.add(self.row)

    def line(self, row):
        return "".join(self.lines[row]).rstrip()

    def column_of(self, row, text):
        """Where the text begins, in columns."""
        cells = self.lines[row]
        for column in range(self.columns):
            if "".join(cells[column:]).startswith(text):
                return column
        return None

    @property
    def selected(self):
        return [self.line(row) for row in sorted(self.inverse)]


class Picker(Terminal):
    """pick on a terminal; its standard output is kept apart."""

    def __init__(self, test, *arguments, rows=ROWS, columns=COLUMNS, **options):
        super().__init__(test, "pick", *arguments, capture=True, **options)
        self.test = test
        self.screen = Screen(rows, columns)
        self.resize(rows, columns)
        self.answer("Password: ", PASSWORD)
        self.read_until(OWN_SCREEN)

    def resize(self, rows, columns):
        fcntl.ioctl(self.fd, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def press(self, keys):
        os.write(self.fd, keys.encode())

    def wait(self, sees):
        """Until `sees` is true of the screen."""
        while True:
            # A drawing ends with the cursor shown again.
            self.screen.feed(self.read_until("\x1b[?25h"))
            if sees(self.screen):
                return self.screen

    def starts_with(self, *titles, now=False):
        """Waits for these matches on top, or finds them there already."""
        def sees(screen):
            return [screen.line(row + 1).split("  ")[0]
                    for row in range(len(titles))] == list(titles)
        if now:
            self.test.assertTrue(sees(self.screen))
            return self.screen
        return self.wait(sees)

    def selects(self, title):
        return self.wait(lambda screen: [line.split("  ")[0] for line in screen.selected] == [title])

    def leaves(self, code=0):
        """Its standard output, after it ended with that code."""
        self.read_until(FORMER_SCREEN)
        self.test.assertEqual(self.end(), code)
        return self.captured()


class PickTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.make_store()

    def add_bank(self):
        return self.add("Bank", "--username", "jo", "--url", "https://bank.example",
                        "--password=-", stdin="pa55 word")


class Finding(PickTest):
    def setUp(self):
        super().setUp()
        self.add_bank()
        self.add("My bank of old", "--username", "ann", "--tag", "closed")
        self.add("Café", "--username", "bankier@example.org")
        self.add("Shop", "--username", "jo")

    def test_letters_narrow_and_the_best_come_first(self):
        picker = Picker(self)
        picker.starts_with("Bank", "Café", "My bank of old", "Shop")
        picker.press("ban")
        screen = picker.wait(lambda screen: screen.line(0) == "> ban")
        picker.starts_with("Bank", "My bank of old", "Café", now=True)
        self.assertEqual(screen.line(ROWS - 1), "3 of 4")
        picker.press("k of")
        picker.starts_with("My bank of old", "")
        picker.press("\x7f\x7f\x7f")
        picker.starts_with("Bank", "My bank of old", "Café")
        picker.press("\x15cafe")
        picker.starts_with("Café", "")
        picker.press("\x17closed")
        picker.starts_with("My bank of old", "")
        picker.press("\x1b")
        picker.leaves(1)

    def test_words_of_the_command_line_stand_there_at_first(self):
        picker = Picker(self, "my", "bank")
        screen = picker.starts_with("My bank of old", "")
        self.assertEqual(screen.line(0), "> my bank")
        picker.press("\x03")
        picker.leaves(1)

    def test_filters_choose_among_fewer(self):
        picker = Picker(self, "--tag", "closed", "--category", "login")
        self.assertEqual(picker.starts_with("My bank of old", "").line(ROWS - 1), "1 of 1")
        picker.press("\x03")
        picker.leaves(1)

    def test_keys_move_the_selection(self):
        picker = Picker(self)
        picker.selects("Bank")
        for keys, title in (("\x1b[B", "Café"), ("\x0e", "My bank of old"), ("\x1b[A", "Café"),
                            ("\x10", "Bank"), ("\x1b[A", "Bank"), ("\x1b[F", "Shop"),
                            ("\x1b[B", "Shop"), ("\x1b[H", "Bank"), ("\x1b[6~", "Shop"),
                            ("\x1b[5~", "Bank"), ("\x1bOB", "Café")):
            picker.press(keys)
            picker.selects(title)
        picker.press("\x03")
        picker.leaves(1)

    def test_a_long_list_scrolls(self):
        rows = "".join(f"Item {i:03},jo,x\n" for i in range(100))
        self.import_data(self.write("many.csv", "title,username,password\n" + rows))
        picker = Picker(self, "item")
        picker.selects("Item 000")
        picker.press("\x1b[6~")
        picker.selects("Item 010")
        screen = picker.screen
        self.assertEqual(screen.line(ROWS - 2).split("  ")[0], "Item 010")
        picker.press("\x1b[F")
        picker.selects("Item 099")
        picker.press("\x1b[5~\x1b[5~")
        picker.selects("Item 079")
        self.assertEqual(screen.line(1).split("  ")[0], "Item 079")
        picker.press("\x03")
        picker.leaves(1)

    def test_leaving_prints_nothing_and_restores_the_terminal(self):
        for keys in ("\x1b", "\x03", "\x07", "\x04"):
            picker = Picker(self, "bank")
            picker.starts_with("Bank")
            picker.press("\x15" + keys)
            picker.read_until(FORMER_SCREEN)
            picker.wait_for_echo(True)
            self.assertEqual(picker.end(), 1)
            self.assertEqual(picker.captured(), "")
            self.assertNotIn(b"quillon:", picker.output)

    def test_enter_on_nothing_does_nothing(self):
        picker = Picker(self, "nobody has this")
        picker.wait(lambda screen: screen.line(ROWS - 1) == "0 of 4")
        picker.press("\r\x1b[B\x1b[6~\x15")
        picker.starts_with("Bank", "Café")
        picker.press("\x03")
        picker.leaves(1)

    def test_signals_restore_the_terminal_and_end_it(self):
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT, signal.SIGQUIT):
            picker = Picker(self)
            picker.starts_with("Bank")
            self.assertFalse(picker.echoes())
            os.kill(picker.pid, number)
            picker.read_until(FORMER_SCREEN)
            picker.wait_for_echo(True)
            self.assertEqual(picker.end(), -number)

    def test_a_stopped_finder_restores_the_terminal_and_goes_on(self):
        picker = Terminal(self, "--norc", "-ic",
                          '"$0" pick --print username; echo "stopped"; fg >/dev/null',
                          tool_test.TOOL, program="bash")
        picker.answer("Password: ", PASSWORD)
        picker.read_until("4 of 4")
        os.write(picker.fd, b"\x1a")
        picker.read_until(FORMER_SCREEN)
        picker.read_until("stopped")
        picker.read_until(OWN_SCREEN)
        picker.read_until("4 of 4")
        os.write(picker.fd, b"shop\r")
        picker.read_until(FORMER_SCREEN)
        picker.read_until("jo")
        self.assertEqual(picker.end(), 0)

    def test_a_new_size_is_drawn_anew(self):
        picker = Picker(self)
        picker.starts_with("Bank")
        picker.screen = Screen(4, 30)
        picker.resize(4, 30)
        screen = picker.wait(lambda screen: screen.line(3) == "4 of 4")
        self.assertEqual(screen.line(1).split("  ")[0], "Bank")
        picker.press("\x03")
        picker.leaves(1)

    def test_without_a_terminal_it_says_so(self):
        result = self.run_tool("pick", code=2)
        self.assertIn("no terminal", result.err)
        self.assertEqual(result.out, "")


class Titles(PickTest):
    def test_wide_letters_and_marks_keep_the_columns(self):
        for title in ("Plain", "日本銀行", "e\u0301te\u0301", "السلام", "🏦 Bank"):
            self.add(title, "--username", "behind")
        picker = Picker(self)
        screen = picker.wait(lambda screen: screen.line(ROWS - 1) == "5 of 5")
        for row in range(1, 6):
            self.assertEqual(screen.column_of(row, "behind"), 42, screen.line(row))
        picker.press("銀\r")
        picker.wait(lambda screen: screen.line(0).startswith("日本銀行>"))
        picker.press("title\r")
        self.assertEqual(picker.leaves(), "日本銀行\n")

    def test_control_characters_of_data_never_reach_the_terminal(self):
        self.import_data("control-characters.csv")
        self.add("\u202egnp.exe", "--username", "\u2066hidden\u2069")
        self.add("w" * 5000)
        picker = Picker(self)  # whose screen refuses what it doesn't know
        screen = picker.wait(lambda screen: "Red \\x1b[31malert\\x07" in
                             "".join(screen.line(row) for row in range(ROWS)))
        self.assertIn("\\u{202e}gnp.exe", "".join(screen.line(row) for row in range(ROWS)))
        picker.press("red\r")
        picker.wait(lambda screen: screen.line(0).startswith("Red \\x1b[31malert\\x07>"))
        picker.press("\x03")
        picker.leaves(1)


class Printing(PickTest):
    def test_the_field_that_is_named_is_printed(self):
        self.add_bank()
        for field, value in (("password", "pa55 word\n"), ("username", "jo\n"), ("title", "Bank\n")):
            picker = Picker(self, "--print", field)
            picker.starts_with("Bank")
            picker.press("\r")
            self.assertEqual(picker.leaves(), value)
            self.assertNotIn(b"pa55", picker.output)

    def test_without_a_name_one_chooses_among_what_has_a_value(self):
        self.add_bank()
        picker = Picker(self)
        picker.starts_with("Bank")
        picker.press("\r")
        screen = picker.starts_with("Password", "Username", "URL", "Title", "")
        self.assertEqual(screen.line(0), "Bank>")
        self.assertIn(DOTS, screen.line(1))
        self.assertIn("jo", screen.line(2))
        picker.press("user\r")
        self.assertEqual(picker.leaves(), "jo\n")
        self.assertNotIn(b"pa55", picker.output)

    def test_fields_of_sections_can_be_chosen_in_the_users_language(self):
        self.run_tool("add", "credit-card", "--title", "Card", "--set", "ccnum=4111111111111111",
                      "--set", "pin=-", stdin="1234")
        picker = Picker(self, "--lang", "de")
        picker.starts_with("Card")
        picker.press("\r")
        picker.wait(lambda screen: any("4111" in screen.line(row) for row in range(ROWS)))
        self.assertNotIn(b"1234", picker.output)
        picker.press("pin\r")
        self.assertEqual(picker.leaves(), "1234\n")

    def test_a_one_time_password_is_the_code_of_now(self):
        uuid = self.add_bank()
        self.run_tool("edit", uuid, "--add-field", "Codes.Code:totp=-",
                      stdin="GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ")
        before = int(time.time())
        picker = Picker(self, "--print", "otp")
        picker.starts_with("Bank")
        picker.press("\r")
        printed = picker.leaves().strip()
        self.assertIn(printed, {code_at(seconds) for seconds in range(before, int(time.time()) + 1)})

    def test_a_field_that_the_item_lacks_is_4(self):
        self.add("Bare")
        picker = Picker(self, "--print", "username")
        picker.starts_with("Bare")
        picker.press("\r")
        self.assertEqual(picker.leaves(4), "")
        self.assertIn(b"the item has no username", picker.output)

    def test_json_is_one_value(self):
        uuid = self.add_bank()
        picker = Picker(self, "--print", "username", "--json")
        picker.starts_with("Bank")
        picker.press("\r")
        self.assertEqual(json.loads(picker.leaves()),
                         {"uuid": uuid, "title": "Bank", "field": "username", "value": "jo"})

    def test_wrong_usage_is_2_before_any_password(self):
        for options in (("--print", "url", "--copy"), ("--clear", "-1"), ("--clear", "soon"),
                        ("--clipboard", "no-such-program"), ("--category", "no-such")):
            self.assertEqual(self.run_raw("pick", *options).code, 2, options)

    def test_in_a_shell_it_needs_no_password(self):
        self.add_bank()
        terminal = Terminal(self, "shell")
        terminal.answer("Password: ", PASSWORD)
        terminal.read_until("quillon> ")
        os.write(terminal.fd, b"pick --print username\r")
        terminal.read_until("1 of 1")
        os.write(terminal.fd, b"\r")
        terminal.read_until(FORMER_SCREEN)
        terminal.read_until("jo\r\n")
        terminal.read_until("quillon> ")
        os.write(terminal.fd, b"\x04")
        self.assertEqual(terminal.end(), 0)


class Copying(PickTest):
    def setUp(self):
        super().setUp()
        self.add_bank()

    def clipboard_of(self, picker):
        """What the terminal was given for its clipboard, one after the other."""
        return [base64.b64decode(text, validate=True).decode()
                for text in re.findall(rb"\x1b\]52;c;([^\x07]*)\x07", picker.output)]

    def program(self, name, end=""):
        """A program for the clipboard that writes down what it gets and with which options."""
        path = self.write(name, f"#!/bin/sh\necho \"$@\" >>'{self.path('options')}'\n"
                                f"{{ cat; echo '|'; }} >>'{self.path('clipboard')}'\n{end}\n")
        os.chmod(path, 0o755)
        return path

    def pick(self, *options):
        picker = Picker(self, *options)
        picker.starts_with("Bank")
        picker.press("\r")
        picker.read_until(FORMER_SCREEN)
        return picker

    def test_the_terminal_gets_the_password_until_a_key_is_pressed(self):
        picker = self.pick("--copy")
        picker.read_until("is cleared in 45 s")
        picker.press(" ")
        self.assertEqual(picker.end(), 0)
        self.assertEqual(self.clipboard_of(picker), ["pa55 word", ""])
        self.assertEqual(picker.captured(), "")
        self.assertNotIn(b"pa55", picker.output)

    def test_it_is_cleared_when_the_time_is_up(self):
        picker = self.pick("--copy=username", "--clear", "1")
        picker.read_until("is cleared in 1 s")
        self.assertEqual(picker.end(), 0)
        self.assertEqual(self.clipboard_of(picker), ["jo", ""])

    def test_a_signal_clears_it_too_and_restores_the_terminal(self):
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT, signal.SIGUSR1,
                       signal.SIGUSR2, signal.SIGALRM, signal.SIGXCPU):
            picker = self.pick("--copy")
            picker.read_until("is cleared in 45 s")
            os.kill(picker.pid, number)
            picker.wait_for_echo(True)
            self.assertEqual(picker.end(), -number)
            self.assertEqual(self.clipboard_of(picker), ["pa55 word", ""])

    def test_a_signal_that_stops_it_clears_it_first(self):
        shell = Terminal(self, "--norc", "-ic",
                         '"$0" pick bank --copy; echo "stopped"; fg >/dev/null', tool_test.TOOL,
                         program="bash")
        shell.answer("Password: ", PASSWORD)
        shell.read_until("1 of 1")
        os.write(shell.fd, b"\r")
        shell.read_until("is cleared in 45 s")
        with open(f"/proc/{shell.pid}/task/{shell.pid}/children") as children:
            os.kill(int(children.read().split()[0]), signal.SIGTSTP)
        shell.read_until("stopped")
        self.assertEqual(self.clipboard_of(shell), ["pa55 word", ""])
        self.assertEqual(shell.end(), 0)
        self.assertEqual(self.clipboard_of(shell), ["pa55 word", ""])

    def test_a_signal_that_ends_it_goes_before_one_that_stops_it(self):
        picker = self.pick("--copy", "--clipboard", self.program("slow", "sleep 1"))
        os.kill(picker.pid, signal.SIGTSTP)
        time.sleep(0.2)
        os.kill(picker.pid, signal.SIGTERM)
        picker.wait_for_echo(True)
        self.assertEqual(picker.end(), -signal.SIGTERM)
        self.assertTrue(self.read("clipboard").endswith(b"|\n|\n"))

    def test_keys_that_were_pressed_before_dont_clear_it(self):
        picker = self.pick("--copy", "--clipboard", self.program("slow", "sleep 1"))
        picker.press("x ")
        picker.read_until("is cleared in 45 s")
        picker.read_until("is cleared in 44 s")
        self.assertEqual(self.read("clipboard"), b"pa55 word|\n")
        picker.press(" ")
        self.assertEqual(picker.end(), 0)
        self.assertEqual(self.read("clipboard"), b"pa55 word|\n|\n")

    def test_a_time_of_0_leaves_it_there(self):
        picker = self.pick("--copy", "--clear", "0")
        self.assertEqual(picker.end(), 0)
        self.assertEqual(self.clipboard_of(picker), ["pa55 word"])

    def test_a_program_gets_it_instead_with_the_options_that_it_needs(self):
        for name, wanted in (("xclip", "-selection clipboard"), ("xsel", "--clipboard --input"),
                             ("wl-copy", ""), ("pbcopy", ""), ("another", "")):
            for file in ("options", "clipboard"):
                if os.path.exists(self.path(file)):
                    os.remove(self.path(file))
            picker = self.pick("--copy", "--clipboard", self.program(name))
            picker.read_until("is cleared in 45 s")
            self.assertEqual(self.read("clipboard"), b"pa55 word|\n")
            picker.press(" ")
            self.assertEqual(picker.end(), 0)
            self.assertEqual(self.read("clipboard"), b"pa55 word|\n|\n")
            self.assertEqual(self.read("options").decode(), (wanted + "\n") * 2)
            self.assertNotIn(b"\x1b]52", picker.output)

    def test_the_program_of_the_desktop_is_found_by_itself(self):
        os.makedirs(self.path("bin"))
        os.rename(self.program("wl-copy"), self.path("bin/wl-copy"))
        self.environment["PATH"] = self.path("bin") + ":" + self.environment["PATH"]
        self.environment["WAYLAND_DISPLAY"] = "wayland-0"
        picker = self.pick("--copy", "--clear", "0")
        self.assertEqual(picker.end(), 0)
        self.assertEqual(self.read("clipboard"), b"pa55 word|\n")
        picker = self.pick("--copy", "--clear", "0", "--clipboard", "terminal")
        self.assertEqual(picker.end(), 0)
        self.assertEqual(self.clipboard_of(picker), ["pa55 word"])

    def test_a_program_that_fails_is_1(self):
        picker = self.pick("--copy", "--clipboard", "false")
        self.assertEqual(picker.end(), 1)
        self.assertIn(b"didn't take the text", picker.output)

    def test_what_a_program_took_before_it_failed_is_cleared(self):
        picker = self.pick("--copy", "--clipboard", self.program("failing", "exit 1"))
        self.assertEqual(picker.end(), 1)
        self.assertIn(b"didn't take the text", picker.output)
        self.assertEqual(self.read("clipboard"), b"pa55 word|\n|\n")

    def test_a_program_that_hangs_is_ended_and_the_clipboard_cleared(self):
        program = self.program("hanging", "exec sleep 1000")
        picker = self.pick("--copy", "--clipboard", program)
        self.assertEqual(picker.end(), 1)
        self.assertIn(b"didn't take the text", picker.output)
        self.assertEqual(self.read("clipboard"), b"pa55 word|\n|\n")

    def test_a_signal_needs_no_patience_with_a_program_that_hangs(self):
        again = self.path("again")
        program = self.program("hanging", f"[ -e '{again}' ] && exit\n>'{again}'\nexec sleep 1000")
        picker = self.pick("--copy", "--clipboard", program)
        while not os.path.exists(again):
            time.sleep(0.02)
        began = time.monotonic()
        os.kill(picker.pid, signal.SIGTERM)
        self.assertEqual(picker.end(), -signal.SIGTERM)
        self.assertLess(time.monotonic() - began, 4)
        self.assertEqual(self.read("clipboard"), b"pa55 word|\n|\n")

    def test_json_is_one_value_without_the_secret(self):
        picker = self.pick("--copy", "--clear", "0", "--json")
        self.assertEqual(picker.end(), 0)
        told = json.loads(picker.captured())
        self.assertEqual((told["title"], told["field"], told["cleared"]), ("Bank", "password", False))
        self.assertNotIn("value", told)


if __name__ == "__main__":
    tool_test.TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
