#!/usr/bin/env python3
"""Makes vaults, whole ones and one for each way of being wrong, without the program's code.

    make-vaults.py DIRECTORY            the small ones that are kept beside this file
    make-vaults.py --large DIRECTORY    those of whole megabytes, made when the tests run

Salts, nonces, ids and contents follow from their labels, so that a new run writes the same bytes.
Each directory gets a `vaults.json`: the password of all, and for each vault the error that
unlocking must give, or the items and the error, if any, that exporting each must give.
"""
import base64
import hashlib
import json
import pathlib
import struct
import sys
import uuid

from cryptography.hazmat.primitives import hashes
from cryptography.hazmat.primitives.ciphers.aead import AESGCM
from cryptography.hazmat.primitives.kdf.hkdf import HKDF

PASSWORD = "correct horse battery staple \u00e9\U0001f40e"
CHUNK = 1 << 20
FORMAT = "This Vault format is unsupported or damaged."
PASSWORD_OR_DAMAGE = "The password is incorrect, or the Vault metadata is damaged."
DAMAGED = "The encrypted file is damaged or incomplete. No restored file was saved."


def noise(label, size):
    return hashlib.shake_256(label.encode()).digest(size)


SALT = noise("salt", 32)
KEY = hashlib.pbkdf2_hmac("sha256", PASSWORD.encode(), SALT, 600_000)


def seal(key, nonce_label, data, associated_data):
    nonce = noise(nonce_label, 12)
    return nonce + AESGCM(key).encrypt(nonce, data, associated_data)


def item_of(label, content, name=None, **more):
    return {
        "id": str(uuid.UUID(bytes=noise("id " + label, 16), version=4)).upper(),
        "name": label if name is None else name,
        "size": len(content),
        "importedAt": 786_000_000.25,
        "sha256": hashlib.sha256(content).hexdigest(),
        **more,
    }


