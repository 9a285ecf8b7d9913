#!/usr/bin/env python3
"""Looks for keys and passwords in what a core dump of an unlocked process would hold.

    key_memory_test.py KEY_HOLDER

A dump leaves out the mappings marked "dd" in smaps; the rest of the memory is its image.
"""
import base64
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import tempfile

from cryptography.hazmat.primitives import hashes
from cryptography.hazmat.primitives.kdf.hkdf import HKDF

PASSWORD = b"canary in a core image"


def memory_of(pid):
    """(address, flags, bytes) of every readable mapping."""
    regions, mapping = [], None
    for line in open(f"/proc/{pid}/smaps"):
        match = re.match(r"([0-9a-f]+)-([0-9a-f]+) (r?)", line)
        if match and match[3]:
            mapping = int(match[1], 16), int(match[2], 16)
        elif match:
            mapping = None
        elif line.startswith("VmFlags:") and mapping:
            regions.append((*mapping, line.split()[1:]))
    with open(f"/proc/{pid}/mem", "rb", buffering=0) as memory:
        for start, end, flags in regions:
            try:
                memory.seek(start)
                yield start, flags, memory.read(end - start)
            except (OSError, OverflowError, ValueError):
                continue  # the kernel's own pages


def places(pid, secret):
    return [flags for _, flags, data in memory_of(pid) if secret in data]


def main(key_holder):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "file").write_bytes(b"marker of the content " * 100_000)
        holder = subprocess.Popen([key_holder, folder / "vault", folder / "file", folder / "copy"],
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        holder.stdin.write(PASSWORD + b"\n")
        holder.stdin.flush()
        state = holder.stdout.readline().decode().split()
        assert state == ["unlocked", "dumpable=0", "cores=0"], state

        envelope = json.loads((folder / "vault/manifest.ardeno-vault").read_bytes())
        key = hashlib.pbkdf2_hmac("sha256", PASSWORD, base64.b64decode(envelope["salt"]), 600_000)
        (item,) = (folder / "vault").glob("*.avault")
        item_key = HKDF(hashes.SHA256(), 32, item.stem.encode(), b"ArdenoVault/file-key/v1").derive(key)

        assert places(holder.pid, item.stem.encode()), "the memory cannot be searched"
        found = places(holder.pid, key)
        assert len(found) == 1, f"the key lies in {len(found)} places"
        assert {"dd", "lo", "wf"} <= set(found[0]), f"its page is not protected: {found[0]}"
        assert not places(holder.pid, item_key), "the key of an item was not wiped"
        assert not places(holder.pid, PASSWORD), "the password was not wiped"

        holder.stdin.write(b"\n")
        holder.stdin.flush()
        state = holder.stdout.readline().decode().split()
        assert state == ["locked", "dumpable=1", "cores=1"], state
        assert not places(holder.pid, key), "the key outlived its use"
        holder.stdin.close()
        assert holder.wait() == 0
    return 0


sys.exit(main(sys.argv[1]))
