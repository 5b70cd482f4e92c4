#!/usr/bin/env python3
"""Exports in clear and their way back, as the built tool makes them: export_test.py TOOL [TEST...]
"""
import json
import os
import sqlite3
import stat
import sys
import time
import unittest

import tool_test
from tool_test import DATA, OTHER, PASSWORD, Terminal, ToolTest


class ExportTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.make_store()

    def fill(self):
        """Items of several kinds, with all that a row dictionary has and what it lacks."""
        self.import_data("firefox.csv")  # with times of creation and last use
        uuid = self.add("Bank \x1b[31m", "--username", "jo", "--url", "https://a.example", "--url",
                        "https://b.example", "--notes", "first\nsecond", "--tag", "home",
                        "--favorite", "--password=-", stdin="pa55-1")
        self.run_tool("edit", uuid, "--set", "password=-", stdin="pa55-2")
        self.run_tool("add", "credit-card", "--title", "Card", "--set",
                      "ccnum=4111 1111 1111 1111", "--set", "expiry=2029-07", "--add-field",
                      "Mine.Day:date=2024-07-05", "--add-field", "Mine.Where:address=", "--set",
                      "Where.city=Berlin", "--set", "pin=-", stdin="1234")
        self.run_tool("trash", self.add("Old"))

    def export(self, *options, **others):
        return self.run_tool("export", "--plaintext", *options, **others)

    def another_store(self):
        self.environment["QUILLON_STORE"] = self.store = self.path("other.qn")
        self.make_store()

    def rows(self):
        """Of each item the text of its line."""
        lines = self.export().out.splitlines()
        self.assertEqual(lines[0], '{"format":"quillon","version":1,"folders":[')
        self.assertEqual(lines[-1], "]}")
        return [line.rstrip(",") for line in lines[lines.index('],"items":[') + 1:-1]]


class Export(ExportTest):
    def test_without_the_word_for_it_nothing_is_written_and_the_reason_is_told(self):
        for options in ([], ["--json"], [self.path("e.json")], ["--force"]):
            result = self.run_raw("export", *options)
            self.assertEqual((result.code, result.out), (2, ""))
            self.assertIn("every password in clear", result.err)
            self.assertIn("--plaintext", result.err)
            self.assertIn("quillon backup", result.err)
        self.assertFalse(os.path.exists(self.path("e.json")))

    def test_all_items_come_with_everything_in_clear(self):
        self.fill()
        exported = self.export("--json").json
        self.assertEqual((exported["format"], exported["version"]), ("quillon", 1))
        items = {item["row"]["overview"]["title"]: item for item in exported["items"]}
        self.assertEqual(len(items), 5)
        bank = items["Bank \x1b[31m"]
        self.assertEqual(bank["row"]["uuid"], self.show("Bank \x1b[31m")["uuid"])
        self.assertEqual(bank["row"]["details"]["notesPlain"], "first\nsecond")
        self.assertEqual([one["value"] for one in bank["row"]["details"]["passwordHistory"]],
                         ["pa55-1"])
        self.assertIn("pa55-2", json.dumps(bank["row"]["details"]["fields"]))
        self.assertEqual(len(bank["row"]["URLs"]), 2)
        self.assertGreater(bank["faveIndex"], 0)
        self.assertEqual((bank["trashed"], items["Old"]["trashed"]), (False, True))

    def test_no_key_is_in_it(self):
        self.fill()
        self.assertNotIn("backupKeys", self.export().out)

    def test_a_file_is_nobody_elses_and_never_replaces_one(self):
        self.fill()
        file = self.path("e.json")
        os.umask(0)
        try:
            result = self.export(file)
        finally:
            os.umask(0o022)
        self.assertEqual(result.out, "")
        self.assertIn("items in clear in " + file + ": 5", result.err)
        self.assertEqual(stat.S_IMODE(os.stat(file).st_mode), 0o600)
        self.assertEqual(self.read("e.json").decode(), self.export().out)
        letter = self.write("letter.txt", "Dear Sir")
        self.assertIn("is there already", self.export(letter, code=1).err)
        self.assertEqual(self.read("letter.txt"), b"Dear Sir")
        self.export("/proc/none/e.json", code=7)

    def test_json_tells_of_the_file(self):
        self.fill()
        file = self.path("e.json")
        self.assertEqual(self.export(file, "--json").json, {"export": file, "items": 5, "folders": 0})

    def test_a_terminal_gets_it_only_by_force(self):
        self.add("Bank", "--password=-", stdin="pa55-1")
        password = self.write("pw", PASSWORD)
        terminal = Terminal(self, "export", "--plaintext", "--password-file", password)
        self.assertEqual(terminal.end(), 2)
        self.assertIn(b"--force", terminal.output)
        self.assertNotIn(b"pa55-1", terminal.output)
        terminal = Terminal(self, "export", "--plaintext", "--force", "--password-file", password)
        self.assertEqual(terminal.end(), 0)
        self.assertIn(b"pa55-1", terminal.output)

    def test_an_empty_vault_gives_an_empty_list(self):
        self.assertEqual(self.export().json,
                         {"format": "quillon", "version": 1, "folders": [], "items": []})

    def test_a_vault_is_exported_alone(self):
        self.run_tool("vault", "add", "work")
        self.add("Wiki", "--vault", "work")
        self.assertEqual(self.export().json["items"], [])
        self.assertEqual(len(self.export("--vault", "work").json["items"]), 1)

    def test_a_wrong_password_is_3_and_makes_no_file(self):
        self.export(self.path("e.json"), password="wrong", code=3)
        self.assertFalse(os.path.exists(self.path("e.json")))

    def test_damaged_items_are_left_out_and_told(self):
        self.add("Bank")
        self.add("Forum")
        self.add("Wiki")
        with sqlite3.connect(self.store) as database:
            database.execute("UPDATE items SET overview = x'00' WHERE oid = 1")
            database.execute("UPDATE details SET details = x'00' WHERE item_id = 2")
        database.close()
        result = self.export(code=6)
        self.assertIn("damaged items left out: 2", result.err)
        self.assertEqual([item["row"]["overview"]["title"] for item in result.json["items"]],
                         ["Wiki"])


