#!/usr/bin/env python3
"""Writes vault-v1.json: a local vault, and what it sealed, made without any code of the library.

The ciphers are those of platform/crypto/testdata/make_vectors.py, which checks itself on published
vectors. With --check nothing is written, and a difference is a failure.
"""
import hashlib
import hmac
import json
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "platform" / "crypto" / "testdata"))
import make_vectors as crypto  # noqa: E402

PASSWORD = "try quillon"
ITERATIONS = 100
SALT = b"fedcba9876543210"
OVERVIEW_KEY = bytes((5 * i + 1) % 256 for i in range(64))
MASTER_KEY = bytes((11 * i + 7) % 256 for i in range(256))
ITEM_KEY = bytes(range(63, -1, -1))
OVERVIEW = '{"title":"Träger","ainfo":"ü@example.com"}'.encode()
NOTE = b"under the master key"


def random_bytes(first):
    return bytes((first + i) % 256 for i in range(24))


def vault():
    password_key = crypto.key_from_password(PASSWORD, SALT, ITERATIONS)
    overview_key = crypto.key_from_data(OVERVIEW_KEY)
    master_key = crypto.key_from_data(MASTER_KEY)
    mac = hmac.new(overview_key[32:], b"example.com", "sha256").digest()
    return {
        "password": PASSWORD,
        "iterations": ITERATIONS,
        "salt": SALT.hex(),
        "overviewKey": OVERVIEW_KEY.hex(),
        "masterKey": MASTER_KEY.hex(),
        "encryptedOverviewKey": crypto.encrypt(password_key, random_bytes(1), OVERVIEW_KEY).hex(),
        "encryptedMasterKey": crypto.encrypt(password_key, random_bytes(50), MASTER_KEY).hex(),
        "itemKey": ITEM_KEY.hex(),
        "wrappedItemKey": crypto.encrypt_key(master_key, random_bytes(99), ITEM_KEY).hex(),
        "overview": OVERVIEW.hex(),
        "sealedOverview": crypto.encrypt(overview_key, random_bytes(150), OVERVIEW).hex(),
        "note": NOTE.hex(),
        "sealedNote": crypto.encrypt(master_key, random_bytes(200), NOTE).hex(),
        "hmacText": "example.com",
        "hmac": mac.hex(),
        "sha256OfHmac": hashlib.sha256(mac).hexdigest(),
    }


def main():
    crypto.check_published()
    text = json.dumps(vault(), indent=1) + "\n"
    file = HERE / "vault-v1.json"
    if "--check" in sys.argv:
        if file.read_text() != text:
            sys.exit(f"{file} isn't what is made here")
    else:
        file.write_text(text)


if __name__ == "__main__":
    main()
