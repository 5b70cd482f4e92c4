#!/usr/bin/env python3
"""Writes frozen.json, and the seed inputs of the fuzzers, without any code of the library.

The forms are built here a second time, from their description in docs/formats.md: AES from
python3-cryptography, HMAC and NFKD from Python itself, Argon2id from the reference
implementation's command `argon2`. Before anything is written, what is built here is tried on
published.json. With --check nothing is written, and a difference is a failure.
"""
import hashlib
import hmac
import json
import pathlib
import subprocess
import sys
import unicodedata

from cryptography.hazmat.primitives.ciphers import Cipher, algorithms, modes
from cryptography.hazmat.primitives.ciphers.aead import AESGCM

HERE = pathlib.Path(__file__).resolve().parent
CORPUS = HERE.parents[3] / "fuzz" / "corpus"
SEGMENT = 65536


def aes_block(key, block):
    encryptor = Cipher(algorithms.AES(key), modes.ECB()).encryptor()
    return encryptor.update(block) + encryptor.finalize()


def xor(a, b):
    return bytes(x ^ y for x, y in zip(a, b))


def message_key(key, nonce_head):
    l = int.from_bytes(aes_block(key, bytes(16)), "big") << 1
    if l >> 128:
        l = (l & ((1 << 128) - 1)) ^ 0x87
    k1 = l.to_bytes(16, "big")
    m1 = b"\x00\x01X\x00" + nonce_head
    m2 = b"\x00\x02X\x00" + nonce_head
    return aes_block(key, xor(m1, k1)) + aes_block(key, xor(m2, k1))


def xaes_seal(key, nonce, plain, associated):
    return AESGCM(message_key(key, nonce[:12])).encrypt(nonce[12:], plain, associated)


def hkdf(name, material, salt, info, size):
    digest_size = hashlib.new(name).digest_size
    prk = hmac.new(salt or bytes(digest_size), material, name).digest()
    out, block, number = b"", b"", 1
    while len(out) < size:
        block = hmac.new(prk, block + info + bytes([number]), name).digest()
        out += block
        number += 1
    return out[:size]


def argon2id(password, salt, kibibytes):
    command = ["argon2", salt.decode("ascii"), "-id", "-v", "13", "-t", "3", "-p", "1",
               "-k", str(kibibytes), "-l", "64", "-r"]
    done = subprocess.run(command, input=password, capture_output=True, check=True)
    return bytes.fromhex(done.stdout.decode().strip())


def key_from_data(data):
    return hkdf("sha512", data, b"", b"quillon key data 1", 64)


def key_from_password(password, salt, iterations):
    normal = unicodedata.normalize("NFKD", password).encode("utf-8")
    return argon2id(normal, salt, iterations)


def encrypt(raw, random, plain):
    head = b"QNE1" + random
    aead = AESGCM(message_key(raw[:32], random[:12]))
    associated = b"QNE1" + random[19:]
    pieces = [plain[i:i + SEGMENT] for i in range(0, len(plain), SEGMENT)] or [b""]
    out = head
    for number, piece in enumerate(pieces):
        last = number == len(pieces) - 1
        nonce = random[12:19] + number.to_bytes(4, "big") + bytes([last])
        out += aead.encrypt(nonce, piece, associated)
    return out


def encrypt_key(raw, random, wrapped):
    head = b"QNKEY\x00\x00\x01"
    return head + random + xaes_seal(raw[:32], random, wrapped, head)


def patterned(size):
    return bytes((7 * i + 3) % 251 for i in range(size))


def expect(name, got, wanted):
    if got != wanted:
        sys.exit(f"{name}: got {got!r}, published {wanted!r}")