class ImportOfAnExport(ExportTest):
    def test_export_wipe_and_import_give_the_same_bytes(self):
        self.fill()
        before = self.export().bytes
        rows = self.rows()
        file = self.write("e.json", before)
        time.sleep(1.1)  # what took its time of now would differ
        self.another_store()
        self.assertEqual(self.run_tool("import", file).out, "added: 5\n")
        self.assertEqual(self.rows(), rows)
        self.assertEqual(self.export().bytes, before)
        self.assertTrue(self.run_tool("check", "--json").json["clean"])
        self.assertEqual(self.titles("--trashed"), ["Old"])
        shown = self.show("Bank \x1b[31m")
        self.assertTrue(shown["favorite"])
        self.assertEqual(shown["password"], "pa55-2")

    def test_items_of_every_category_and_of_every_csv_come_back_the_same(self):
        for category in self.run_tool("categories", "--json").json:
            if category["available"]:
                self.run_tool("add", category["uuid"], "--title", category["title"], "--add-field",
                              "S.Seed:totp=-", "--add-field", "S.Text:concealed=-",
                              stdin="GEZDGNBVGY3TQOJQ\nsecret\n")
        for name in ("bitwarden.csv", "chromium.csv", "extra-fields.csv", "control-characters.csv"):
            self.import_data(name)
        before = self.export().bytes
        file = self.write("e.json", before)
        self.another_store()
        self.run_tool("import", file)
        self.assertEqual(self.export().bytes, before)
        self.assertIn("added: 0", self.run_tool("import", file).out)
        self.assertTrue(self.run_tool("check", "--json").json["clean"])

    def test_what_was_deleted_comes_back_as_it_was(self):
        self.fill()
        before = self.export().bytes
        file = self.write("e.json", before)
        for item in self.run_tool("list", "--json").json:
            self.run_tool("delete", "--force", item["uuid"])
        self.run_tool("delete", "Old")
        self.assertEqual(self.export().json["items"], [])
        self.assertEqual(self.run_tool("import", file).out, "added: 5\n")
        self.assertEqual(self.export().bytes, before)
        self.assertTrue(self.run_tool("check", "--json").json["clean"])

    def test_the_same_file_twice_adds_nothing(self):
        self.fill()
        file = self.write("e.json", self.export().bytes)
        self.assertEqual(self.run_tool("import", file, "--json").json,
                         {"format": "quillon", "dryRun": False, "added": 0, "alreadyThere": 5,
                          "differing": 0, "damaged": [], "foldersAdded": 0,
                          "foldersAlreadyThere": 0, "foldersMovedToTop": []})
        self.another_store()
        self.run_tool("import", file)
        before = self.export().bytes
        self.assertEqual(self.run_tool("import", file).out, "added: 0\nalready there: 5\n")
        self.assertEqual(self.export().bytes, before)

    def test_reports_about_a_foreign_category_reach_no_terminal_as_they_are(self):
        self.add("Bank")
        exported = json.loads(self.export().out)
        exported["items"][0]["row"]["uuid"] = "2b48f940-d7ad-48c5-a3b9-b339b8f7a128"
        exported["items"][0]["row"]["categoryUUID"] = "\x1b[31mred"
        result = self.run_tool("import", self.write("e.json", json.dumps(exported)))
        self.assertIn("categoryUUID '\\x1b[31mred'", result.err)
        self.assertNotIn("\x1b", result.err)

    def test_an_item_with_other_content_is_left_alone(self):
        self.fill()
        file = self.write("e.json", self.export().bytes)
        self.run_tool("edit", "Card", "--set", "notes=newer")
        self.run_tool("restore", "Old")
        before = self.export().bytes
        self.assertEqual(self.run_tool("import", file).out,
                         "added: 0\nalready there: 3\n"
                         "there with other content, and left alone: 2\n")
        self.assertEqual(self.export().bytes, before)

    def test_a_damaged_item_of_the_vault_is_told_and_left_alone(self):
        uuids = [self.add(title) for title in ("Bank", "Forum", "Wiki", "Zoo")]
        file = self.write("e.json", self.export().bytes)
        self.run_tool("delete", "--force", uuids[2])
        with sqlite3.connect(self.store) as database:
            database.execute("UPDATE items SET overview = x'00' WHERE oid = 1")
            database.execute("UPDATE details SET details = x'00' WHERE item_id = 2")
        database.close()
        result = self.run_tool("import", file, code=6)
        self.assertEqual(result.out, "added: 1\nalready there: 1\n")
        for uuid in uuids[:2]:
            self.assertIn(uuid + ": there, but damaged, and left alone", result.err)
        listed = self.run_tool("list", code=6).out
        self.assertEqual([line.split()[0] for line in listed.splitlines()],
                         ["Forum", "Wiki", "Zoo"])
        told = self.run_tool("import", file, "--json", code=6).json
        self.assertEqual((told["damaged"], told["alreadyThere"]), (uuids[:2], 2))

    def test_a_dry_run_tells_and_changes_nothing(self):
        self.fill()
        file = self.write("e.json", self.export().bytes)
        self.another_store()
        self.assertEqual(self.run_tool("import", file, "--dry-run").out, "would add: 5\n")
        self.assertEqual(self.export().json["items"], [])

    def test_it_goes_into_a_store_of_another_password_and_into_another_vault(self):
        self.fill()
        file = self.write("e.json", self.export().bytes)
        self.run_tool("vault", "add", "work")
        self.run_tool("import", file, "--vault", "work")
        self.assertEqual(self.export("--vault", "work").bytes, self.read("e.json"))
        self.environment["QUILLON_STORE"] = self.path("third.qn")
        self.make_store(OTHER)
        self.run_tool("import", file, password=OTHER)
        self.assertEqual(self.export(password=OTHER).bytes, self.read("e.json"))

    def test_a_file_that_is_wrong_adds_nothing_and_says_why(self):
        self.fill()
        good = self.export().json
        self.another_store()
        second = json.loads(json.dumps(good))
        second["items"][1]["row"].pop("uuid")
        twice = json.loads(json.dumps(good))
        twice["items"].append(twice["items"][0])
        foreign = json.loads(json.dumps(good))
        foreign["items"][2]["row"]["categoryUUID"] = "006"
        for content, reason in (
                ("{", "e.json"), ("{}", "isn't what quillon export writes"),
                ('{"format":"quillon","version":2,"items":[]}', "another version"),
                ('{"format":"quillon","version":1}', "no list of items"),
                ('{"format":"quillon","version":1,"items":[7]}', "item 1: it has no row"),
                ('{"format":"quillon","version":1,"items":[],"folders":{}}',
                 "its folders are no list"),
                (json.dumps(second), "item 2: it has no uuid"),
                (self.with_row(good, overview=7), "item 1: it has no overview"),
                (self.with_row(good, details=[]), "item 1: it has no details"),
                (self.with_row(good, URLs=[7]), "item 1: its URLs are no list of objects"),
                (json.dumps(twice), "item 6: an earlier one has its uuid"),
                (json.dumps(foreign), "item 3: a local vault takes no item of its category")):
            result = self.run_tool("import", self.write("e.json", content), code=1)
            self.assertIn("e.json: ", result.err)
            self.assertIn(reason, result.err)
            self.assertEqual(self.export().json["items"], [])

    @staticmethod
    def with_row(exported, **members):
        changed = json.loads(json.dumps(exported))
        changed["items"][0]["row"].update(members)
        return json.dumps(changed)

    def test_a_uuid_of_another_form_is_escaped_and_names_its_item(self):
        self.add("Bank")
        exported = self.export().json
        odd = "\u001b[31mODD"
        self.another_store()
        self.run_tool("import", self.write("e.json", self.with_row(exported, uuid=odd)))
        listed = self.run_tool("list", "--long")
        self.assertNotIn("\u001b", listed.out)
        self.assertEqual(self.show(odd)["title"], "Bank")

    def test_a_row_id_in_a_file_names_no_row(self):
        uuid = self.add("Bank")
        exported = self.export().json
        exported["items"][0]["row"].update(oid=1, uuid="01234567-89ab-4cde-8f01-23456789abcd")
        self.run_tool("import", self.write("e.json", json.dumps(exported)))
        self.assertEqual(self.titles(), ["Bank", "Bank"])
        self.assertEqual(self.show(uuid)["title"], "Bank")
        self.assertTrue(self.run_tool("check", "--json").json["clean"])

    def test_the_mark_of_a_new_item_comes_back(self):
        self.add("Bank")
        exported = self.export().json
        self.assertIs(exported["items"][0]["inbox"], False)
        exported["items"][0]["inbox"] = True
        self.another_store()
        self.run_tool("import", self.write("e.json", json.dumps(exported)))
        self.assertIs(self.export().json["items"][0]["inbox"], True)
        with sqlite3.connect(self.store) as database:
            self.assertEqual(database.execute("SELECT inbox FROM items").fetchall(), [(1,)])
        database.close()

    def test_csv_is_still_known_by_its_content(self):
        self.write("odd.json", self.read(os.path.join(DATA, "safari.csv")))
        self.assertEqual(self.run_tool("import", self.path("odd.json"), "--json").json["format"],
                         "safari")


