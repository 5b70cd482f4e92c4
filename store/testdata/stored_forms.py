#!/usr/bin/env python3
"""Builds the store's sealed forms a second time, from their tables in docs/formats.md, without any
code of the library.

    stored_forms.py vectors         writes seals.json
    stored_forms.py vectors --check compares it
    stored_forms.py verify FILE     opens a store with the password "try quillon" and tests every
                                    seal, ledger, key, overview, details and URL hash in it
"""
import hashlib
import hmac
import json
import pathlib
import sqlite3
import sys

from cryptography.hazmat.primitives.ciphers import Cipher, algorithms, modes
from cryptography.hazmat.primitives.ciphers.aead import AESGCM
from cryptography.hazmat.primitives.hashes import SHA512
from cryptography.hazmat.primitives.kdf.argon2 import Argon2id
from cryptography.hazmat.primitives.kdf.hkdf import HKDF

HERE = pathlib.Path(__file__).resolve().parent


def key_from_data(data):
    return HKDF(SHA512(), 64, None, b"quillon key data 1").derive(data)


def message_key(key, nonce_head):
    """XAES-256-GCM: two blocks of AES-CMAC."""
    def block(data):
        encryptor = Cipher(algorithms.AES(key), modes.ECB()).encryptor()
        return encryptor.update(data) + encryptor.finalize()

    doubled = int.from_bytes(block(bytes(16)), "big") << 1
    k1 = (doubled ^ ((1 << 128) + 0x87 if doubled >> 128 else 0)).to_bytes(16, "big")
    heads = (b"\0\1X\0" + nonce_head, b"\0\2X\0" + nonce_head)
    return b"".join(block(bytes(a ^ b for a, b in zip(head, k1))) for head in heads)


def number(value):
    return (value % (1 << 64)).to_bytes(8, "big")


def counted(value):
    value = value.encode() if isinstance(value, str) else value
    return number(len(value)) + value


def optional(value):
    return b"\0" if value is None else b"\1" + counted(value)


def item_form(vault_uuid, row):
    form = b"quillon row 1" + counted(vault_uuid)
    for name in ("oid", "status", "fave_index", "created_at", "updated_at", "tx_timestamp",
                 "times_used", "last_used", "inbox", "attachments"):
        form += number(row[name])
    form += counted(row["category_uuid"]) + optional(row["scope"]) + optional(row["folder_uuid"])
    return form + counted(row["uuid"]) + counted(row["body_hash"]) + counted(row["overview"])


def body_hash(wrapped_key, details, urls):
    form = b"quillon body 1" + counted(wrapped_key) + counted(details) + number(len(urls))
    for url in urls:
        form += number(url["display_order"]) + number(url["hash_version"])
        form += optional(url["naked_hash"]) + optional(url["derived_hash"])
        form += counted(url["overview"])
    return hashlib.sha256(form).digest()


def vault_form(row):
    form = b"quillon vault 1" + number(row["oid"]) + counted(row["uuid"]) + counted(row["name"])
    for name in ("revision", "status", "created_at", "updated_at"):
        form += number(row[name])
    for name in ("master_key", "overview_key", "salt"):
        form += counted(row[name])
    form += number(row["iterations"])
    for name in ("hint", "last_updated_by", "icon", "color", "attributes"):
        form += optional(row[name])
    return form


def states_hash(states):
    form = b"quillon sync states 1" + number(len(states))
    for state in states:
        form += number(state["kind"]) + number(state["object_type"]) + number(state["object_id"])
        form += optional(state["object_uuid"])
        for name in ("synced_at", "source_timestamp", "local_timestamp"):
            form += number(state[name])
    return hashlib.sha256(form).digest()


def sync_source_form(vault_uuid, row, states):
    form = b"quillon sync source 1" + counted(vault_uuid)
    for name in ("oid", "revision", "legacy"):
        form += number(row[name])
    form += optional(row["keychain_identifier"]) + optional(row["keychain_type"])
    for side in ("remote", "local"):
        form += optional(row[side + "_profile_uuid"]) + number(row[side + "_profile_timestamp"])
        form += optional(row[side + "_profile_attributes"])
    return form + counted(states_hash(states))


def folder_form(vault_uuid, row):
    form = b"quillon folder 1" + counted(vault_uuid)
    for name in ("oid", "status", "created_at", "updated_at", "tx_timestamp", "smart",
                 "display_order"):
        form += number(row[name])
    form += optional(row["parent_uuid"]) + counted(row["uuid"]) + optional(row["icon"])
    return form + counted(row["overview"])


def ledger_form(vault, rows, last, total, folders=None):
    """`folders` are number and sum; nothing for what versions 1 and 2 wrote."""
    form = b"quillon ledger 1" if folders is None else b"quillon ledger 2"
    form += number(rows) + number(last) + number(vault["revision"]) + total.to_bytes(16, "big")
    if folders is not None:
        form += number(folders[0]) + folders[1].to_bytes(16, "big")
    return form + vault["uuid"].encode()