def frames_of(item, content):
    """The frames of an encrypted file, each of them whole."""
    size, count = len(content), max(-(-len(content) // CHUNK), 1)
    key = HKDF(hashes.SHA256(), 32, item["id"].encode(), b"ArdenoVault/file-key/v1").derive(KEY)
    result = []
    for index in range(count):
        associated_data = f"ArdenoVault/chunk/v1/{item['id']}/{size}/{count}/{index}".encode()
        box = seal(key, f"{item['id']} {index}", content[index * CHUNK:(index + 1) * CHUNK], associated_data)
        result.append(struct.pack(">I", len(box)) + box)
    return result


def base64_of(data):
    return base64.b64encode(data).decode()


def envelope_of(manifest, salt=SALT, **more):
    box = seal(KEY, "manifest", manifest, b"ArdenoVault/manifest/v1/PBKDF2-SHA256/600000/" + salt)
    return {"version": 1, "iterations": 600_000, "salt": base64_of(salt), "sealedManifest": base64_of(box), **more}


def dumps(value):
    return json.dumps(value, ensure_ascii=False).encode()


class Maker:
    def __init__(self, directory):
        self.directory = pathlib.Path(directory)
        self.index = {"password": PASSWORD, "vaults": []}

    def vault(self, name, envelope, files=(), **expected):
        """One vault; `envelope` is what lies in its manifest file, or the object to write there."""
        folder = self.directory / name
        folder.mkdir(parents=True, exist_ok=True)
        text = envelope if isinstance(envelope, bytes) else dumps(envelope)
        (folder / "manifest.ardeno-vault").write_bytes(text)
        for item, frames in files:
            (folder / (item["id"] + ".avault")).write_bytes(b"".join(frames))
        self.index["vaults"].append({"name": name, **expected})

    def whole(self, name, pairs):
        """A good vault of (item, content) pairs."""
        self.vault(name, envelope_of(dumps({"items": [item for item, _ in pairs]})),
                   [(item, frames_of(item, content)) for item, content in pairs],
                   items=[{"item": item} for item, _ in pairs])

    def refused(self, name, envelope, error=FORMAT):
        self.vault("refused-" + name, envelope, unlockError=error)

    def damaged(self, name, item, frames):
        self.vault("damaged-" + name, envelope_of(dumps({"items": [item]})), [(item, frames)],
                   items=[{"item": item, "error": DAMAGED}])

    def finish(self):
        (self.directory / "vaults.json").write_bytes(
            json.dumps(self.index, ensure_ascii=False, indent=1).encode() + b"\n")


def make_small(make):
    letter = item_of("letter.txt", b"hello", quarantine=base64_of(b"0083;6543;Browser;"))
    pairs = [
        (letter, b"hello"),
        (item_of("empty", b""), b""),
        (item_of("strange", b"\0\xff", name="a\n\"\\\u00e4\U0001f40e " + "x" * 240), b"\0\xff"),
    ]
    make.whole("whole", pairs)
    make.whole("whole-without-items", [])

    # What a reader must not mind: other key orders, other keys, white space, a lower-case id.
    odd = {"other": [[{"id": 1}]], **dict(reversed(letter.items())), "id": letter["id"].lower(), "quarantine": None}
    manifest = json.dumps({"note": {"items": []}, "items": [odd]}, indent=2).encode()
    envelope = dict(reversed(envelope_of(manifest).items()))
    make.vault("whole-in-another-hand", json.dumps({"x": None, **envelope}, indent=4).encode(),
               [(letter, frames_of(letter, b"hello"))],
               items=[{"item": {**letter, "quarantine": None}}])

    good = envelope_of(dumps({"items": [letter]}))
    box = base64.b64decode(good["sealedManifest"])
    flipped = bytes([box[20] ^ 1])
    for name, change in {
        "version-2": {"version": 2}, "version-text": {"version": "1"},
        "iterations-100000": {"iterations": 100_000}, "iterations-text": {"iterations": "600000"},
        "salt-short": {"salt": base64_of(SALT[:16])}, "salt-long": {"salt": base64_of(SALT + b"\0")},
        "salt-line-break": {"salt": good["salt"][:20] + "\n" + good["salt"][20:]},
        "box-line-breaks": {"sealedManifest": base64.encodebytes(box).decode()},
        "box-no-base64": {"sealedManifest": "*" + good["sealedManifest"][1:]},
        "box-no-padding": {"sealedManifest": base64_of(box + b"\0" * (3 - len(box) % 3 + 1)).rstrip("=")},
        "box-number": {"sealedManifest": 5}, "box-array": {"sealedManifest": [good["sealedManifest"]]},
        "deep": {"other": json.loads("[" * 80 + "]" * 80)},
    }.items():
        make.refused("envelope-" + name, {**good, **change})
    for name in good:
        make.refused("envelope-without-" + name, {key: value for key, value in good.items() if key != name})
    make.refused("envelope-empty", b"")
    make.refused("envelope-no-json", b"vault")
    make.refused("envelope-truncated", dumps(good)[:-1])
    make.refused("envelope-array", dumps([good]))
    make.refused("envelope-twice-version", dumps(good)[:-1] + b',"version":1}')
    make.refused("envelope-trailing", dumps(good) + b"{}")
    make.refused("envelope-not-utf8", dumps(good)[:-1] + b',"x":"\xff"}')

    for name, change in {
        "flipped-byte": {"sealedManifest": base64_of(box[:20] + flipped + box[21:])},
        "short-tag": {"sealedManifest": base64_of(box[:-1])},
        "nonce-only": {"sealedManifest": base64_of(box[:12])},
        "empty-box": {"sealedManifest": ""},
        "other-salt": {"salt": base64_of(noise("other salt", 32))},
    }.items():
        make.refused("sealed-" + name, {**good, **change}, PASSWORD_OR_DAMAGE)
    unbound = {**good, "sealedManifest": base64_of(seal(KEY, "manifest", dumps({"items": []}), b""))}
    make.refused("sealed-without-associated-data", unbound, PASSWORD_OR_DAMAGE)

    for name, change in {
        "id-no-uuid": {"id": "letter"}, "id-number": {"id": 5},
        "name-empty": {"name": ""}, "name-dot": {"name": "."}, "name-dots": {"name": ".."},
        "name-slash": {"name": "a/b"}, "name-nul": {"name": "a\0b"},
        "name-256-bytes": {"name": "\u00e4" * 128}, "name-null": {"name": None},
        "size-negative": {"size": -1}, "size-huge": {"size": 2**44 + 1}, "size-text": {"size": "5"},
        "size-fraction": {"size": 5.5}, "size-beyond-64-bits": {"size": 2**64},
        "date-text": {"importedAt": "2026-01-01"},
        "sha256-capitals": {"sha256": letter["sha256"].upper()}, "sha256-short": {"sha256": letter["sha256"][1:]},
        "sha256-array": {"sha256": [letter["sha256"]]},
        "quarantine-long": {"quarantine": base64_of(b"q" * 16_385)}, "quarantine-no-base64": {"quarantine": "a"},
    }.items():
        make.refused("item-" + name, envelope_of(dumps({"items": [{**letter, **change}]})))
    for name in ("id", "name", "size", "importedAt", "sha256"):
        item = {key: value for key, value in letter.items() if key != name}
        make.refused("item-without-" + name, envelope_of(dumps({"items": [item]})))
    make.refused("item-twice-name", envelope_of(dumps({"items": [letter]})[:-3] + b',"name":"b"}]}'))
    for name, manifest in {
        "same-id-twice": dumps({"items": [letter, letter]}), "list-missing": b"{}",
        "list-object": dumps({"items": {"0": letter}}), "list-of-text": dumps({"items": ["letter"]}),
        "list-twice": b'{"items":[],"items":[]}', "array": b"[]", "text": b'"items"', "no-json": b"\xff",
    }.items():
        make.refused("manifest-" + name, envelope_of(manifest))

    first, second = b"the first", b"the other"  # of one size
    one, other = item_of("one", first), item_of("other", second)
    frames, foreign = frames_of(one, first)[0], frames_of(other, second)[0]
    make.damaged("flipped-byte", one, [frames[:20] + bytes([frames[20] ^ 1]) + frames[21:]])
    make.damaged("flipped-nonce", one, [frames[:4] + bytes([frames[4] ^ 1]) + frames[5:]])
    make.damaged("flipped-tag", one, [frames[:-1] + bytes([frames[-1] ^ 1])])
    make.damaged("trailing-byte", one, [frames, b"\0"])
    make.damaged("truncated", one, [frames[:-1]])
    make.damaged("truncated-in-length", one, [frames[:3]])
    make.damaged("without-frames", one, [])
    make.damaged("length-longer", one, [struct.pack(">I", len(first) + 29), frames[4:]])
    make.damaged("length-huge", one, [b"\xff\xff\xff\xff", frames[4:]])
    make.damaged("two-frames-for-one", one, [frames, frames])
    make.damaged("of-another-item", one, [foreign])
    make.damaged("of-another-size", {**one, "size": len(first) + 1}, [frames])
    make.damaged("of-another-digest", {**one, "sha256": other["sha256"]}, [frames])
    make.damaged("empty-without-frame", item_of("empty", b""), [])
    make.vault("damaged-file-missing", envelope_of(dumps({"items": [one]})),
               items=[{"item": one, "error": DAMAGED}])


def make_large(make):
    make.whole("whole", [(item_of(f"{size}", noise("x", size)), noise("x", size))
                         for size in (CHUNK - 1, CHUNK, CHUNK + 1, 2 * CHUNK, 5 * CHUNK + 7)])
    content = noise("chunks", 3 * CHUNK)
    item = item_of("chunks", content)
    a, b, c = frames_of(item, content)
    shorter = frames_of(item_of("chunks", content[:2 * CHUNK]), content[:2 * CHUNK])
    make.damaged("chunks-swapped", item, [b, a, c])
    make.damaged("chunk-missing", item, [a, c])
    make.damaged("last-chunk-missing", item, [a, b])
    make.damaged("last-chunk-twice", item, [a, b, c, c])
    make.damaged("chunk-of-another-size", item, [a, shorter[1], c])
    make.damaged("empty-chunk-appended", item, [a, b, c, frames_of(item_of("empty", b""), b"")[0]])


def main():
    large = "--large" in sys.argv
    (directory,) = [argument for argument in sys.argv[1:] if argument != "--large"]
    make = Maker(directory)
    (make_large if large else make_small)(make)
    make.finish()


main()