class FoldersOfAnExport(ExportTest):
    def setUp(self):
        super().setUp()
        self.work = self.make_folder("Work \x1b[31m")
        self.bills = self.make_folder("Work \x1b[31m/Bills")
        self.smart = self.run_tool("smart", "add", "Work \x1b[31m/Weak",
                                   'passwordStrength < 50').out.strip()
        self.bank = self.add("Bank")
        self.run_tool("move", "Bank", self.bills)

    def make_folder(self, path):
        return self.run_tool("folder", "add", path).out.strip()

    def folders(self):
        """Of each folder its title and that of its parent."""
        folders = {one["uuid"]: one for one in self.run_tool("folder", "list", "--json").json}
        return {uuid: (one["title"], one["parent"] and folders[one["parent"]]["title"])
                for uuid, one in folders.items()}

    def import_json(self, exported, *options, code=0):
        return self.run_tool("import", self.write("e.json", json.dumps(exported)), *options,
                             code=code)

    def row(self, uuid, **members):
        return {"row": {"uuid": uuid, "overview": {"title": "t-" + uuid}, **members}}

    def check_is_clean(self):
        checked = self.run_tool("check", "--json").json
        self.assertEqual((checked["clean"], checked["remarks"]), (True, []))

    def test_their_titles_places_questions_and_times_stand_in_it(self):
        exported = self.export().json["folders"]
        self.assertEqual([one["row"]["uuid"] for one in exported],
                         [self.work, self.bills, self.smart])
        self.assertEqual([one["displayOrder"] for one in exported], [0, 0, 0])
        work, bills, smart = (one["row"] for one in exported)
        self.assertEqual(work["overview"], {"title": "Work \x1b[31m"})
        self.assertNotIn("parentUUID", work)
        self.assertEqual(bills["parentUUID"], self.work)
        self.assertEqual((smart["isSmartFolder"], smart["overview"]["sfVersion"]), (True, 4))
        self.assertIn("predicate_b64_v4", smart["overview"])
        self.assertGreater(bills["updatedAt"], 1_700_000_000)
        file = self.path("f.json")
        self.assertEqual(self.export(file, "--json").json,
                         {"export": file, "items": 1, "folders": 3})

    def test_export_wipe_and_import_give_the_same_bytes(self):
        before = self.export().bytes
        tree = self.folders()
        file = self.write("e.json", before)
        time.sleep(1.1)  # what took its time of now would differ
        self.another_store()
        self.assertEqual(self.run_tool("import", file, "--dry-run").out,
                         "would add: 1\nwould add folders: 3\n")
        self.assertEqual(self.folders(), {})
        self.assertEqual(self.run_tool("import", file).out, "added: 1\nfolders added: 3\n")
        self.assertEqual(self.export().bytes, before)
        self.assertEqual(self.folders(), tree)
        self.assertEqual(self.run_tool("smart", "list", "--json").json[0]["predicate"],
                         "passwordStrength < 50")
        self.assertEqual(self.show("Bank")["folder"], self.bills)
        self.check_is_clean()

    def test_an_icon_comes_back(self):
        exported = self.export().json
        exported["folders"][0]["row"]["iconData"] = "iVBORw0KGgo="
        exported["folders"][0]["displayOrder"] = 7
        self.another_store()
        self.import_json(exported)
        again = self.export().json["folders"][0]
        self.assertEqual((again["row"]["iconData"], again["displayOrder"]), ("iVBORw0KGgo=", 7))
        self.check_is_clean()

    def test_what_is_there_stays_and_the_rest_comes(self):
        file = self.write("e.json", self.export().bytes)
        self.run_tool("folder", "rename", self.work, "Job")
        self.run_tool("folder", "delete", self.smart)
        self.assertEqual(self.run_tool("import", file).out,
                         "added: 0\nalready there: 1\nfolders added: 1\n"
                         "folders already there: 2\n")
        self.assertEqual(self.folders(), {self.work: ("Job", None), self.bills: ("Bills", "Job"),
                                          self.smart: ("Weak", "Job")})
        self.assertEqual(self.run_tool("import", file, "--json").json,
                         {"format": "quillon", "dryRun": False, "added": 0, "alreadyThere": 1,
                          "differing": 0, "damaged": [], "foldersAdded": 0,
                          "foldersAlreadyThere": 3, "foldersMovedToTop": []})
        self.check_is_clean()

    def test_an_export_from_before_there_were_folders_is_read(self):
        exported = self.export().json
        del exported["folders"]
        self.another_store()
        self.assertEqual(self.import_json(exported).out, "added: 1\n")
        self.assertEqual(self.folders(), {})

    def test_a_damaged_folder_is_left_out_and_told_and_what_it_held_comes_to_the_top(self):
        with sqlite3.connect(self.store) as database:
            database.execute("UPDATE folders SET overview = x'00' WHERE uuid = ?", (self.work,))
        database.close()
        result = self.export(code=6)
        self.assertIn("damaged folders left out: 1", result.err)
        self.assertEqual([one["row"]["uuid"] for one in result.json["folders"]],
                         [self.bills, self.smart])
        self.another_store()
        imported = self.run_tool("import", self.write("e.json", result.bytes))
        self.assertEqual(imported.out,
                         "added: 1\nfolders added: 2\n" + "".join(
                             f"at the top, since its own place isn't there: folder {uuid}\n"
                             for uuid in (self.bills, self.smart)))
        self.assertEqual(self.folders(),
                         {self.bills: ("Bills", None), self.smart: ("Weak", None)})
        self.check_is_clean()

    def test_a_damaged_folder_of_the_vault_is_told_and_left_alone(self):
        file = self.write("e.json", self.export().bytes)
        with sqlite3.connect(self.store) as database:
            database.execute("UPDATE folders SET overview = x'00' WHERE uuid = ?", (self.work,))
        database.close()
        result = self.run_tool("import", file, "--json", code=6)
        self.assertEqual((result.json["damaged"], result.json["foldersAlreadyThere"]),
                         ([self.work], 2))
        self.assertIn(self.work + ": there, but damaged, and left alone", result.err)

    def test_places_that_cannot_be_true_are_at_the_top(self):
        rows = [self.row(f"deep{i}", parentUUID=f"deep{i - 1}") for i in range(1, 1001)]
        rows.append(self.row("deep0"))
        rows += [self.row("a", parentUUID="b"), self.row("b", parentUUID="a"),
                 self.row("self", parentUUID="self"), self.row("orphan", parentUUID="nobody"),
                 self.row("\x1b[31m", parentUUID=""), self.row("in", parentUUID=self.work)]
        result = self.import_json({"format": "quillon", "version": 1, "items": [],
                                   "folders": rows})
        self.assertNotIn("\x1b", result.out)
        self.assertEqual(result.out.splitlines()[:2], ["added: 0", f"folders added: {len(rows)}"])
        moved = [line.split()[-1] for line in result.out.splitlines()[2:]]
        self.assertEqual(moved, ["deep1000", "a", "b", "self", "orphan", "\\x1b[31m"])
        self.assertEqual(self.folders()["in"], ("t-in", "Work \x1b[31m"))
        self.check_is_clean()

    def test_a_file_that_is_wrong_adds_nothing_and_says_why(self):
        before = self.export().bytes
        deep = json.loads("[" * 62 + "]" * 62)
        for folders, reason in (
                ([7], "folder 1: it has no row"), ([{"row": []}], "folder 1: it has no row"),
                ([{"row": {"overview": {}}}], "folder 1: it has no uuid"),
                ([self.row("x"), {"row": {"uuid": "", "overview": {}}}],
                 "folder 2: it has no uuid"),
                ([{"row": {"uuid": "x"}}], "folder 1: it has no overview"),
                ([self.row("x", iconData="no base64")], "folder 1: its icon is no base64"),
                ([self.row("x", iconData=7)], "folder 1: its icon is no base64"),
                ([self.row("x"), self.row("x")], "folder 2: an earlier one has its uuid"),
                ([{"row": {"uuid": "x", "overview": {"title": deep}}}], "e.json: "),
                (7, "its folders are no list")):
            result = self.import_json({"format": "quillon", "version": 1, "items": [],
                                       "folders": folders}, code=1)
            self.assertIn("e.json: ", result.err)
            self.assertIn(reason, result.err)
            self.assertEqual(self.export().bytes, before)

    def test_an_item_that_is_wrong_takes_the_folders_back(self):
        self.another_store()
        self.import_json({"format": "quillon", "version": 1, "folders": [self.row("x")],
                          "items": [7]}, code=1)
        self.assertEqual(self.folders(), {})


if __name__ == "__main__":
    tool_test.TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
