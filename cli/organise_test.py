#!/usr/bin/env python3
"""Finding and arranging items, as the built tool does it: organise_test.py TOOL [TEST...]"""
import base64
import json
import os
import re
import sqlite3
import sys
import unittest

import tool_test
from tool_test import CONTROL, PASSWORD, UUID, Terminal, ToolTest

ODD_TEXTS = ["\x1b[31mred\x07", "\u202egnol\u202c", "two\nlines", "日本語", "العربية", "👩‍👩‍👧‍👦",
             "e\u0301", "x" * 100_000, "'\"; --", "%s{0}", "\x7f\x9b2J\u200f"]


class OrganiseTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.make_store()

    def names(self, *arguments, **options):
        """The titles that a command lists, in order."""
        return [item["title"] for item in self.run_tool(*arguments, "--json", **options).json]

    def tags(self, item):
        return self.show(item)["tags"]

    def tag_list(self):
        return [(tag["tag"], tag["items"]) for tag in self.run_tool("tag", "list", "--json").json]

    def make_folder(self, path):
        return self.run_tool("folder", "add", path).out.strip()

    def folders(self):
        return {folder["uuid"]: folder for folder in
                self.run_tool("folder", "list", "--json").json}

    def alter(self, statement, *values):
        """Changes the store behind the tool's back; gives the rows that a question has."""
        with sqlite3.connect(self.store) as database:
            rows = database.execute(statement, values).fetchall()
        database.close()
        return rows

    def break_value(self, table, column, row):
        """Turns a bit of what is stored sealed."""
        ((value,),) = self.alter(f"SELECT {column} FROM {table} WHERE {row}")
        self.alter(f"UPDATE {table} SET {column} = ? WHERE {row}",
                   value[:-1] + bytes([value[-1] ^ 1]))

    def note(self, title, *options, stdin=""):
        return self.run_tool("add", "secure-note", "--title", title, *options,
                             stdin=stdin).out.strip()


class Find(OrganiseTest):
    def test_words_are_looked_for_in_what_a_list_shows(self):
        self.add("Bank", "--username", "jo@mail.example", "--url", "https://www.money.example/x?q")
        self.add("Forum", "--notes", "bank holiday", "--tag", "bank")
        for word in ("bank", "jo@mail", "money", "BÄNK"):
            self.assertEqual(self.names("find", word), ["Bank"], word)
        for word in ("https", "q", "holiday"):
            self.assertEqual(self.names("find", word), [], word)

    def test_every_word_must_occur_wherever(self):
        self.add("My Bank", "--username", "jo")
        self.add("My Forum", "--username", "anna")
        self.assertEqual(self.names("find", "my", "jo"), ["My Bank"])
        self.assertEqual(self.names("find", "my", "nobody"), [])
        self.assertEqual(self.names("find", "my bank"), ["My Bank"])
        self.assertEqual(self.names("find", "bank my"), [])

    def test_an_item_is_found_by_its_whole_uuid(self):
        uuid = self.add("Bank")
        self.assertEqual(self.names("find", uuid.upper()), ["Bank"])
        self.assertEqual(self.names("find", uuid[:-1]), [])
        self.assertEqual(self.names("find", "--contents", uuid), ["Bank"])
        for level in ("--title", "--words"):
            self.assertEqual(self.names("find", level, uuid), [])

    def test_the_title_level_looks_at_titles_alone(self):
        self.add("Bank", "--username", "jo")
        self.add("Jo's forum", "--username", "x")
        self.assertEqual(self.names("find", "jo", "--title"), ["Jo's forum"])

    def test_the_word_level_looks_at_beginnings_in_titles_and_in_every_address(self):
        self.add("My Bank", "--url", "https://a.example", "--url", "https://second.example",
                 "--username", "jo")
        for word, found in (("ban", ["My Bank"]), ("ank", []), ("sec", ["My Bank"]),
                            ("econd", []), ("jo", []), ("my-bank", []), ("a.exam", ["My Bank"])):
            self.assertEqual(self.names("find", "--words", word), found, word)

    def test_a_title_that_holds_a_phrase_decides_for_all_words(self):
        self.add("My Bank")
        self.add("My Bänk")
        self.assertEqual(self.names("find", "--words", "my bank", "zzz"), ["My Bank"])

    def test_the_contents_level_finds_tags_notes_fields_and_secrets(self):
        uuid = self.add("Forum", "--notes", "joined in spring", "--tag", "Club", "--password=-",
                        stdin="pa55-former")
        self.run_tool("edit", uuid, "--set", "password=-", stdin="pa55-now")
        self.run_tool("edit", uuid, "--add-field", "Lounge.Code:concealed=-", stdin="pa55-code")
        self.add("Other")
        for word in ("spring", "club", "pa55-now", "PA55-FORMER", "pa55-code", "lounge", "code"):
            self.assertEqual(self.names("find", word), [], word)
            self.assertEqual(self.names("find", "--contents", word), ["Forum"], word)
        self.assertEqual(self.names("find", "--contents", "spring", "forum"), ["Forum"])
        self.assertEqual(self.names("find", "--contents", "nothing"), [])

    def test_the_best_place_comes_first_and_equal_ones_are_sorted_by_title(self):
        self.note("In contents", "--notes", "first line\nbank")
        self.add("By subtitle", "--username", "bank")
        self.add("Anna", "--url", "https://bank.example")
        for title in ("Piggybank", "My Bank", "zz bank", "Bank z", "bank a", "BÄNK b"):
            self.add(title)
        self.assertEqual(self.names("find", "--contents", "bank"),
                         ["bank a", "BÄNK b", "Bank z", "My Bank", "zz bank", "Piggybank", "Anna",
                          "By subtitle", "In contents"])

    def test_of_several_words_the_worst_place_counts(self):
        self.add("Bank of Jo")
        self.add("Bank z", "--username", "jo")
        self.assertEqual(self.names("find", "bank", "jo"), ["Bank of Jo", "Bank z"])

    def test_the_trash_is_left_out_at_every_level(self):
        self.add("Bank")
        self.run_tool("trash", "Bank")
        for level in ([], ["--title"], ["--words"], ["--contents"]):
            self.assertEqual(self.names("find", "bank", *level), [])
        self.assertEqual(self.names("find", "--where", "TRUEPREDICATE"), [])

    def test_levels_exclude_each_other_and_want_words(self):
        for arguments in (["--title", "--words", "x"], ["--words", "--contents", "x"],
                          ["--title"], ["--contents", "--where", "TRUEPREDICATE"],
                          ["x", "--where", "TRUEPREDICATE"], ["--words", "--url", "https://x"]):
            self.run_tool("find", *arguments, code=2)

    def test_a_damaged_item_is_left_out_of_the_contents_and_told_of(self):
        self.add("Bank", "--notes", "secret phrase")
        self.add("Forum", "--notes", "secret phrase")
        self.break_value("details", "details", "item_id = 1")
        result = self.run_tool("find", "--contents", "phrase", "--json", code=6)
        self.assertEqual([item["title"] for item in result.json], ["Forum"])
        self.assertIn("damaged items left out: 1", result.err)
        self.assertEqual(self.names("find", "bank"), ["Bank"])


