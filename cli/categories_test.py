#!/usr/bin/env python3
"""Items of every category, from their templates, as the built tool makes, lists, edits and shows
them, in two languages: categories_test.py TOOL [TEST...]
"""
import os
import re
import sys
import time
import unittest

import tool_test
from tool_test import DOTS, PASSWORD, RESOURCES, SOURCE, Terminal, ToolTest

TAKEN = ["001", "002", "003", "004", "005", "100", "101", "102", "103", "104", "105", "106", "107",
         "108", "109", "110", "111"]
REFUSED = ["006", "112", "113", "114", "115"]
SECRET = {"concealed", "totp"}


class CategoryTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.environment["TZ"] = "Europe/Berlin"
        self.make_store()

    def speak(self, language):
        """By the environment, as a user does."""
        self.environment["LANG"] = {"en": "en_US.UTF-8", "de": "de_DE.UTF-8"}[language]

    def template(self, category, *options):
        return self.run_tool("template", category, "--json", *options).json

    def create(self, category, *options, stdin=""):
        return self.run_tool("add", category, "--title", category, *options,
                             stdin=stdin).out.strip()

    def fields(self, item, *options):
        """The fields of all sections by identifier."""
        sections = self.run_tool("show", item, "--json", *options).json["fields"]
        return {field["id"]: field for section in sections for field in section["fields"]}

    def settings(self, template, values):
        """A --set for each field, and what standard input and `show` say of the secrets and the
        rest: lines, {id: value}, {id: display}."""
        options, lines, wanted, display = [], [], {}, {}
        for section in template["sections"]:
            for field in section["fields"]:
                name, kind = field["id"], field["kind"]
                path = section["name"] + "." + name
                if kind in SECRET:
                    lines.append(f"secret of {name}\n")
                    options += ["--set", path + "=-"]
                    wanted[name] = display[name] = f"secret of {name}"
                elif "values" in field:
                    choice = field["values"][-1]
                    options += ["--set", f"{path}={choice['label']}"]
                    wanted[name], display[name] = choice["value"], choice["label"]
                elif kind == "address":
                    options += ["--set", f"{path}.street=Hauptstr. 1", "--set", f"{path}.zip=10115",
                                "--set", f"{path}.city=Berlin", "--set", f"{path}.country=de"]
                    wanted[name] = {"street": "Hauptstr. 1", "zip": "10115", "city": "Berlin",
                                    "country": "de"}
                    display[name] = "Hauptstr. 1\n10115 Berlin\n" + values["country"][2]
                elif name == "ccnum":
                    options += ["--set", f"{path}=4111 1111 1111 1111"]
                    wanted[name] = display[name] = "4111 1111 1111 1111"
                else:
                    given, wanted[name], display[name] = values.get(kind) or [f"Text of {name}"] * 3
                    options += ["--set", f"{path}={given}"]
        return options, "".join(lines), wanted, display


# What the tool itself writes before values.
LABELS = {"en": {"type": "Type", "notes": "Notes", "tags": "Tags"},
          "de": {"type": "Art", "notes": "Notizen", "tags": "Tags"}}
# Of each kind: what is typed, what a program gets, what a person sees.
ENGLISH = {
    "date": ("7/4/2024", "2024-07-04", "Jul 4, 2024"),
    "monthYear": ("2024-07", "2024-07", "07/2024"),
    "country": ("Germany", "de", "Germany"),
    "phone": ("+1 555 0100",) * 3,
    "email": ("jo@example.org",) * 3,
    "URL": ("https://example.org/a?b=c",) * 3,
}
GERMAN = {
    "date": ("4.7.2024", "2024-07-04", "04.07.2024"),
    "monthYear": ("07/2024", "2024-07", "07/2024"),
    "country": ("Deutschland", "de", "Deutschland"),
    "phone": ("030 / 555 01 00",) * 3,
    "email": ("jo@example.org",) * 3,
    "URL": ("https://example.org/a?b=c",) * 3,
}


