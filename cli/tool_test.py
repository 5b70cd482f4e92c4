#!/usr/bin/env python3
"""Uses the built tool as a person and as a script do: tool_test.py TOOL [TEST...]

Every vault here has the demonstration password or a derived one of the least cost, in a folder of
its own; nothing is read from the home folder.
"""
import hashlib
import hmac
import json
import math
import os
import pty
import re
import select
import shutil
import signal
import sqlite3
import stat
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest
import zlib

SOURCE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(SOURCE, "testdata")
RESOURCES = os.path.join(os.path.dirname(SOURCE), "resources")
TOOL = ""
PASSWORD = "try quillon"
OTHER = "a sentence of mine, with ümläuts"
UUID = re.compile(r"^[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}$")
DOTS = "••••••••••"
# What a terminal would obey, or show as something else than it is.
CONTROL = re.compile("[\x00-\x09\x0b-\x1f\x7f\x80-\x9f\u200e\u200f\u2028-\u202e\u2066-\u2069]")
COMMANDS = ["init", "import", "export", "list", "find", "for", "show", "add", "edit", "trash",
            "restore", "delete", "favorite", "move", "tag", "folder", "smart", "history",
            "duplicate", "copy", "fingerprint", "categories", "template", "passwd", "info", "check",
            "backup", "merge", "conflicts", "resolve", "vault", "otp", "generate", "pick",
            "shell", "completion"]
NESTED = {"add": [None, "login"], "vault": ["list", "add", "icon", "color"],
          "tag": ["list", "add", "remove", "rename"],
          "folder": ["list", "add", "move", "rename", "delete"],
          "smart": ["list", "add", "show", "delete"]}


class Result:
    def __init__(self, process, out, err):
        self.code = process.returncode
        self.bytes = out
        self.out = out.decode()
        self.err = err.decode()

    @property
    def json(self):
        return json.loads(self.out)


class ToolTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="quillon-tool-test-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.store = self.path("vault.qn")
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": self.folder, "LANG": "en_US.UTF-8",
            "QUILLON_STORE": self.store,
        }
        for name in ("QUILLON_RESOURCES", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content.encode() if isinstance(content, str) else content)
        return self.path(name)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def run_raw(self, *arguments, stdin=b"", **options):
        """Runs the tool with exactly these arguments."""
        process = subprocess.Popen([TOOL, *arguments], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   env=self.environment, start_new_session=True, **options)
        out, err = process.communicate(stdin.encode() if isinstance(stdin, str) else stdin)
        return Result(process, out, err)

    def run_tool(self, *arguments, stdin="", password=PASSWORD, code=0):
        """Runs the tool with the password on standard input and `stdin` behind it."""
        result = self.run_raw(*arguments, "--password-stdin", stdin=password + "\n" + stdin)
        self.assertEqual(result.code, code, result.err)
        return result

    def make_store(self, password=PASSWORD):
        self.run_tool("init", password=password)

    def add(self, title, *options, stdin=""):
        return self.run_tool("add", "login", "--title", title, *options, stdin=stdin).out.strip()

    def import_data(self, name, *options, code=0):
        return self.run_tool("import", os.path.join(DATA, name), *options, code=code)

    def show(self, item):
        return self.run_tool("show", item, "--json", "--reveal").json

    def titles(self, *options):
        return [item["title"] for item in self.run_tool("list", "--json", *options).json]


class FirstSession(ToolTest):
    def test_a_stranger_gets_from_a_password_to_a_file_and_back(self):
        result = self.run_tool("init", "--hint", "the usual, with the bird")
        self.assertIn("protects nothing", result.err)
        self.assertEqual(result.out, "")
        self.assertIn("added: 3", self.import_data("chromium.csv").out)
        listed = self.run_tool("list").out
        self.assertEqual([line.split()[0] for line in listed.splitlines()],
                         ["android", "example.com", "forum.example"])
        self.assertIn("jo@example.org", listed)
        self.assertEqual(self.run_tool("find", "forum").out.split(),
                         ["forum.example", "Login", "jo@example.org"])
        shown = self.run_tool("show", "forum.example").out
        self.assertIn(DOTS, shown)
        self.assertNotIn("pa55", shown)
        self.assertEqual(self.run_tool("show", "forum.example", "--field", "password").out,
                         'pa55,"chromium"-2\n')
        uuid = self.add("Forum", "--username", "jo", "--url", "https://forum.example",
                        "--generate")
        self.assertRegex(uuid, UUID)
        self.assertEqual(
            self.run_tool("edit", "Forum", "--set", "notes=joined in spring", "--generate").out, "")
        self.assertEqual(self.show("Forum")["notes"], "joined in spring")
        found = self.run_tool("find", "--url", "https://forum.example/login", "--json").json
        self.assertEqual(sorted(item["title"] for item in found), ["Forum", "forum.example"])
        self.run_tool("trash", "Forum")
        self.assertNotIn("Forum", self.titles())
        self.run_tool("restore", "Forum")
        self.assertIn("Forum", self.titles())
        self.assertEqual(self.run_tool("check").out, "items checked: 4, problems: 0\n")
        self.run_tool("backup", self.path("copy.qn"))
        self.environment["QUILLON_STORE"] = self.path("copy.qn")
        self.assertEqual(len(self.titles()), 4)

    def test_the_store_lies_in_the_data_folder_and_is_nobody_elses(self):
        del self.environment["QUILLON_STORE"]
        self.make_store()
        store = self.path(".local/share/quillon/vault.qn")
        self.assertEqual(stat.S_IMODE(os.stat(store).st_mode), 0o600)
        self.assertEqual(stat.S_IMODE(os.stat(os.path.dirname(store)).st_mode), 0o700)
        self.environment["XDG_DATA_HOME"] = self.path("data")
        self.make_store()
        self.assertTrue(os.path.exists(self.path("data/quillon/vault.qn")))

    def test_init_leaves_an_existing_file_alone(self):
        self.make_store()
        before = self.read("vault.qn")
        result = self.run_tool("init", code=1)
        self.assertIn("is there already", result.err)
        self.assertEqual(self.read("vault.qn"), before)
        self.environment["QUILLON_STORE"] = self.write("letter.txt", "Dear Sir")
        self.run_tool("init", code=1)
        self.assertEqual(self.read("letter.txt"), b"Dear Sir")


class Json(ToolTest):
    """One value and nothing else on standard output, whatever the command."""

    def value(self, *arguments, **options):
        result = self.run_tool(*arguments, "--json", **options)
        return json.JSONDecoder().decode(result.out)  # refuses anything behind the value

    def test_every_command_prints_one_value(self):
        made = self.value("init")
        self.assertEqual(made["store"], self.store)
        self.assertRegex(made["vault"], UUID)
        report = self.value("import", os.path.join(DATA, "safari.csv"))
        self.assertEqual(report, {"format": "safari", "dryRun": False, "added": 2,
                                  "alreadyThere": 0, "skipped": 0, "keptInNotes": {}})
        uuid = self.value("add", "login", "--title", "New")["uuid"]
        self.assertRegex(uuid, UUID)
        edited = self.value("edit", uuid, "--set", "title=Newer")
        self.assertEqual(edited["uuid"], uuid)
        self.assertGreaterEqual(edited["updatedAt"], 1_600_000_000)
        self.assertEqual(self.value("trash", uuid), {"uuid": uuid, "trashed": True})
        self.assertEqual(self.value("restore", uuid), {"uuid": uuid, "trashed": False})
        self.value("trash", uuid)
        self.assertEqual(self.value("delete", uuid), {"uuid": uuid, "deleted": True})
        self.assertEqual(self.value("check"), {"itemsChecked": 2, "foldersChecked": 0, "clean": True,
                                               "problems": [], "remarks": []})
        first = self.titles()[0]
        self.assertEqual(self.value("history", first), [])
        self.assertEqual(self.value("conflicts"), [])
        self.assertEqual(list(self.value("fingerprint", first)), ["uuid", "fingerprint"])
        self.assertEqual(list(self.value("duplicate", first)), ["uuid"])
        self.value("vault", "add", "work")
        self.assertEqual(list(self.value("copy", first, "--to", "work")), ["uuid", "vault"])
        self.assertEqual(len(self.value("export", "--plaintext")["items"]), 3)
        self.value("backup", self.path("other.qn"))
        self.assertEqual(self.value("merge", self.path("other.qn"), "--other-password-stdin",
                                    stdin=PASSWORD + "\n"),
                         {"dryRun": False, "first": True, "compared": 4,  # one is deleted
                          "items": [], "folders": [], "foldersMovedToTop": [],
                          "quarantinedFolders": []})
        copy = self.path("copy.qn")
        self.assertEqual(self.value("backup", copy), {"backup": copy})
        made = self.value("generate", "--count", "2")
        self.assertEqual([len(one["password"]) for one in made], [20, 20])
        self.assertGreater(made[0]["bits"], 100)
        self.assertIn("complete", self.value("completion", "bash")["script"])
        self.assertEqual(self.value("passwd", "--new-password-stdin", stdin=PASSWORD + "\n"),
                         {"changed": True})
        self.assertEqual(json.loads(self.run_raw("--version", "--json").out)["version"].split()[0],
                         "quillon")

    def test_list_and_find_have_the_promised_members(self):
        self.make_store()
        uuid = self.add("Bank", "--username", "jo", "--url", "https://a.example", "--url",
                        "https://b.example", "--favorite")
        for value in (self.value("list"), self.value("find", "bank")):
            self.assertEqual(len(value), 1)
            item = value[0]
            self.assertEqual(list(item), ["uuid", "title", "subtitle", "category",
                                          "categoryTitle", "urls", "favorite", "trashed",
                                          "createdAt", "updatedAt"])
            self.assertEqual(item["uuid"], uuid)
            self.assertEqual((item["title"], item["subtitle"], item["category"]),
                             ("Bank", "jo", "001"))
            self.assertEqual(item["urls"], ["https://a.example"])
            self.assertIs(item["favorite"], True)
            self.assertIs(item["trashed"], False)
            self.assertLess(abs(item["createdAt"] - time.time()), 60)
        self.assertEqual(self.value("find", "nothing"), [])
        self.assertEqual(self.value("list", "--trashed"), [])

    def test_show_adds_its_members_and_the_password_only_when_asked(self):
        self.make_store()
        self.add("Bank", "--username", "jo", "--url", "https://a.example", "--url",
                 "https://b.example", "--notes", "N", "--password=-", stdin="pa55\n")
        shown = self.value("show", "Bank")
        self.assertEqual(shown["urls"], ["https://a.example", "https://b.example"])
        self.assertEqual((shown["username"], shown["notes"], shown["fields"]), ("jo", "N", []))
        self.assertNotIn("password", shown)
        self.assertEqual(self.value("show", "Bank", "--reveal")["password"], "pa55")
        self.assertEqual(self.value("show", "Bank", "--field", "password")["password"], "pa55")
        self.assertNotIn("password", self.value("show", "Bank", "--field", "username"))

    def test_info_has_the_promised_members(self):
        self.make_store()
        self.import_data("bitwarden.csv")
        self.run_tool("trash", "Bare")
        info = self.value("info")
        self.assertEqual(info["items"], 2)
        self.assertEqual(info["trashed"], 1)
        self.assertEqual([(one["uuid"], one["name"], one["items"]) for one in info["categories"]],
                         [("001", "Logins", 1), ("003", "Secure Notes", 1)])
        self.assertEqual(info["kdf"], {"name": "argon2id", "memoryKiB": 100, "passes": 3})
        self.assertEqual(info["schema"], 3)

    def test_an_error_prints_nothing_on_standard_output(self):
        self.make_store()
        for arguments, code in ((["show", "Nobody"], 4), (["list", "--nonsense"], 2),
                                (["import", self.path("none.csv")], 7)):
            result = self.run_tool(*arguments, "--json", code=code)
            self.assertEqual(result.out, "")
            self.assertTrue(result.err.startswith("quillon: "), result.err)