class FindWhere(OrganiseTest):
    def setUp(self):
        super().setUp()
        self.add("Bank", "--username", "jo", "--tag", "work/money", "--password=-", stdin="abc")
        self.add("Forum", "--username", "anna", "--generate", "--url", "https://forum.example")
        self.note("Alarm", "--notes", "Code 0000", "--tag", "home")

    def where(self, predicate, *options):
        return self.names("find", "--where", predicate, *options)

    def test_each_thing_that_an_item_has_can_be_asked_for(self):
        for predicate, found in (
                ('title BEGINSWITH[c] "ba"', ["Bank"]),
                ('username == "anna"', ["Forum"]),
                ('password == "abc"', ["Bank"]),
                ('notesPlain CONTAINS "0000"', ["Alarm"]),
                ('categoryUUID == "003"', ["Alarm"]),
                ('passwordStrength > 0 AND passwordStrength < 60', ["Bank"]),
                ('ANY tagsForSearch BEGINSWITH "work/"', ["Bank"]),
                ('ANY URLStringsForSearch == "forum.example"', ["Forum"]),
                ('ANY allValuesForSearch CONTAINS[cd] "ANNÄ"', ["Forum"]),
                ('numberOfAttachments == 0', ["Alarm", "Bank", "Forum"]),
                ('folderUUID == NIL', ["Alarm", "Bank", "Forum"]),
                ('NOT categoryUUID IN {"003"}', ["Bank", "Forum"]),
                ('TRUEPREDICATE', ["Alarm", "Bank", "Forum"]), ('FALSEPREDICATE', [])):
            self.assertEqual(self.where(predicate), found, predicate)

    def test_filters_hold_too(self):
        self.assertEqual(self.where("TRUEPREDICATE", "--tag", "work"), ["Bank"])
        self.assertEqual(self.where("TRUEPREDICATE", "--category", "login"), ["Bank", "Forum"])

    def test_no_item_that_a_filter_keeps_out_is_opened(self):
        self.break_value("details", "details", "item_id = 2")  # of the forum
        question = 'notesPlain == NIL OR notesPlain != "x"'
        self.run_tool("find", "--where", question, code=6)
        self.assertEqual(self.where(question, "--tag", "work"), ["Bank"])

    def test_what_is_no_predicate_is_wrong_usage_before_the_password(self):
        for predicate in ("", "title ==", "nonsense", 'colour == "red"', 'title MATCHES "("',
                          "title == %@", "(" * 10_000 + "TRUEPREDICATE" + ")" * 10_000,
                          "NOT " * 10_000 + "TRUEPREDICATE"):
            result = self.run_raw("find", "--where", predicate)
            self.assertEqual((result.code, result.out), (2, ""), predicate[:40])
            self.assertIn("the predicate: ", result.err)

    def test_a_refusal_does_not_repeat_what_was_typed(self):
        result = self.run_raw("find", "--where", 'hunter2 == "hunter3"')
        self.assertNotIn("hunter3", result.err)


class For(OrganiseTest):
    def test_a_page_gets_its_own_host_first_and_of_each_the_favorites(self):
        self.add("A other host", "--url", "https://other.shop.example")
        self.add("B", "--url", "https://shop.example/login")
        self.add("C elsewhere", "--url", "https://elsewhere.example")
        self.add("Z", "--url", "https://shop.example", "--favorite")
        self.add("D trashed", "--url", "https://shop.example")
        self.run_tool("trash", "D trashed")
        for command in (["for"], ["find", "--url"]):
            self.assertEqual(self.names(*command, "https://shop.example/x?y"),
                             ["Z", "B", "A other host"])

    def test_filters_hold(self):
        self.add("A", "--url", "https://shop.example", "--tag", "work")
        self.add("B", "--url", "https://shop.example")
        self.assertEqual(self.names("for", "shop.example", "--tag", "work"), ["A"])
        self.assertEqual(self.names("find", "--url", "shop.example", "--tag", "work"), ["A"])

    def test_a_damaged_item_that_fits_is_told_of_and_the_others_are_listed(self):
        for title in ("A", "B", "C"):
            self.add(title, "--url", "https://shop.example")
        self.break_value("details", "details", "item_id = 2")
        self.alter("UPDATE items SET fave_index = 9 WHERE oid = 3")
        result = self.run_tool("for", "https://shop.example", "--json", code=6)
        self.assertEqual([item["title"] for item in result.json], ["A"])
        self.assertIn("damaged items left out: 2", result.err)

    def test_a_page_that_nothing_fits_is_an_empty_list(self):
        self.add("A", "--url", "https://shop.example")
        self.assertEqual(self.names("for", "https://nobody.example"), [])
        self.assertEqual(self.run_tool("for", "https://nobody.example").out, "")