class EveryCategory(CategoryTest):
    def test_goes_from_its_template_to_a_list_and_back_in_english(self):
        self.round_trip("en", ENGLISH)

    def test_goes_from_its_template_to_a_list_and_back_in_german(self):
        self.round_trip("de", GERMAN)

    def round_trip(self, language, values):
        self.speak(language)
        self.labels = LABELS[language]
        listed = self.run_tool("categories", "--json").json
        taken = [one for one in listed if one["available"]]
        self.assertEqual(sorted(one["uuid"] for one in taken), TAKEN)
        for category in taken:
            with self.subTest(category["name"]):
                self.one_round_trip(category, values)
        for category in self.run_tool("categories", "--json").json:
            self.assertEqual(category["items"], int(category["available"]), category)
        listed = {item["category"]: item for item in self.run_tool("list", "--json").json}
        self.assertEqual(sorted(listed), TAKEN)
        table = self.run_tool("list").out
        for category in taken:
            self.assertIn(category["title"], table)
            self.assertEqual(listed[category["uuid"]]["categoryTitle"], category["title"])
            only = self.run_tool("list", "--category", category["title"], "--json").json
            self.assertEqual([item["category"] for item in only], [category["uuid"]])
            found = self.run_tool("find", "edited", "--category", category["name"], "--json").json
            self.assertEqual([item["category"] for item in found], [category["uuid"]])
        self.assertEqual(self.run_tool("check", "--json").json["problems"], [])

    def one_round_trip(self, category, values):
        template = self.template(category["name"])
        self.assertEqual((template["uuid"], template["title"]),
                         (category["uuid"], category["title"]))
        options, stdin, wanted, display = self.settings(template, values)
        # By each of its three names.
        name = [category["uuid"], category["name"], category["title"]][int(category["uuid"]) % 3]
        if name == "login":
            name = "001"  # the name alone is a command of its own, with its own options
        # One secret alone takes all of standard input.
        uuid = self.create(name, *options, "--notes", "N\nM", "--tag", "b", "--tag", "a",
                           stdin=stdin)
        shown = self.run_tool("show", uuid, "--json").json
        self.assertEqual((shown["category"], shown["notes"], shown["tags"]),
                         (category["uuid"], "N\nM", ["a", "b"]))
        self.check_fields(shown, template, wanted, display, revealed=False)
        revealed = self.run_tool("show", uuid, "--json", "--reveal").json
        self.check_fields(revealed, template, wanted, display, revealed=True)
        self.check_sheet(uuid, template, display)
        for section in template["sections"]:
            for field in section["fields"]:
                path = section["name"] + "." + field["id"]
                value = wanted[field["id"]]
                value = display[field["id"]] if isinstance(value, dict) else value
                self.assertEqual(self.run_tool("show", uuid, "--field", path).out, value + "\n")
        self.check_edit(uuid, template, wanted)

    def check_fields(self, shown, template, wanted, display, revealed):
        self.assertEqual([(section["name"], section["title"],
                           [(field["id"], field["title"], field["kind"])
                            for field in section["fields"]]) for section in shown["fields"]],
                         [(section["name"], section["title"],
                           [(field["id"], field["title"], field["kind"])
                            for field in section["fields"]]) for section in template["sections"]])
        for section in shown["fields"]:
            for field in section["fields"]:
                if field["kind"] in SECRET and not revealed:
                    self.assertNotIn("value", field)
                    self.assertEqual(field["display"], DOTS)
                else:
                    self.assertEqual(field["value"], wanted[field["id"]])
                    self.assertEqual(field["display"], display[field["id"]])

    def check_sheet(self, uuid, template, display):
        """Titles and values stand there in the order of the template."""
        sheets = self.run_tool("show", uuid).out, self.run_tool("show", uuid, "--reveal").out
        at = [sheet.index(f"\n{self.labels['type']}: ") for sheet in sheets]
        for section in template["sections"]:
            if section["title"]:
                at = [sheet.index("\n" + section["title"] + "\n", start)
                      for sheet, start in zip(sheets, at)]
            for field in section["fields"]:
                first = display[field["id"]].split("\n")[0]
                line = f"{field['title']}: "
                at = [sheet.index(line, start) for sheet, start in zip(sheets, at)]
                self.assertTrue(sheets[1][at[1] + len(line):].lstrip(" ").startswith(first))
                shown = DOTS if field["kind"] in SECRET else first
                self.assertTrue(sheets[0][at[0] + len(line):].lstrip(" ").startswith(shown))
        for sheet in sheets:
            notes = re.search(rf"(?m)^({self.labels['notes']}: +)N\n( +)M$", sheet)
            self.assertEqual(len(notes[1]), len(notes[2]), sheet)
            self.assertRegex(sheet, rf"(?m)^{self.labels['tags']}: +a, b$")

    def check_edit(self, uuid, template, wanted):
        """One field changes, one goes or is emptied, one comes, and the rest stays."""
        before = self.fields(uuid, "--reveal")
        plain = [field for section in template["sections"] for field in section["fields"]
                 if field["kind"] == "string" and field["id"] != "ccnum" and "values" not in field]
        options = ["--set", "title=Edited " + template["name"], "--add-field",
                   "Extra.Since:date=2024-12-24", "--set", "notes="]
        changed = {}
        if plain:
            options += ["--set", plain[0]["id"] + "=changed"]
            changed[plain[0]["id"]] = "changed"
        if len(plain) > 1:
            gone = plain[-1]
            options += ["--set" if gone["guarded"] else "--unset",
                        gone["id"] + ("=" if gone["guarded"] else "")]
            changed[gone["id"]] = None
            if gone["guarded"]:
                result = self.run_tool("edit", uuid, "--unset", gone["id"], code=2)
                self.assertIn("empties it", result.err)
        self.run_tool("edit", uuid, *options)
        shown = self.run_tool("show", uuid, "--json", "--reveal").json
        self.assertEqual((shown["title"], shown["notes"]), ("Edited " + template["name"], None))
        self.assertEqual(shown["fields"][-1]["title"], "Extra")
        after = self.fields(uuid, "--reveal")
        for name, field in before.items():
            value = changed.get(name, wanted[name])
            if value is None and name not in after:
                continue
            self.assertEqual(after[name]["value"], value, name)
        self.assertEqual([field["value"] for name, field in after.items() if name not in before],
                         ["2024-12-24"])

    def test_is_refused_with_the_reason_if_the_vault_does_not_take_it(self):
        for category in REFUSED:
            title = self.template(category)["title"]
            result = self.run_tool("add", category, "--title", "T", code=1)
            self.assertIn(f"a local vault doesn't take items of {title}", result.err)
            # Nobody is asked for a password first.
            self.assertEqual(self.run_raw("add", category, "--title", "T").err, result.err)
        self.run_tool("add", "099", "--title", "T", code=2)
        self.assertEqual(self.titles(), [])

    def test_says_in_lists_and_templates_if_the_vault_does_not_take_it(self):
        refused = {"en": ["006", "112", "115", "113", "114"],
                   "de": ["006", "112", "113", "115", "114"]}
        for language, note in (("en", "not in local vaults"),
                               ("de", "nicht in lokalen Tresoren")):
            self.speak(language)
            listed = self.run_tool("categories").out.splitlines()
            self.assertEqual([line[:3] for line in listed if line.endswith(note)],
                             refused[language])
            self.assertEqual(len(listed), len(TAKEN) + len(REFUSED))
            for category in TAKEN + REFUSED:
                self.assertEqual(note in self.run_raw("template", category).out,
                                 category in REFUSED, category)
        values = self.run_tool("categories", "--json").json
        self.assertEqual(sorted(one["uuid"] for one in values if one["available"]), TAKEN)
        for category in TAKEN + REFUSED:
            self.assertIs(self.template(category)["available"], category in TAKEN)

    def test_is_known_to_the_completions(self):
        names = [one["name"] for one in self.run_tool("categories", "--json").json]
        self.assertEqual(len(names), 22)
        for shell in ("bash", "zsh", "fish"):
            script = self.run_raw("completion", shell).out
            for name in names:
                self.assertRegex(script, rf"[ '\n]{name}[ '\n]", shell)

    def test_has_a_subtitle_of_its_template(self):
        self.create("bank-account", "--set", "bankName=Bank & Co")
        self.create("credit-card", "--set", "ccnum=4111 1111 1111 1111")
        self.create("secure-note", "--notes", "First line\nSecond")
        subtitles = {item["title"]: item["subtitle"]
                     for item in self.run_tool("list", "--json").json}
        self.assertEqual(subtitles, {"bank-account": "Bank & Co", "credit-card": "4111 **** 1111",
                                     "secure-note": "First line"})
        self.assertRegex(self.run_tool("list").out, r"bank-account +Bank Account +Bank & Co\n")


