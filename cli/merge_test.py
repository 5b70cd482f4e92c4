#!/usr/bin/env python3
"""Two stores that are brought into step, and what is left to be decided, as the built tool does it
and tells it: merge_test.py TOOL [TEST...]
"""
import hashlib
import json
import os
import sqlite3
import sys
import time
import unittest

import tool_test
from tool_test import DOTS, OTHER, PASSWORD, Terminal, ToolTest


class MergeTest(ToolTest):
    """Mine is the store of the environment, theirs a copy of it that lives on by itself."""

    def setUp(self):
        super().setUp()
        self.make_store()
        self.theirs = self.path("theirs.qn")

    def copy_store(self):
        self.run_tool("backup", self.theirs)

    def at(self, *arguments, **options):
        """Runs a command on their store."""
        return self.run_tool(*arguments, "--store", self.theirs, **options)

    def merge(self, *options, password=PASSWORD, other=PASSWORD, code=0):
        return self.run_tool("merge", self.theirs, "--other-password-stdin", *options,
                             stdin=other + "\n", password=password, code=code)

    def merged(self, *options):
        """{title: (what, {field: outcome})}"""
        report = self.merge("--json", *options).json
        return {item["title"]: (item["what"], {field["name"]: field["outcome"]
                                               for field in item["fields"]})
                for item in report["items"]}

    def content(self, store, password=PASSWORD):
        items = self.run_tool("list", "--json", "--store", store, password=password).json
        return [self.run_tool("show", item["uuid"], "--json", "--reveal", "--store", store,
                              password=password).json for item in items]

    def check_both(self):
        self.assertEqual(self.content(self.store), self.content(self.theirs))
        for store in (self.store, self.theirs):
            self.assertTrue(self.run_tool("check", "--json", "--store", store).json["clean"])

    def state_of_both(self):
        """All rows of both files; of what is no store its bytes."""
        states = []
        for file in (self.store, self.theirs):
            if not os.path.exists(file):
                continue
            with open(file, "rb") as opened:
                content = opened.read()
            if content.startswith(b"SQLite format 3"):
                database = sqlite3.connect(file)
                content = list(database.iterdump())
                database.close()
            states.append(hashlib.sha256(repr(content).encode()).hexdigest())
        return states

    def import_changed(self, change):
        """A store of theirs with the one item of mine, of which `change` changes the row."""
        exported = self.run_tool("export", "--plaintext").json
        change(exported["items"][0]["row"])
        file = self.write("changed.json", json.dumps(exported))
        self.run_tool("init", "--store", self.theirs)
        self.at("import", file)

    def make_conflicts(self):
        """An item in which both have changed everything, merged into mine: it is not the older."""
        uuid = self.run_tool(
            "add", "server", "--title", "Box", "--set", "ip_address=10.0.0.1", "--set",
            "ssh_port=22", "--add-field", "Net.Host\x1b[31m:string=old", "--set", "password=-",
            stdin="pa55-0").out.strip()
        self.copy_store()
        self.at("edit", uuid, "--set", "ip_address=10.0.0.3", "--set", "Host\x1b[31m=theirs\x07",
                "--set", "password=-", stdin="pa55-theirs")
        self.run_tool("edit", uuid, "--set", "ip_address=10.0.0.2", "--set",
                      "Host\x1b[31m=mine", "--set", "password=-", stdin="pa55-mine")
        self.merge()
        return uuid

    def merge_forms(self, mine, theirs):
        """A login with these entries in its form on either side, merged."""
        def set_form(entries):
            return lambda row: row["details"].update(fields=entries)
        uuid = self.add("Bank")
        self.import_changed(set_form(theirs))
        self.environment["QUILLON_STORE"] = self.path("third.qn")
        self.make_store()
        exported = self.run_tool("export", "--plaintext", "--store", self.theirs).json
        set_form(mine)(exported["items"][0]["row"])
        self.run_tool("import", self.write("b.json", json.dumps(exported)))
        self.merge()
        return uuid

    def form(self, uuid):
        """The values of a login's form but for the user name and the password, and the user
        name."""
        shown = self.show(uuid)
        return [field["value"] for field in shown["formFields"]], shown.get("username")

    def fields(self, uuid):
        """Title: value of every field of mine that has one, but for what was put aside."""
        return {field["title"]: field["value"] for section in self.show(uuid)["fields"]
                for field in section["fields"]
                if field.get("value") and section["name"] != "conflicts"}

    def sections(self, uuid):
        return [section["name"] for section in self.show(uuid)["fields"]]

    def history(self, uuid):
        return [entry["password"] for entry in
                self.run_tool("history", uuid, "--reveal", "--json").json]