class Lists(OrganiseTest):
    def test_filters_are_joined(self):
        self.add("A", "--tag", "x", "--favorite")
        self.add("B", "--tag", "x")
        self.note("C", "--tag", "x", "--favorite")
        self.assertEqual(self.names("list", "--favorites"), ["A", "C"])
        self.assertEqual(self.names("list", "--tag", "x", "--favorites", "--category", "login"),
                         ["A"])

    def test_a_tag_includes_those_below_it_unless_told_otherwise(self):
        self.add("In", "--tag", "Work")
        self.add("Below", "--tag", "work/bills/old")
        self.add("Beside", "--tag", "workshop")
        self.assertEqual(self.names("list", "--tag", "work"), ["Below", "In"])
        self.assertEqual(self.names("list", "--tag", "work", "--not-nested"), ["In"])
        self.assertEqual(self.names("list", "--tag", "/WORK//bills/"), ["Below"])
        self.assertEqual(self.names("find", "--where", "TRUEPREDICATE", "--tag", "work"),
                         ["Below", "In"])

    def test_a_folder_includes_those_below_it_unless_told_otherwise(self):
        self.make_folder("Work/Bills")
        for title, folder in (("In", "Work"), ("Below", "Work/Bills")):
            self.add(title)
            self.run_tool("move", title, folder)
        self.add("Outside")
        self.assertEqual(self.names("list", "--folder", "work"), ["Below", "In"])
        self.assertEqual(self.names("list", "--folder", "work", "--not-nested"), ["In"])
        self.assertEqual(self.names("find", "--title", "o", "--folder", "work/bills"), ["Below"])
        self.run_tool("list", "--folder", "nobody", code=4)

    def test_not_nested_wants_a_tag_or_folder(self):
        self.assertIn("--tag", self.run_tool("list", "--not-nested", code=2).err)

    def test_orders(self):
        self.add("Zebra", "--password=-", stdin="password")
        self.add("Ape", "--generate")
        self.note("Middle")
        self.assertEqual(self.names("list"), ["Ape", "Middle", "Zebra"])
        self.assertEqual(self.names("list", "--sort", "category"), ["Ape", "Zebra", "Middle"])
        self.assertEqual(self.names("list", "--sort", "strength"), ["Middle", "Zebra", "Ape"])

    def sections(self, *options):
        value = self.run_tool("list", "--sections", "--json", *options).json
        return [(one["section"], [item["title"] for item in one["items"]]) for one in value]

    def test_sections_of_each_order(self):
        self.add("ärta", "--password=-", stdin="correct zebra")
        self.add("Ape", "--generate")
        self.add("Ant")
        self.add("7 up", "--password=-", stdin="password")
        self.note("Middle")
        self.assertEqual(self.sections(), [("#", ["7 up"]), ("A", ["Ant", "Ape"]),
                                           ("Ä", ["ärta"]), ("M", ["Middle"])])
        self.assertEqual(self.sections("--sort", "category"),
                         [("Logins", ["7 up", "Ant", "Ape", "ärta"]),
                          ("Secure Notes", ["Middle"])])
        strengths = self.sections("--sort", "strength")
        self.assertEqual(strengths[0], ("0", ["7 up", "Ant", "Middle"]))
        self.assertRegex(strengths[1][0], "^(1–19|20–39|40–59|60–79)$")
        self.assertEqual([titles for _, titles in strengths[1:]], [["ärta"], ["Ape"]])
        self.assertEqual(strengths[2][0], "80–100")
        for order in ("updated", "created"):
            ((month, titles),) = self.sections("--sort", order)
            self.assertRegex(month, r"^\d{4}-\d\d$")
            self.assertEqual(len(titles), 5)

    def test_sections_in_a_table_stand_under_headings(self):
        self.add("Bank", "--username", "jo")
        self.assertEqual(self.run_tool("list", "--sections").out,
                         "B\n  Bank" + " " * 36 + "  Login             jo\n")
        self.assertEqual(self.run_tool("list", "--sections", "--lang", "de", "--sort",
                                       "category").out.splitlines()[0], "Logins")

    def test_a_list_without_items_has_no_sections(self):
        self.assertEqual(self.sections(), [])
        self.assertEqual(self.run_tool("list", "--sections").out, "")


class Favorites(OrganiseTest):
    def test_the_mark_comes_and_goes(self):
        uuid = self.add("Bank")
        self.assertEqual(self.run_tool("favorite", "Bank").out, "")
        self.assertTrue(self.show(uuid)["favorite"])
        self.assertIn("already", self.run_tool("favorite", "Bank").err)
        self.assertEqual(self.run_tool("favorite", "Bank", "--off", "--json").json,
                         {"uuid": uuid, "favorite": False})
        self.assertFalse(self.show(uuid)["favorite"])
        self.assertIn("no favorite", self.run_tool("favorite", "Bank", "--off").err)
        self.run_tool("favorite", "Nobody", code=4)


