#!/usr/bin/env python3
"""Writes text forms and archives of predicates, line by line: make_predicates.py [--check]

Made from the tables in docs/formats.md alone, so that reader and writer of the library can be held
to them. With --check it writes nothing, and fails if the files here are others.
"""
import json
import os
import struct
import sys

NOT, AND, OR = 0, 1, 2
DIRECT, ALL, ANY = 0, 1, 2
OPERATORS = ["<", "<=", ">", ">=", "==", "!=", "MATCHES", "LIKE", "BEGINSWITH", "ENDSWITH", "IN",
             "CONTAINS", "BETWEEN"]


def unsigned(number):
    return number & 0xFFFFFFFFFFFFFFFF


def constant(kind, value=None):
    made = {"$class": "QNExpression", "type": 0, "kind": kind}
    if value is not None:
        made["value"] = value
    return made


def nil():
    return constant("nil")


def boolean(value):
    return constant("bool", value)


def integer(value):
    return constant("integer", unsigned(value))


def real(value):
    return constant("real", struct.unpack(">Q", struct.pack(">d", value))[0])


def date(seconds):
    return constant("date", unsigned(seconds))


def text(value):
    return constant("text", value)


def listed(*values):
    return {"$class": "QNExpression", "type": 0, "kind": "list", "count": len(values),
            "values": list(values)}


def key(path):
    return {"$class": "QNExpression", "type": 3, "keyPath": path}


def comparison(left, operator, right, modifier=DIRECT, options=0):
    return {"$class": "QNComparisonPredicate", "left": left, "right": right, "modifier": modifier,
            "operatorType": OPERATORS.index(operator), "options": options}


def compound(kind, *parts):
    return {"$class": "QNCompoundPredicate", "type": kind, "count": len(parts),
            "subpredicates": list(parts)}


def value(truth):
    return {"$class": "QNConstantPredicate", "value": truth}


A = key("a")
PAIRS = [
    ("TRUEPREDICATE", value(True)),
    ("FALSEPREDICATE", value(False)),
    *((f"a {operator} 1", comparison(A, operator, integer(1))) for operator in OPERATORS),
    ("ANY tags == \"x\"", comparison(key("tags"), "==", text("x"), ANY)),
    ("ALL tags == \"x\"", comparison(key("tags"), "==", text("x"), ALL)),
    ("folderTitle ==[cd] \"\"", comparison(key("folderTitle"), "==", text(""), DIRECT, 3)),
    ("a ==[c] \"Zürich\"", comparison(A, "==", text("Zürich"), DIRECT, 1)),
    ("a ==[d] \"it\\\"s\\n\"", comparison(A, "==", text("it\"s\n"), DIRECT, 2)),
    ("folderUUID == NIL", comparison(key("folderUUID"), "==", nil())),
    ("a == YES", comparison(A, "==", boolean(True))),
    ("NO == a", comparison(boolean(False), "==", A)),
    ("a == -1", comparison(A, "==", integer(-1))),
    ("a == 0.1", comparison(A, "==", real(0.1))),
    ("a < DATE \"2024-07-04T12:30:05Z\"", comparison(A, "<", date(1720096205))),
    ("a < DATE \"1969-12-31T23:59:59Z\"", comparison(A, "<", date(-1))),
    ("a IN {}", comparison(A, "IN", listed())),
    ("a IN {1, \"b\", NIL}", comparison(A, "IN", listed(integer(1), text("b"), nil()))),
    ("a == #any", comparison(A, "==", key("any"))),
    ("NOT a == 1", compound(NOT, comparison(A, "==", integer(1)))),
    ("AND {}", compound(AND)),
    ("OR {a == 1}", compound(OR, comparison(A, "==", integer(1)))),
    ("a == 1 AND (a == 2 OR TRUEPREDICATE)",
     compound(AND, comparison(A, "==", integer(1)),
              compound(OR, comparison(A, "==", integer(2)), value(True)))),
]


def archive(predicate):
    whole = {"quillon-archive": 1, "root": {"$class": "QNPredicateArchive", "predicate": predicate}}
    return json.dumps(whole, ensure_ascii=False, separators=(",", ":"))


FILES = {
    "formats.txt": "".join(form + "\n" for form, _ in PAIRS),
    "archives.jsonl": "".join(archive(predicate) + "\n" for _, predicate in PAIRS),
}


def main():
    folder = os.path.dirname(os.path.abspath(__file__))
    others = 0
    for name, content in FILES.items():
        path = os.path.join(folder, name)
        if "--check" not in sys.argv:
            with open(path, "w", encoding="utf-8") as file:
                file.write(content)
            continue
        with open(path, encoding="utf-8") as file:
            if file.read() != content:
                print(f"{name} isn't what this script makes")
                others += 1
    return 1 if others else 0


sys.exit(main())
