#!/usr/bin/env python3
"""Writes the seeds of fuzz_game_file, fuzz_zip and fuzz_convert into their folders."""

import hashlib
import io
import lzma
import pathlib
import struct
import zipfile

HERE = pathlib.Path(__file__).parent
IMAGE = b"a small image " * 20
MACHINES = {
    1: struct.pack("<4sIB3xIIHBB", b"SMS0", 0, 0, 1, 1, 1, 63, 0),
    2: struct.pack("<4s16xHB", b"GAG0", 1, 1),
    4: b"GDF0",
    5: b"GDF0",
    6: struct.pack("<4sIII", b"ARC0", 0, 1, 0),
}


def name(title, roms):
    record = struct.pack("<4sBBBB8x96s96s8s44s44s", b"NAME", 1, 1, 91, 1, title, b"", b"EU", title, b"")
    return record + bytes(roms).ljust(64, b"\xff")


def rom(title, data):
    return struct.pack("<4sI8x32s32s", b"ROM0", len(data), title, hashlib.sha256(data).digest())


def records(system, pieces, names, machine=None, packed=b""):
    body = b"".join(name(*n) for n in names)
    body += b"".join(rom(b"v1.%d" % i, piece) for i, piece in enumerate(pieces))
    body += (machine or MACHINES[system]) * len(names)
    size = sum(map(len, pieces))
    header = struct.pack("<4sIIIH6x32s32s", b"GAME", 88 + len(body), size, len(packed), system,
                         hashlib.sha256(packed).digest(), bytes(32))
    return header + body


def packed(data):
    filters = [{"id": lzma.FILTER_LZMA1, "lc": 3, "lp": 0, "pb": 2, "dict_size": 1 << 22}]
    return b"\x5d\x00\x00\x40\x00" + lzma.compress(data, lzma.FORMAT_RAW, filters=filters)


def game(system, machine=None):
    pieces = [IMAGE[:100], IMAGE[100:]]
    data = packed(IMAGE)
    return records(system, pieces, [(b"One", [0, 1]), (b"Two", [1])], machine, data) + data


def archive(method, zip64=False):
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", method) as writer:
        for title, data in (("game.sms", IMAGE), ("folder/\u00e9.gg", b""), ("../up.md", b"x" * 300)):
            entry = zipfile.ZipInfo(title)
            entry.compress_type = method
            with writer.open(entry, "w", force_zip64=zip64) as member:
                member.write(data)
    return out.getvalue()


def conversion(system, stem, database, image):
    return struct.pack("<BBH", system, len(stem), len(database)) + stem + database + image


def write(folder, title, data):
    path = HERE / folder / title
    path.parent.mkdir(exist_ok=True)
    path.write_bytes(data)


def main():
    for number in MACHINES:
        write("fuzz_game_file", f"system-{number}.game", game(number))
    write("fuzz_game_file", "short-default.game", game(2, b"GDF0"))
    write("fuzz_game_file", "header-only.game", records(5, [], []))
    gada = b"GADA" + b"set".ljust(64, b"\0")
    base = records(6, [IMAGE], [(b"Arcade", [0])])
    write("fuzz_game_file", "arcade.dat", gada + base + base)

    write("fuzz_zip", "stored.zip", archive(zipfile.ZIP_STORED))
    write("fuzz_zip", "deflated.zip", archive(zipfile.ZIP_DEFLATED))
    write("fuzz_zip", "zip64.zip", archive(zipfile.ZIP_DEFLATED, True))

    known = records(5, [IMAGE], [(b"Known", [0]), (b"Again", [0])])
    write("fuzz_convert", "unknown-sms", conversion(1, b"stem.sms", b"", IMAGE[:257]))
    write("fuzz_convert", "known-nes", conversion(5, b"stem.nes", known, IMAGE))
    write("fuzz_convert", "known-twice-nes", conversion(5, b"stem", known + known, IMAGE))
    write("fuzz_convert", "dump-md", conversion(4, b"stem.smd", b"", bytes(512) + bytes(range(256)) * 64))
    write("fuzz_convert", "arcade", conversion(6, b"stem", known, IMAGE))


if __name__ == "__main__":
    main()