class Tags(OrganiseTest):
    def test_tags_are_listed_with_the_items_outside_the_trash(self):
        self.add("A", "--tag", "work", "--tag", "work/bills")
        self.add("B", "--tag", "work/bills")
        self.add("C", "--tag", "work/bills", "--tag", "gone")
        self.run_tool("trash", "C")
        self.assertEqual([tag for tag in self.tag_list() if tag[0] != "gone"],
                         [("work", 1), ("work/bills", 2)])
        self.assertIn("work/bills" + " " * 30 + "  items: 2\n", self.run_tool("tag", "list").out)

    def test_several_items_get_a_tag_at_once(self):
        for title in ("A", "B", "C"):
            self.add(title)
        self.assertEqual(self.run_tool("tag", "add", " /trips//rail/ ", "A", "B", "a").out,
                         "items changed: 2\n")
        self.assertEqual([self.tags(title) for title in ("A", "B", "C")],
                         [["trips/rail"], ["trips/rail"], []])
        self.assertEqual(self.run_tool("tag", "add", "x", "A", "--json").json,
                         {"tag": "x", "items": 1})
        self.assertEqual(self.run_tool("tag", "add", "x", "A", "B").out, "items changed: 1\n")

    def test_one_item_that_is_not_there_leaves_all_alone(self):
        self.add("A")
        result = self.run_tool("tag", "add", "x", "A", "Nobody", code=4)
        self.assertIn("Nobody: ", result.err)
        self.assertEqual(self.tags("A"), [])

    def test_a_tag_needs_a_name_and_items(self):
        self.add("A")
        for tag in ("", " ", "//", " / \\ "):
            self.assertIn("a tag needs a name", self.run_tool("tag", "add", tag, "A", code=2).err)
            self.run_tool("tag", "rename", "x", tag, code=2)
            self.run_tool("edit", "A", "--tag", tag, code=2)
        self.run_tool("tag", "add", "x", code=2)
        self.run_tool("tag", "remove", "x", code=2)
        self.run_tool("tag", "remove", "x", "A", "--all", code=2)

    def test_a_tag_is_taken_from_items_by_name(self):
        self.add("A", "--tag", "Büro", "--tag", "büro/x")
        self.add("B", "--tag", "Büro")
        self.run_tool("tag", "remove", "BURO", "A")
        self.assertEqual((self.tags("A"), self.tags("B")), (["büro/x"], ["Büro"]))
        self.assertIn("no such tag", self.run_tool("tag", "remove", "none", "B", code=4).err)
        self.run_tool("tag", "remove", "büro", "A", "B", code=4)
        self.assertEqual(self.tags("B"), ["Büro"])

    def test_all_items_lose_a_tag_and_what_lies_below_only_if_told(self):
        self.add("A", "--tag", "work", "--tag", "work/bills", "--tag", "workshop")
        self.add("B", "--tag", "work")
        self.run_tool("trash", "B")
        self.assertEqual(self.run_tool("tag", "remove", "work", "--all").out,
                         "items changed: 2\n")
        self.assertEqual(self.tags("A"), ["work/bills", "workshop"])
        self.assertEqual(self.tags("B"), [])
        self.run_tool("tag", "remove", "work", "--all", code=4)
        self.run_tool("tag", "remove", "work", "--all", "--nested")
        self.assertEqual(self.tags("A"), ["workshop"])

    def test_a_new_name_takes_those_below_along_and_touches_nothing_else(self):
        uuid = self.add("A", "--username", "jo", "--password=-", "--url", "https://a.example",
                        "--tag", "work", "--tag", "work/bills/old", "--tag", "workshop",
                        stdin="pa55")
        self.add("B", "--tag", "work/bills")
        self.add("C", "--tag", "other")
        self.run_tool("trash", "B")
        before = {title: self.show(title) for title in ("A", "C")}
        self.assertEqual(self.run_tool("tag", "rename", "work", " Job/1 ", "--json").json,
                         {"tag": "Job/1", "items": 2})
        self.assertEqual(self.tags("A"), ["Job/1", "Job/1/bills/old", "workshop"])
        self.assertEqual(self.tags("B"), ["Job/1/bills"])
        after = self.show(uuid)
        for value in (before["A"], after):
            value.pop("tags"), value.pop("updatedAt")
        self.assertEqual(after, before["A"])
        self.assertEqual(self.show("C"), before["C"])
        self.assertEqual(self.run_tool("history", uuid, "--json").json, [])
        self.run_tool("check")
        self.run_tool("tag", "rename", "work", "x", code=4)

    def test_a_new_name_that_is_there_joins_both(self):
        self.add("A", "--tag", "a", "--tag", "b/x")
        self.add("B", "--tag", "b")
        self.run_tool("tag", "rename", "b", "a")
        self.assertEqual((self.tags("A"), self.tags("B")), (["a", "a/x"], ["a"]))
        self.run_tool("tag", "rename", "a", "a/b")
        self.assertEqual((self.tags("A"), self.tags("B")), (["a/b", "a/b/x"], ["a/b"]))

    def test_a_tag_that_fits_exactly_means_no_other(self):
        self.add("A", "--tag", "work")
        self.add("B", "--tag", "Work/x")
        self.run_tool("tag", "rename", "Work", "Job")
        self.assertEqual((self.tags("A"), self.tags("B")), (["work"], ["Job/x"]))
        self.run_tool("tag", "rename", "JOB", "new")
        self.assertEqual(self.tags("B"), ["new/x"])

    def test_many_items_are_renamed_at_once_or_not_at_all(self):
        rows = "".join(f"Item {i},jo,{i:x}\n" for i in range(300))
        self.run_tool("import", self.write("many.csv", "title,username,password\n" + rows))
        uuids = [item["uuid"] for item in self.run_tool("list", "--json").json]
        self.run_tool("tag", "add", "a", *uuids)
        self.assertEqual(self.run_tool("tag", "rename", "a", "b").out, "items changed: 300\n")
        self.assertEqual(self.tag_list(), [("b", 300)])
        self.assertEqual(self.run_tool("check").out, "items checked: 300, problems: 0\n")

    def test_texts_of_every_shape_are_kept_and_shown_escaped(self):
        self.add("A")
        for text in ODD_TEXTS:
            self.run_tool("tag", "add", text, "A")
        kept = [text.replace("\n", "") for text in ODD_TEXTS]
        self.assertEqual(sorted(self.tags("A")), sorted(kept))
        self.assertEqual(sorted(tag for tag, _ in self.tag_list()), sorted(kept))
        for command in (["tag", "list"], ["show", "A"], ["tag", "remove", "\x1b[2J", "--all"]):
            for form in ([], ["--json"]):
                result = self.run_tool(*command, *form, code=4 if "remove" in command else 0)
                self.assertIsNone(CONTROL.search(result.out + result.err), command)
        for text in kept:
            self.assertEqual(self.names("list", "--tag", text), ["A"])