class ExitCodes(ToolTest):
    def test_wrong_usage_is_2(self):
        for arguments in ([], ["nonsense"], ["show"], ["add"], ["add", "login"], ["find"],
                          ["edit", "x"], ["list", "--sort", "color"], ["generate", "--length", "2"],
                          ["add", "nonsense", "--title", "T"], ["list", "--lang", "?"],
                          ["list", "--category", "nonsense"], ["template", "nonsense"], ["history"],
                          ["copy", "x"], ["export"], ["merge"], ["resolve", "x"],
                          ["resolve", "x", "--keep", "both"], ["resolve", "x", "--field", "a=b"],
                          ["resolve", "x", "--field", "=mine"],
                          ["resolve", "x", "--keep", "mine", "--field", "a=mine"],
                          ["favorite"], ["move", "x"], ["tag"], ["folder"], ["smart"],
                          ["copy", "x", "--to", "work", "--to-password-stdin"]):
            result = self.run_raw(*arguments)
            self.assertEqual((result.code, result.out), (2, ""), arguments)
            self.assertNotEqual(result.err, "")

    def test_a_wrong_password_is_3_and_shows_the_hint(self):
        self.run_tool("init", "--hint", "the \x1b[31mbird")
        for arguments in (["list"], ["show", "x"], ["check"], ["passwd", "--new-password-stdin"],
                          ["add", "login", "--title", "T"], ["trash", "x"], ["find", "x"],
                          ["history", "x"], ["duplicate", "x"], ["fingerprint", "x"],
                          ["copy", "x", "--to", "y"], ["export", "--plaintext"], ["conflicts"],
                          ["for", "x"], ["favorite", "x"], ["move", "x", "y"], ["tag", "list"],
                          ["tag", "remove", "x", "--all"], ["folder", "list"],
                          ["folder", "add", "x"], ["smart", "list"],
                          ["resolve", "x", "--keep", "mine"],
                          ["import", os.path.join(DATA, "safari.csv")]):
            result = self.run_tool(*arguments, password="wrong", code=3)
            self.assertEqual(result.out, "")
            self.assertIn("wrong password; the hint is: the \\x1b[31mbird", result.err)
            self.assertNotIn("\x1b", result.err)
        self.assertEqual(self.run_tool("list").out, "")

    def test_what_is_not_there_is_4(self):
        self.make_store()
        self.add("Bank")
        nobody = "01234567-89ab-4cde-8f01-23456789abcd"
        for item in ("Nobody", nobody, ""):
            for command in (["show"], ["trash"], ["restore"], ["delete"], ["edit", "--generate"]):
                self.run_tool(command[0], item, *command[1:], code=4)
        for field in ("username", "password", "url", "notes"):
            result = self.run_tool("show", "Bank", "--field", field, code=4)
            self.assertIn(field, result.err)

    def test_two_matches_are_5_and_are_listed(self):
        self.make_store()
        uuids = [self.add("Twin\x1b[31m"), self.add("Twin\x1b[31m")]
        self.add("twin\x1b[31m")  # an equal title wins over this one
        result = self.run_tool("show", "Twin\x1b[31m", code=5)
        self.assertEqual(result.out, "")
        self.assertEqual(sorted(line.split("  ")[0] for line in result.err.splitlines()[:2]),
                         sorted(uuids))
        self.assertIn("Twin\\x1b[31m", result.err)
        self.assertNotIn("\x1b", result.err)
        self.run_tool("edit", "Twin\x1b[31m", "--set", "title=Changed", code=5)
        self.assertNotIn("Changed", self.titles())
        self.assertIn(uuids[0], self.run_tool("show", uuids[0]).out)

    def test_a_damaged_store_is_6(self):
        self.make_store()
        self.add("Bank")
        self.add("Forum")
        with sqlite3.connect(self.store) as database:
            (overview,) = database.execute("SELECT overview FROM items WHERE oid = 1").fetchone()
            spoiled = bytes([overview[0] ^ 1]) + overview[1:]
            database.execute("UPDATE items SET overview = ? WHERE oid = 1", (spoiled,))
        database.close()
        listed = self.run_tool("list", code=6)
        self.assertEqual(listed.out.split(), ["Forum", "Login", "—"])
        self.assertIn("damaged items left out: 1", listed.err)
        self.assertEqual(len(json.loads(self.run_tool("list", "--json", code=6).out)), 1)
        checked = self.run_tool("check", "--json", code=6).json
        self.assertFalse(checked["clean"])
        self.assertTrue(checked["problems"])
        self.assertNotIn("Bank", json.dumps(checked))
        self.run_tool("show", "Forum")

    def test_a_row_that_was_taken_away_is_noticed(self):
        self.make_store()
        self.add("Bank")
        self.add("Forum")
        with sqlite3.connect(self.store) as database:
            database.execute("DELETE FROM items WHERE oid = 1")
        database.close()
        result = self.run_tool("list", code=6)
        self.assertIn("were removed, added or put back", result.err)

    def test_a_newer_store_is_6(self):
        self.make_store()
        with sqlite3.connect(self.store) as database:
            database.execute("PRAGMA user_version = 99")
        database.close()
        for command in (["list"], ["info"], ["check"], ["add", "login", "--title", "T"]):
            result = self.run_tool(*command, code=6)
            self.assertIn("newer", result.err)

    def test_what_is_no_store_is_6(self):
        os.mkdir(self.path("folder"))
        self.write("empty", b"")
        self.write("letter.txt", "Dear Sir, " * 1000)
        with sqlite3.connect(self.path("others.db")) as database:
            database.execute("CREATE TABLE letters (text)")
        database.close()
        for name in ("folder", "empty", "letter.txt", "others.db"):
            before = None if name == "folder" else self.read(name)
            result = self.run_tool("list", "--store", self.path(name), code=6)
            self.assertIn(name, result.err)
            if before is not None:
                self.assertEqual(self.read(name), before)

    def test_a_truncated_store_is_6(self):
        self.make_store()
        for i in range(20):
            self.add(f"Item {i}")
        os.truncate(self.store, os.path.getsize(self.store) // 2)
        self.run_tool("check", code=6)

    def test_a_file_that_cannot_be_read_or_written_is_7(self):
        self.assertIn("quillon init", self.run_tool("list", code=7).err)
        self.assertFalse(os.path.exists(self.store))
        self.make_store()
        self.run_tool("import", self.path("none.csv"), code=7)
        self.run_tool("import", self.folder, code=7)
        result = self.run_raw("list", "--password-file", self.path("none"))
        self.assertEqual(result.code, 7)
        self.assertEqual(self.run_raw("list", "--password-fd", "77").code, 7)
        self.run_tool("backup", "/proc/none/copy.qn", code=7)
        self.run_tool("init", "--store", "/proc/none/vault.qn", code=7)

    def test_a_backup_never_replaces_a_file(self):
        self.make_store()
        letter = self.write("letter.txt", "Dear Sir")
        self.run_tool("backup", letter, code=1)
        self.assertEqual(self.read("letter.txt"), b"Dear Sir")


class Output(ToolTest):
    def test_a_full_disk_is_7(self):
        self.make_store()
        with open("/dev/full", "wb") as full:
            process = subprocess.run([TOOL, "info"], stdout=full, stderr=subprocess.PIPE,
                                     env=self.environment)
        self.assertEqual(process.returncode, 7)
        self.assertIn(b"standard output", process.stderr)

    def test_a_closed_pipe_ends_the_tool_silently(self):
        reader, writer = os.pipe()
        os.close(reader)
        self.make_store()
        process = subprocess.run([TOOL, "info"], stdout=writer, stderr=subprocess.PIPE,
                                 env=self.environment)
        os.close(writer)
        self.assertEqual((process.returncode, process.stderr), (7, b""))

    def test_head_ends_a_long_list_early(self):
        self.make_store()
        rows = "".join(f"Item {i},jo,{i:x}\n" for i in range(5000))
        self.run_tool("import", self.write("many.csv", "title,username,password\n" + rows))
        line = f"'{TOOL}' list --password-file '{self.write('pw', PASSWORD)}' | head -n 1"
        process = subprocess.run(["bash", "-c", line], env=self.environment, capture_output=True)
        self.assertEqual(process.stdout.split(), [b"Item", b"0", b"Login", b"jo"])
        self.assertEqual(process.stderr, b"")

    def test_control_characters_are_escaped_everywhere(self):
        self.make_store()
        self.import_data("control-characters.csv")
        for command in (["list"], ["list", "--long"], ["find", "alert"],
                        ["show", "Red \x1b[31malert\x07"], ["info"]):
            result = self.run_tool(*command)
            self.assertIsNone(CONTROL.search(result.out), command)
            self.assertIsNone(CONTROL.search(self.run_tool(*command, "--json").out), command)
        self.assertIn("Red \\x1b[31malert\\x07", self.run_tool("list").out)
        self.assertIn("moc.elpmaxe\\u{202e}//:sptth", self.run_tool("list").out)
        # Scripts get what is stored.
        self.assertIn("Red \x1b[31malert\x07", self.titles())
        self.assertEqual(self.run_tool("show", "Red \x1b[31malert\x07", "--field", "username").out,
                         "jo\x1b]0;owned\x07\n")

    def test_json_escapes_what_json_itself_allows(self):
        self.make_store()
        title = "a\x7f\x9b2J\u202e\u2028z"
        uuid = self.add(title, "--notes", title)
        for command in (["list"], ["list", "--sections"], ["show", uuid], ["export", "--plaintext"]):
            result = self.run_tool(*command, "--json")
            self.assertIsNone(CONTROL.search(result.out), command)
            self.assertIn("a\\u007f\\u009b2J\\u202e\\u2028z", result.out)
        self.assertEqual(self.titles(), [title])
        self.assertEqual(self.show(uuid)["notes"], title)

    def test_messages_show_arguments_escaped(self):
        self.make_store()
        odd = "\x1b[2J\u202e"
        for arguments, code in ((["list", "--" + odd], 2), (["list", "--sort", odd], 2),
                                (["completion", odd], 2), (["list", "--store", odd], 7),
                                (["edit", "x", "--set-file", "notes=" + odd], 4),
                                (["find", "--where", f"title == '{odd}' {odd}"], 2)):
            result = self.run_tool(*arguments, code=code)
            self.assertIsNone(CONTROL.search(result.err), arguments)
        self.assertIn("\\x1b[2J\\u{202e}", self.run_tool("list", "--" + odd, code=2).err)

    def test_titles_sort_as_the_users_language_does(self):
        self.make_store()
        for title in ("zebra", "ärta", "Arm", "öl", "arm", "Éclair", "echo", "10", "日本"):
            self.add(title)
        self.assertEqual(self.titles(), ["10", "arm", "Arm", "ärta", "echo", "Éclair", "öl",
                                         "zebra", "日本"])
        self.environment["LC_ALL"] = "sv_SE.UTF-8"
        self.assertEqual(self.titles(), ["10", "arm", "Arm", "echo", "Éclair", "zebra", "ärta",
                                         "öl", "日本"])

    def test_lists_are_sorted_by_time_newest_first(self):
        self.make_store()
        self.import_data("firefox.csv")  # both created on the same second
        self.add("new")
        self.assertEqual(self.titles("--sort", "created"),
                         ["new", "router.example", "shop.example"])
        time.sleep(1.1)
        self.run_tool("edit", "shop.example", "--set", "notes=changed")
        self.assertEqual(self.titles("--sort", "updated")[0], "shop.example")

    def test_a_list_shows_subtitles_in_a_column_and_uuids_when_asked(self):
        self.make_store()
        uuid = self.add("日本", "--username", "jo")
        self.assertEqual(self.run_tool("list").out, "日本" + " " * 36 + "  Login             jo\n")
        self.assertEqual(self.run_tool("list", "--long").out,
                         uuid + "  日本" + " " * 36 + "  Login             jo\n")

    def test_find_ranks_beginnings_before_insides(self):
        self.make_store()
        for title in ("Piggybank", "My Bank", "Bank of Ä", "bank of a", "Forum"):
            self.add(title)
        found = self.run_tool("find", "BANK", "--json").json
        self.assertEqual([item["title"] for item in found],
                         ["bank of a", "Bank of Ä", "My Bank", "Piggybank"])
        self.assertEqual(self.run_tool("find", "bank", "my").out.split()[:2], ["My", "Bank"])
        self.assertEqual(self.run_tool("find", "bank", "forum").out, "")

    def test_find_by_website_puts_the_pages_own_host_first(self):
        self.make_store()
        self.add("A", "--url", "https://other.shop.example")
        self.add("B", "--url", "https://shop.example/login")
        self.add("C", "--url", "https://elsewhere.example")
        self.add("D", "--url", "https://shop.example")
        self.run_tool("trash", "D")
        found = self.run_tool("find", "--url", "https://shop.example/x?y", "--json").json
        self.assertEqual([item["title"] for item in found], ["B", "A"])

    def test_show_prints_every_field_and_dots_for_secrets(self):
        self.make_store()
        uuid = self.add("Bank", "--username", "jo", "--url", "https://a.example", "--url",
                        "https://b.example", "--notes", "first\nsecond", "--favorite",
                        "--password=-", stdin="correct zebra battery")
        lines = self.run_tool("show", uuid).out.splitlines()
        self.assertEqual(lines[:8], [
            "Title:      Bank", "Type:       Login", "Username:   jo", "Password:   " + DOTS,
            "URL:        https://a.example", "URL:        https://b.example",
            "Notes:      first", "            second"])
        self.assertRegex(lines[8], r"^Strength:   \d+ of 100$")
        self.assertEqual(lines[-2:], ["Favorite:   yes", "UUID:       " + uuid])
        self.assertIn("Password:   correct zebra battery",
                      self.run_tool("show", uuid, "--reveal").out)

    def test_fields_print_bare(self):
        self.make_store()
        self.add("Bank", "--username", "jo", "--url", "https://a.example", "--notes", "a\nb",
                 "--password=-", stdin=" pa55 \n\n")
        for field, value in (("title", "Bank"), ("username", "jo"), ("url", "https://a.example"),
                             ("notes", "a\nb"), ("password", " pa55 \n")):
            self.assertEqual(self.run_tool("show", "Bank", "--field", field).out, value + "\n")

    def test_no_secret_is_printed_unless_it_is_asked_for(self):
        self.make_store(OTHER)
        secrets = ["pa55-secret-1", "pa55-secret-2", OTHER, "umläuts new"]
        csv = self.write("in.csv", f"title,username,password\nBank,jo,{secrets[0]}\n")
        commands = [
            (["import", csv, "--dry-run"], ""), (["import", csv], ""), (["import", csv], ""),
            (["list"], ""), (["list", "--json"], ""), (["find", "bank"], ""),
            (["find", "bank", "--json"], ""), (["show", "Bank"], ""),
            (["show", "Bank", "--json"], ""), (["show", "Bank", "--field", "username"], ""),
            (["add", "login", "--title", "New", "--password=-"], secrets[1]),
            (["edit", "New", "--set", "password=-"], secrets[0]),
            (["edit", "New", "--generate", "--json"], ""), (["check"], ""), (["info"], ""),
            (["history", "New"], ""), (["history", "New", "--json"], ""), (["conflicts"], ""),
            (["duplicate", "New"], ""), (["fingerprint", "New"], ""), (["vault", "add", "x"], ""),
            (["copy", "New", "--to", "x"], ""), (["export", "--plaintext", csv + ".json"], ""),
            (["import", csv + ".json"], ""),
            (["find", "--contents", "jo"], ""), (["find", "--where", "TRUEPREDICATE"], ""),
            (["list", "--sections"], ""), (["for", "https://a.example"], ""),
            (["tag", "add", "t", "New"], ""), (["tag", "list"], ""), (["folder", "add", "F"], ""),
            (["move", "New", "F"], ""), (["folder", "list"], ""), (["favorite", "New"], ""),
            (["smart", "add", "S", "TRUEPREDICATE"], ""), (["smart", "show", "S"], ""),
            (["trash", "New"], ""), (["restore", "New"], ""),
            (["delete", "New", "--force", "--json"], ""),
            (["passwd", "--new-password-stdin"], secrets[3] + "\n")]
        for command, stdin in commands:
            result = self.run_tool(*command, stdin=stdin, password=OTHER)
            for secret in secrets:
                self.assertNotIn(secret, result.out + result.err, command)


class Items(ToolTest):
    def setUp(self):
        super().setUp()
        self.make_store()

    def test_an_item_is_named_by_uuid_in_any_case_or_by_title_in_any_case(self):
        uuid = self.add("Example Bänk")
        for name in (uuid, uuid.upper(), "Example Bänk", "example bank", "EXAMPLE BÄNK"):
            self.assertEqual(self.show(name)["uuid"], uuid)

    def test_a_title_may_look_like_a_uuid(self):
        title = "01234567-89ab-4cde-8f01-23456789abcd"
        uuid = self.add(title)
        self.assertEqual(self.show(title)["uuid"], uuid)

    def test_an_item_outside_the_trash_wins_over_one_inside(self):
        old, new = self.add("Bank"), self.add("Other")
        self.run_tool("trash", "Bank")
        self.run_tool("edit", "Other", "--set", "title=Bank")
        self.assertEqual(self.show("Bank")["uuid"], new)
        self.run_tool("restore", "Bank")
        self.assertFalse(self.show(old)["trashed"])

    def test_each_field_can_be_edited_and_emptied(self):
        uuid = self.add("Bank")
        values = {"title": "Größe = alles", "username": "jö", "url": "https://a.example/?b=c",
                  "notes": "first\nsecond"}
        settings = [part for name, value in values.items() for part in ("--set", f"{name}={value}")]
        self.run_tool("edit", uuid, *settings)
        shown = self.show(uuid)
        self.assertEqual((shown["title"], shown["username"], shown["urls"], shown["notes"]),
                         (values["title"], values["username"], [values["url"]], values["notes"]))
        self.assertEqual(self.run_tool("find", "größe", "--json").json[0]["subtitle"], "jö")
        self.run_tool("edit", uuid, "--set", "username=", "--set", "url=", "--set", "notes=")
        shown = self.show(uuid)
        self.assertEqual((shown["title"], shown["username"], shown["urls"], shown["notes"]),
                         (values["title"], "", [], None))

    def test_the_first_address_is_the_one_that_is_set(self):
        uuid = self.add("Bank", "--url", "https://a.example", "--url", "https://b.example")
        self.run_tool("edit", uuid, "--set", "url=https://c.example")
        self.assertEqual(self.show(uuid)["urls"], ["https://c.example", "https://b.example"])
        found = self.run_tool("find", "--url", "https://a.example", "--json").json
        self.assertEqual(found, [])

    def test_a_password_comes_from_standard_input_behind_the_vaults_own(self):
        uuid = self.add("Bank", "--password=-", stdin="pa55 one\n")
        self.assertEqual(self.show(uuid)["password"], "pa55 one")
        self.run_tool("edit", uuid, "--set", "password=-", stdin="two\nlines\n\n")
        self.assertEqual(self.show(uuid)["password"], "two\nlines\n")

    def test_a_password_comes_from_the_whole_of_standard_input_without_the_vaults_own(self):
        file = self.write("pw", PASSWORD + "\n")
        result = self.run_raw("add", "login", "--title", "Bank", "--password=-",
                              "--password-file", file, stdin="pa55\n")
        self.assertEqual(self.show(result.out.strip())["password"], "pa55")

    def test_an_item_needs_a_title(self):
        uuid = self.add("Bank")
        for options in (["--unset", "title"], ["--set", "title="], ["--set", "title=  "]):
            self.run_tool("edit", uuid, *options, code=2)
        self.run_tool("add", "login", "--title", " ", code=2)
        self.run_tool("add", "secure-note", "--title", "", code=2)
        self.assertEqual(self.show(uuid)["title"], "Bank")

    def test_a_title_that_is_not_utf8_is_refused(self):
        self.run_tool("add", "login", "--title", b"\xff", code=2)

    def test_a_password_that_is_not_utf8_is_refused(self):
        result = self.run_raw("add", "login", "--title", "T", "--password=-", "--password-stdin",
                              stdin=PASSWORD.encode() + b"\n\xff\xfe")
        self.assertEqual(result.code, 2)
        self.assertEqual(self.titles(), [])

    def test_a_password_in_an_argument_is_refused_with_the_reason(self):
        uuid = self.add("Bank")
        for arguments in (["edit", uuid, "--set", "password=hunter2"],
                          ["add", "login", "--title", "T", "--password=hunter2"],
                          ["list", "--password=hunter2"], ["list", "--password", "hunter2"]):
            result = self.run_tool(*arguments, code=2)
            self.assertIn("every user of the machine could read", result.err)
            self.assertNotIn("hunter2", result.err)
        self.assertNotIn("password", [key for key, value in self.show(uuid).items()
                                      if value == "hunter2"])

    def test_generated_passwords_are_different_and_rated_by_their_entropy(self):
        uuid = self.add("Bank", "--generate")
        first = self.show(uuid)["password"]
        self.assertEqual(len(first), 20)
        self.run_tool("edit", uuid, "--generate")
        self.assertNotEqual(self.show(uuid)["password"], first)
        self.assertIn("Strength:   100 of 100", self.run_tool("show", uuid).out)
        self.run_tool("edit", uuid, "--set", "password=-", stdin="password")
        self.assertNotIn("100 of 100", self.run_tool("show", uuid).out)

    def test_an_edit_that_changes_nothing_leaves_the_time_alone(self):
        uuid = self.add("Bank", "--username", "jo")
        before = self.show(uuid)["updatedAt"]
        time.sleep(1.1)
        self.run_tool("edit", uuid, "--set", "username=jo")
        self.assertEqual(self.show(uuid)["updatedAt"], before)
        self.run_tool("edit", uuid, "--set", "username=jy")
        self.assertGreater(self.show(uuid)["updatedAt"], before)

    def test_a_note_has_no_user_name_or_password(self):
        self.import_data("bitwarden.csv")
        for setting in ("username=x", "password"):
            self.assertIn("of this kind", self.run_tool("edit", "Alarm", "--set", setting,
                                                        code=2).err)
        self.run_tool("edit", "Alarm", "--set", "notes=Code 1111", "--set", "title=Alarm 2")
        shown = self.show("Alarm 2")
        self.assertEqual((shown["notes"], shown["category"]), ("Code 1111", "003"))

    def test_delete_wants_the_trash_first(self):
        uuid = self.add("Bank")
        self.assertIn("trash it first", self.run_tool("delete", "Bank", code=1).err)
        self.run_tool("trash", "Bank")
        self.assertIn("already", self.run_tool("trash", uuid).err)
        self.assertEqual(self.titles("--trashed"), ["Bank"])
        self.run_tool("delete", "Bank")
        self.run_tool("show", uuid, code=4)
        other = self.add("Other")
        self.run_tool("delete", "Other", "--force")
        self.run_tool("show", other, code=4)
        self.assertEqual(self.titles() + self.titles("--trashed"), [])
        self.run_tool("check")

    def test_restore_of_what_is_not_trashed_changes_nothing(self):
        uuid = self.add("Bank")
        self.assertIn("isn't in the trash", self.run_tool("restore", uuid).err)
        self.assertEqual(self.titles(), ["Bank"])

    def test_titles_of_every_script_and_length_survive(self):
        titles = ["日本語のタイトル", "العربية", "👩‍👩‍👧‍👦 family", "x" * 10000, "tab\there",
                  "new\nline", "e\u0301", "é", " blank "]
        for title in titles:
            self.add(title)
        self.assertEqual(sorted(self.titles()), sorted(titles))


class Import(ToolTest):
    def setUp(self):
        super().setUp()
        self.make_store()

    def items(self):
        return {item["title"]: self.show(item["uuid"])
                for item in self.run_tool("list", "--json").json}

    def test_chromium(self):
        self.assertEqual(self.import_data("chromium.csv").out, "added: 3\n")
        items = self.items()
        self.assertEqual(items["forum.example"]["username"], "jo@example.org")
        self.assertEqual(items["forum.example"]["password"], 'pa55,"chromium"-2')
        self.assertEqual(items["forum.example"]["notes"], "first line\nsecond line")
        self.assertEqual(items["example.com"]["urls"], ["https://example.com/login"])
        self.assertEqual(items["android"]["urls"], ["android://hash@com.example.app/"])

    def test_firefox(self):
        out = self.import_data("firefox.csv").out
        self.assertEqual(out, "added: 2\nkept in the notes: httpRealm, rows: 1\n"
                              "kept in the notes: guid, rows: 2\n"
                              "kept in the notes: timePasswordChanged, rows: 1\n")
        items = self.items()
        self.assertEqual(items["shop.example"]["createdAt"], 1609459200)
        self.assertEqual(items["router.example"]["urls"], ["https://router.example:8443"])
        self.assertEqual(items["router.example"]["notes"],
                         "httpRealm: Router\nguid: {5ad2ae11-91d0-4b8b-a9a5-0c4d6c6a5a02}\n"
                         "timePasswordChanged: 1640995200000")
        self.assertIn("Last used:  2021-02-0", self.run_tool("show", "shop.example").out)

    def test_safari(self):
        self.import_data("safari.csv")
        items = self.items()
        self.assertEqual(items["Bank (jo)"]["notes"], "Branch: 12")
        self.assertEqual(self.run_tool("otp", "Bank (jo)", "--at", "59").out, "996554\n")
        self.run_tool("otp", "Café", code=4)
        self.assertEqual(items["Café"]["password"], "pa55-safari-2")

    def test_bitwarden(self):
        self.import_data("bitwarden.csv")
        items = self.items()
        self.assertEqual(items["Intranet"]["urls"],
                         ["https://intranet.example", "https://sso.intranet.example/a,b?x=1,2"])
        self.assertTrue(items["Intranet"]["favorite"])
        self.assertEqual(items["Intranet"]["notes"], "folder: Work\nfields: Room: 12\nDesk: b")
        self.assertEqual(self.run_tool("otp", "Intranet", "--at", "59").out, "996554\n")
        self.assertEqual(items["Bare"]["urls"], ["one.example", "two.example"])
        self.assertEqual((items["Alarm"]["category"], items["Alarm"]["notes"]),
                         ("003", "Code 0000"))

    def test_a_spreadsheet_in_german(self):
        self.assertEqual(self.import_data("german.csv").out,
                         "added: 2\nskipped, since empty: 1\n"
                         "kept in the notes: Kunde seit, rows: 1\n")
        items = self.items()
        self.assertEqual(items["Bücherei"]["notes"], "Karte; liegt zu Hause\nKunde seit: 2019")
        self.assertEqual(items["Überweisung"]["username"], "jö")

    def test_rows_longer_and_shorter_than_the_header(self):
        self.assertIn("Column 4, rows: 1", self.import_data("extra-fields.csv").out)
        items = self.items()
        self.assertEqual(items["One"]["notes"], "Column 4: left over\nColumn 5: more")
        self.assertEqual(items["Two"]["username"], "jo")
        self.assertIn("Three", items)

    def test_utf16(self):
        self.import_data("utf-16.csv")
        self.assertEqual(self.items()["Tälefon"]["password"], "pa55-utf16-1")

    def test_the_same_file_twice_adds_nothing_the_second_time(self):
        for name in sorted(os.listdir(DATA)):
            if name in ("no-header.csv", "not-utf-8.csv", "unclosed-quote.csv", "SOURCES.md"):
                continue
            first = self.import_data(name, "--json").json
            again = self.import_data(name, "--json").json
            self.assertEqual((again["added"], again["alreadyThere"]), (0, first["added"]), name)
            self.assertIn(f"already there: {first['added']}", self.import_data(name).out)
        self.assertEqual(self.run_tool("check", "--json").json["clean"], True)

    def test_a_row_that_comes_twice_in_a_file_is_added_once(self):
        row = "Bank,https://bank.example,jo,pa55,Branch 12\n"
        file = self.write("twice.csv", "name,url,username,password,note\n" + row + row)
        report = self.run_tool("import", file, "--json").json
        self.assertEqual((report["added"], report["alreadyThere"]), (1, 1))

    def test_rows_that_differ_in_one_field_are_different(self):
        rows = ["Bank,https://bank.example,jo,pa55,N", "Bang,https://bank.example,jo,pa55,N",
                "Bank,https://bang.example,jo,pa55,N", "Bank,https://bank.example,jy,pa55,N",
                "Bank,https://bank.example,jo,pa56,N", "Bank,https://bank.example,jo,pa55,M"]
        header = "name,url,username,password,note\n"
        self.run_tool("import", self.write("one.csv", header + rows[0]))
        report = self.run_tool("import", self.write("all.csv", header + "\n".join(rows)),
                               "--json").json
        self.assertEqual((report["added"], report["alreadyThere"]), (5, 1))

    def test_rows_that_differ_in_the_one_time_password_alone_are_different(self):
        header = "title,username,password,totp\n"
        rows = ["Bank,jo,pa55,JBSWY3DPEHPK3PXP", "Bank,jo,pa55,GEZDGNBVGY3TQOJQ", "Bank,jo,pa55,"]
        self.run_tool("import", self.write("one.csv", header + rows[0]))
        file = self.write("all.csv", header + "\n".join(rows))
        report = self.run_tool("import", file, "--json").json
        self.assertEqual((report["added"], report["alreadyThere"]), (2, 1))
        self.assertIn("already there: 3", self.run_tool("import", file).out)
        for item in self.run_tool("list", "--json").json:
            shown = self.run_tool("show", item["uuid"]).out
            self.assertNotIn("JBSWY3DPEHPK3PXP", shown)
            self.assertNotIn("GEZDGNBVGY3TQOJQ", shown)

    def test_a_changed_item_is_not_the_one_of_the_file_and_a_trashed_one_does_not_count(self):
        self.import_data("chromium.csv")
        self.run_tool("edit", "android", "--set", "notes=changed")
        self.run_tool("trash", "example.com")
        self.assertEqual(self.import_data("chromium.csv").out, "added: 2\nalready there: 1\n")

    def test_a_dry_run_tells_and_changes_nothing(self):
        before = self.read("vault.qn")
        self.assertEqual(self.import_data("safari.csv", "--dry-run").out,
                         "would add: 2\n")
        self.assertTrue(self.import_data("safari.csv", "--dry-run", "--json").json["dryRun"])
        self.assertEqual(self.read("vault.qn"), before)
        self.import_data("safari.csv")
        self.assertEqual(self.import_data("safari.csv", "--dry-run").out,
                         "would add: 0\nalready there: 2\n")

    def test_a_file_with_an_error_adds_nothing_and_names_the_line(self):
        for name, text in (("not-utf-8.csv", "line 3: this isn't UTF-8"),
                           ("unclosed-quote.csv", "line 3: a quoted field has no end"),
                           ("no-header.csv", "first line")):
            result = self.import_data(name, code=1)
            self.assertIn(name, result.err)
            self.assertIn(text, result.err)
            self.assertNotIn("pa55", result.err)
        self.assertIn("empty", self.run_tool("import", self.write("none.csv", ""), code=1).err)
        self.assertEqual(self.titles(), [])

    def test_an_error_behind_thousands_of_rows_adds_nothing(self):
        rows = "".join(f"Item {i},jo,{i:x}\n" for i in range(3000))
        file = self.write("late.csv", "title,username,password\n" + rows + '"open')
        self.run_tool("import", file, code=1)
        self.assertEqual(self.titles(), [])
        self.run_tool("check")

    def test_a_file_may_be_a_pipe(self):
        line = (f"'{TOOL}' import <(printf 'title,password\\nPiped,pa55\\n')"
                f" --password-file '{self.write('pw', PASSWORD)}'")
        process = subprocess.run(["bash", "-c", line], env=self.environment, capture_output=True)
        self.assertEqual(process.stdout, b"added: 1\n", process.stderr)

    def test_many_rows_are_added_in_their_number(self):
        rows = "".join(f"Item {i},https://h{i % 97}.example/,user{i},pw{i * 7919:x}\n"
                       for i in range(3000))
        file = self.write("many.csv", "name,url,username,password\n" + rows)
        self.assertEqual(self.run_tool("import", file).out, "added: 3000\n")
        self.assertEqual(self.run_tool("import", file).out, "added: 0\nalready there: 3000\n")
        self.assertEqual(len(self.titles()), 3000)
        self.assertEqual(self.run_tool("show", "Item 1234", "--field", "password").out,
                         f"pw{1234 * 7919:x}\n")
        self.assertEqual(len(self.run_tool("find", "--url", "https://h5.example",
                                           "--json").json), 31)


class Passwords(ToolTest):
    def test_each_source_opens_the_vault(self):
        self.make_store()
        file = self.write("pw", PASSWORD + "\nsecond line\n")
        self.assertEqual(self.run_raw("list", "--password-file", file).code, 0)
        self.assertEqual(self.run_raw("list", "--password-file",
                                      self.write("bare", PASSWORD)).code, 0)
        reader, writer = os.pipe()
        os.write(writer, (PASSWORD + "\nrest").encode())
        result = self.run_raw("list", "--password-fd", str(reader), pass_fds=[reader])
        self.assertEqual(result.code, 0, result.err)
        self.assertEqual(os.read(reader, 100), b"rest")  # it took its line and no more
        os.close(reader)
        os.close(writer)
        self.assertEqual(self.run_raw("list", "--password-stdin", stdin=PASSWORD).code, 0)

    def test_without_a_source_and_a_terminal_it_says_what_to_do(self):
        self.make_store()
        result = self.run_raw("list")
        self.assertEqual(result.code, 2)
        self.assertIn("--password-stdin", result.err)

    def test_a_password_that_is_not_text_is_told_to_be_none(self):
        self.make_store()
        result = self.run_raw("list", "--password-stdin", stdin=b"\xff\n")
        self.assertEqual((result.code, result.out), (3, ""))
        self.assertIn("isn't UTF-8 text", result.err)

    def test_no_password_at_all_is_wrong_usage(self):
        self.make_store()
        self.assertEqual(self.run_raw("list", "--password-stdin", stdin="").code, 2)
        self.assertEqual(self.run_raw("list", "--password-stdin", stdin="\n").code, 3)

    def test_a_new_password_must_be_text_and_not_empty(self):
        for password in (b"\n", b"\xff\xfe\n"):
            result = self.run_raw("init", "--password-stdin", stdin=password)
            self.assertEqual(result.code, 2)
            self.assertFalse(os.path.exists(self.store))

    def test_passwd_changes_what_opens_the_vault(self):
        self.make_store()
        self.add("Bank", "--password=-", stdin="pa55")
        self.run_tool("passwd", "--new-password-stdin", stdin=OTHER + "\n")
        self.run_tool("list", code=3)
        shown = self.run_tool("show", "Bank", "--field", "password", password=OTHER)
        self.assertEqual(shown.out, "pa55\n")
        info = json.loads(self.run_raw("info", "--json").out)
        self.assertGreaterEqual(info["kdf"]["memoryKiB"], 65536)
        back = self.write("back", PASSWORD)
        self.run_tool("passwd", "--new-password-file", back, password=OTHER)
        self.assertEqual(self.titles(), ["Bank"])

    def test_passwd_with_a_wrong_or_refused_password_changes_nothing(self):
        self.make_store()
        self.run_tool("passwd", "--new-password-stdin", stdin=OTHER + "\n", password="wrong",
                      code=3)
        self.run_tool("passwd", "--new-password-stdin", stdin="\n", code=2)
        self.run_tool("list")

    def test_a_password_is_the_same_however_its_letters_are_composed(self):
        self.make_store("e\u0301clair")
        self.run_tool("list", password="\u00e9clair")


class Generate(ToolTest):
    def test_prints_passwords_alone_and_their_entropy_beside(self):
        result = self.run_raw("generate", "--count", "3", "--length", "32")
        lines = result.out.splitlines()
        self.assertEqual([len(line) for line in lines], [32, 32, 32])
        self.assertEqual(len(set(lines)), 3)
        self.assertRegex(result.err, r"^quillon: \d+\.\d bits of entropy, strength 100 of 100\n$")

    def test_leaves_out_what_it_is_told_to(self):
        letters = self.run_raw("generate", "--length", "200", "--no-symbols", "--no-digits").out
        self.assertTrue(letters.strip().isalpha())
        plain = self.run_raw("generate", "--length", "256", "--avoid-ambiguous", "--count",
                             "20").out
        self.assertFalse(set("0O1lI|") & set(plain))
        shorter = self.run_raw("generate", "--no-symbols", "--json").json[0]["bits"]
        self.assertLess(shorter, self.run_raw("generate", "--json").json[0]["bits"])

    def test_words_come_from_the_list_with_separators_between(self):
        with open(os.path.join(RESOURCES, "words.txt")) as file:
            words = set(file.read().split())
        result = self.run_raw("generate", "--words", "5", "--count", "20")
        lines = result.out.splitlines()
        self.assertEqual(len(set(lines)), 20)
        for line in lines:
            self.assertEqual(len(line.split("-")), 5)
            self.assertLessEqual(set(line.split("-")), words)
        self.assertEqual(result.err, "quillon: 64.6 bits of entropy, strength 50 of 100\n")
        spaced = self.run_raw("generate", "--words", "3", "--separator", " ü ").out.strip()
        self.assertLessEqual(set(spaced.split(" ü ")), words)
        self.assertTrue(self.run_raw("generate", "--words", "3", "--separator", "")
                        .out.strip().isalpha())

    def test_words_and_pins_state_their_entropy_in_json(self):
        made = self.run_raw("generate", "--words", "6", "--json").json[0]
        self.assertEqual(list(made), ["password", "bits", "strength"])
        self.assertAlmostEqual(made["bits"], 6 * math.log2(7776), 9)
        self.assertEqual(made["strength"], 60)
        made = self.run_raw("generate", "--pin", "8", "--json", "--count", "2").json
        self.assertTrue(all(re.fullmatch("[0-9]{8}", one["password"]) for one in made))
        self.assertAlmostEqual(made[0]["bits"], 8 * math.log2(10), 9)
        self.assertEqual(made[0]["strength"], 20)
        self.assertEqual(self.run_raw("generate", "--pin", "64", "--json").json[0]["strength"], 100)

    def test_words_without_their_list_are_7_and_print_nothing(self):
        self.environment["QUILLON_RESOURCES"] = self.folder
        result = self.run_raw("generate", "--words", "4")
        self.assertEqual((result.code, result.out), (7, ""))
        self.assertIn("words.txt", result.err)
        self.write("words.txt", "apple\napple\n")
        self.assertEqual(self.run_raw("generate", "--words", "4").code, 7)
        self.write("words.txt", "apple\nberry\n")
        result = self.run_raw("generate", "--words", "4")
        self.assertRegex(result.out, "^((apple|berry)-){3}(apple|berry)\n$")
        self.assertIn("4.0 bits", result.err)
        self.assertEqual(self.run_raw("generate").code, 0)


class Terminal:
    """The tool on a terminal of its own; its standard output may be kept apart."""

    def __init__(self, test, *arguments, capture=False, program=None):
        self.output = b""
        reader, writer = os.pipe()
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            if capture:
                os.dup2(writer, 1)
            program = program or TOOL
            os.execvpe(program, [program, *arguments], test.environment)
        os.close(writer)
        self.reader = reader
        self.unread = b""  # came in one piece with what was waited for
        self.status = None
        test.addCleanup(self.close)

    def close(self):
        if self.status is None:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)
        os.close(self.fd)
        os.close(self.reader)

    def read_until(self, text, seconds=60):
        """Everything that was shown, once `text` is in what came since the last call."""
        came = self.unread
        end = time.monotonic() + seconds
        while text.encode() not in came:
            ready, _, _ = select.select([self.fd], [], [], max(0, end - time.monotonic()))
            try:
                more = os.read(self.fd, 4096) if ready else b""
            except OSError:  # the other end is closed
                more = b""
            if not more:
                raise AssertionError(f"{text!r} not shown, but {came!r}")
            came += more
            self.output += more
        end_of_text = came.index(text.encode()) + len(text.encode())
        self.unread = came[end_of_text:]
        return came[:end_of_text].decode()

    def wait_for_echo(self, wanted, seconds=60):
        end = time.monotonic() + seconds
        while self.echoes() != wanted:
            if time.monotonic() > end:
                raise AssertionError(f"echo stays {not wanted}")
            time.sleep(0.005)

    def type(self, text):
        """When the prompt waits for it: before that, what is typed is thrown away."""
        self.wait_for_echo(False)
        time.sleep(0.05)
        os.write(self.fd, text.encode())

    def answer(self, prompt, text):
        self.read_until(prompt)
        self.type(text + "\n")

    def echoes(self):
        return bool(termios.tcgetattr(self.fd)[3] & termios.ECHO)

    def end(self):
        """Exit code, or minus the signal."""
        while True:
            try:
                more = os.read(self.fd, 4096)
            except OSError:
                break
            if not more:
                break
            self.output += more
        _, status = os.waitpid(self.pid, 0)
        self.status = os.waitstatus_to_exitcode(status)
        return self.status

    def captured(self):
        content = b""
        while more := os.read(self.reader, 65536):
            content += more
        return content.decode()