class Languages(CategoryTest):
    def test_lang_goes_over_the_environment(self):
        uuid = self.create("passport", "--set", "birthdate=2024-07-04", "--set",
                           "issuing_country=at", "--set", "sex=x")
        english, german = (self.run_tool("show", uuid, *options).out
                           for options in ([], ["--lang", "de"]))
        self.assertIn("Jul 4, 2024", english)
        self.assertIn("Austria", english)
        self.assertIn("Type:       Passport", english)
        self.assertIn("04.07.2024", german)
        self.assertIn("Österreich", german)
        self.assertRegex(german, r"(?m)^Art: +Reisepass$")
        self.speak("de")
        self.assertEqual(self.run_tool("show", uuid).out, german)
        self.assertIn("Jul 4, 2024", self.run_tool("show", uuid, "--lang", "en-US").out)
        self.assertIn("Reisepass", self.run_tool("categories").out)

    def test_a_title_of_the_users_own_is_never_translated(self):
        uuid = self.create("bank-account", "--add-field", "Filiale.IBAN alt:string=1",
                           "--lang", "de")
        self.assertEqual(self.fields(uuid, "--lang", "de")["owner"]["title"], "Kontoinhaber")
        self.assertEqual(self.fields(uuid)["owner"]["title"], "name on account")
        sections = self.run_tool("show", uuid, "--json").json["fields"]
        self.assertEqual([section["title"] for section in sections], ["", "Branch Information"])
        self.assertEqual(sections[1]["fields"][-1]["title"], "IBAN alt")
        # A field is found by its title in the language that is spoken, and as it is stored.
        self.run_tool("edit", uuid, "--set", "Kontoinhaber=Jo")
        self.run_tool("edit", uuid, "--set", "name on account=Jö")
        self.assertEqual(self.fields(uuid)["owner"]["value"], "Jö")

    def test_an_unknown_language_of_the_environment_shows_english(self):
        self.environment["LANG"] = "tlh.UTF-8"
        self.assertIn("Bank Account", self.run_tool("categories").out)

    def test_an_unknown_language_of_the_option_is_2_and_those_there_are_listed(self):
        languages = sorted(name.split(".")[0]
                           for name in os.listdir(os.path.join(RESOURCES, "Locales")))
        for tag in ("xx", "tlh", "zh-CN", "", "?"):
            result = self.run_tool("categories", "--lang", tag, code=2)
            self.assertEqual(result.out, "")
            self.assertIn(": " + ", ".join(languages) + "\n", result.err)

    def test_the_option_takes_a_language_in_any_case_and_with_any_country(self):
        for tag, title in (("DE", "Bankkonto"), ("de_at", "Bankkonto"), ("pt-br", "Conta bancária"),
                           ("PT", "Conta bancária")):
            self.assertIn(title, self.run_tool("categories", "--lang", tag).out, tag)

    def test_labels_are_in_each_language_and_stand_above_each_other(self):
        uuid = self.create("bank-account", "--set", "owner=Jo", "--tag", "t", "--favorite",
                           "--notes", "N")
        labels = {"en": "Title Tags Created", "de": "Titel Tags Erstellt",
                  "fr": "Titre Étiquettes Créé", "es": "Título Etiquetas Creado",
                  "pt": "Título Etiquetas Criado", "ja": "タイトル タグ 作成日時",
                  "ar": "العنوان الوسوم أُنشئ"}
        for language, words in labels.items():
            sheet = self.run_tool("show", uuid, "--lang", language).out
            for word in words.split():
                self.assertRegex(sheet, rf"(?m)^{word}: ", language)
            info = self.run_raw("info", "--lang", language).out
            vaults = self.run_raw("vault", "list", "--lang", language).out
            self.assertEqual("Schema: " in info, language in ("en", "de"), info)
            self.assertEqual("in trash" in vaults, language == "en", vaults)
        uuid = self.create("secure-note", "--notes", "N", "--favorite")
        lines = self.run_tool("show", uuid, "--lang", "pt").out.splitlines()
        value = lines[0].index("secure-note")
        for line in lines:
            self.assertEqual(line[value - 1], " ", line)
            self.assertNotEqual(line[value], " ", line)
        self.assertIn("no icon", self.run_tool("vault", "icon").out)
        self.assertIn("kein Symbol", self.run_tool("vault", "icon", "--lang", "de").out)
        self.assertIn("keine Farbe", self.run_tool("vault", "color", "--lang", "de").out)

    def test_every_label_stands_in_the_tables(self):
        with open(os.path.join(RESOURCES, "Locales/en.lproj/Localizable.strings")) as table:
            known = set(re.findall(r'(?m)^"(.*)" = ', table.read()))
        labels = set()
        for folder in ("commands", "fields", "output"):
            for name in os.listdir(os.path.join(SOURCE, folder)):
                if name.endswith(".cpp") and not name.endswith("_test.cpp"):
                    with open(os.path.join(SOURCE, folder, name)) as source:
                        labels |= set(re.findall(
                            r'(?:QNLocalizedString|localizedFormat|label|(?<!\.)line)\("([^"\\]+)"[,)]',
                            source.read()))
        self.assertGreater(len(labels), 25)
        self.assertEqual(labels - known, set())

    def test_dates_in_arabic_are_printed_whole_and_taken_as_they_are_printed(self):
        uuid = self.create("passport", "--set", "birthdate=2024-07-04")
        for tag in ("ar", "ar-EG", "ar-AE"):
            fields = self.fields(uuid, "--lang", tag)
            shown = fields["birthdate"]["display"]
            sheet = self.run_tool("show", uuid, "--lang", tag).out
            self.assertNotIn("\\u{", sheet)
            self.assertIn(shown, sheet)
            for typed in (shown, re.sub("[\u200e\u200f\u061c]", "", shown)):
                self.run_tool("edit", uuid, "--set", "birthdate=2001-01-01")
                self.run_tool("edit", uuid, "--set", "birthdate=" + typed, "--lang", tag)
                self.assertEqual(self.run_tool("show", uuid, "--field", "birthdate").out,
                                 "2024-07-04\n", tag)

    def test_marks_of_direction_in_what_others_wrote_stay_escaped(self):
        uuid = self.create("passport", "--set", "fullname=a\u200fb\u202ec", "--add-field",
                           "T\u200fx:date=2024-07-04", "--set", "title=S\u200e")
        for arguments in (["show", uuid], ["list"]):
            out = self.run_tool(*arguments, "--lang", "ar").out
            self.assertNotIn("\u202e", out)
            self.assertIn("S\\u{200e}", out)
            self.assertNotIn("S\u200e", out)
        out = self.run_tool("show", uuid, "--lang", "ar").out
        self.assertIn("a\\u{200f}b\\u{202e}c", out)
        self.assertIn("T\\u{200f}x", out)

    def test_a_card_that_was_added_in_arabic_has_a_readable_subtitle_in_a_list(self):
        self.environment["LANG"] = "ar_EG.UTF-8"
        self.create("credit-card", "--set", "ccnum=4111 1111 1111 1111")
        self.assertTrue(self.run_tool("list").out.endswith("  4111 **** 1111\n"))

    def test_json_names_stay_the_same_in_every_language(self):
        for language in ("en", "de", "ja", "ar"):
            names = [(one["uuid"], one["name"]) for one in
                     self.run_tool("categories", "--json", "--lang", language).json]
            self.assertIn(("101", "bank-account"), names)