class Folders(OrganiseTest):
    def test_a_path_makes_the_folders_on_the_way(self):
        uuid = self.make_folder("Work/Clients/Old")
        self.assertRegex(uuid, UUID)
        other = self.run_tool("folder", "add", "work/Bills", "--json").json["uuid"]
        folders = self.folders()
        self.assertEqual([folder["title"] for folder in folders.values()],
                         ["Work", "Bills", "Clients", "Old"])
        work = next(iter(folders))
        self.assertEqual(folders[work], {"uuid": work, "title": "Work", "parent": None,
                                         "smart": False, "items": 0, "folders": 2})
        self.assertEqual(folders[other]["parent"], work)
        self.assertEqual(folders[folders[uuid]["parent"]]["title"], "Clients")

    def test_a_tree_is_drawn_with_the_items_outside_the_trash(self):
        for path in ("Work/Clients", "Work/bills/Old", "Private"):
            self.make_folder(path)
        for title, folder in (("A", "Work"), ("B", "Work"), ("C", "Work/bills"), ("D", "Work")):
            self.add(title)
            self.run_tool("move", title, folder)
        self.run_tool("trash", "D")
        lines = self.run_tool("folder", "list").out.splitlines()
        self.assertEqual([line[:40].rstrip() for line in lines],
                         ["Private", "Work", "├─ bills", "│  └─ Old", "└─ Clients"])
        self.assertEqual([line[42:] for line in lines],
                         ["items: 0", "items: 2", "items: 1", "items: 0", "items: 0"])
        long = self.run_tool("folder", "list", "--long").out.splitlines()
        self.assertEqual([line[:36] for line in long], list(self.folders()))

    def test_what_is_there_is_not_made_twice(self):
        self.make_folder("Work/Bills")
        for path in ("Work", "Work/Bills"):
            self.assertIn("already", self.run_tool("folder", "add", path, code=1).err)
        self.make_folder("work")  # another one
        self.assertEqual(len(self.folders()), 3)

    def test_every_folder_of_a_path_needs_a_name(self):
        for path in ("", "/", "a//b", "/a", "a/", " ", "a/ /b"):
            self.assertIn("a folder needs a name",
                          self.run_tool("folder", "add", path, code=2).err)
        self.make_folder("A")
        for title in ("", "  ", "a/b"):
            self.run_tool("folder", "rename", "A", title, code=2)
        self.assertEqual([folder["title"] for folder in self.folders().values()], ["A"])

    def test_a_folder_is_named_by_uuid_or_by_its_way(self):
        for path in ("A/Same", "B/Same", "Büro"):
            self.make_folder(path)
        a = self.run_tool("folder", "rename", "a/same", "First", "--json").json
        self.assertEqual(a["title"], "First")
        self.run_tool("folder", "rename", a["uuid"].upper(), "Same")
        self.run_tool("folder", "rename", "BURO", "Office")
        self.assertEqual(sorted(folder["title"] for folder in self.folders().values()),
                         ["A", "B", "Office", "Same", "Same"])
        self.assertIn("no folder", self.run_tool("folder", "rename", "Same", "x", code=4).err)

    def test_two_folders_of_one_name_are_5_and_are_listed(self):
        uuids = [self.make_folder("Büro"), self.make_folder("A")]
        self.run_tool("folder", "rename", uuids[1], "Büro")
        result = self.run_tool("folder", "delete", "Büro", code=5)
        self.assertEqual(sorted(line[:36] for line in result.err.splitlines()[:2]), sorted(uuids))
        self.assertEqual(len(self.folders()), 2)
        self.run_tool("folder", "rename", uuids[1], "buro")
        self.run_tool("folder", "delete", "buro")  # an equal title wins
        self.assertEqual(list(self.folders()), [uuids[0]])

    def test_a_folder_moves_with_all_that_is_in_it_but_not_into_itself(self):
        self.make_folder("A/B/C")
        moved = self.run_tool("folder", "move", "A/B", "--to-top", "--json").json
        self.assertIsNone(moved["parent"])
        self.assertEqual([(f["title"], f["folders"]) for f in self.folders().values()],
                         [("A", 0), ("B", 1), ("C", 0)])
        for parent in ("B", "B/C"):
            self.assertIn("would lie in itself",
                          self.run_tool("folder", "move", "B", parent, code=1).err)
        self.run_tool("folder", "move", "A", "B/C")
        self.assertEqual(self.run_tool("folder", "list").out.split()[::3][0], "B")
        self.run_tool("folder", "rename", "B/C/A", "D")
        for arguments in (["B"], ["B", "A", "--to-top"]):
            self.run_tool("folder", "move", *arguments, code=2)
        self.run_tool("check")

    def test_a_deleted_folder_leaves_its_items_and_its_folders_move_up(self):
        self.make_folder("A/B/C")
        for title in ("in", "trashed"):
            self.add(title)
            self.run_tool("move", title, "A/B")
        self.run_tool("trash", "trashed")
        uuid = self.run_tool("folder", "delete", "A/B", "--json").json["uuid"]
        self.assertRegex(uuid, UUID)
        self.assertEqual([f["title"] for f in self.folders().values()], ["A", "C"])
        self.assertEqual(self.names("list"), ["in"])
        self.assertEqual(self.names("find", "--where", "folderUUID == NIL"), ["in"])
        self.assertEqual(self.names("list", "--folder", "A"), [])
        self.run_tool("folder", "delete", uuid, code=4)
        self.assertIn("problems: 0", self.run_tool("check").out)

    def test_items_move_in_and_out(self):
        folder = self.make_folder("Work/Bills")
        uuid = self.add("Bank")
        self.assertEqual(self.run_tool("move", "Bank", "work/bills", "--json").json,
                         {"uuid": uuid, "folder": folder})
        self.assertEqual(self.folders()[folder]["items"], 1)
        self.assertEqual(self.show("Bank")["folder"], folder)
        self.assertIn("Folder:     Work/Bills\n", self.run_tool("show", "Bank").out)
        self.assertIn("Ordner: ", self.run_tool("show", "Bank", "--lang", "de").out)
        self.assertEqual(self.names("find", "--where", f'folderUUID == "{folder}"'), ["Bank"])
        self.assertEqual(self.run_tool("move", "Bank", "--to-top").out, "")
        self.assertIsNone(self.show("Bank")["folder"])
        self.assertNotIn("Folder", self.run_tool("show", "Bank").out)
        self.assertEqual(self.names("list", "--folder", "work"), [])
        self.run_tool("move", "Bank", "nowhere", code=4)
        self.run_tool("move", "Nobody", "Work", code=4)
        self.run_tool("move", "Bank", "Work", "--to-top", code=2)

    def test_titles_of_every_shape_are_kept_and_shown_escaped(self):
        for text in ODD_TEXTS:
            uuid = self.make_folder(text)
            self.assertEqual(self.run_tool("folder", "rename", text, text, "--json").json["uuid"],
                             uuid)
        self.make_folder("Top")
        self.run_tool("folder", "move", ODD_TEXTS[0], "Top")
        self.assertEqual(sorted(folder["title"] for folder in self.folders().values()),
                         sorted(ODD_TEXTS + ["Top"]))
        self.run_tool("smart", "add", "\x1b[5m", 'title == "\x1b[2J"')
        for command in (["folder", "list"], ["smart", "list"]):
            for form in ([], ["--json"]):
                self.assertIsNone(CONTROL.search(self.run_tool(*command, *form).out), command)
        self.assertIn("\\x1b[31mred\\x07", self.run_tool("folder", "list").out)

    def test_a_terminal_never_gets_control_characters(self):
        self.make_folder("\x1b[31mred\x07/\u202eb")
        terminal = Terminal(self, "folder", "list")
        terminal.answer("Password: ", PASSWORD)
        self.assertEqual(terminal.end(), 0)
        text = terminal.output.decode()
        self.assertIn("\\x1b[31mred\\x07", text)
        self.assertIsNone(CONTROL.search(text.replace("\r", "")))