class Prompts(ToolTest):
    def test_init_asks_twice_and_shows_nothing_of_the_answers(self):
        terminal = Terminal(self, "init")
        self.assertTrue(terminal.read_until(": ").endswith("New password for the vault: "))
        terminal.wait_for_echo(False)
        terminal.type(PASSWORD + "\n")
        terminal.answer("Once more: ", PASSWORD)
        terminal.read_until("made ")
        self.assertTrue(terminal.echoes())
        self.assertEqual(terminal.end(), 0)
        self.assertNotIn(PASSWORD.encode(), terminal.output)
        self.run_tool("list")

    def test_init_refuses_two_answers_that_differ(self):
        terminal = Terminal(self, "init")
        terminal.answer("New password", PASSWORD)
        terminal.answer("Once more: ", PASSWORD + " ")
        self.assertEqual(terminal.end(), 1)
        self.assertIn(b"differ", terminal.output)
        self.assertFalse(os.path.exists(self.store))

    def test_the_prompt_goes_to_standard_error_and_the_answer_opens_the_vault(self):
        self.make_store()
        self.add("Bank")
        terminal = Terminal(self, "list", "--json", capture=True)
        terminal.answer("Password: ", PASSWORD)
        self.assertEqual(terminal.end(), 0)
        self.assertEqual([item["title"] for item in json.loads(terminal.captured())], ["Bank"])

    def test_a_wrong_answer_is_3(self):
        self.make_store()
        terminal = Terminal(self, "list")
        terminal.answer("Password: ", "wrong")
        self.assertEqual(terminal.end(), 3)

    def test_the_end_of_input_is_no_password(self):
        self.make_store()
        terminal = Terminal(self, "list")
        terminal.read_until("Password: ")
        terminal.type("\x04")
        terminal.wait_for_echo(True)
        self.assertEqual(terminal.end(), 1)

    def test_add_and_edit_ask_for_the_password_of_the_item_twice(self):
        self.make_store()
        terminal = Terminal(self, "add", "login", "--title", "Bank", "--password")
        terminal.answer("Password: ", PASSWORD)
        terminal.answer("Password of the item: ", "pa55 one")
        terminal.answer("Once more: ", "pa55 one")
        self.assertEqual(terminal.end(), 0)
        self.assertNotIn(b"pa55", terminal.output)
        self.assertEqual(self.show("Bank")["password"], "pa55 one")
        terminal = Terminal(self, "edit", "Bank", "--set", "password")
        terminal.answer("Password: ", PASSWORD)
        terminal.answer("Password of the item: ", "pa55 two")
        terminal.answer("Once more: ", "pa55 two")
        self.assertEqual(terminal.end(), 0)
        self.assertEqual(self.show("Bank")["password"], "pa55 two")

    def test_passwd_asks_for_the_old_and_twice_for_the_new_password(self):
        self.make_store("old one")
        terminal = Terminal(self, "passwd")
        terminal.answer("Password: ", "old one")
        terminal.answer("New password for the vault: ", PASSWORD)
        terminal.answer("Once more: ", PASSWORD)
        self.assertEqual(terminal.end(), 0)
        self.run_tool("list")
        self.run_tool("list", password="old one", code=3)

    def test_signals_restore_the_echo_and_end_the_tool(self):
        self.make_store()
        for key, number in (("\x03", signal.SIGINT), ("\x1c", signal.SIGQUIT)):
            terminal = Terminal(self, "list")
            terminal.read_until("Password: ")
            terminal.type("half" + key)
            terminal.wait_for_echo(True)
            self.assertEqual(terminal.end(), -number)
        terminal = Terminal(self, "list")
        terminal.read_until("Password: ")
        terminal.wait_for_echo(False)
        os.kill(terminal.pid, signal.SIGTERM)
        terminal.wait_for_echo(True)
        self.assertEqual(terminal.end(), -signal.SIGTERM)

    def test_a_stopped_tool_restores_the_echo_and_asks_again(self):
        self.make_store()
        self.add("Bank")
        # A shell with job control takes the stopped tool to the foreground again.
        terminal = Terminal(self, "--norc", "-ic", '"$0" list; echo stopped; fg >/dev/null', TOOL,
                            program="bash")
        terminal.read_until("Password: ")
        terminal.type("half\x1a")
        terminal.read_until("stopped")
        terminal.answer("Password: ", PASSWORD)
        self.assertEqual(terminal.end(), 0)
        self.assertIn(b"Bank", terminal.output)

    def test_a_terminal_never_gets_control_characters(self):
        self.make_store()
        self.import_data("control-characters.csv")
        title = "Red \x1b[31malert\x07"
        for arguments in (["list"], ["show", title], ["show", title, "--field", "title"]):
            terminal = Terminal(self, *arguments)
            terminal.answer("Password: ", PASSWORD)
            self.assertEqual(terminal.end(), 0)
            self.assertNotIn(b"\x1b", terminal.output)
            self.assertIn(b"\\x1b[31malert", terminal.output)

    def test_a_long_import_shows_a_progress_bar_on_a_terminal_alone(self):
        self.make_store()
        rows = "".join(f"Item {i},jo,{i:x}\n" for i in range(2000))
        file = self.write("many.csv", "title,username,password\n" + rows)
        terminal = Terminal(self, "import", file, "--json", capture=True)
        terminal.answer("Password: ", PASSWORD)
        self.assertEqual(terminal.end(), 0)
        self.assertRegex(terminal.output.decode(), r"\rImporting \[#*\.*\] +\d+%")
        self.assertTrue(terminal.output.endswith(b"\r\x1b[K"))
        self.assertEqual(json.loads(terminal.captured())["added"], 2000)
        self.assertEqual(self.run_tool("import", file).err, "")

    def test_the_process_leaves_no_core_and_waits_with_nothing_secret_in_its_arguments(self):
        self.make_store()
        terminal = Terminal(self, "list")
        terminal.read_until("Password: ")
        with open(f"/proc/{terminal.pid}/limits") as limits:
            core = [line for line in limits if line.startswith("Max core file size")]
        self.assertEqual(core[0].split()[4:6], ["0", "0"])
        terminal.answer("", PASSWORD)
        self.assertEqual(terminal.end(), 0)


