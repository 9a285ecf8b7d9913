#!/usr/bin/env python3
"""Lists and extracts the files of a vault; written from docs/vault-format.md alone.

    vault-read.py VAULT list
    vault-read.py VAULT extract DIRECTORY [ID ...]

Needs Python 3.9 and the package python3-cryptography. The password is asked for, or is the first
line of the descriptor that --password-fd names. An existing file is never replaced.
"""
import argparse
import base64
import datetime
import getpass
import hashlib
import json
import os
import struct
import sys
import uuid

from cryptography.exceptions import InvalidTag
from cryptography.hazmat.primitives import hashes
from cryptography.hazmat.primitives.ciphers.aead import AESGCM
from cryptography.hazmat.primitives.kdf.hkdf import HKDF

CHUNK = 1_048_576
OVERHEAD = 12 + 16
ROUNDS = 600_000


def open_box(key, box, associated_data):
    return AESGCM(key).decrypt(box[:12], box[12:], associated_data)


def read_items(vault, password):
    """The vault's key and its item list."""
    with open(os.path.join(vault, "manifest.ardeno-vault"), encoding="utf-8") as file:
        envelope = json.load(file)
    salt = base64.b64decode(envelope["salt"], validate=True)
    if (envelope["version"], envelope["iterations"], len(salt)) != (1, ROUNDS, 32):
        sys.exit("not a vault of version 1")
    key = hashlib.pbkdf2_hmac("sha256", password, salt, ROUNDS)
    box = base64.b64decode(envelope["sealedManifest"], validate=True)
    try:
        manifest = open_box(key, box, b"ArdenoVault/manifest/v1/PBKDF2-SHA256/600000/" + salt)
    except InvalidTag:
        sys.exit("the password is wrong, or the manifest is damaged")
    items = json.loads(manifest)["items"]
    for item in items:
        item["id"] = str(uuid.UUID(item["id"])).upper()
        if item["name"] in ("", ".", "..") or "/" in item["name"] or "\0" in item["name"]:
            sys.exit("the manifest holds a name that is no file name")
    return key, items


def plaintext(vault, key, item):
    """The chunks of an item, each authenticated."""
    size, name = item["size"], item["id"]
    count = max(-(-size // CHUNK), 1)
    item_key = HKDF(hashes.SHA256(), 32, name.encode(), b"ArdenoVault/file-key/v1").derive(key)
    digest = hashlib.sha256()
    with open(os.path.join(vault, name + ".avault"), "rb") as file:
        for index in range(count):
            expected = min(size - index * CHUNK, CHUNK) + OVERHEAD
            if file.read(4) != struct.pack(">I", expected):
                raise ValueError("a frame has the wrong length")
            box = file.read(expected)
            chunk = open_box(item_key, box, f"ArdenoVault/chunk/v1/{name}/{size}/{count}/{index}".encode())
            digest.update(chunk)
            yield chunk
        if file.read(1):
            raise ValueError("bytes follow the last frame")
    if digest.hexdigest() != item["sha256"]:
        raise ValueError("the digest differs")


def extract(vault, key, item, directory):
    target = os.path.join(directory, item["name"])
    partial = os.path.join(directory, ".partial-" + str(uuid.uuid4()))
    try:
        with open(os.open(partial, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600), "wb") as file:
            for chunk in plaintext(vault, key, item):
                file.write(chunk)
        os.link(partial, target)  # fails where the name exists
    finally:
        os.unlink(partial)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("vault")
    parser.add_argument("command", choices=["list", "extract"])
    parser.add_argument("arguments", nargs="*", metavar="DIRECTORY ID")
    parser.add_argument("--password-fd", type=int)
    options = parser.parse_args()
    if options.password_fd is None:
        password = getpass.getpass().encode()
    else:
        with open(options.password_fd, "rb") as file:
            password = file.readline().rstrip(b"\n")
    key, items = read_items(options.vault, password)
    if options.command == "list":
        for item in items:
            added = datetime.datetime(2001, 1, 1) + datetime.timedelta(seconds=item["importedAt"])
            print(item["id"], item["size"], added.isoformat(timespec="seconds") + "Z", ascii(item["name"]), sep="\t")
        return 0
    if not options.arguments:
        parser.error("extract needs a directory")
    directory, *wanted = options.arguments
    failed = False
    for item in items:
        if wanted and item["id"] not in wanted:
            continue
        try:
            extract(options.vault, key, item, directory)
        except (InvalidTag, ValueError, OSError) as error:
            failed = True
            print(f"{item['id']} {item['name']!a}: {error or 'damaged'}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