class SmartFolders(OrganiseTest):
    def setUp(self):
        super().setUp()
        self.add("Weak", "--tag", "work", "--password=-", stdin="abc")
        self.add("Strong", "--tag", "work", "--generate")
        self.note("Note", "--tag", "work", "--notes", "spring")

    def smart(self, path, predicate):
        return self.run_tool("smart", "add", path, predicate).out.strip()

    def test_a_question_is_stored_and_answered_anew(self):
        uuid = self.smart("Weak ones", "passwordStrength BETWEEN {1, 50}")
        self.assertRegex(uuid, UUID)
        self.assertEqual(self.names("smart", "show", "weak ONES"), ["Weak"])
        self.run_tool("edit", "Weak", "--generate")
        self.assertEqual(self.names("smart", "show", uuid), [])

    def test_the_list_tells_the_predicates(self):
        uuid = self.smart("Weak ones", 'title  CONTAINS[cd]  "w"')
        self.make_folder("Ordinary")
        self.assertEqual(self.run_tool("smart", "list", "--json").json,
                         [{"uuid": uuid, "title": "Weak ones",
                           "predicate": 'title CONTAINS[cd] "w"'}])
        self.assertEqual(self.run_tool("smart", "list").out,
                         "Weak ones" + " " * 31 + '  title CONTAINS[cd] "w"\n')
        self.assertTrue(self.run_tool("smart", "list", "--long").out.startswith(uuid))

    def test_what_it_finds_is_listed_as_by_list(self):
        self.smart("Work", 'ANY tagsForSearch == "work"')
        self.assertEqual(self.names("smart", "show", "Work", "--sort", "strength"),
                         ["Note", "Weak", "Strong"])
        value = self.run_tool("smart", "show", "Work", "--sections", "--json").json
        self.assertEqual([one["section"] for one in value], ["N", "S", "W"])
        self.assertEqual(self.run_tool("smart", "show", "Work", "--long").out,
                         self.run_tool("list", "--long").out)

    def test_a_question_about_details_is_answered_too(self):
        self.smart("Spring", 'notesPlain CONTAINS "spring"')
        self.smart("Passwords", 'password == "abc" OR ANY allValuesForSearch == "spring"')
        self.assertEqual(self.names("smart", "show", "Spring"), ["Note"])
        self.assertEqual(self.names("smart", "show", "Passwords"), ["Note", "Weak"])

    def test_it_lies_among_the_folders_and_holds_nothing_itself(self):
        uuid = self.smart("Work/Weak ones", "passwordStrength < 50")
        folders = self.folders()
        self.assertEqual([(f["title"], f["smart"]) for f in folders.values()],
                         [("Work", False), ("Weak ones", True)])
        self.assertIn("smart folder", self.run_tool("folder", "list").out.splitlines()[1])
        self.make_folder("Plain")
        for command in (["move", "Weak", uuid], ["folder", "move", "Plain", uuid],
                        ["folder", "add", "Work/Weak ones/x"], ["list", "--folder", uuid]):
            self.assertIn("smart folder", self.run_tool(*command, code=1).err, command)
        for command in (["show"], ["delete"]):
            self.assertIn("no smart folder",
                          self.run_tool("smart", *command, "Plain", code=1).err)
        self.run_tool("folder", "rename", uuid, "Renamed")
        self.run_tool("folder", "move", uuid, "--to-top")
        self.assertIn("Weak", self.names("smart", "show", "Renamed"))

    def test_one_goes_and_takes_no_item_along(self):
        uuid = self.smart("Weak ones", "passwordStrength < 50")
        self.assertEqual(self.run_tool("smart", "delete", "weak ones", "--json").json,
                         {"uuid": uuid, "deleted": True})
        self.assertEqual(self.folders(), {})
        self.assertEqual(len(self.names("list")), 3)
        self.run_tool("smart", "show", uuid, code=4)

    def test_what_is_no_predicate_makes_no_folder(self):
        for predicate in ("", "title ==", 'colour == "red"', 'title MATCHES "["'):
            self.run_tool("smart", "add", "New", predicate, code=2)
        self.assertEqual(self.folders(), {})