class Fields(CategoryTest):
    def test_two_that_fit_are_5_and_are_listed(self):
        uuid = self.create("bank-account", "--add-field", "A.Code:string=1", "--add-field",
                           "B.code:string=2", "--add-field", "B.Code:concealed=-", stdin="3")
        result = self.run_tool("show", uuid, "--field", "code", code=0)
        self.assertEqual(result.out, "2\n")  # an equal title wins
        result = self.run_tool("show", uuid, "--field", "Code", code=5)
        self.assertEqual(result.out, "")
        self.assertEqual(len(result.err.splitlines()), 3)
        self.assertIn("SECTION.FIELD", result.err)
        self.assertEqual(self.run_tool("show", uuid, "--field", "A.Code").out, "1\n")
        for line in result.err.splitlines()[:2]:
            self.assertIn(self.run_tool("show", uuid, "--field", line.split("  ")[0]).out,
                          ("1\n", "3\n"))
        self.run_tool("edit", uuid, "--set", "Code=4", code=5)
        self.run_tool("edit", uuid, "--unset", "Code", code=5)

    def test_one_that_is_not_there_or_empty_is_4(self):
        uuid = self.create("bank-account", "--set", "bankName=B")
        for name in ("nonsense", "branchInfo.nonsense", "nonsense.bankName", "iban", "branchPhone",
                     "branchAddress.street", ".", "", "bankName.street", "username", "password"):
            self.run_tool("show", uuid, "--field", name, code=4)
        for option in ("--set", "--unset"):
            result = self.run_tool("edit", uuid, option, "nonsense=x", code=4)
            self.assertIn("no such field", result.err)
        self.assertEqual(self.run_tool("show", uuid, "--field", ".bankName").out, "B\n")

    def test_an_unreadable_value_saves_nothing(self):
        uuid = self.create("bank-account", "--set", "owner=Jo")
        before = self.read("vault.qn")
        for setting in ("accountType=x", "branchPhone=x", "branchAddress=Ulm",
                        "branchAddress.country=Atlantis", "telephonePin=1234", "nonsense=1"):
            code = 4 if setting == "nonsense=1" else 2
            result = self.run_tool("edit", uuid, "--set", "owner=Changed", "--set", setting,
                                   code=code)
            self.assertEqual(result.out, "")
            self.assertNotIn("1234", result.err)
        self.run_tool("add", "bank-account", "--title", "T", "--set", "accountType=x", code=2)
        self.assertEqual(self.read("vault.qn"), before)
        self.assertEqual(self.fields(uuid)["owner"]["value"], "Jo")
        self.assertEqual(self.titles(), ["bank-account"])

    def test_an_edit_that_changes_nothing_leaves_the_time_alone(self):
        uuid = self.create("bank-account", "--set", "owner=Jo")
        before = self.show(uuid)["updatedAt"]
        time.sleep(1.1)
        self.run_tool("edit", uuid, "--set", "owner=Jo", "--set", "iban=")
        self.assertEqual(self.show(uuid)["updatedAt"], before)
        self.run_tool("edit", uuid, "--set", "owner=Jy")
        self.assertGreater(self.show(uuid)["updatedAt"], before)

    def test_secrets_come_from_input_files_and_prompts_alone(self):
        pin = self.write("pin", "12\n34\n")
        uuid = self.create("router", "--set", "password=-", "--set-file", "guest_password=" + pin,
                           stdin="two\nlines\n")
        values = self.fields(uuid, "--reveal")
        self.assertEqual(values["password"]["value"], "two\nlines")
        self.assertEqual(values["guest_password"]["value"], "12\n34")
        self.run_tool("edit", uuid, "--set", "password=-", "--set", "disk_password=-",
                      stdin="one\ntwo\nthree\n")
        values = self.fields(uuid, "--reveal")
        self.assertEqual((values["password"]["value"], values["disk_password"]["value"]),
                         ("one", "two"))
        for arguments in (["--set", "password=hunter2"], ["--set", "disk_password=hunter2"],
                          ["--set", "device.disk_password=hunter2"],
                          ["--add-field", "A.B:concealed=hunter2"]):
            result = self.run_tool("edit", uuid, *arguments, code=2)
            self.assertIn("every user of the machine could read", result.err)
            self.assertNotIn("hunter2", result.err)
        self.run_tool("edit", uuid, "--set", "name", code=2)
        self.run_tool("edit", uuid, "--set-file", "password=" + self.path("none"), code=7)
        self.run_tool("edit", uuid, "--set-file", "password=" + self.write("bad", b"\xff"), code=2)
        self.assertEqual(self.run_tool("show", uuid, "--field", "password").out, "one\n")
        self.run_tool("edit", uuid, "--set", "password=")
        self.assertIsNone(self.fields(uuid, "--reveal")["password"]["value"])

    def test_a_dash_is_refused_where_there_is_no_secret(self):
        uuid = self.create("router", "--set", "name=Attic", "--set", "password=-", stdin="a\nb")
        self.run_tool("edit", uuid, "--set", "name=-", stdin="new", code=2)
        self.run_tool("edit", uuid, "--set", "notes=-", stdin="new", code=2)
        values = self.fields(uuid, "--reveal")
        self.assertEqual((values["name"]["value"], values["password"]["value"]), ("Attic", "a\nb"))

    def test_nothing_on_standard_input_takes_no_secret_away(self):
        uuid = self.create("router", "--set", "password=-", stdin="a")
        self.run_tool("edit", uuid, "--set", "password=-", stdin="", code=2)
        self.run_tool("edit", uuid, "--add-field", "S.x:concealed=-", stdin="", code=2)
        self.assertEqual(self.fields(uuid, "--reveal")["password"]["value"], "a")
        self.run_tool("edit", uuid, "--set", "password=-", stdin="\n")
        self.assertEqual(self.fields(uuid, "--reveal")["password"]["value"] or "", "")

    def test_a_secret_is_asked_for_twice_under_its_title(self):
        uuid = self.create("router")
        terminal = Terminal(self, "edit", uuid, "--set", "disk_password", "--lang", "de")
        terminal.answer("Password: ", PASSWORD)
        title = self.fields(uuid, "--lang", "de")["disk_password"]["title"]
        terminal.answer(title + ": ", "pa55 disk")
        terminal.answer("Once more: ", "pa55 disk")
        self.assertEqual(terminal.end(), 0)
        self.assertNotIn(b"pa55", terminal.output)
        self.assertEqual(self.run_tool("show", uuid, "--field", "disk_password").out, "pa55 disk\n")

    def test_nothing_secret_is_printed_unless_it_is_asked_for(self):
        uuid = self.create("server", "--set", "password=-", "--set", "admin_console_password=-",
                           stdin="pa55 one\npa55 two\n")
        for arguments in (["show", uuid], ["show", uuid, "--json"], ["list"], ["list", "--json"],
                          ["show", uuid, "--field", "url", "--json"]):
            code = 0
            result = self.run_tool(*arguments, code=code)
            self.assertNotIn("pa55", result.out + result.err)
        one = self.run_tool("show", uuid, "--field", "password", "--json").out
        self.assertIn("pa55 one", one)
        self.assertNotIn("pa55 two", one)
        both = self.run_tool("show", uuid, "--json", "--reveal").out
        self.assertIn("pa55 two", both)

    def test_every_kind_can_be_added(self):
        seed = "otpauth://totp/a?secret=JBSWY3DPEHPK3PXP"
        uuid = self.add("Login", "--username", "jo")
        values = {"string": "text", "date": "2024-07-05", "monthYear": "2024-07",
                  "URL": "https://a.example", "email": "jo@example.org", "phone": "123"}
        options = [part for kind, value in values.items()
                   for part in ("--add-field", f"More.My {kind}:{kind}={value}")]
        options += ["--add-field", "More.My concealed:concealed=-", "--add-field",
                    "More.My totp:totp=-", "--add-field", "More.Home:address=", "--set",
                    "More.Home.city=Ulm"]
        self.run_tool("edit", uuid, *options, stdin=f"secret\n{seed}\n")
        (section,) = self.run_tool("show", uuid, "--json", "--reveal").json["fields"]
        fields = {field["title"]: field for field in section["fields"]}
        for kind, value in {**values, "concealed": "secret", "totp": seed}.items():
            field = fields["My " + kind]
            self.assertEqual((field["kind"], field["value"]), (kind, value))
        self.assertEqual(fields["Home"]["value"], {"city": "Ulm"})
        self.assertEqual(len({field["id"] for field in section["fields"]}), 9)
        self.run_tool("edit", uuid, "--add-field", "A.B:totp=-", stdin="no seed!", code=2)
        self.assertEqual(self.run_tool("show", uuid, "--field", "username").out, "jo\n")

    def test_an_address_that_is_taken_away_is_none_in_every_country(self):
        uuid = self.create("bank-account", "--set", "branchAddress.city=Ulm")
        for changes in (["branchAddress="],
                        ["branchAddress.country=de", "branchAddress.city=",
                         "branchAddress.country="]):
            self.run_tool("edit", uuid, "--set", "branchAddress.street=S", "--set",
                          "branchAddress.country=de")
            self.assertEqual(self.run_tool("show", uuid, "--field", "branchAddress.street").out,
                             "S\n")
            self.run_tool("edit", uuid, "--set", "branchAddress.street=",
                          *(part for change in changes for part in ("--set", change)))
            for language in ("de_DE.UTF-8", "en_US.UTF-8"):
                self.environment["LANG"] = language
                field = self.fields(uuid)["branchAddress"]
                self.assertEqual((field["value"], field["display"]), (None, ""))
                self.run_tool("show", uuid, "--field", "branchAddress", code=4)
                self.run_tool("show", uuid, "--field", "branchAddress.country", code=4)
                self.assertNotIn("branchInfo", self.run_tool("show", uuid).out)
        self.run_tool("edit", uuid, "--set", "branchAddress.city=Bonn")
        self.assertEqual(self.fields(uuid)["branchAddress"]["value"], {"city": "Bonn"})

    def test_an_address_that_was_never_filled_in_prints_nothing(self):
        uuid = self.create("bank-account")
        self.run_tool("show", uuid, "--field", "branchAddress", code=4)
        self.assertIsNone(self.fields(uuid)["branchAddress"]["value"])

    def test_without_a_terminal_a_secret_names_the_options_that_give_it(self):
        uuid = self.create("router")
        for arguments, wanted in (
                (["edit", uuid, "--set", "disk_password"],
                 ["--set disk_password=-", "--set-file disk_password=FILE"]),
                (["edit", uuid, "--add-field", "A.B:concealed"], ["--add-field TITLE:concealed=-"]),
                (["add", "login", "--title", "T", "--password"], ["--password=-", "--generate"])):
            result = self.run_raw(*arguments, "--password-file", self.write("p", PASSWORD))
            self.assertEqual((result.code, result.out), (2, ""), arguments)
            for option in wanted:
                self.assertIn(option, result.err)
            self.assertNotIn("--password-stdin", result.err)

    def test_what_is_not_utf8_is_told_where_it_came_from(self):
        uuid = self.create("router")
        bad = self.write("bad.txt", b"\xff")
        result = self.run_tool("edit", uuid, "--set-file", "name=" + bad, code=2)
        self.assertIn("bad.txt isn't UTF-8 text", result.err)
        result = self.run_raw("edit", uuid, "--set", "password=-", "--password-file",
                              self.write("p", PASSWORD), stdin=b"\xff")
        self.assertEqual(result.code, 2)
        self.assertIn("standard input isn't UTF-8 text", result.err)
        result = self.run_tool("edit", uuid, "--set", b"name=\xff", code=2)
        self.assertIn("--set: the value isn't UTF-8 text", result.err)
        result = self.run_tool("find", b"\xff", code=2)
        self.assertIn("WORDS: the value isn't UTF-8 text", result.err)

    def test_tags_come_and_go(self):
        uuid = self.create("router", "--tag", "home", "--tag", "Büro")
        self.run_tool("edit", uuid, "--tag", "new", "--tag", "home", "--untag", "büro")
        self.assertEqual(self.show(uuid)["tags"], ["home", "new"])
        self.assertIn("Tags:       home, new\n", self.run_tool("show", uuid).out)
        before = self.read("vault.qn")
        result = self.run_tool("edit", uuid, "--tag", "x", "--untag", "none", code=4)
        self.assertIn("none: the item has no such tag", result.err)
        self.run_tool("edit", uuid, "--tag", "", code=2)
        self.run_tool("edit", uuid, "--tag", "new")
        self.assertEqual(self.read("vault.qn"), before)
        self.run_tool("edit", uuid, "--untag", "home", "--untag", "new")
        self.assertEqual(self.show(uuid)["tags"], [])
        self.assertNotIn("Tags", self.run_tool("show", uuid).out)
        login = self.add("Login", "--tag", "b", "--tag", "a")
        for arguments, titles in ((["list", "--tag", "A"], ["Login"]), (["list", "--tag", "c"], []),
                                  (["find", "log", "--tag", "b"], ["Login"]),
                                  (["list", "--tag", "b", "--category", "router"], [])):
            found = self.run_tool(*arguments, "--json").json
            self.assertEqual([item["title"] for item in found], titles, arguments)
        self.assertEqual(self.show(login)["tags"], ["a", "b"])
        self.assertNotIn("tags", self.run_tool("list", "--json").json[0])

    def test_the_mark_of_a_favorite_comes_and_goes(self):
        uuid = self.create("router")
        self.run_tool("edit", uuid, "--favorite")
        self.assertIs(self.show(uuid)["favorite"], True)
        before = self.read("vault.qn")
        self.run_tool("edit", uuid, "--favorite")
        self.assertEqual(self.read("vault.qn"), before)
        self.run_tool("edit", uuid, "--no-favorite")
        self.assertIs(self.show(uuid)["favorite"], False)
        self.run_tool("edit", uuid, "--favorite", "--no-favorite", code=2)

    def test_a_field_of_the_users_own_can_be_taken_away(self):
        uuid = self.create("secure-note", "--add-field", "Note:string=x", "--notes", "N")
        self.assertEqual(self.run_tool("show", uuid, "--field", "Note").out, "x\n")
        self.run_tool("edit", uuid, "--unset", "Note", "--unset", "notes")
        self.assertEqual(self.fields(uuid), {})
        self.assertIsNone(self.show(uuid)["notes"])

    def test_a_server_has_an_address_of_its_template(self):
        uuid = self.create("server", "--set", "url=https://a.example", "--generate")
        self.assertEqual(self.run_tool("show", uuid, "--field", "url").out, "https://a.example\n")
        self.assertEqual(self.fields(uuid)["url"]["value"], "https://a.example")
        self.assertEqual(len(self.run_tool("show", uuid, "--field", "password").out), 21)

    def test_a_password_item_and_a_login_can_be_made_as_the_others_are(self):
        uuid = self.create("password", "--generate")
        self.assertEqual(len(self.show(uuid)["password"]), 20)
        uuid = self.create("001", "--set", "username=jo", "--set", "password=-", "--set",
                           "url=https://a.example", "--tag", "t", stdin="pa55")
        shown = self.show(uuid)
        self.assertEqual((shown["username"], shown["password"], shown["urls"], shown["tags"]),
                         ("jo", "pa55", ["https://a.example"], ["t"]))
        self.run_tool("edit", uuid, "--unset", "password", "--unset", "url")
        self.assertEqual(self.show(uuid)["urls"], [])
        self.run_tool("show", uuid, "--field", "password", code=4)

    def test_a_day_is_the_same_from_one_end_of_the_world_to_the_other(self):
        uuid = self.create("passport", "--set", "birthdate=2024-07-04")
        for zone in ("Pacific/Pago_Pago", "America/New_York", "UTC", "Asia/Tokyo", "Europe/Berlin",
                     "Pacific/Auckland", "Pacific/Chatham"):
            self.environment["TZ"] = zone
            self.assertEqual(self.run_tool("show", uuid, "--field", "birthdate").out,
                             "2024-07-04\n", zone)

    def test_who_types_a_day_sees_that_day(self):
        for zone in ("Pacific/Pago_Pago", "Pacific/Auckland", "Pacific/Kiritimati", "Etc/GMT+12"):
            self.environment["TZ"] = zone
            for day in ("2024-07-04", "2024-12-24"):
                uuid = self.create("passport", "--set", "birthdate=" + day)
                self.assertEqual(self.run_tool("show", uuid, "--field", "birthdate").out,
                                 day + "\n", zone)

    def test_control_characters_in_titles_are_escaped(self):
        uuid = self.create("secure-note", "--add-field", "A\x1b[31m.B\x07:string=x\x1b[0m")
        self.assertNotIn("\x1b", self.run_tool("show", uuid).out)
        result = self.run_tool("edit", uuid, "--unset", "C\x1b", code=4)
        self.assertNotIn("\x1b", result.err)


if __name__ == "__main__":
    tool_test.TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
