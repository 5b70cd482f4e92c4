#!/usr/bin/env python3
"""Writes what an item is outside its store, as docs/formats.md describes it, without any code of
the library: archive-v1.json, row-v1.json and fingerprint-v1.json.

The ciphers are those of platform/crypto/testdata/make_vectors.py, the vault is that of
vaults/testdata/make_vault.py. With --check nothing is written, and a difference is a failure.
"""
import base64
import hashlib
import json
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "platform" / "crypto" / "testdata"))
sys.path.insert(0, str(HERE.parents[1] / "vaults" / "testdata"))
import make_vault as vault  # noqa: E402
import make_vectors as crypto  # noqa: E402

DETAILS_LOADED, ATTACHMENTS_LOADED, AUTHENTIC = 1 << 3, 1 << 5, 1 << 8
LOCAL_VAULT = 2
DETAILS = {
    "notesPlain": "die Notiz",
    "sections": [
        {"name": "S", "title": "Konten", "fields": [
            {"n": "iban", "t": "IBAN", "k": "string", "v": "DE00 0000"}]}],
    "passwordHistory": [{"time": 1500000000, "value": "früher"}],
    "unknown": [1, {"a": None}],
}


def text_of(value):
    return json.dumps(value, ensure_ascii=False, separators=(",", ":"))


def data(content):
    return {"$bytes": base64.b64encode(content).decode()}


def sealed_overview(value, first):
    key = crypto.key_from_data(vault.OVERVIEW_KEY)
    return data(crypto.encrypt(key, vault.random_bytes(first), text_of(value).encode()))


def url(oid, overview, first, order):
    made = {
        "$class": "QNItemURL",
        "oid": oid,
        "objectFlags": DETAILS_LOADED | ATTACHMENTS_LOADED | AUTHENTIC,
        "profileID": 5,
        "profileType": LOCAL_VAULT,
        "kOverviewData": sealed_overview(overview, first),
    }
    return made | ({"kDisplayOrder": order} if order else {})


def archive():
    master_key = crypto.key_from_data(vault.MASTER_KEY)
    details = crypto.encrypt(vault.ITEM_KEY, vault.random_bytes(3), text_of(DETAILS).encode())
    overview = {"title": "Träger", "ainfo": "die Notiz", "url": "https://a.example/"}
    root = {
        "$class": "QNSecureNote",
        "oid": 11,
        "objectFlags": DETAILS_LOADED | ATTACHMENTS_LOADED | AUTHENTIC,
        "profileID": 5,
        "profileType": LOCAL_VAULT,
        "kOverviewData": sealed_overview(overview, 30),
        "uuid": "5d1c60a6-0f0d-4a6b-9f0e-3c1f0b7c2e11",
        "key": data(crypto.encrypt_key(master_key, vault.random_bytes(99), vault.ITEM_KEY)),
        "createdAt": 1600000000,
        "updatedAt": 1700000000,
        "txTimestamp": 18446744073709551615,
        "folderId": 3,
        "folderUUID": "FOLDER",
        "categoryUUID": "003",
        "sectionName": "T",
        "scope": "Always",
        "faveIndex": 2147483647,
        "nAttachments": 2,
        "nUsed": -2147483648,
        "lastUsed": 1750000000,
        "h9ItemProperties": {
            "$class": "H9ItemProperties",
            "itemVersion": 7,
            "localEditCount": 1,
            "rejectedBuildVersion": 30,
            "rejectionReason": "zu alt",
            "changerUUID": "USER",
        },
        "details": data(details),
        "URLs": [url(21, {"url": "https://a.example/", "label": "A"}, 60, 100)],
        "deletedURLs": [url(22, {"url": "https://b.example/"}, 90, 0)],
    }
    return text_of({"quillon-archive": 1, "root": root})


def row():
    return text_of({
        "overview": {"title": "Träger", "tags": ["home"], "url": "https://a.example/",
                     "ainfo": "die Notiz", "ps": 0},
        "categoryUUID": "003",
        "uuid": "5d1c60a6-0f0d-4a6b-9f0e-3c1f0b7c2e11",
        "updatedAt": 18446744073709551615,
        "createdAt": 1600000000,
        "scope": "Always",
        "sectionName": "T",
        "details": DETAILS | {"backupKeys": [base64.b64encode(vault.ITEM_KEY).decode()]},
        "URLs": [
            {"overview": {"url": "https://a.example/", "label": "A"}},
            {"overview": {"url": "https://b.example/"}}],
    })


def fingerprint():
    """A row, and the text that its fingerprint is the hash of."""
    field = {"n": "TOTP_1", "t": "Code", "k": "concealed", "v": "otpauth://totp/x?secret=ABCDEFGH"}
    pin = {"n": "pin", "t": "PIN", "k": "concealed", "v": "0000"}
    item = {
        "overview": {"title": "Träger", "tags": ["home"], "icon": "aWNvbg==", "zz": 1.0,
                     "ainfo": "die Notiz"},
        "categoryUUID": "003",
        "updatedAt": 5,
        "createdAt": 6,
        "scope": "Never",
        "details": {
            "notesPlain": "die Notiz",
            "fields": [{"name": "a", "id": ""}, {"name": "b", "id": "x"}],
            "sections": [{"name": "S", "title": "", "fields": [field, pin]}],
        },
        "URLs": [{"overview": {"url": "https://a.example/", "label": "A"}},
                 {"overview": {"url": "https://b.example/"}}],
    }
    document = {
        "templateUUID": "003",
        "trashed": False,
        "overview": {
            "title": "Träger",
            "url": "https://a.example/",
            "ps": 0,
            "iconHash": hashlib.sha256(b"aWNvbg==").hexdigest(),
            "scope": "Never",
            "urls": [{"l": "A", "u": "https://a.example/"}, {"u": "https://b.example/"}],
            "zz": 1,
        },
        "details": {
            "notesPlain": "die Notiz",
            "fields": [{"name": "a"}, {"name": "b", "id": "x"}],
            "sections": [{"name": "S", "title": "", "fields": [
                {key: value for key, value in field.items() if key != "n"}, pin]}],
            "attachments": [],
        },
    }
    text = json.dumps(document, ensure_ascii=False, separators=(",", ":"), sort_keys=True)
    return json.dumps({
        "row": item,
        "text": text,
        "fingerprint": hashlib.sha256(text.encode()).hexdigest(),
    }, ensure_ascii=False, indent=1) + "\n"


def main():
    crypto.check_published()
    made = {"archive-v1.json": archive(), "row-v1.json": row(),
            "fingerprint-v1.json": fingerprint()}
    for name, text in made.items():
        file = HERE / name
        if "--check" not in sys.argv:
            file.write_text(text)
        elif file.read_text() != text:
            sys.exit(f"{file} isn't what is made here")


if __name__ == "__main__":
    main()