class Damage(OrganiseTest):
    def test_check_counts_folders_and_finds_nothing_to_repair(self):
        self.make_folder("A/B")
        checked = self.run_tool("check", "--repair", "--json").json
        self.assertEqual((checked["foldersChecked"], checked["clean"]), (2, True))
        self.assertEqual(checked["repaired"],
                         {"foldersSealedAnew": [], "foldersRemoved": [], "foldersMissing": 0,
                          "ledgerSetRight": False, "foldersMovedToTop": [], "itemsMovedToTop": []})

    def test_an_item_whose_folder_is_not_there_is_told_of_and_taken_out(self):
        uuid = self.add("Bank")
        self.make_folder("Work")
        self.run_tool("move", "Bank", "Work")
        exported = self.run_tool("export", "--plaintext").json
        del exported["folders"]
        self.environment["QUILLON_STORE"] = self.path("other.qn")
        self.make_store()
        self.run_tool("import", self.write("all.json", json.dumps(exported)))
        checked = self.run_tool("check", "--json").json
        self.assertEqual((checked["clean"], len(checked["remarks"])), (True, 1))
        self.assertIn(uuid, checked["remarks"][0])
        self.assertIn(uuid, self.run_tool("check").out)
        self.assertNotIn("Folder", self.run_tool("show", "Bank").out)
        self.assertEqual(self.run_tool("check", "--repair").out,
                         f"taken out of a folder that isn't there: item {uuid}\n"
                         "items checked: 1, problems: 0\n")
        self.assertIsNone(self.show(uuid)["folder"])
        self.assertEqual(self.run_tool("check", "--json").json["remarks"], [])

    def test_a_folder_row_that_was_altered_is_told_of_and_left_out(self):
        self.make_folder("A")
        self.make_folder("B")
        self.break_value("folders", "overview", "oid = 1")
        result = self.run_tool("folder", "list", "--json", code=6)
        self.assertEqual([folder["title"] for folder in result.json], ["B"])
        self.assertIn("damaged folders left out: 1", result.err)
        self.assertEqual(self.run_tool("for", "https://b.example", "--folder", "B", code=6).out, "")
        for command in (["list"], ["find", "--where", "TRUEPREDICATE"]):
            result = self.run_tool(*command, "--folder", "B", code=6)
            self.assertIn("damaged folders left out: 1", result.err)
            self.assertIn("no folder that is left",
                          self.run_tool(*command, "--folder", "A", code=6).err)
            self.run_tool(*command)
        self.run_tool("folder", "delete", "A", code=6)
        self.assertFalse(self.run_tool("check", "--json", code=6).json["clean"])

    def test_a_folder_row_that_was_taken_away_is_noticed(self):
        self.make_folder("A")
        self.make_folder("B")
        self.alter("DELETE FROM folders WHERE oid = 1")
        self.assertIn("folders were removed", self.run_tool("folder", "list", code=6).err)

    def repair(self):
        """What a repair tells; afterwards all is well, and a second one has nothing to do."""
        repaired = self.run_tool("check", "--repair").out.splitlines()
        self.assertEqual(self.run_tool("check", "--repair").out.splitlines(), repaired[-1:])
        self.assertIn("problems: 0", repaired[-1])
        self.run_tool("folder", "list")
        return repaired[:-1]

    def test_a_folder_with_an_altered_column_is_kept_by_a_repair(self):
        outer, inner = self.make_folder("A"), self.make_folder("A/B")
        self.add("Bank")
        self.run_tool("move", "Bank", "A")
        self.alter("UPDATE folders SET display_order = 7, created_at = 1 WHERE uuid = ?", outer)
        before = self.run_tool("check", "--json", code=6).json
        self.assertIn(f"folder {outer}: it was altered or doesn't open", before["problems"])
        self.assertEqual(self.run_tool("check", "--json", code=6).json, before)  # on its own: no
        self.assertEqual(self.repair(), [f"kept as it stands, though it was altered: folder {outer}"])
        self.assertEqual([(f["uuid"], f["title"], f["parent"], f["items"])
                          for f in self.folders().values()],
                         [(outer, "A", None, 1), (inner, "B", outer, 0)])

    def test_a_folder_that_does_not_open_is_removed_by_a_repair_and_frees_what_it_held(self):
        outer, inner = self.make_folder("A"), self.make_folder("A/B")
        bank = self.add("Bank")
        self.run_tool("move", "Bank", "A")
        self.alter("UPDATE folders SET overview = x'00' WHERE uuid = ?", outer)
        repaired = self.run_tool("check", "--repair", "--json").json
        self.assertEqual(repaired["repaired"],
                         {"foldersSealedAnew": [], "foldersRemoved": [outer], "foldersMissing": 0,
                          "ledgerSetRight": False, "foldersMovedToTop": [inner],
                          "itemsMovedToTop": [bank]})
        self.assertTrue(repaired["clean"])
        self.assertEqual(self.repair(), [])
        self.assertIsNone(self.show(bank)["folder"])
        self.alter("UPDATE folders SET overview = x'00' WHERE uuid = ?", inner)
        self.assertEqual(self.repair(), [f"removed, since its title doesn't open: folder {inner}"])
        self.assertEqual(self.folders(), {})

    def test_the_ledger_is_set_right_by_a_repair_where_rows_were_taken_away(self):
        self.make_folder("A")
        uuid = self.make_folder("A/B")
        self.alter("DELETE FROM folders WHERE parent_uuid IS NULL")
        self.assertEqual(self.repair(), ["folders missing: 1", f"moved to the top: folder {uuid}"])
        self.assertEqual([f["title"] for f in self.folders().values()], ["B"])

    def test_the_ledger_is_set_right_by_a_repair_where_a_row_is_an_older_one(self):
        uuid = self.make_folder("A")
        self.run_tool("backup", self.path("older.qn"))
        self.run_tool("folder", "rename", "A", "B")
        with sqlite3.connect(self.store) as database:
            database.execute("ATTACH ? AS older", (self.path("older.qn"),))
            database.execute("DELETE FROM main.folders")
            database.execute("INSERT INTO main.folders SELECT * FROM older.folders")
        database.close()
        self.run_tool("folder", "list", code=6)
        self.assertEqual(self.repair(), ["folders were added, or put back to an older state: they "
                                         "stay as they are"])
        self.assertEqual(self.folders()[uuid]["title"], "A")

    def test_a_repaired_store_merges_again_and_gets_its_folder_back(self):
        uuid = self.make_folder("A")
        theirs = self.path("theirs.qn")
        self.run_tool("backup", theirs)
        merge = ["merge", theirs, "--other-password-stdin"]
        self.run_tool(*merge, stdin=PASSWORD + "\n")
        self.alter("UPDATE folders SET overview = x'00'")
        self.run_tool(*merge, stdin=PASSWORD + "\n", code=6)
        self.assertEqual(self.repair(), [f"removed, since its title doesn't open: folder {uuid}"])
        self.run_tool(*merge, stdin=PASSWORD + "\n")
        self.assertEqual([f["title"] for f in self.folders().values()], ["A"])
        self.assertTrue(self.run_tool("check", "--json").json["clean"])

    def test_a_folder_whose_parent_was_taken_away_is_at_the_top_and_repaired_there(self):
        uuid = self.make_folder("A/B")
        self.alter("DELETE FROM folders WHERE oid = 1")
        result = self.run_tool("folder", "list", "--json", code=6)
        self.assertEqual([(folder["uuid"], folder["parent"]) for folder in result.json],
                         [(uuid, None)])
        self.assertIn("folders at the top, since their own place isn't there: 1", result.err)
        checked = self.run_tool("check", "--json", code=6).json
        self.assertTrue(any(uuid in text for text in checked["problems"] + checked["remarks"]),
                        checked)
        repaired = self.run_tool("check", "--repair", "--json").json["repaired"]
        self.assertEqual(repaired["foldersMovedToTop"], [uuid])
        self.assertNotIn("folders at the top", self.run_tool("folder", "list").err)

    def test_a_change_beside_a_damaged_folder_is_made_and_ends_with_6(self):
        self.make_folder("Damaged")
        self.make_folder("B")
        self.add("Bank")
        self.break_value("folders", "overview", "oid = 1")
        for command in (["move", "Bank", "B"], ["folder", "add", "C"], ["folder", "add", "B/D"],
                        ["folder", "rename", "C", "E"], ["folder", "move", "E", "B"],
                        ["folder", "move", "B/E", "--to-top"], ["folder", "delete", "E"],
                        ["smart", "add", "S", "TRUEPREDICATE"], ["smart", "delete", "S"]):
            for form in ([], ["--json"]) if command[0] == "move" else ([],):
                result = self.run_tool(*command, *form, code=6)
                self.assertIn("damaged folders left out: 1", result.err, command)
        result = self.run_tool("folder", "list", "--json", code=6)
        self.assertEqual([(folder["title"], folder["items"]) for folder in result.json],
                         [("B", 1), ("D", 0)])
        self.run_tool("move", "Bank", "--to-top")  # needs no folder