def modules_of(drawing):
    """The dark modules of a QR code of half blocks, as a set of (x, y); and its width."""
    lines = drawing.splitlines()
    blocks = {" ": (), "▀": (0,), "▄": (1,), "█": (0, 1)}
    dark = {(x, 2 * y + half) for y, line in enumerate(lines) for x, block in enumerate(line)
            for half in blocks[block]}
    return dark, len(lines[0])


def text_of_qr_code(drawing):
    """What a scanner reads: of a code with one block of error correction, and without errors."""
    dark, width = modules_of(drawing)
    size = width - 8
    assert min(x for x, _ in dark) == min(y for _, y in dark) == 4, "no border of four modules"
    dark = {(x - 4, y - 4) for x, y in dark}
    version = (size - 17) // 4
    assert 2 <= version <= 5, version
    mark = 4 * version + 10  # centre of the alignment pattern

    def is_function(x, y):
        in_corner = (x < 9 and y < 9) or (x < 9 and y >= size - 8) or (x >= size - 8 and y < 9)
        return in_corner or x == 6 or y == 6 or (abs(x - mark) <= 2 and abs(y - mark) <= 2)

    for corner_x, corner_y in ((0, 0), (size - 7, 0), (0, size - 7)):  # finder patterns
        for i in range(7):
            for j in range(7):
                ring = max(abs(i - 3), abs(j - 3))
                assert ((corner_x + i, corner_y + j) in dark) == (ring != 2)
    form = 0
    for x, y in [(0, 8), (1, 8), (2, 8), (3, 8), (4, 8)]:
        form = form << 1 | ((x, y) in dark)
    form ^= 0b10101
    assert form >> 3 == 1, "not the least correction of errors"
    masks = [lambda x, y: (x + y) % 2, lambda x, y: y % 2, lambda x, y: x % 3,
             lambda x, y: (x + y) % 3, lambda x, y: (y // 2 + x // 3) % 2,
             lambda x, y: x * y % 2 + x * y % 3, lambda x, y: (x * y % 2 + x * y % 3) % 2,
             lambda x, y: ((x + y) % 2 + x * y % 3) % 2]
    is_masked = masks[form & 7]
    bits = []
    columns = [x for x in range(size - 1, 0, -2) if x > 6] + [5, 3, 1]
    for i, right in enumerate(columns):
        rows = range(size) if i % 2 else range(size - 1, -1, -1)
        for y in rows:
            for x in (right, right - 1):
                if not is_function(x, y):
                    bits.append(((x, y) in dark) ^ (is_masked(x, y) == 0))
    number = lambda start, count: int("".join(str(int(bit)) for bit in bits[start:start + count]), 2)
    assert number(0, 4) == 4, "not bytes"
    length = number(4, 8)
    return bytes(number(12 + 8 * i, 8) for i in range(length)).decode()


def code_at(seconds, seed=b"12345678901234567890", digits=6, period=30):
    """RFC 6238 with SHA-1."""
    digest = hmac.new(seed, struct.pack(">q", seconds // period), hashlib.sha1).digest()
    start = digest[-1] & 15
    number = struct.unpack(">I", digest[start:start + 4])[0] & 0x7fffffff
    return str(number % 10 ** digits).zfill(digits)


class OneTimePasswords(ToolTest):
    SEED = "GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ"  # of RFC 6238: "12345678901234567890"
    URL = f"otpauth://totp/Bank:jo?secret={SEED}&issuer=Bank"

    def add_seeds(self, *rows):
        self.make_store()
        lines = "".join(f"{title},pa55,{text}\n" for title, text in rows)
        self.run_tool("import", self.write("seeds.csv", "title,password,totp\n" + lines))

    def test_codes_are_those_of_the_standard(self):
        for moment, code in ((59, "94287082"), (1111111109, "07081804"), (1234567890, "89005924"),
                             (20000000000, "65353130")):
            result = self.run_raw("otp", "--url", self.URL + "&digits=8", "--at", str(moment))
            self.assertEqual((result.code, result.out, result.err), (0, code + "\n", ""))
        sha512 = ("otpauth://totp/x?algorithm=SHA512&digits=8&secret=GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQ"
                  "GEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZDGNBVGY3TQOJQGEZDGNA")
        self.assertEqual(self.run_raw("otp", "--url", sha512, "--at", "59").out, "90693936\n")

    def test_a_url_needs_no_store_and_comes_from_argument_input_or_file(self):
        file = self.write("url", self.URL + "\n")
        for arguments, stdin in ((["--url", self.URL], ""), (["--url", "-"], self.URL + "\n"),
                                 (["--url-file", file], ""), (["--url", self.SEED], ""),
                                 (["--url", "-"], " gezd gnbv gy3t qojq gezd gnbv gy3t qojq ")):
            result = self.run_raw("otp", *arguments, "--at", "59", stdin=stdin)
            self.assertEqual((result.code, result.out), (0, "287082\n"), result.err)
        self.assertFalse(os.path.exists(self.store))
        self.assertEqual(self.run_raw("otp", "--url-file", self.path("none")).code, 7)

    def test_without_a_moment_the_code_is_that_of_now(self):
        before = int(time.time())
        code = self.run_raw("otp", "--url", self.URL).out.strip()
        now = range(before, int(time.time()) + 1)
        self.assertIn(code, {code_at(seconds) for seconds in now})

    def test_an_item_gives_the_code_of_its_first_usable_field(self):
        self.add_seeds(("Bank", self.URL), ("Bare", self.SEED.lower()),
                       ("Steam", "steam://" + self.SEED))
        for item in ("Bank", "Bare"):
            self.assertEqual(self.run_tool("otp", item, "--at", "59").out, "287082\n")
        self.assertRegex(self.run_tool("otp", "Steam").out, r"^[2-9BCDFGHJKMNPQRTVWXY]{5}\n$")

    def test_json_tells_how_long_the_code_holds(self):
        self.add_seeds(("Bank", self.URL + "&period=60&digits=7"))
        result = self.run_tool("otp", "Bank", "--at", "59", "--json")
        self.assertEqual(result.json, {"code": code_at(59, digits=7, period=60), "remaining": 1,
                                       "period": 60, "digits": 7})
        self.assertEqual(self.run_tool("otp", "Bank", "--at", "60", "--json").json["remaining"], 60)
        self.assertEqual(self.run_raw("otp", "--url", self.SEED, "--json", "--at", "-1").json,
                         {"code": code_at(-1), "remaining": 1, "period": 30, "digits": 6})

    def test_a_terminal_is_shown_how_long_the_code_holds(self):
        terminal = Terminal(self, "otp", "--url", self.URL, "--at", "47")
        self.assertEqual(terminal.end(), 0)
        self.assertEqual(terminal.output.decode(), f"{code_at(47)}  13 s left\r\n")

    def test_each_text_that_has_no_code_is_told_its_own_reason(self):
        reasons = {}
        for text, reason in (
                ("", "no text"), (" ", "no text"),
                ("otpauth://totp/x?digits=5&secret=" + self.SEED, "digits isn't 6 to 10"),
                ("otpauth://hotp/x?secret=" + self.SEED, "by the clock"),
                ("otpauth://totp/x?period=0&secret=" + self.SEED, "1 to 300 seconds"),
                ("otpauth://totp/x?algorithm=MD5&secret=" + self.SEED, "SHA1, SHA256 or SHA512"),
                ("https://bank.example/", "otpauth://"),
                ("otpauth://totp/x", "no seed"),
                ("GEZDGNA", "too short"),
                ("GEZDGNB1", "letters and the digits 2 to 7"),
                ("GEZDGNBVG", "isn't whole"),
                ("GEZDGNBVGY3TQOJQ=", "where none belongs"),
                ("otpauth://totp/x?secret=GEZDGNBVGY3TQOJQ%3D%3D", "where none belongs")):
            result = self.run_raw("otp", "--url", text)
            self.assertEqual((result.code, result.out), (1, ""), text)
            self.assertIn(reason, result.err)
            self.assertNotIn("GEZDG", result.err)
            reasons.setdefault(result.err, text)
        result = self.run_raw("otp", "--url", "-", stdin=b"A" * ((16 << 20) + 2))
        self.assertEqual(result.code, 2)
        self.assertIn("standard input is longer than 16 MiB", result.err)
        self.assertEqual(len(reasons), 11)  # two of the texts are empty, two have padding
        result = self.run_raw("otp", "--url-file", self.write("bad", b"\xff"))
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("isn't UTF-8 text", result.err)
        self.assertEqual(self.run_raw("otp", "--url", b"\xff").code, 2)
        self.add_seeds(("Bad", "otpauth://hotp/x?secret=" + self.SEED))
        self.assertIn("by the clock", self.run_tool("otp", "Bad", code=1).err)

    def test_a_dash_asks_on_a_terminal_without_echo(self):
        terminal = Terminal(self, "otp", "--url", "-", "--at", "59", capture=True)
        terminal.answer("URL or seed: ", self.SEED)
        self.assertEqual(terminal.end(), 0)
        self.assertNotIn(b"GEZDG", terminal.output)
        self.assertTrue(terminal.captured().startswith("287082"))

    def test_an_item_without_one_is_4(self):
        self.make_store()
        self.add("Bank")
        for item in ("Bank", "Nobody", ""):
            self.assertEqual(self.run_tool("otp", item, code=4).out, "")
        self.run_tool("otp", "Bank", password="wrong", code=3)

    def test_wrong_usage_is_2(self):
        for arguments in ([], ["x", "--url", "y"], ["--url", "x", "--url-file", "y"],
                          ["x", "--at", "soon"], ["x", "--at", "9223372036854775807"],
                          ["--url", self.SEED, "--qr", "--json"], ["--url", self.SEED, "--qr",
                                                                  "--at", "59"]):
            result = self.run_raw("otp", *arguments)
            self.assertEqual((result.code, result.out), (2, ""), arguments)

    def test_a_qr_code_holds_the_url_and_says_so(self):
        result = self.run_raw("otp", "--url", self.URL, "--qr")
        self.assertEqual(result.code, 0)
        self.assertEqual(text_of_qr_code(result.out), self.URL)
        self.assertIn("shows the seed", result.err)
        self.assertNotIn("\x1b", result.out)
        self.assertEqual(text_of_qr_code(self.run_raw("otp", "--url", "steam://" + self.SEED,
                                                      "--qr").out), "steam://" + self.SEED)

    def test_a_qr_code_of_a_bare_seed_is_one_that_applications_scan(self):
        self.add_seeds(("Bank & Söhne", "gezd gnbv gy3t qojq-gezd gnbv gy3t qojq"))
        drawn = self.run_tool("otp", "Bank & Söhne", "--qr")
        url = text_of_qr_code(drawn.out)
        self.assertEqual(url, "otpauth://totp/Bank%20%26%20S%C3%B6hne?secret=" + self.SEED.lower())
        self.assertEqual(self.run_raw("otp", "--url", url, "--at", "59").out, "287082\n")

    def test_a_qr_code_is_black_on_white_on_a_terminal(self):
        terminal = Terminal(self, "otp", "--url", self.URL, "--qr")
        self.assertEqual(terminal.end(), 0)
        drawn, said = terminal.output.decode().split("quillon: ")
        self.assertIn("seed", said)
        lines = drawn.splitlines()
        for line in lines:
            self.assertTrue(line.startswith("\x1b[38;5;16m\x1b[48;5;231m"))
            self.assertTrue(line.endswith("\x1b[0m"))
        plain = re.sub("\x1b\\[[0-9;]*m", "", "\n".join(lines))
        self.assertEqual(text_of_qr_code(plain), self.URL)

    def test_no_qr_code_is_drawn_of_what_has_no_code_or_is_too_long(self):
        result = self.run_raw("otp", "--url", "otpauth://hotp/x?secret=" + self.SEED, "--qr")
        self.assertEqual((result.code, result.out), (1, ""))
        long = "otpauth://totp/" + "x" * 3000 + "?secret=" + self.SEED
        result = self.run_raw("otp", "--url", long, "--qr")
        self.assertEqual((result.code, result.out), (1, ""))
        self.assertIn("too long", result.err)


def png(width, height):
    """A picture of one colour."""
    def chunk(name, content):
        checked = name + content
        return struct.pack(">I", len(content)) + checked + struct.pack(">I", zlib.crc32(checked))
    rows = b"".join(b"\0" + b"\x40\x80\xc0" * width for _ in range(height))
    return (b"\x89PNG\r\n\x1a\n" +
            chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class Vaults(ToolTest):
    def setUp(self):
        super().setUp()
        self.make_store()

    def column(self, name, vault="default"):
        with sqlite3.connect(self.store) as database:
            (value,) = database.execute(f"SELECT {name} FROM vaults WHERE name = ?",
                                        (vault,)).fetchone()
        database.close()
        return value

    def test_a_vault_is_opened_by_the_password_of_the_first_one(self):
        made = self.run_tool("vault", "add", "work", "--json").json
        self.assertEqual((made["vault"], made["ownPassword"]), ("work", False))
        self.assertRegex(made["uuid"], UUID)
        self.add("Wiki", "--vault", "work", "--password=-", stdin="pa55")
        self.add("Bank")
        self.assertEqual(self.titles("--vault", "work"), ["Wiki"])
        self.assertEqual(self.titles(), ["Bank"])
        self.assertEqual(self.titles("--vault", "default"), ["Bank"])
        self.assertEqual(self.run_tool("show", "Wiki", "--vault", "work", "--field",
                                       "password").out, "pa55\n")
        self.run_tool("show", "Wiki", code=4)
        self.run_tool("list", "--vault", "work", password="wrong", code=3)
        for vault in ("default", "work"):
            self.assertTrue(self.run_tool("check", "--vault", vault, "--json").json["clean"])

    def test_the_variable_chooses_the_vault_and_the_option_wins(self):
        self.run_tool("vault", "add", "work")
        self.environment["QUILLON_VAULT"] = "work"
        self.add("Wiki")
        self.assertEqual(self.titles(), ["Wiki"])
        self.assertEqual(self.titles("--vault", "default"), [])
        self.assertEqual(json.loads(self.run_raw("info", "--json").out)["vault"], "work")
        self.run_tool("vault", "add", "club")  # is the first one's affair all the same
        self.environment["QUILLON_STORE"] = self.path("other.qn")
        self.make_store()  # makes the first one

    def test_every_command_takes_the_chosen_vault(self):
        self.run_tool("vault", "add", "work")
        self.import_data("chromium.csv", "--vault", "work")
        self.assertEqual(self.titles(), [])
        self.assertEqual(len(self.titles("--vault", "work")), 3)
        self.run_tool("edit", "android", "--set", "title=Phone", "--vault", "work")
        self.run_tool("trash", "Phone", "--vault", "work")
        self.run_tool("delete", "Phone", "--vault", "work")
        self.assertIn("forum", self.run_tool("find", "--url", "https://forum.example", "--vault",
                                             "work").out)
        self.assertIn("Items:       2", self.run_raw("info", "--vault", "work").out)
        self.assertIn("Items:       0", self.run_raw("info").out)

    def test_a_vault_may_have_a_password_of_its_own(self):
        self.run_tool("vault", "add", "club", "--own-password-stdin", "--hint", "the \x1b[31mtree",
                      stdin=OTHER + "\n")
        self.add("Key", "--vault", "club")
        self.assertEqual(self.titles("--vault", "club"), ["Key"])
        own = self.run_tool("list", "--vault", "club", password=OTHER)
        self.assertIn("Key", own.out)
        self.run_tool("list", password=OTHER, code=3)  # opens no other
        refused = self.run_tool("list", "--vault", "club", password="wrong", code=3)
        self.assertIn("the hint is: the \\x1b[31mtree", refused.err)

    def test_own_passwords_are_asked_for_twice(self):
        terminal = Terminal(self, "vault", "add", "club", "--own-password")
        terminal.answer("Password: ", PASSWORD)
        terminal.answer("New password for the vault: ", OTHER)
        terminal.answer("Once more: ", OTHER)
        self.assertEqual(terminal.end(), 0)
        self.assertNotIn(OTHER.encode(), terminal.output)
        self.run_tool("list", "--vault", "club", password=OTHER)

    def test_passwords_change_independently(self):
        self.run_tool("vault", "add", "work")
        self.run_tool("passwd", "--vault", "work", "--new-password-stdin", stdin=OTHER + "\n")
        self.add("Wiki", "--vault", "work")
        self.run_tool("list", "--vault", "work", password=OTHER)
        self.run_tool("passwd", "--vault", "work", "--new-password-stdin", stdin="third one\n",
                      password=OTHER)  # without the first vault
        self.run_tool("list", "--vault", "work", password=OTHER, code=3)
        self.run_tool("passwd", "--new-password-stdin", stdin="first one\n")
        for password in ("third one", "first one"):
            self.assertIn("Wiki", self.run_tool("list", "--vault", "work", password=password).out)
        self.run_tool("list", "--vault", "work", code=3)

    def test_a_vault_that_is_not_there_is_4(self):
        for command in (["list"], ["info"], ["add", "login", "--title", "T"], ["vault", "color"]):
            result = self.run_tool(*command, "--vault", "no\x1b[31mne", code=4)
            self.assertEqual(result.out, "")
            self.assertIn('no vault "no\\x1b[31mne"', result.err)

    def test_a_name_is_taken_once_and_not_empty(self):
        self.run_tool("vault", "add", "work")
        before = self.run_raw("vault", "list").out
        for name, code in (("work", 1), ("default", 1), ("", 2), (" ", 2)):
            self.run_tool("vault", "add", name, code=code)
        self.assertEqual(self.run_raw("vault", "list").out, before)
        for name in ("日本", "a b", "x" * 300, "red\x1b[31m"):
            self.run_tool("vault", "add", name)
            self.add("T", "--vault", name)
        self.assertNotIn("\x1b", self.run_raw("vault", "list").out)
        self.assertIn("red\x1b[31m", [one["name"] for one in self.run_raw(
            "vault", "list", "--json").json])

    def test_a_list_needs_no_password(self):
        self.run_tool("vault", "add", "work")
        self.add("Wiki", "--vault", "work")
        self.run_tool("vault", "color", "#1e90FF", "--vault", "work")
        listed = self.run_raw("vault", "list", "--json").json
        self.assertEqual([list(one) for one in listed],
                         [["name", "uuid", "primary", "items", "trashed", "color", "icon"]] * 2)
        self.assertEqual([(one["name"], one["primary"], one["items"], one["color"], one["icon"])
                          for one in listed],
                         [("default", True, 0, None, False), ("work", False, 1, "#1E90FF", False)])
        self.assertRegex(self.run_raw("vault", "list").out,
                         r"(?m)^work +items: 1, in trash: 0, #1E90FF$")

    def test_a_color_is_set_told_and_taken_away(self):
        self.assertEqual(self.run_tool("vault", "color").out, "no colour\n")
        self.assertEqual(self.run_tool("vault", "color", "1e90ff").out, "")
        self.assertEqual(self.run_tool("vault", "color").out, "#1E90FF\n")
        self.assertEqual(self.run_tool("vault", "color", "#ABCDEF", "--json").json,
                         {"vault": "default", "color": "#ABCDEF"})
        for color in ("", "blue", "#12345", "#1234567", "#12345g"):
            self.run_tool("vault", "color", color, code=2)
        self.assertEqual(self.run_tool("vault", "color").out, "#ABCDEF\n")
        self.run_tool("vault", "color", "--clear")
        self.assertEqual(self.run_tool("vault", "color", "--json").json["color"], None)
        self.run_tool("check")

    def test_an_icon_is_set_saved_and_taken_away(self):
        self.assertEqual(self.run_tool("vault", "icon").out, "no icon\n")
        self.run_tool("vault", "icon", "--save", self.path("none.png"), code=4)
        self.assertFalse(os.path.exists(self.path("none.png")))
        self.run_tool("vault", "icon", "--set", self.write("a.png", png(16, 16)))
        icon = self.column("icon")
        self.assertTrue(icon.startswith((b"\x89PNG\r\n", b"\xff\xd8\xff")))
        self.assertEqual(self.run_tool("vault", "icon").out, f"{len(icon)} bytes\n")
        self.assertEqual(self.run_tool("vault", "icon", "--json").json,
                         {"vault": "default", "bytes": len(icon)})
        self.run_tool("vault", "icon", "--save", self.path("b.png"))
        self.assertEqual(self.read("b.png"), icon)
        self.assertEqual(stat.S_IMODE(os.stat(self.path("b.png")).st_mode), 0o600)
        self.run_tool("vault", "icon", "--save", self.path("b.png"), code=1)
        self.assertEqual(self.read("b.png"), icon)
        self.assertTrue(self.run_raw("vault", "list", "--json").json[0]["icon"])
        self.run_tool("vault", "icon", "--clear")
        self.assertIsNone(self.column("icon"))
        self.run_tool("check")

    def test_an_icon_may_be_a_drawing_and_help_says_so(self):
        drawing = self.write("a.svg", '<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16">'
                                      '<rect width="16" height="16" fill="#336699"/></svg>')
        self.run_tool("vault", "icon", "--set", drawing)
        self.assertTrue(self.column("icon").startswith(b"\x89PNG\r\n"))
        self.assertIn("PNG, JPEG or SVG", self.run_raw("vault", "icon", "--help").out)

    def test_what_is_no_picture_leaves_the_icon_alone(self):
        self.run_tool("vault", "icon", "--set", self.write("a.png", png(16, 16)))
        before = self.column("icon")
        for content in (b"", b"GIF89a", b"Dear Sir"):
            result = self.run_tool("vault", "icon", "--set", self.write("x", content), code=1)
            self.assertIn("no picture", result.err)
            self.assertIn("PNG, JPEG and SVG", result.err)
        self.run_tool("vault", "icon", "--set", self.path("none.png"), code=7)
        self.run_tool("vault", "icon", "--set", self.path("a.png"), "--vault", "none", code=4)
        self.run_tool("vault", "icon", "--save", "/proc/none/b.png", code=7)
        self.assertEqual(self.column("icon"), before)

    def test_the_keys_of_another_vault_in_its_place_are_noticed(self):
        for name in ("work", "club"):
            self.run_tool("vault", "add", name)
        with sqlite3.connect(self.store) as database:
            database.execute("UPDATE vaults SET attributes = (SELECT attributes FROM vaults WHERE "
                             "name = 'club') WHERE name = 'work'")
        database.close()
        self.assertEqual(self.run_tool("list", "--vault", "work", code=6).out, "")
        self.run_tool("list", "--vault", "club")
        with sqlite3.connect(self.store) as database:
            database.execute("UPDATE vaults SET attributes = x'00' WHERE name = 'work'")
        database.close()
        self.assertEqual(self.run_tool("list", "--vault", "work", code=6).out, "")


class Documentation(ToolTest):
    """The parser, the man page and the completions name the same commands and options."""

    def options_of(self, *command):
        help_text = self.run_raw(*command, "--help").out
        return set(re.findall(r"--[a-z][a-z-]*", help_text.split("Options:", 1)[1]
                              .split("Subcommands:")[0])) - {"--help"}

    def every_option(self):
        options = self.options_of()
        for command in COMMANDS:
            for nested in NESTED.get(command, [None]):
                options |= self.options_of(*filter(None, (command, nested)))
        return options

    def test_help_lists_every_command(self):
        listed = re.findall(r"^  ([a-z]+) ", self.run_raw("--help").out.split("Subcommands:")[1],
                            re.MULTILINE)
        self.assertEqual(listed, COMMANDS)

    def test_the_man_page_has_every_command_and_option(self):
        with open(os.path.join(SOURCE, "quillon.1")) as page:
            text = page.read()
        synopsis, description = text.split(".Sh SYNOPSIS")[1].split(".Sh DESCRIPTION")
        for command in COMMANDS:
            self.assertRegex(synopsis, rf"(?m)^\.Cm .*\b{command}\b")
            self.assertRegex(description, rf"(?m)^\.It Cm .*\b{command}\b")
        for option in self.every_option():
            self.assertIn("Fl -" + option[2:].replace("-", "-"), text)

    def test_the_completions_have_every_command_and_option(self):
        for shell, prefix in (("bash", "--"), ("zsh", "--"), ("fish", "-l ")):
            script = self.run_raw("completion", shell).out
            for command in COMMANDS:
                self.assertRegex(script, rf"\b{command}\b", shell)
            for option in self.every_option():
                self.assertRegex(script, rf"{prefix}{option[2:]}\b", f"{shell} {option}")

    def test_the_printed_completions_are_the_installed_files(self):
        for shell, name in (("bash", "quillon.bash"), ("zsh", "_quillon"), ("fish", "quillon.fish")):
            with open(os.path.join(SOURCE, "completion", name)) as file:
                self.assertEqual(self.run_raw("completion", shell).out, file.read())

    def complete(self, *words):
        script = self.run_raw("completion", "bash").out + """
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _quillon; printf '%s\\n' "${COMPREPLY[@]}"
"""
        process = subprocess.run(["bash", "-c", script, "bash", *words], capture_output=True,
                                 text=True, cwd=self.folder, env=self.environment)
        return process.stdout.split()

    def test_bash_completes_what_fits(self):
        self.assertEqual(self.complete("quillon", "tr"), ["trash"])
        self.assertEqual(self.complete("quillon", "fo"), ["for", "folder"])
        for command, words in NESTED.items():
            if command != "add":
                self.assertEqual(self.complete("quillon", command, ""), words)
        self.assertEqual(self.complete("quillon", "tag", "remove", "--a"), ["--all"])
        self.assertEqual(self.complete("quillon", "folder", "move", "--to"), ["--to-top"])
        self.assertEqual(self.complete("quillon", "smart", "show", "--se"), ["--sections"])
        self.assertEqual(self.complete("quillon", "find", "--title", "--con"), ["--contents"])
        self.assertEqual(self.complete("quillon", "find", "--words", "--wh"), ["--where"])
        self.assertEqual(self.complete("quillon", "--store", "x", "res"), ["restore", "resolve"])
        self.assertEqual(self.complete("quillon", "resolve", "--keep", ""), ["mine", "theirs"])
        self.assertEqual(self.complete("quillon", "resolve", "--field", ""), [])
        self.assertEqual(self.complete("quillon", "history", "--re"), ["--reveal"])
        self.assertEqual(self.complete("quillon", "copy", "--to-s"), ["--to-store"])
        self.assertEqual(self.complete("quillon", "merge", "--other-v"), ["--other-vault"])
        self.assertEqual(self.complete("quillon", "export", "--p"),
                         ["--plaintext", "--password-file", "--password-fd", "--password-stdin"])
        self.assertEqual(self.complete("quillon", "vault", "add", "--ow"),
                         ["--own-password", "--own-password-file", "--own-password-fd",
                          "--own-password-stdin"])
        self.assertEqual(self.complete("quillon", "vault", "icon", "--s"),
                         ["--set", "--save", "--store"])
        self.assertEqual(self.complete("quillon", "--vault", "add", "ot"), ["otp"])
        self.assertEqual(self.complete("quillon", "list", "--so"), ["--sort"])
        self.assertEqual(self.complete("quillon", "edit", "--set", "ti"), ["title="])
        self.assertEqual(self.complete("quillon", "add", "log"), ["login"])
        self.assertEqual(self.complete("quillon", "add", "ba"), ["bank-account"])
        self.assertEqual(self.complete("quillon", "template", "ssh"), ["ssh-key"])
        self.assertEqual(self.complete("quillon", "add", "router", "--ta"), ["--tag"])
        self.assertEqual(self.complete("quillon", "add", "login", "--ti"), ["--title"])
        self.assertEqual(self.complete("quillon", "show", "--field", "u"), ["username", "url"])
        self.assertEqual(self.complete("quillon", "list", "--sort", ""),
                         ["title", "updated", "created", "category", "strength"])
        self.write("export.csv", "")
        for command in ("import", "export", "merge"):
            self.assertEqual(self.complete("quillon", command, "exp"), ["export.csv"])
        for option in ("--to-store", "--to-password-file"):
            self.assertEqual(self.complete("quillon", "copy", option, "exp"), ["export.csv"])
        self.assertEqual(self.complete("quillon", "vault", "icon", "--set", "exp"), ["export.csv"])
        self.assertEqual(self.complete("quillon", "completion", "f"), ["fish"])
        self.assertEqual(self.complete("quillon", "pi"), ["pick"])
        self.assertEqual(self.complete("quillon", "pick", "--cl"), ["--clipboard", "--clear"])
        self.assertEqual(self.complete("quillon", "pick", "--clipboard", "x"), ["xclip", "xsel"])
        self.assertEqual(self.complete("quillon", "pick", "--print", "o"), ["otp"])
        self.assertEqual(self.complete("quillon", "shell", "--i"), ["--idle"])

    def test_pictures_cost_nothing_at_start(self):
        self.environment["LD_DEBUG"] = "files"
        loaded = self.run_raw("--version").err
        self.assertIn("libsodium", loaded)  # so the list is one
        for name in ("quillon_images", "cairo", "rsvg", "jpeg"):
            self.assertNotIn(name, loaded)

    def test_help_and_version_need_no_store(self):
        self.assertRegex(self.run_raw("--version").out, r"^quillon \d+\.\d+\.\d+\n$")
        for command in COMMANDS:
            for nested in [None, *NESTED.get(command, [])]:
                result = self.run_raw(*filter(None, (command, nested)), "--help")
                self.assertEqual((result.code, result.err), (0, ""), command)
        self.assertFalse(os.path.exists(self.store))


if __name__ == "__main__":
    TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
