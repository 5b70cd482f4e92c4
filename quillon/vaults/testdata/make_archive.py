#!/usr/bin/env python3
"""Writes archive-v1.json: the keyed archive of an unlocked vault, as docs/formats.md describes it,
made without any code of the library.

With --check nothing is written, and a difference is a failure.
"""
import base64
import decimal
import json
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
PASSWORD = "try quillon"
TRASHED = 1 << 6
AUTHENTIC = 1 << 8


def data(content):
    return {"$bytes": base64.b64encode(content).decode()}


def scrambled(text):
    content = bytes(byte ^ ((0xA7 + 31 * i) & 0xFF) for i, byte in enumerate(text.encode()))
    return "1:" + base64.b64encode(content).decode()


def number32(value):
    """A 32-bit float with its exponent, marked: json has no such form."""
    sign, digits, exponent = decimal.Decimal(value).normalize().as_tuple()
    text = "".join(map(str, digits))
    fraction = "." + text[1:] if len(text) > 1 else ""
    return f"@{'-' * sign}{text[0]}{fraction}E{exponent + len(text) - 1}@"


def vault():
    return {
        "$class": "QNProfile",
        "oid": 5,
        "objectFlags": AUTHENTIC | TRASHED,
        "profileID": 0,
        "profileType": 0,
        "uuid": "VAULT",
        "profileName": "Tresor für alle",
        "createdAt": 1600000000,
        "updatedAt": 18446744073709551615,
        "eMasterKey": data(bytes([1, 2, 3])),
        "eOverviewKey": data(bytes([4, 5, 6, 7])),
        "salt": data(b"fedcba9876543210"),
        "iterations": 65536,
        "passwordHint": "the usual",
        "iconData": data(bytes([7, 8, 9])),
        "hasColor": True,
        "cH": number32(0.5),
        "cS": number32(0.25),
        "cB": number32(1),
        "cA": number32(0.8125),
        "lastUpdatedBy": "host",
        "pp": scrambled(PASSWORD),
        "overviewKey": data(bytes((5 * i + 1) % 256 for i in range(64))),
        "masterKey": data(bytes((11 * i + 7) % 256 for i in range(256))),
        "categories": [
            {
                "$class": "QNCategory",
                "oid": 3,
                "objectFlags": AUTHENTIC,
                "profileID": 5,
                "profileType": 2,
                "uuid": "001",
                "sName": "Login",
                "pName": "Logins",
                "listIconName": "list",
                "detaiIconName": "detail",
                "displayOrder": 10000,
                "numberOfItems": 12,
            },
            {
                "$class": "QNCategory",
                "oid": 4,
                "objectFlags": AUTHENTIC,
                "profileID": 5,
                "profileType": 2,
                "uuid": "zzz",
                "displayOrder": 0,
                "numberOfItems": 0,
            },
        ],
        "tags": {"$json": {"4": "home", "18446744073709551615": "wörk"}},
    }


def main():
    archive = {"quillon-archive": 1, "root": vault()}
    text = json.dumps(archive, ensure_ascii=False, separators=(",", ":"))
    text = re.sub(r'"@([^"@]*)@"', r"\1", text)
    file = HERE / "archive-v1.json"
    if "--check" in sys.argv:
        if file.read_text() != text:
            sys.exit(f"{file} isn't what is made here")
    else:
        file.write_text(text)


if __name__ == "__main__":
    main()