class Quarantine(OrganiseTest):
    """A smart folder whose question an older version wrote, and no present one has."""

    def setUp(self):
        super().setUp()
        self.uuid = self.run_tool("smart", "add", "Old", 'NOT username == "x"').out.strip()
        self.exported = self.run_tool("export", "--plaintext").json
        overview = self.exported["folders"][0]["row"]["overview"]
        archive = base64.b64decode(overview["predicate_b64_v4"])
        self.assertIn(b'"username"', archive)
        overview["predicate_b64_v4"] = base64.b64encode(
            archive.replace(b'"username"', b'"trashed"')).decode()
        overview["sfVersion"] = 3
        self.environment["QUILLON_STORE"] = self.store = self.path("old.qn")
        self.make_store()
        self.run_tool("import", self.write("old.json", json.dumps(self.exported)))

    def test_a_check_remarks_it_and_a_repair_leaves_it(self):
        remark = (f"folder {self.uuid}: its predicate is an older version's and can't be brought "
                  "forward")
        for options in ([], ["--repair"]):
            checked = self.run_tool("check", "--json", *options).json
            self.assertEqual((checked["clean"], checked["remarks"]), (True, [remark]))
            self.assertIn(remark, self.run_tool("check", *options).out)

    def test_it_is_listed_as_a_smart_folder_without_a_predicate(self):
        for command in (["folder", "list"], ["smart", "list"]):
            result = self.run_tool(*command, "--json")
            self.assertEqual([folder["uuid"] for folder in result.json], [self.uuid])
            self.assertIn("smart folders whose predicate this version can't use: 1", result.err)
        self.assertTrue(self.folders()[self.uuid]["smart"])
        self.assertIsNone(self.run_tool("smart", "list", "--json").json[0]["predicate"])
        self.run_tool("smart", "show", "Old", code=1)
        self.run_tool("move", self.add("Bank"), "Old", code=1)

    def test_a_merge_carries_it_over_and_tells_of_it(self):
        theirs = self.path("theirs.qn")
        self.run_tool("init", "--store", theirs)
        for dry in (["--dry-run"], []):
            report = self.run_tool("merge", theirs, "--other-password-stdin", "--json", *dry,
                                   stdin=PASSWORD + "\n").json
            self.assertEqual(report["quarantinedFolders"], [self.uuid])
        result = self.run_tool("merge", theirs, "--other-password-stdin", stdin=PASSWORD + "\n")
        self.assertRegex(result.out, r"(?m)^can't be used +folder Old")
        remarks = self.run_tool("check", "--json", "--store", theirs).json["remarks"]
        self.assertIn(self.uuid, remarks[0])

    def test_an_export_holds_it_as_it_is(self):
        result = self.run_tool("export", "--plaintext")
        self.assertIn("smart folders whose predicate this version can't use: 1", result.err)
        self.assertEqual(result.json, self.exported)

    def test_it_goes_like_any_other(self):
        self.run_tool("smart", "delete", "Old")
        self.assertEqual(self.folders(), {})
        self.assertEqual(self.run_tool("check", "--json").json["remarks"], [])


if __name__ == "__main__":
    tool_test.TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
