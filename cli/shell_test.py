#!/usr/bin/env python3
"""Types into `quillon shell` as a person does, and gives it scripts: shell_test.py TOOL [TEST...]"""
import json
import os
import re
import select
import signal
import stat
import subprocess
import sys
import time
import unittest

import tool_test
from tool_test import OTHER, PASSWORD, Terminal, ToolTest

PROMPT = "quillon> "
LOCKED = "quillon (locked)> "


class ShellTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.make_store()

    def history(self):
        path = self.path(".local/share/quillon/shell-history")
        if not os.path.exists(path):
            return []
        with open(path) as file:
            return file.read().splitlines()

    def script(self, *lines, options=(), password=PASSWORD, code=0):
        result = self.run_raw("shell", *options, "--password-stdin",
                              stdin="".join(line + "\n" for line in (password, *lines)))
        self.assertEqual(result.code, code, result.err)
        return result

    def shell(self, *options):
        terminal = Typist(self, "shell", *options)
        terminal.answer("Password: ", PASSWORD)
        terminal.read_until(PROMPT)
        return terminal


class Typist(Terminal):
    def press(self, keys):
        """What is typed at a prompt that was shown: nothing is thrown away there."""
        os.write(self.fd, keys.encode())

    def line(self, text):
        """Types a line, and gives what was shown up to the next prompt, colours left out."""
        self.press(text + "\r")
        return self.until_prompt()

    def until_prompt(self, prompt=PROMPT):
        # The line editor writes the prompt anew at the start of each line that it reads.
        self.read_until("\r\n")
        return self.read_until(prompt)

    def leave(self):
        self.press("exit\r")
        return self.end()


class Scripts(ShellTest):
    def test_one_password_opens_all_commands(self):
        result = self.script("add login --title Bank --username jo", "list",
                             "edit Bank --set notes='two words'", "show Bank --field notes")
        self.assertIn("Bank  ", result.out)
        self.assertTrue(result.out.endswith("two words\n"))
        self.assertEqual(result.err, "")

    def test_the_last_command_that_failed_tells_the_exit_code(self):
        result = self.script("show nobody", "list --nosuch", "list", code=2)
        self.assertIn("no item has that uuid or title", result.err)
        self.assertIn("there is no option --nosuch here", result.err)
        self.script("list --nosuch", "show nobody", "list", code=4)
        self.script("list")
        self.script("show 'Bank", code=2)

    def test_a_line_that_is_too_long_is_told_of_as_such(self):
        result = self.script("show " + "x" * (1 << 20), code=2)
        self.assertIn("the line is too long", result.err)

    def test_exit_ends_it_before_the_rest(self):
        result = self.script("exit", "show nobody")
        self.assertEqual((result.out, result.err), ("", ""))

    def test_blank_lines_and_comments_do_nothing(self):
        self.assertEqual(self.script("", "   ", "# list", "list # of mine").out, "")

    def test_a_wrong_password_ends_it_at_once(self):
        result = self.script("list", password="wrong", code=3)
        self.assertEqual(result.out, "")

    def test_commands_read_what_stands_behind_their_line(self):
        """As in a script of any shell."""
        self.script("add login --title Bank --password=-", "pa55 of the rest")
        self.assertEqual(self.show("Bank")["password"], "pa55 of the rest")
        self.script("passwd --new-password-stdin", OTHER, "list")
        self.run_tool("list", password=OTHER)

    def test_the_options_of_the_shell_are_those_of_its_lines(self):
        self.run_tool("vault", "add", "work")
        result = self.script("add login --title Desk", "list --json", options=("--vault", "work"))
        self.assertEqual([item["title"] for item in json.loads(result.out.splitlines()[1])],
                         ["Desk"])
        self.assertEqual(self.titles(), [])
        self.assertEqual(json.loads(self.script("list", options=("--json",)).out), [])

    def test_a_language_of_one_line_is_gone_with_it(self):
        self.add("Bank")
        lines = self.script("--lang de show Bank", "show Bank").out.splitlines()
        self.assertTrue(any(line.startswith("Titel:") for line in lines))
        self.assertTrue(any(line.startswith("Title:") for line in lines))

    def test_a_shell_in_a_shell_is_none(self):
        self.assertIn("this is the shell", self.script("shell", code=2).err)

    def test_help_tells_of_commands_and_of_the_shell(self):
        result = self.script("help")
        self.assertIn("Subcommands:", result.out)
        self.assertIn("Lock the vault", result.out)
        self.assertIn("--reveal", self.script("help show").out)

    def test_it_runs_no_line_with_a_value_that_the_history_hid(self):
        uuid = self.add("Bank")
        result = self.script("edit Bank --set notes=‹hidden›", code=2)
        self.assertIn("write it anew", result.err)
        self.assertNotIn("notes", {k: v for k, v in self.show(uuid).items() if v})

    def test_it_leaves_no_history(self):
        self.script("list")
        self.assertEqual(self.history(), [])