class Merge(MergeTest):
    def test_what_each_side_added_goes_over_to_the_other(self):
        self.add("Both")
        self.copy_store()
        self.add("Mine\x1b[31m")
        self.at("add", "login", "--title", "Theirs")
        result = self.merge()
        self.assertEqual(sorted(result.out.splitlines()), [
            "came over         Theirs", "items compared: 3, changed: 2",
            "went over         Mine\\x1b[31m"])
        self.check_both()
        self.assertEqual(self.merge().out, "items compared: 3, changed: 0\n")

    def test_what_became_of_folders_is_told(self):
        uuids = {title: self.run_tool("folder", "add", title).out.strip() for title in "ABCE"}
        self.copy_store()
        time.sleep(1.1)  # of one second it isn't the later one that counts
        self.run_tool("folder", "move", "B", "C")
        self.at("folder", "move", "C", "B")
        self.at("folder", "delete", "E")
        self.at("folder", "rename", "A", "Z\x1b[31m")
        self.at("folder", "add", "D")
        report = self.merge("--dry-run", "--json").json
        self.assertIn({"uuid": uuids["A"], "title": "A", "what": "replacedMine"},
                      report["folders"])
        self.assertEqual(sorted(report["foldersMovedToTop"]), sorted([uuids["B"], uuids["C"]]))
        self.assertEqual((report["items"], report["quarantinedFolders"]), ([], []))
        lines = self.merge().out.splitlines()
        for line in ("changed here      folder A", "came over         folder D",
                     "deleted here      folder E", "moved to the top  folder B"):
            self.assertIn(line, lines)
        self.assertEqual(lines[-1], "items compared: 0, changed: 0")
        self.check_both()
        self.assertEqual(self.merge().out, "items compared: 0, changed: 0\n")

    def test_what_one_side_changed_replaces_the_others(self):
        first = self.add("First", "--username", "jo")
        second = self.add("Second", "--username", "jo")
        self.copy_store()
        self.merge()  # remembers how far both are
        self.run_tool("edit", first, "--set", "notes=N")
        self.at("edit", second, "--set", "notes=N")
        merged = self.merged()
        self.assertEqual({title: what for title, (what, _) in merged.items()},
                         {"First": "replacedTheirs", "Second": "replacedMine"})
        self.assertEqual(merged["Second"][1], {"notesPlain": "taken"})
        self.check_both()

    def test_what_both_changed_is_joined_field_by_field(self):
        uuid = self.add("Bank", "--username", "jo", "--notes", "N", "--password=-", stdin="pa55-0")
        self.copy_store()
        self.at("edit", uuid, "--set", "title=Theirs", "--set", "notes=theirs", "--set",
                "username=joe", "--set", "password=-", stdin="pa55-theirs")
        self.run_tool("edit", uuid, "--set", "title=Mine", "--set", "notes=mine", "--set",
                      "password=-", stdin="pa55-mine")
        what, fields = self.merged()["Mine"]
        self.assertEqual(what, "joined")
        self.assertEqual(fields["notesPlain"], "joined")
        self.assertEqual(fields["overview.title"], "conflictCopy")
        self.assertEqual(fields["password"], "conflictCopy")
        self.assertEqual(fields["username"], "conflictCopy")
        shown = self.show(uuid)
        self.assertEqual((shown["title"], shown["password"]), ("Mine", "pa55-mine"))
        self.assertIn("pa55-theirs", self.history(uuid))
        self.check_both()

    def test_the_report_tells_each_field_and_no_secret(self):
        uuid = self.add("Bank", "--password=-", stdin="pa55-0")
        self.copy_store()
        self.at("edit", uuid, "--set", "notes=theirs", "--set", "password=-",
                stdin="pa55-theirs")
        self.run_tool("edit", uuid, "--set", "notes=mine", "--set", "password=-",
                      stdin="pa55-mine")
        for options in (["--dry-run"], ["--dry-run", "--json"], []):
            result = self.merge(*options)
            self.assertNotIn("pa55", result.out + result.err)
        lines = result.out.splitlines()
        self.assertEqual(lines[0], "joined            Bank")
        self.assertIn("  notesPlain                          joined", lines)
        self.assertIn("  password                            kept, and the other one beside it", lines)
        self.assertEqual(lines[-1], "items compared: 1, changed: 1")

    def test_the_tags_of_both_are_united(self):
        uuid = self.add("Bank", "--tag", "home")
        self.copy_store()
        self.at("edit", uuid, "--tag", "travel")
        self.run_tool("edit", uuid, "--tag", "money")
        self.assertEqual(self.merged()["Bank"][1]["tags"], "joined")
        for store in (self.store, self.theirs):
            shown = self.run_tool("show", uuid, "--store", store)
            for tag in ("home", "money", "travel"):
                self.assertIn(tag, shown.out)

    def test_names_of_fields_are_escaped(self):
        uuid = self.run_tool("add", "secure-note", "--title", "T", "--notes", "N").out.strip()
        self.copy_store()
        self.at("edit", uuid, "--set", "notes=theirs", "--add-field", "A\x1b[31m.B:string=x")
        self.run_tool("edit", uuid, "--set", "notes=mine")
        result = self.merge()
        self.assertNotIn("\x1b", result.out)

    def test_a_deletion_goes_over_unless_the_other_side_changed_the_item(self):
        for title in ("Gone here", "Gone there", "Kept"):
            self.add(title)
        self.copy_store()
        self.merge()
        self.run_tool("delete", "Gone here", "--force")
        self.at("delete", "Gone there", "--force")
        self.run_tool("delete", "Kept", "--force")
        self.at("edit", "Kept", "--set", "notes=newer")
        self.assertEqual({title: what for title, (what, _) in self.merged().items()},
                         {"Gone here": "deletedTheirs", "Gone there": "deletedMine",
                          "Kept": "deletionRefused"})
        self.assertEqual(self.titles(), ["Kept"])
        self.check_both()

    def test_a_refused_deletion_is_told_by_its_title(self):
        self.add("Kept")
        self.copy_store()
        self.merge()
        self.run_tool("delete", "Kept", "--force")
        self.at("edit", "Kept", "--set", "notes=newer")
        self.assertEqual(self.merge().out,
                         "deletion refused  Kept\nitems compared: 1, changed: 1\n")

    def test_a_dry_run_tells_the_same_and_changes_nothing(self):
        self.add("Both")
        self.copy_store()
        self.add("Mine")
        self.at("edit", "Both", "--set", "notes=N")
        before = [self.content(self.store), self.content(self.theirs)]
        told = self.merge("--dry-run", "--json").json
        self.assertIs(told["dryRun"], True)
        self.assertEqual([self.content(self.store), self.content(self.theirs)], before)
        self.assertIn("items compared: 2, would be changed: 2", self.merge("--dry-run").out)
        done = self.merge("--json").json
        self.assertIs(done["dryRun"], False)
        self.assertEqual(done["items"], told["items"])
        self.assertEqual(done["compared"], 2)

    def test_stores_of_other_keys_and_passwords_are_brought_into_step(self):
        self.add("Mine")
        self.run_tool("init", "--store", self.theirs, password=OTHER)
        self.at("add", "login", "--title", "Theirs", password=OTHER)
        self.merge(other=OTHER)
        self.assertEqual(self.titles(), ["Mine", "Theirs"])
        self.assertEqual(self.content(self.store), self.content(self.theirs, OTHER))

    def test_vaults_of_other_names_are_merged_when_they_are_named(self):
        self.run_tool("vault", "add", "work")
        self.add("Wiki", "--vault", "work")
        self.run_tool("init", "--store", self.theirs)
        self.merge("--vault", "work", code=4)
        self.merge("--vault", "work", "--other-vault", "default")
        self.assertEqual([item["title"] for item in self.content(self.theirs)], ["Wiki"])
        self.assertEqual(self.titles(), [])

    def test_the_same_vault_of_both_is_merged_without_naming_it_twice(self):
        self.run_tool("vault", "add", "work")
        self.copy_store()
        self.add("Wiki", "--vault", "work")
        self.merge("--vault", "work")
        self.assertIn("Wiki", self.at("list", "--vault", "work").out)

    def test_a_first_merge_from_a_place_is_told(self):
        self.add("Bank")
        self.copy_store()
        first = "no earlier merge of these two is remembered"
        self.assertIs(self.merge("--dry-run", "--json").json["first"], True)
        self.assertIn(first, self.merge().err)
        self.assertNotIn(first, self.merge().err)
        self.assertIs(self.merge("--json").json["first"], False)
        moved = self.path("moved.qn")
        os.rename(self.theirs, moved)
        self.theirs = moved
        self.assertIn(first, self.merge().err)

    def test_a_file_under_another_name_is_remembered(self):
        self.add("Bank")
        self.copy_store()
        self.merge()
        self.at("edit", "Bank", "--set", "notes=N")
        os.symlink(self.theirs, self.path("link.qn"))
        self.theirs = self.path("link.qn")
        self.assertEqual(self.merged()["Bank"][0], "replacedMine")

    def test_items_of_one_uuid_and_two_categories_stay_as_they_are(self):
        uuid = self.run_tool("add", "secure-note", "--title", "T").out.strip()
        self.import_changed(lambda row: row.update(categoryUUID="110"))
        result = self.merge()
        self.assertIn("of two categories, left alone  T\nitems compared: 1, changed: 0\n",
                      result.out)
        self.assertEqual((self.show(uuid)["category"], self.content(self.theirs)[0]["category"]),
                         ("003", "110"))

    def test_the_other_password_is_asked_for_on_a_terminal(self):
        self.add("Bank")
        self.run_tool("init", "--store", self.theirs, password=OTHER)
        terminal = Terminal(self, "merge", self.theirs)
        terminal.answer("Password: ", PASSWORD)
        terminal.answer("Password of the other store: ", OTHER)
        self.assertEqual(terminal.end(), 0)
        self.assertIn(b"went over         Bank", terminal.output)

    def test_each_source_gives_the_other_password(self):
        self.copy_store()
        other = self.write("pw", PASSWORD)
        self.run_tool("merge", self.theirs, "--other-password-file", other)
        with open(other) as file:
            result = self.run_raw("merge", self.theirs, "--password-stdin", "--other-password-fd",
                                  str(file.fileno()), stdin=PASSWORD + "\n",
                                  pass_fds=(file.fileno(),))
        self.assertEqual(result.code, 0, result.err)
        result = self.run_tool("merge", self.theirs, code=2)
        self.assertIn("--other-password-stdin", result.err)