def check_published():
    published = json.loads((HERE / "published.json").read_text())
    unhex = bytes.fromhex
    for case in published["AES-256-GCM"]:
        sealed = AESGCM(unhex(case["key"])).encrypt(
            unhex(case["nonce"]), unhex(case["plain"]), unhex(case["associated"]))
        expect(case["source"], sealed.hex(), case["sealed"])
    for case in published["XAES-256-GCM"]:
        sealed = xaes_seal(unhex(case["key"]), unhex(case["nonce"]), unhex(case["plain"]),
                           unhex(case["associated"]))
        expect(case["source"], sealed.hex(), case["sealed"])
    check_accumulated(published["XAES-256-GCM accumulated"])
    for case in published["HKDF"]:
        derived = hkdf(case["hash"].lower(), unhex(case["keyMaterial"]), unhex(case["salt"]),
                       unhex(case["info"]), len(case["derived"]) // 2)
        expect(case["source"], derived.hex(), case["derived"])
    for case in published["HMAC-SHA256"]:
        mac = hmac.new(unhex(case["key"]), unhex(case["data"]), "sha256").hexdigest()
        expect(case["source"], mac[:len(case["mac"])], case["mac"])


def check_accumulated(case):
    # An iteration takes from SHAKE128 of nothing: key, nonce, a length byte, that much plain
    # text, a length byte, that much associated data. All sealed texts go into another SHAKE128.
    iterations = case["iterations"]
    stream = hashlib.shake_128().digest(iterations * (32 + 24 + 256 + 256))
    at = 0

    def take(size):
        nonlocal at
        at += size
        return stream[at - size:at]

    digest = hashlib.shake_128()
    for _ in range(iterations):
        key, nonce = take(32), take(24)
        plain = take(take(1)[0])
        associated = take(take(1)[0])
        digest.update(xaes_seal(key, nonce, plain, associated))
    expect(case["source"], digest.hexdigest(32), case["digest"])


RAW = bytes(range(64))
OTHER_RAW = bytes(range(255, 191, -1))
RANDOM = bytes(range(0xa0, 0xb8))
SALT = b"0123456789abcdef"
PASSWORDS = [("try quillon", 100), ("try quillon", 8), ("q", 101), ("correct horse battery staple", 1024),
             ("\u00c5ngstr\u00f6m \ufb01\u5bc6", 64), ("A\u030angstro\u0308m fi\u5bc6", 64)]


def sealed_case(size):
    plain, sealed = patterned(size), encrypt(RAW, RANDOM, patterned(size))
    case = {"plainSize": size, "sealedSize": len(sealed),
            "sealedSHA256": hashlib.sha256(sealed).hexdigest()}
    if size <= 300:
        case |= {"plain": plain.hex(), "sealed": sealed.hex()}
    return case


def frozen():
    return {
        "rawKey": RAW.hex(),
        "random": RANDOM.hex(),
        "encrypt": [sealed_case(n) for n in (0, 1, 300, 65535, 65536, 65537, 131072, 150000)],
        "encryptKey": {"wrappedRawKey": OTHER_RAW.hex(),
                       "wrapped": encrypt_key(RAW, RANDOM, OTHER_RAW).hex()},
        "keyData": [{"data": patterned(n).hex(), "rawKey": key_from_data(patterned(n)).hex()}
                    for n in (1, 64, 256)],
        "password": [{"password": p, "salt": SALT.hex(), "iterations": n,
                      "rawKey": key_from_password(p, SALT, n).hex()} for p, n in PASSWORDS],
        "HKDF-SHA512": {"keyMaterial": patterned(40).hex(), "salt": patterned(16).hex(),
                        "info": b"info".hex(),
                        "derived": hkdf("sha512", patterned(40), patterned(16), b"info", 100).hex()},
    }


def seeds():
    # The fuzzers read a first byte 0 as "open what follows", 1 as "seal it and spoil one bit".
    whole = encrypt(RAW, RANDOM, patterned(300))
    wrap = encrypt_key(RAW, RANDOM, OTHER_RAW)
    return {
        "decrypt/empty": b"\x00" + encrypt(RAW, RANDOM, b""),
        "decrypt/one-byte": b"\x00" + encrypt(RAW, RANDOM, b"x"),
        "decrypt/300-bytes": b"\x00" + whole,
        "decrypt/cut": b"\x00" + whole[:-1],
        "decrypt/bad-tag": b"\x00" + whole[:-1] + bytes([whole[-1] ^ 1]),
        "decrypt/bad-magic": b"\x00" + b"QNE2" + whole[4:],
        "decrypt/spoil-first-bit": b"\x01\x00\x00\x00\x00" + b"some text",
        "decrypt/spoil-second-segment": b"\x01\x08\x01\x60\x0d" + b"some longer text",
        "decrypt_key/wrap": b"\x00" + wrap,
        "decrypt_key/cut": b"\x00" + wrap[:-1],
        "decrypt_key/extended": b"\x00" + wrap + b"\x00",
        "decrypt_key/bad-version": b"\x00" + wrap[:7] + b"\x02" + wrap[8:],
        "decrypt_key/spoil-tag": b"\x01\x03\x78" + OTHER_RAW,
    }


def main():
    check_published()
    files = {HERE / "frozen.json": (json.dumps(frozen(), indent=2) + "\n").encode()}
    files |= {CORPUS / name: content for name, content in seeds().items()}
    for path, content in files.items():
        if "--check" in sys.argv:
            if not path.exists() or path.read_bytes() != content:
                sys.exit(f"{path} differs from what it should be")
            continue
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


if __name__ == "__main__":
    main()