class Vaults(ShellTest):
    def test_the_first_vault_opens_the_others_without_a_password(self):
        self.script("vault add work", "add login --title Desk --vault work",
                    "add login --title Bank", "copy Bank --to work", "list --vault work --json")
        self.assertEqual(sorted(self.titles("--vault", "work")), ["Bank", "Desk"])
        self.assertEqual(self.titles(), ["Bank"])

    def test_a_copy_into_the_first_vault_leaves_it_open(self):
        self.run_tool("vault", "add", "work")
        self.run_tool("add", "login", "--title", "Desk", "--vault", "work")
        first = json.loads(self.run_tool("vault", "list", "--json").out)[0]["name"]
        result = self.script(f"copy Desk --to {first}", "list --vault work", "list",
                             options=("--vault", "work"))
        self.assertEqual(result.err, "")
        self.assertEqual(self.titles(), ["Desk"])

    def test_another_store_asks_for_its_own_password(self):
        self.add("Bank")
        self.run_tool("init", "--store", self.path("other.qn"), password=OTHER)
        file = self.write("password", OTHER)
        result = self.script(f"merge {self.path('other.qn')} --other-password-file {file}",
                             f"list --store {self.path('other.qn')} --password-file {file}")
        self.assertIn("went over", result.out)
        self.assertEqual(result.out.splitlines()[-1].split()[0], "Bank")

    def test_another_store_does_not_get_the_password_of_the_shell(self):
        other = self.path("other.qn")
        self.run_tool("init", "--store", other, password=PASSWORD)
        shell = self.run_raw("shell", "--password-file", self.write("password", PASSWORD),
                             stdin=f"list --store {other}\n")
        self.assertNotEqual(shell.code, 0)
        self.assertNotIn("wrong password", shell.err)

    def test_a_new_password_counts_from_the_next_opening(self):
        self.script("passwd --new-password-stdin", OTHER, "add login --title Bank", "list")
        self.assertEqual([item["title"] for item in
                          self.run_tool("list", "--json", password=OTHER).json], ["Bank"])
        self.run_tool("list", code=3)

    def test_what_another_process_saved_is_seen(self):
        shell = subprocess.Popen([tool_test.TOOL, "shell", "--password-stdin"],
                                 stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 stderr=subprocess.DEVNULL, env=self.environment)
        self.addCleanup(shell.stdout.close)
        shell.stdin.write((PASSWORD + "\ngenerate --count 1\n").encode())
        shell.stdin.flush()
        shell.stdout.readline()  # the vault is open by now
        self.add("Bank")
        out, _ = shell.communicate(b"list\n")
        self.assertIn(b"Bank", out)

    def test_a_store_that_was_exchanged_is_opened_anew(self):
        self.run_tool("backup", self.path("copy.qn"))
        shell = subprocess.Popen([tool_test.TOOL, "shell", "--password-file",
                                  self.write("password", PASSWORD)],
                                 stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 env=self.environment)
        self.addCleanup(shell.stdout.close)
        shell.stdin.write(b"add login --title Old\n")
        shell.stdin.flush()
        shell.stdout.readline()
        for name in ("vault.qn-wal", "vault.qn-shm"):
            if os.path.exists(self.path(name)):
                os.remove(self.path(name))
        os.rename(self.path("copy.qn"), self.store)
        out, _ = shell.communicate(b"list\nadd login --title New\n")
        self.assertNotIn(b"Old", out)
        self.assertEqual(self.titles(), ["New"])

    @unittest.skipIf(os.geteuid() == 0, "root may write everything")
    def test_a_store_that_cannot_be_written_is_read(self):
        self.add("Bank")
        os.chmod(self.store, 0o400)
        self.assertIn("Bank", self.script("list", "trash Bank", code=7).out)