class MergeRefusals(MergeTest):
    """Each with a clear error, and nothing changed on either side."""

    def setUp(self):
        super().setUp()
        self.add("Bank")
        self.copy_store()
        self.add("Mine")

    def refuse(self, code, *reasons, other=PASSWORD, password=PASSWORD, options=()):
        before = self.state_of_both()
        result = self.merge(*options, other=other, password=password, code=code)
        self.assertEqual(result.out, "")
        for reason in reasons:
            self.assertIn(reason, result.err)
        self.assertEqual(self.state_of_both(), before)

    def test_a_wrong_password_for_the_other(self):
        self.refuse(3, self.theirs + ": wrong password", other="wrong")

    def test_a_wrong_password_for_the_own_one(self):
        self.refuse(3, "quillon: wrong password", password="wrong")

    def test_a_newer_schema(self):
        with sqlite3.connect(self.theirs) as database:
            database.execute("PRAGMA user_version = 99")
        database.close()
        self.refuse(6, self.theirs, "newer version of quillon")

    def test_the_same_file_by_any_name(self):
        self.theirs = self.store
        self.refuse(2, "is the same store")
        self.theirs = self.path("link.qn")
        os.symlink(self.store, self.theirs)
        self.refuse(2, self.theirs + ": is the same store")
        self.theirs = self.path("hard.qn")
        os.link(self.store, self.theirs)
        self.refuse(2, self.theirs + ": is the same store")

    def test_a_store_in_use(self):
        for store in (self.store, self.theirs):
            holder = sqlite3.connect(store, isolation_level=None)
            holder.execute("BEGIN IMMEDIATE")
            try:
                self.refuse(1, "another process")
            finally:
                holder.execute("ROLLBACK")
                holder.close()

    def test_what_is_not_there_or_no_store(self):
        real = self.theirs
        self.refuse(4, real, "no vault", options=["--other-vault", "none"])
        self.theirs = self.path("none.qn")
        self.refuse(7, self.theirs)
        self.assertFalse(os.path.exists(self.theirs))
        self.theirs = self.write("letter.txt", "Dear Sir, " * 1000)
        self.refuse(6, self.theirs)

    def test_a_damaged_store(self):
        with sqlite3.connect(self.theirs) as database:
            database.execute("UPDATE items SET updated_at = 1")
        database.close()
        self.refuse(6, "altered")