def seal(raw_key, form):
    code = hmac.new(raw_key[32:64], form, "sha256").digest()
    return code[:16], code[16:]


# Vectors

KEY = bytes(range(64))
BYTES = {"body_hash": bytes(range(32)), "overview": b"sealed overview"}


def vectors():
    raw = key_from_data(KEY)
    full = dict(oid=7, status=1, fave_index=3, created_at=1700000000, updated_at=1700000001,
                tx_timestamp=1700000002, times_used=4, last_used=1700000003, inbox=1, attachments=2,
                category_uuid="001", scope="Never", folder_uuid="f", uuid="item-uuid")
    bare = {name: 0 if isinstance(value, int) else "" for name, value in full.items()}
    bare.update(scope=None, folder_uuid=None)
    empty = dict(bare, scope="", folder_uuid="")
    large = dict(full, fave_index=(1 << 64) - 1, last_used=1 << 63)
    items = []
    for row in (full, bare, empty, large):
        tag, term = seal(raw, item_form("vault-uuid", dict(row, **BYTES)))
        items.append(dict(row=row, tag=tag.hex(), term=term.hex()))
    vault = dict(oid=2, uuid="vault-uuid", name="demo", revision=5, status=0, created_at=11,
                 updated_at=12, master_key="m" * 300, overview_key="o" * 108, salt="s" * 16,
                 iterations=100, hint="a hint", last_updated_by=None, icon=None, color="{}",
                 attributes="")
    tag, term = seal(raw, vault_form(vault))
    urls = [dict(display_order=100, hash_version=1, naked_hash="aa", derived_hash=None,
                 overview="first"),
            dict(display_order=200, hash_version=1, naked_hash=None, derived_hash="bb",
                 overview="second")]
    states = [dict(kind=1, object_type=1, object_id=5, object_uuid="a", synced_at=11,
                   source_timestamp=12, local_timestamp=13),
              dict(kind=1, object_type=0, object_id=(1 << 64) - 1, object_uuid=None, synced_at=0,
                   source_timestamp=1 << 63, local_timestamp=0),
              dict(kind=3, object_type=(1 << 32) - 1, object_id=0, object_uuid="", synced_at=1,
                   source_timestamp=2, local_timestamp=3)]
    full_source = dict(oid=3, revision=2, legacy=1, keychain_identifier="/a", keychain_type="t",
                       remote_profile_uuid="r", remote_profile_timestamp=21,
                       remote_profile_attributes="sealed", local_profile_uuid="l",
                       local_profile_timestamp=22, local_profile_attributes="")
    bare_source = {name: 0 if isinstance(value, int) else None
                   for name, value in full_source.items()}
    sources = []
    for row, of_row in ((full_source, states), (bare_source, [])):
        code = seal(raw, sync_source_form("vault-uuid", row, of_row))[0]
        sources.append(dict(row=row, states=of_row, hash=states_hash(of_row).hex(),
                            tag=code.hex()))
    full_folder = dict(oid=4, status=2, created_at=31, updated_at=32, tx_timestamp=33, smart=1,
                       display_order=(1 << 64) - 1, parent_uuid="p", uuid="folder-uuid",
                       icon="sealed icon", overview="sealed overview")
    bare_folder = {name: 0 if isinstance(value, int) else "" for name, value in full_folder.items()}
    bare_folder.update(parent_uuid=None, icon=None)
    empty_folder = dict(bare_folder, parent_uuid="", icon="")
    folders = []
    for row in (full_folder, bare_folder, empty_folder):
        tag_of_folder, term_of_folder = seal(raw, folder_form("vault-uuid", row))
        folders.append(dict(row=row, tag=tag_of_folder.hex(), term=term_of_folder.hex()))
    return {
        "syncSources": sources,
        "folders": folders,
        "ledgers": {name: ledger_form(dict(uuid="vault-uuid", revision=2), 3, 1700000000,
                                      0x0102030405060708f1f2f3f4f5f6f7f8, sums).hex()
                    for name, sums in (("withFolders", (4, (1 << 128) - 2)), ("without", None))},
        "overviewKey": KEY.hex(), "bodyHash": BYTES["body_hash"].hex(),
        "overview": BYTES["overview"].decode(), "items": items,
        "vault": dict(row=vault, tag=tag.hex(), term=term.hex()),
        "body": dict(wrapped_key="k" * 112, details="details", urls=urls,
                     hash=body_hash("k" * 112, "details", urls).hex(),
                     hashWithoutURLs=body_hash("k" * 112, "details", []).hex()),
    }


# Verifying

def open_sealed(raw, sealed):
    assert sealed[:4] == b"QNE1" and len(sealed) < 65536
    aead = AESGCM(message_key(raw[:32], sealed[4:16]))
    nonce = sealed[16:23] + bytes(4) + b"\1"
    return aead.decrypt(nonce, sealed[28:], b"QNE1" + sealed[23:28])