class Typing(ShellTest):
    def test_a_person_unlocks_once_and_leaves_with_exit(self):
        terminal = self.shell()
        terminal.line("add login --title Bank --username jo")
        self.assertIn("jo", terminal.line("list"))
        self.assertEqual(terminal.leave(), 0)
        self.assertEqual(terminal.output.count(b"Password: "), 1)
        self.assertEqual(self.titles(), ["Bank"])

    def test_a_wrong_password_ends_the_shell(self):
        terminal = Typist(self, "shell")
        terminal.answer("Password: ", "wrong")
        self.assertEqual(terminal.end(), 3)

    def test_ctrl_d_ends_the_shell_and_ctrl_c_the_line_alone(self):
        terminal = self.shell()
        terminal.press("add login --title Half\x03")
        terminal.until_prompt()
        self.assertNotIn("Half", terminal.line("list"))
        terminal.press("\x04")
        self.assertEqual(terminal.end(), 0)
        self.assertTrue(terminal.status == 0 and self.titles() == [])

    def test_ctrl_c_gives_up_a_question_of_a_command(self):
        terminal = self.shell()
        terminal.press("add login --title Bank --password\r")
        terminal.read_until("Password of the item: ")
        terminal.type("half\x03")
        terminal.until_prompt()
        self.assertNotIn("Bank", terminal.line("list"))
        self.assertEqual(terminal.leave(), 0)

    def test_questions_of_commands_are_asked_without_echo(self):
        terminal = self.shell()
        terminal.press("add login --title Bank --password\r")
        terminal.answer("Password of the item: ", "pa55")
        terminal.answer("Once more: ", "pa55")
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)
        self.assertNotIn(b"pa55", terminal.output)
        self.assertEqual(self.show("Bank")["password"], "pa55")

    def test_lock_wants_the_password_again(self):
        terminal = self.shell()
        terminal.press("lock\r")
        terminal.until_prompt(LOCKED)
        terminal.press("list\r")
        terminal.answer("Password: ", PASSWORD)
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)

    def test_a_locked_shell_keeps_a_wrong_password_out_and_goes_on(self):
        terminal = self.shell()
        terminal.press("lock\r")
        terminal.until_prompt(LOCKED)
        terminal.press("list\r")
        terminal.answer("Password: ", "wrong")
        terminal.read_until("wrong password")
        terminal.until_prompt(LOCKED)
        terminal.press("generate\r")
        terminal.read_until("bits of entropy")
        terminal.until_prompt(LOCKED)
        self.assertEqual(terminal.leave(), 0)

    def test_an_idle_shell_locks_itself_and_keeps_the_line(self):
        self.add("Bank")
        terminal = self.shell("--idle", "1")
        terminal.press("list --lo")
        terminal.read_until(LOCKED)
        terminal.read_until("list --lo")
        terminal.press("ng\r")
        terminal.answer("Password: ", PASSWORD)
        self.assertIn("Bank", terminal.read_until("Bank"))
        terminal.read_until("\r\n")
        os.write(terminal.fd, b"exit\r")
        self.assertEqual(terminal.end(), 0)

    def memory_holds(self, terminal, text):
        """Does any memory of the tool that can be written hold the text?"""
        with open(f"/proc/{terminal.pid}/maps") as maps:
            lines = maps.readlines()
        places = [line.split()[0].split("-") for line in lines if " rw" in line]
        if any(int(end, 16) - int(start, 16) > 1 << 40 for start, end in places):
            self.skipTest("the sanitizer's own memory is too large to be looked through")
        with open(f"/proc/{terminal.pid}/mem", "rb", 0) as memory:
            for start, end in places:
                memory.seek(int(start, 16))
                try:
                    if text.encode() in memory.read(int(end, 16) - int(start, 16)):
                        return True
                except OSError:  # a guarded page
                    pass
        return False

    @unittest.skipIf(os.geteuid() != 0, "another process of the user may not look into the memory")
    def test_what_an_idle_shell_knew_of_items_is_gone_from_its_memory(self):
        self.add("Bank", "--tag", "Q7tag-of-it")
        titles = ("Unshown title of an overview", "Q7short-title", "Q7tag-of-it")
        self.add(titles[0])
        self.add(titles[1])
        terminal = self.shell("--idle", "2")
        terminal.press("show ban\t")
        terminal.read_until("Bank")
        self.assertEqual([self.memory_holds(terminal, title) for title in titles], [True] * 3)
        terminal.read_until(LOCKED)
        self.assertEqual([self.memory_holds(terminal, title) for title in titles], [False] * 3)

    @unittest.skipIf(os.geteuid() != 0, "another process of the user may not look into the memory")
    def test_what_tab_listed_is_gone_from_the_memory_of_a_locked_shell(self):
        self.add("Q7one")
        self.add("Q7other")
        terminal = self.shell("--idle", "2")
        terminal.press("show Q7o\t")
        terminal.read_until("Q7other")
        self.assertTrue(self.memory_holds(terminal, "Q7other"))
        terminal.read_until(LOCKED)
        self.assertFalse(self.memory_holds(terminal, "Q7other"))

    def holds_store(self, terminal):
        """Is the store open? Who has an open vault holds both."""
        place = f"/proc/{terminal.pid}/fd"
        return any(os.readlink(os.path.join(place, name)) == self.store
                   for name in os.listdir(place))

    @unittest.skipIf(os.geteuid() != 0, "another process of the user may not look at its files")
    def test_a_locked_shell_holds_no_open_vault(self):
        self.add("Bank")
        for options, keys in (((), "lock\r"), (("--idle", "1"), "")):
            terminal = self.shell(*options)
            before = self.holds_store(terminal)
            terminal.press(keys)
            terminal.read_until(LOCKED)
            self.assertEqual((before, self.holds_store(terminal)), (True, False))
            terminal.press("exit\r")
            self.assertEqual(terminal.end(), 0)

    def test_history_comes_back_with_the_arrows_and_in_the_next_shell(self):
        terminal = self.shell()
        terminal.line("list --long")
        terminal.press("\x1b[A")
        terminal.read_until("list --long")
        terminal.press("\r")
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)
        again = self.shell()
        again.press("\x1b[A\x1b[A")
        again.read_until("list --long")
        again.press("\r")
        again.until_prompt()
        self.assertEqual(again.leave(), 0)

    def test_history_keeps_no_secrets(self):
        self.add("Bank")
        terminal = self.shell()
        for line in ("edit Bank --set notes=s3cret", " show Bank", "hunter2",
                     "edit Bank --set password=hunter3", "edit Bank --set notes=my pin",
                     "show Bank --field notes"):
            terminal.line(line)
        self.assertEqual(terminal.leave(), 0)
        self.assertEqual(self.history(),
                         ["edit Bank --set notes=‹hidden›",
                          "edit", "edit", "show Bank --field notes", "exit"])
        path = self.path(".local/share/quillon/shell-history")
        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o600)
        self.assertEqual(self.show("Bank")["notes"], "s3cret")

    def test_no_history_neither_reads_nor_writes_one(self):
        terminal = self.shell("--no-history")
        terminal.line("list")
        self.assertEqual(terminal.leave(), 0)
        self.assertEqual(self.history(), [])

    def test_a_history_that_cannot_be_read_is_told_of_and_left_alone(self):
        os.makedirs(self.path(".local/share/quillon"))
        os.symlink(self.write("letter", "Dear Sir\n"),
                   self.path(".local/share/quillon/shell-history"))
        terminal = Typist(self, "shell")
        terminal.answer("Password: ", PASSWORD)
        terminal.read_until("nothing is kept in the history")
        terminal.read_until(PROMPT)
        terminal.line("list")
        self.assertEqual(terminal.leave(), 0)
        self.assertEqual(self.read("letter"), b"Dear Sir\n")

    def test_tab_completes_commands_names_and_fields(self):
        self.add("Bank of mine", "--tag", "work")
        self.add("日本銀行", "--notes", "far away")
        terminal = self.shell()
        terminal.press("sho\tban\t--fi\tus\t")
        terminal.read_until("username")
        terminal.press("\x15show 日\t")
        terminal.read_until("銀行")
        terminal.press("--field notes\r")
        terminal.read_until("far away")
        terminal.until_prompt()
        terminal.press("list --tag w\t")
        terminal.read_until("ork ")
        terminal.press("\r")
        self.assertIn("Bank of mine", terminal.until_prompt())
        self.assertEqual(terminal.leave(), 0)

    def test_tab_completes_folders(self):
        self.run_tool("folder", "add", "Travel/Lisbon")
        self.run_tool("folder", "add", "Home")
        terminal = self.shell()
        terminal.press("folder move Hom\tTravel/Li\t")
        terminal.read_until("sbon ")
        terminal.press("\r")
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)
        self.assertIn("   └─ Home ", self.run_tool("folder", "list").out)

    def test_a_piece_of_a_character_keeps_nothing_waiting(self):
        terminal = self.shell("--idle", "1")
        os.write(terminal.fd, b"\xe6\x97")
        terminal.read_until(LOCKED, seconds=10)
        self.assertIn("\ufffd", terminal.output.decode())

    def test_a_lock_asks_at_the_terminal_whatever_gave_the_first_password(self):
        terminal = Typist(self, "shell", "--password-file", self.write("password", PASSWORD))
        terminal.read_until(PROMPT)
        terminal.press("lock\r")
        terminal.until_prompt(LOCKED)
        terminal.press("list\r")
        terminal.answer("Password: ", PASSWORD)
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)

    def test_tab_lists_what_could_be_meant(self):
        self.add("Bank")
        self.add("Bank of mine")
        terminal = self.shell()
        terminal.press("show ba\t\t")
        shown = terminal.read_until("Bank of mine")
        self.assertIn("Bank", shown)
        terminal.press("\r")
        terminal.read_until("Title:")
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)

    def test_a_locked_shell_completes_commands_and_asks_nothing(self):
        self.add("Bank of mine")
        terminal = self.shell()
        terminal.press("lock\r")
        terminal.until_prompt(LOCKED)
        terminal.press("sho\tBank\t")
        terminal.read_until("show Bank")
        terminal.press("\x03")
        terminal.until_prompt(LOCKED)
        self.assertEqual(terminal.leave(), 0)
        self.assertNotIn(b"of mine", terminal.output)

    def test_names_of_control_characters_reach_no_terminal(self):
        self.import_data("control-characters.csv")
        terminal = self.shell()
        terminal.press("show Red\t\t\x15")
        terminal.press("list\r")
        terminal.read_until("\\x1b[31malert")
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)
        self.assertNotIn(b"\x1b[31m", terminal.output)

    def test_wide_letters_are_edited_as_what_they_are(self):
        terminal = self.shell()
        # One too many, taken back; then the cursor goes back over a wide one.
        terminal.press("add login --title 日本銀x\x7f行")
        terminal.press("\x1b[D" + "大" + "\r")
        terminal.until_prompt()
        self.assertEqual(terminal.leave(), 0)
        self.assertEqual(self.titles(), ["日本銀大行"])

    def test_text_is_utf_8_whatever_the_locale(self):
        self.environment["LC_ALL"] = "C"
        terminal = self.shell()
        terminal.line("add login --title Bänk日")
        self.assertEqual(terminal.leave(), 0)
        self.assertEqual(self.titles(), ["Bänk日"])

    def test_signals_restore_the_terminal(self):
        terminal = self.shell()
        self.assertFalse(terminal.echoes())
        os.kill(terminal.pid, signal.SIGTERM)
        terminal.wait_for_echo(True)
        self.assertEqual(terminal.end(), -signal.SIGTERM)

    def test_a_stopped_shell_goes_on_where_it_was(self):
        self.add("Bank")
        terminal = Typist(self, "--norc", "-ic",
                          '"$0" shell; echo "stopped"; fg >/dev/null', tool_test.TOOL,
                          program="bash")
        terminal.answer("Password: ", PASSWORD)
        terminal.read_until(PROMPT)
        terminal.press("list\x1a")
        terminal.read_until("stopped")
        terminal.read_until(PROMPT)
        terminal.press("\r")
        terminal.read_until("Bank")
        terminal.read_until(PROMPT)
        self.assertEqual(terminal.leave(), 0)


if __name__ == "__main__":
    tool_test.TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