class Conflicts(MergeTest):
    def test_they_are_listed_with_both_values_and_secrets_as_dots(self):
        uuid = self.make_conflicts()
        lines = self.run_tool("conflicts").out.splitlines()
        self.assertEqual(lines[0], uuid + "  Box")
        at = lines.index("  ip_address  IP address")
        self.assertEqual(lines[at + 1:at + 3], ["    mine:    10.0.0.2", "    theirs:  10.0.0.3"])
        at = lines.index("  password")
        self.assertEqual(lines[at + 1:at + 3], ["    mine:    " + DOTS, "    theirs:  " + DOTS])
        host = next(i for i, line in enumerate(lines) if line.endswith("  Host\\x1b[31m"))
        self.assertEqual(lines[host + 1:host + 3],
                         ["    mine:    mine", "    theirs:  theirs\\x07"])
        self.assertEqual(len(lines), 10)
        revealed = self.run_tool("conflicts", "--reveal").out
        self.assertIn("    mine:    pa55-mine\n    theirs:  pa55-theirs\n", revealed)

    def test_json_has_what_is_no_secret_unless_it_is_asked_for(self):
        uuid = self.make_conflicts()
        (item,) = self.run_tool("conflicts", "--json").json
        self.assertEqual((item["uuid"], item["title"]), (uuid, "Box"))
        told = {conflict["field"]: conflict for conflict in item["conflicts"]}
        self.assertEqual(told["ip_address"], {"field": "ip_address", "title": "IP address",
                                              "secret": False, "mine": "10.0.0.2",
                                              "theirs": "10.0.0.3"})
        self.assertEqual(told["password"],
                         {"field": "password", "title": "password", "secret": True})
        (item,) = self.run_tool("conflicts", "--json", "--reveal").json
        told = {conflict["field"]: conflict for conflict in item["conflicts"]}
        self.assertEqual((told["password"]["mine"], told["password"]["theirs"]),
                         ("pa55-mine", "pa55-theirs"))

    def test_items_without_any_are_not_listed(self):
        self.add("Bank")
        self.assertEqual(self.run_tool("conflicts").out, "")
        self.assertEqual(self.run_tool("conflicts", "--json").json, [])

    def test_an_item_that_does_not_open_is_told(self):
        self.make_conflicts()
        self.add("Bank")
        with sqlite3.connect(self.store) as database:
            database.execute("UPDATE details SET details = x'00' WHERE item_id = 2")
        database.close()
        result = self.run_tool("conflicts", code=6)
        self.assertIn("Box", result.out)
        self.assertIn("damaged items left out: 1", result.err)