def open_key(raw, wrapped):
    assert len(wrapped) == 112 and wrapped[:8] == b"QNKEY\0\0\1"
    aead = AESGCM(message_key(raw[:32], wrapped[8:20]))
    return aead.decrypt(wrapped[20:32], wrapped[32:], wrapped[:8])


def verify(path):
    database = sqlite3.connect(f"file:{path}?immutable=1", uri=True)
    database.row_factory = lambda cursor, row: {
        column[0]: value for column, value in zip(cursor.description, row)}

    def rows(sql, *values):
        return database.execute(sql, values).fetchall()

    assert rows("PRAGMA application_id")[0]["application_id"] == 0x514E4C4E
    version = rows("PRAGMA user_version")[0]["user_version"]
    assert version in (1, 2, 3)
    for vault in rows("SELECT * FROM vaults"):
        password_key = Argon2id(salt=vault["salt"], length=64, iterations=3, lanes=1,
                                memory_cost=vault["iterations"]).derive(b"try quillon")
        master = key_from_data(open_sealed(password_key, vault["master_key"]))
        overview = key_from_data(open_sealed(password_key, vault["overview_key"]))
        assert seal(overview, vault_form(vault))[0] == vault["seal"]
        total, count, last = 0, 0, 0
        for item in rows("SELECT * FROM items WHERE vault_id = ? ORDER BY oid", vault["oid"]):
            body = rows("SELECT * FROM details WHERE item_id = ?", item["oid"])[0]
            urls = rows("SELECT * FROM urls WHERE item_id = ? ORDER BY display_order", item["oid"])
            assert body_hash(body["wrapped_key"], body["details"], urls) == item["body_hash"]
            tag, term = seal(overview, item_form(vault["uuid"], item))
            assert tag == item["seal"]
            total = (total + int.from_bytes(term, "big")) % (1 << 128)
            count, last = count + 1, max(last, item["tx_timestamp"])
            if item["category_uuid"] == "099":
                assert item["overview"] == body["details"] == b"" and not urls
                assert item["status"] == 1 and item["scope"] is item["folder_uuid"] is None
                assert not any(item[name] for name in ("fave_index", "times_used", "last_used",
                                                       "inbox", "attachments"))
                open_key(master, body["wrapped_key"])
                print(item["oid"], item["uuid"], "was deleted at", item["updated_at"])
                continue
            clear = json.loads(open_sealed(overview, item["overview"]))
            details = json.loads(open_sealed(open_key(master, body["wrapped_key"]),
                                             body["details"]))
            addresses = [json.loads(open_sealed(overview, url["overview"])) for url in urls]
            for url, address in zip(urls, addresses):
                host = address["url"].split("://")[1].split("/")[0]
                code = hmac.new(vault["uuid"].encode(), host.encode(), "sha256").hexdigest()
                assert code == url["derived_hash"]
            print(item["oid"], item["uuid"], clear["title"], sorted(details), addresses)
        folders = version > 2 and rows("SELECT * FROM folders WHERE vault_id = ? ORDER BY oid",
                                       vault["oid"]) or []
        folder_total = 0
        for folder in folders:
            tag, term = seal(overview, folder_form(vault["uuid"], folder))
            assert tag == folder["seal"]
            folder_total = (folder_total + int.from_bytes(term, "big")) % (1 << 128)
            last = max(last, folder["tx_timestamp"])
            if folder["status"] == 2:
                assert folder["overview"] == b"" and folder["parent_uuid"] is folder["icon"] is None
                assert folder["smart"] == folder["display_order"] == 0
                print("folder", folder["uuid"], "was deleted at", folder["updated_at"])
                continue
            clear = json.loads(open_sealed(overview, folder["overview"]))
            icon = folder["icon"] and open_sealed(overview, folder["icon"])
            print("folder", folder["uuid"], clear["title"], sorted(clear), "in",
                  folder["parent_uuid"], "with an icon" if icon else "")
        ledger = open_sealed(overview, rows("SELECT content FROM ledgers WHERE vault_id = ?",
                                            vault["oid"])[0]["content"])
        sums = (len(folders), folder_total) if version > 2 else None
        assert ledger == ledger_form(vault, count, last, total, sums)
        sources = version > 1 and rows("SELECT * FROM sync_sources WHERE vault_id = ?",
                                       vault["oid"]) or []
        for source in sources:
            states = rows("SELECT * FROM sync_states WHERE source_id = ? ORDER BY kind, place",
                          source["oid"])
            form = sync_source_form(vault["uuid"], source, states)
            assert seal(overview, form)[0] == source["seal"]
            print("source", source["keychain_identifier"], "with", len(states), "states")
        print("vault", vault["name"], "is sound:", count, "items")


def main(arguments):
    if arguments[:1] == ["verify"]:
        return verify(arguments[1])
    text = json.dumps(vectors(), indent=1) + "\n"
    target = HERE / "seals.json"
    if arguments[1:] == ["--check"]:
        assert target.read_text() == text, "seals.json differs"
    else:
        target.write_text(text)


main(sys.argv[1:])
