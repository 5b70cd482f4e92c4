#!/usr/bin/env python3
"""Former passwords, second items, copies in other vaults and fingerprints, as the built tool makes
and tells them: copies_test.py TOOL [TEST...]
"""
import os
import re
import sys
import time
import unittest

import tool_test
from tool_test import DOTS, OTHER, PASSWORD, UUID, Terminal, ToolTest


class CopyTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.environment["TZ"] = "Europe/Berlin"
        self.make_store()

    def bank(self, password="pa55-1", *options):
        return self.add("Bank", "--username", "jo", "--password=-", *options, stdin=password)

    def set_password(self, item, password):
        self.run_tool("edit", item, "--set", "password=-", stdin=password)

    def password(self, item, *options):
        return self.run_tool("show", item, "--field", "password", *options).out


class History(CopyTest):
    def test_former_passwords_are_told_newest_first_and_as_dots(self):
        uuid = self.bank()
        for password in ("pa55-2", "pa55-3"):
            time.sleep(1.1)  # times are whole seconds
            self.set_password(uuid, password)
        lines = self.run_tool("history", "Bank").out.splitlines()
        self.assertEqual(len(lines), 2)
        for line in lines:
            self.assertRegex(line, r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d  " + DOTS + "$")
        self.assertGreater(lines[0][:19], lines[1][:19])
        revealed = self.run_tool("history", "Bank", "--reveal").out.splitlines()
        self.assertEqual([line[21:] for line in revealed], ["pa55-2", "pa55-1"])
        self.assertEqual([line[:19] for line in revealed], [line[:19] for line in lines])

    def test_of_two_in_one_second_the_last_one_comes_first(self):
        uuid = self.bank("a")
        for password in ("b", "c", "d"):
            self.set_password(uuid, password)
        told = self.run_tool("history", uuid, "--reveal", "--json").json
        self.assertEqual([entry["password"] for entry in told], ["c", "b", "a"])

    def test_json_has_times_and_passwords_only_with_reveal(self):
        uuid = self.bank()
        self.set_password(uuid, "pa55-2")
        hidden = self.run_tool("history", uuid, "--json").json
        self.assertEqual([list(entry) for entry in hidden], [["retiredAt"]])
        self.assertLess(abs(hidden[0]["retiredAt"] - time.time()), 60)
        shown = self.run_tool("history", uuid, "--json", "--reveal").json
        self.assertEqual(shown, [{"retiredAt": hidden[0]["retiredAt"], "password": "pa55-1"}])

    def test_an_item_without_a_history_tells_nothing(self):
        self.bank()
        self.assertEqual(self.run_tool("history", "Bank").out, "")
        self.assertEqual(self.run_tool("history", "Bank", "--json").json, [])

    def test_control_characters_of_a_password_are_escaped_and_json_has_them(self):
        uuid = self.bank("a\x1b[31mb\nc")
        self.set_password(uuid, "d")
        self.assertTrue(self.run_tool("history", uuid, "--reveal").out
                        .endswith("  a\\x1b[31mb\\nc\n"))
        self.assertEqual(self.run_tool("history", uuid, "--reveal", "--json").json[0]["password"],
                         "a\x1b[31mb\nc")

    def test_what_is_not_there_is_4(self):
        self.run_tool("history", "Nobody", code=4)


class Duplicate(CopyTest):
    def test_a_duplicate_has_a_uuid_and_a_title_of_its_own_and_the_rest(self):
        uuid = self.bank("pa55", "--url", "https://a.example", "--tag", "home", "--notes", "N")
        printed = self.run_tool("duplicate", "Bank").out
        made = self.show(printed.strip())
        self.assertRegex(printed, UUID.pattern.replace("$", "\n$"))
        self.assertNotEqual(made["uuid"], uuid)
        self.assertEqual(made["title"], "Bank - Copy")
        before = self.show(uuid)
        for key in ("username", "password", "urls", "tags", "notes", "category"):
            self.assertEqual(made[key], before[key], key)
        self.assertEqual(before["title"], "Bank")
        self.assertTrue(self.run_tool("check", "--json").json["clean"])

    def test_a_duplicate_has_no_history(self):
        uuid = self.bank()
        self.set_password(uuid, "pa55-2")
        made = self.run_tool("duplicate", uuid, "--json").json["uuid"]
        self.assertEqual(self.run_tool("history", made, "--json").json, [])
        self.assertEqual(len(self.run_tool("history", uuid, "--json").json), 1)

    def test_the_duplicate_of_a_trashed_item_is_in_the_trash(self):
        self.bank()
        self.run_tool("trash", "Bank")
        self.run_tool("duplicate", "Bank")
        self.assertEqual(self.titles(), [])
        self.assertEqual(self.titles("--trashed"), ["Bank", "Bank - Copy"])

    def test_a_duplicate_is_changed_without_the_other(self):
        uuid = self.bank()
        made = self.run_tool("duplicate", uuid).out.strip()
        self.set_password(made, "other")
        self.assertEqual(self.password(uuid), "pa55-1\n")

    def test_the_title_is_in_the_language_of_whoever_makes_it(self):
        self.bank()
        made = self.run_tool("duplicate", "Bank", "--lang", "de").out.strip()
        self.assertNotEqual(self.show(made)["title"], "Bank - Copy")
        self.assertIn("Bank", self.show(made)["title"])

    def test_what_is_not_there_is_4(self):
        self.assertEqual(self.run_tool("duplicate", "Nobody", code=4).out, "")


class Fingerprint(CopyTest):
    def fingerprint(self, item, *options):
        printed = self.run_tool("fingerprint", item, *options).out
        self.assertRegex(printed, r"^[0-9a-f]{64}\n$")
        return printed.strip()

    def test_equal_content_has_an_equal_one_wherever_it_is(self):
        uuid = self.bank()
        self.run_tool("vault", "add", "work")
        copy = self.run_tool("copy", uuid, "--to", "work").out.strip()
        self.assertEqual(self.fingerprint(uuid), self.fingerprint(copy, "--vault", "work"))
        self.assertEqual(self.run_tool("fingerprint", uuid, "--json").json,
                         {"uuid": uuid, "fingerprint": self.fingerprint(uuid)})

    def test_any_change_gives_another(self):
        uuid = self.bank()
        seen = {self.fingerprint(uuid)}
        for change in (["--set", "title=B"], ["--set", "notes=N"], ["--set", "username=x"],
                       ["--set", "url=https://a.example"], ["--generate"]):
            self.run_tool("edit", uuid, *change)
            seen.add(self.fingerprint(uuid))
        self.assertEqual(len(seen), 6)

    def test_asking_changes_nothing(self):
        uuid = self.bank()
        before = self.show(uuid)
        self.fingerprint(uuid)
        self.assertEqual(self.show(uuid), before)

    def test_what_is_not_there_is_4(self):
        self.run_tool("fingerprint", "Nobody", code=4)


class Copy(CopyTest):
    def setUp(self):
        super().setUp()
        self.run_tool("vault", "add", "work")

    def other_store(self, password=OTHER):
        mine, self.environment["QUILLON_STORE"] = self.store, self.path("other.qn")
        self.make_store(password)
        self.environment["QUILLON_STORE"] = mine
        return self.path("other.qn")

    def test_a_copy_stands_in_the_other_vault_and_the_item_where_it_was(self):
        uuid = self.bank("pa55", "--url", "https://a.example", "--notes", "N")
        copy = self.run_tool("copy", "Bank", "--to", "work").out.strip()
        self.assertRegex(copy, UUID)
        self.assertNotEqual(copy, uuid)
        there = self.run_tool("show", copy, "--vault", "work", "--json", "--reveal").json
        here = self.show(uuid)
        for key in ("title", "username", "password", "urls", "notes"):
            self.assertEqual(there[key], here[key], key)
        self.run_tool("show", copy, code=4)
        for vault in ("default", "work"):
            self.assertTrue(self.run_tool("check", "--vault", vault, "--json").json["clean"])

    def test_a_history_goes_with_it(self):
        uuid = self.bank()
        self.set_password(uuid, "pa55-2")
        copy = self.run_tool("copy", uuid, "--to", "work", "--json").json
        self.assertEqual(copy["vault"], "work")
        told = self.run_tool("history", copy["uuid"], "--vault", "work", "--reveal", "--json").json
        self.assertEqual([entry["password"] for entry in told], ["pa55-1"])

    def test_from_another_vault_into_the_first(self):
        self.add("Wiki", "--vault", "work")
        self.run_tool("copy", "Wiki", "--to", "default", "--vault", "work")
        self.assertEqual(self.titles(), ["Wiki"])

    def test_into_its_own_vault_it_is_refused(self):
        self.bank()
        result = self.run_tool("copy", "Bank", "--to", "default", code=1)
        self.assertIn("quillon duplicate", result.err)
        self.assertEqual(self.titles(), ["Bank"])

    def test_a_vault_that_is_not_there_is_4(self):
        self.bank()
        self.run_tool("copy", "Bank", "--to", "none", code=4)
        self.run_tool("copy", "Bank", "--to", "", code=2)
        self.run_tool("copy", "Nobody", "--to", "work", code=4)

    def test_a_password_that_opens_one_vault_alone_does_not_do(self):
        self.run_tool("vault", "add", "club", "--own-password-stdin", stdin=OTHER + "\n")
        self.add("Key", "--vault", "club")
        result = self.run_tool("copy", "Key", "--to", "work", "--vault", "club", password=OTHER,
                               code=3)
        self.assertIn("first vault", result.err)
        self.assertEqual(self.titles("--vault", "work"), [])

    def test_into_another_store_with_its_password(self):
        other = self.other_store()
        uuid = self.bank()
        copy = self.run_tool("copy", uuid, "--to", "default", "--to-store", other,
                             "--to-password-stdin", stdin=OTHER + "\n").out.strip()
        self.environment["QUILLON_STORE"] = other
        shown = self.run_tool("show", copy, "--json", "--reveal", password=OTHER).json
        self.assertEqual((shown["title"], shown["password"]), ("Bank", "pa55-1"))
        self.assertTrue(self.run_tool("check", "--json", password=OTHER).json["clean"])

    def test_into_a_backup_it_goes_as_the_same_item(self):
        kept = self.bank()
        backup = self.path("backup.qn")
        self.run_tool("backup", backup)
        uuid = self.add("Wiki", "--username", "jo")
        into = ["copy", "--to", "default", "--to-store", backup, "--to-password-stdin"]
        self.assertEqual(self.run_tool(*into, uuid, stdin=PASSWORD + "\n").out.strip(), uuid)
        result = self.run_tool(*into, kept, stdin=PASSWORD + "\n", code=1)
        self.assertIn("of this uuid is there", result.err)
        self.assertEqual(self.titles("--store", backup), ["Bank", "Wiki"])
        self.run_tool("merge", backup, "--other-password-stdin", stdin=PASSWORD + "\n")
        self.assertEqual(self.titles(), ["Bank", "Wiki"])
        for store in (self.store, backup):
            self.assertTrue(self.run_tool("check", "--json", "--store", store).json["clean"])

    def test_a_folder_that_the_other_vault_has_not_is_left_behind(self):
        uuid = self.bank()
        folder = self.run_tool("folder", "add", "Home").out.strip()
        self.run_tool("move", "Bank", "Home")
        copy = self.run_tool("copy", uuid, "--to", "work").out.strip()
        checked = self.run_tool("check", "--vault", "work", "--json").json
        self.assertEqual((checked["clean"], checked["remarks"]), (True, []))
        self.assertIsNone(self.run_tool("show", copy, "--vault", "work", "--json").json["folder"])
        self.assertEqual(self.show(uuid)["folder"], folder)

    def test_a_folder_that_a_backup_has_keeps_the_item(self):
        folder = self.run_tool("folder", "add", "Home").out.strip()
        backup = self.path("backup.qn")
        self.run_tool("backup", backup)
        uuid = self.bank()
        self.run_tool("move", "Bank", "Home")
        self.run_tool("copy", uuid, "--to", "default", "--to-store", backup, "--to-password-stdin",
                      stdin=PASSWORD + "\n")
        self.assertEqual(self.titles("--store", backup, "--folder", "Home"), ["Bank"])
        self.assertEqual(self.run_tool("show", uuid, "--store", backup, "--json").json["folder"],
                         folder)

    def test_another_stores_errors_name_it_and_change_nothing(self):
        other = self.other_store()
        self.bank()
        into = ["copy", "Bank", "--to", "default", "--to-password-stdin", "--to-store"]
        result = self.run_tool(*into, other, stdin="wrong\n", code=3)
        self.assertIn(other + ": wrong password", result.err)
        self.assertIn("none.qn", self.run_tool(*into, self.path("none.qn"), stdin=OTHER + "\n",
                                               code=7).err)
        result = self.run_tool(*into, self.store, stdin=PASSWORD + "\n", code=2)
        self.assertIn("the same store", result.err)
        result = self.run_tool("copy", "Bank", "--to", "none", "--to-password-stdin", "--to-store",
                               other, stdin=OTHER + "\n", code=4)
        self.assertIn(other, result.err)
        self.environment["QUILLON_STORE"] = other
        self.assertEqual(self.run_tool("list", password=OTHER).out, "")

    def test_the_other_password_is_asked_for_on_a_terminal(self):
        other = self.other_store()
        self.bank()
        terminal = Terminal(self, "copy", "Bank", "--to", "default", "--to-store", other)
        terminal.answer("Password: ", PASSWORD)
        terminal.answer("Password of the other store: ", OTHER)
        self.assertEqual(terminal.end(), 0)
        self.assertTrue(re.search(rb"[0-9a-f-]{36}", terminal.output))


if __name__ == "__main__":
    tool_test.TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