class Resolve(MergeTest):
    def test_mine_stays_and_what_was_put_aside_goes(self):
        uuid = self.make_conflicts()
        self.assertEqual(self.run_tool("resolve", uuid, "--keep", "mine").out,
                         "conflicts settled: 3, left: 0\n")
        self.assertEqual(self.fields(uuid), {"IP address": "10.0.0.2", "SSH port": "22",
                                             "Host\x1b[31m": "mine", "password": "pa55-mine"})
        self.assertNotIn("conflicts", self.sections(uuid))
        self.assertEqual(self.run_tool("conflicts").out, "")
        self.assertIn("pa55-theirs", self.history(uuid))
        self.assertTrue(self.run_tool("check", "--json").json["clean"])

    def test_theirs_takes_the_place_and_the_password_that_goes_is_in_the_history(self):
        uuid = self.make_conflicts()
        self.assertEqual(self.run_tool("resolve", uuid, "--keep", "theirs", "--json").json["left"],
                         0)
        self.assertEqual(self.fields(uuid), {"IP address": "10.0.0.3", "SSH port": "22",
                                             "Host\x1b[31m": "theirs\x07",
                                             "password": "pa55-theirs"})
        self.assertNotIn("conflicts", self.sections(uuid))
        self.assertIn("pa55-mine", self.history(uuid))

    def test_fields_are_settled_one_by_one_by_identifier_or_title(self):
        uuid = self.make_conflicts()
        done = self.run_tool("resolve", uuid, "--field", "ip_address=theirs", "--field",
                             "password=mine", "--json").json
        self.assertEqual(done, {"uuid": uuid, "settled": ["ip_address", "password"], "left": 1})
        self.assertEqual(self.fields(uuid)["IP address"], "10.0.0.3")
        self.assertEqual(self.run_tool("resolve", uuid, "--field", "Host\x1b[31m=theirs").out,
                         "conflicts settled: 1, left: 0\n")
        self.assertEqual(self.fields(uuid)["Host\x1b[31m"], "theirs\x07")

    def test_what_is_settled_goes_over_with_the_next_merge(self):
        uuid = self.make_conflicts()
        self.run_tool("resolve", uuid, "--keep", "theirs")
        self.assertEqual(self.merged()["Box"][0], "replacedTheirs")
        self.assertEqual(self.at("conflicts").out, "")
        self.check_both()

    def test_a_user_name_of_a_login_is_settled(self):
        uuid = self.add("Bank", "--username", "jo")
        self.copy_store()
        self.at("edit", uuid, "--set", "username=theirs")
        self.run_tool("edit", uuid, "--set", "username=mine")
        self.merge()
        self.assertIn("  username\n    mine:    mine\n    theirs:  theirs\n",
                      self.run_tool("conflicts").out)
        self.run_tool("resolve", uuid, "--field", "username=theirs")
        self.assertEqual(self.show(uuid)["username"], "theirs")
        self.assertEqual(self.run_tool("conflicts").out, "")

    def test_a_title_is_settled(self):
        for category in ("login", "server"):
            with self.subTest(category):
                uuid = self.run_tool("add", category, "--title", "Box").out.strip()
                if os.path.exists(self.theirs):
                    os.remove(self.theirs)
                self.copy_store()
                self.at("edit", uuid, "--set", "title=Theirs\x1b[31m")
                self.run_tool("edit", uuid, "--set", "title=Mine")
                self.merge()
                self.assertIn("  title  Title\n    mine:    Mine\n    theirs:  Theirs\\x1b[31m\n",
                              self.run_tool("conflicts").out)
                (item,) = self.run_tool("conflicts", "--json").json
                self.assertEqual(item["conflicts"], [
                    {"field": "title", "title": "Title", "secret": False, "mine": "Mine",
                     "theirs": "Theirs\x1b[31m"}])
                self.run_tool("resolve", uuid, "--field", "title=theirs")
                self.assertEqual(self.show(uuid)["title"], "Theirs\x1b[31m")
                self.assertEqual(self.run_tool("conflicts").out, "")

    def test_an_input_of_a_logins_form_is_settled(self):
        uuid = self.merge_forms([{"name": "pin", "type": "P", "value": "2222"}],
                                [{"name": "pin", "type": "P", "value": "1111"}])
        told = self.run_tool("conflicts")
        self.assertIn(f"  pin\n    mine:    {DOTS}\n    theirs:  {DOTS}\n", told.out)
        self.assertIn("mine:    2222\n    theirs:  1111",
                      self.run_tool("conflicts", "--reveal").out)
        # The keys of both sides are with the item now, but not with an export of it.
        self.assertNotIn("backupKeys", self.run_tool("export", "--plaintext").out)
        self.run_tool("resolve", uuid, "--field", "pin=theirs")
        self.assertEqual([field["value"] for field in self.show(uuid)["formFields"]], ["1111"])
        self.assertEqual(self.run_tool("conflicts").out, "")

    def test_an_input_named_like_the_user_name_is_settled_as_what_it_is(self):
        uuid = self.merge_forms([{"name": "username", "type": "T", "value": "mine"}],
                                [{"name": "username", "type": "T", "value": "theirs"}])
        self.assertIn("  username\n    mine:    mine\n    theirs:  theirs\n",
                      self.run_tool("conflicts").out)
        self.run_tool("resolve", uuid, "--field", "username=theirs")
        self.assertEqual(self.form(uuid), (["theirs"], None))

    def test_a_value_that_fits_two_places_is_put_into_none(self):
        def form(value):
            return [{"name": "login", "type": "T", "value": "jo", "designation": "username"},
                    {"name": "username", "type": "T", "value": value}]
        uuid = self.merge_forms(form("mine"), form("theirs"))
        before = self.form(uuid)
        self.assertNotIn("mine:", self.run_tool("conflicts").out)
        for choice in (["--field", "username=theirs"], ["--keep", "theirs"]):
            result = self.run_tool("resolve", uuid, *choice, code=1)
            self.assertIn("one of several", result.err)
        self.assertEqual(self.form(uuid), before)
        self.run_tool("resolve", uuid, "--field", "username=mine")
        self.assertEqual(self.form(uuid), before)
        self.assertEqual(self.run_tool("conflicts").out, "")

    def test_of_several_values_one_is_chosen_by_its_own_name(self):
        uuid = self.make_conflicts()
        self.at("edit", uuid, "--set", "ip_address=10.0.0.4")
        self.run_tool("edit", uuid, "--set", "ip_address=10.0.0.5")
        self.merge()
        (item,) = self.run_tool("conflicts", "--json").json
        rivals = {conflict["theirs"]: conflict["field"] for conflict in item["conflicts"]
                  if conflict["title"] == "IP address"}
        self.assertEqual(rivals, {"10.0.0.3": "ip_address_conflict_1",
                                  "10.0.0.4": "ip_address_conflict_2"})
        for choice in (["--field", "ip_address=theirs"], ["--keep", "theirs"]):
            result = self.run_tool("resolve", uuid, *choice, code=5)
            self.assertIn("ip_address_conflict_1\nip_address_conflict_2\n", result.err)
        self.assertEqual(self.fields(uuid)["IP address"], "10.0.0.5")
        self.run_tool("resolve", uuid, "--field", "ip_address_conflict_2=theirs")
        self.assertEqual(self.fields(uuid)["IP address"], "10.0.0.4")
        self.assertIn("10.0.0.3", self.run_tool("conflicts").out)
        self.run_tool("resolve", uuid, "--field", "ip_address=mine")
        self.assertEqual(self.fields(uuid)["IP address"], "10.0.0.4")

    def test_a_title_of_several_fields_settles_none_of_them(self):
        uuid = self.run_tool("add", "server", "--title", "Box", "--add-field",
                             "Home.Code:string=1", "--add-field",
                             "Work.Code:string=1").out.strip()
        self.copy_store()
        self.at("edit", uuid, "--set", "Home.Code=3", "--set", "Work.Code=4")
        self.run_tool("edit", uuid, "--set", "Home.Code=5", "--set", "Work.Code=6")
        self.merge()
        before = self.run_tool("conflicts").out
        (item,) = self.run_tool("conflicts", "--json").json
        names = {conflict["theirs"]: conflict["field"] for conflict in item["conflicts"]}
        for side in ("mine", "theirs"):
            result = self.run_tool("resolve", uuid, "--field", "Code=" + side, code=5)
            for name in names.values():
                self.assertIn(name + "\n", result.err)
        self.assertEqual(self.run_tool("conflicts").out, before)
        self.run_tool("resolve", uuid, "--field", names["4"] + "=mine")
        (item,) = self.run_tool("conflicts", "--json").json
        self.assertEqual([conflict["theirs"] for conflict in item["conflicts"]], ["3"])

    def test_a_field_that_is_gone_can_only_be_let_go(self):
        uuid = self.make_conflicts()
        self.run_tool("edit", uuid, "--unset", "Net.Host\x1b[31m")
        result = self.run_tool("resolve", uuid, "--keep", "theirs", code=1)
        self.assertIn("isn't there any more", result.err)
        self.assertNotIn("\x1b", result.err)
        self.assertEqual(self.fields(uuid)["password"], "pa55-mine")  # nothing was saved
        self.run_tool("resolve", uuid, "--keep", "mine")
        self.assertEqual(self.run_tool("conflicts").out, "")

    def test_no_such_field_or_item_or_conflict_is_4_and_changes_nothing(self):
        uuid = self.make_conflicts()
        before = self.run_tool("conflicts").out
        self.run_tool("resolve", uuid, "--field", "ip_address=mine", "--field", "none=mine",
                      code=4)
        self.assertEqual(self.run_tool("conflicts").out, before)
        self.run_tool("resolve", "Nobody", "--keep", "mine", code=4)
        self.add("Bank")
        self.assertIn("no conflicts", self.run_tool("resolve", "Bank", "--keep", "mine",
                                                    code=4).err)

    def test_no_secret_is_printed(self):
        uuid = self.make_conflicts()
        for command in (["conflicts"], ["conflicts", "--json"],
                        ["resolve", uuid, "--field", "password=theirs"],
                        ["resolve", uuid, "--keep", "mine", "--json"]):
            result = self.run_tool(*command)
            self.assertNotIn("pa55", result.out + result.err)


if __name__ == "__main__":
    tool_test.TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
