#!/usr/bin/env python3
"""Writes the seeds of fuzz_room_model into its folder: models of a few triangles, chunk by chunk."""

import pathlib
import struct

HERE = pathlib.Path(__file__).parent / "fuzz_room_model"


def chunk(number, body):
    return struct.pack("<HI", number, 6 + len(body)) + body


def text(value):
    return value.encode() + b"\0"


def words(*values):
    return struct.pack(f"<{len(values)}H", *values)


def floats(*values):
    return struct.pack(f"<{len(values)}f", *values)


def material(name, parts=b""):
    return chunk(0xAFFF, chunk(0xA000, text(name)) + parts)


def mesh(groups, coordinates=True):
    vertices = chunk(0x4110, words(4) + floats(0, 0, 0, 2, 0, 0, 2, 0, 3, 0, 1, 3))
    images = chunk(0x4140, words(4) + floats(0, 0, 1, 0, 1, 1, 0, 1)) if coordinates else b""
    listed = b"".join(chunk(0x4130, text(name) + words(len(faces), *faces)) for name, faces in groups)
    faces = chunk(0x4120, words(2, 0, 1, 2, 7, 0, 2, 3, 7) + listed)
    return chunk(0x4100, vertices + images + faces)


def model(name, body):
    HERE.mkdir(exist_ok=True)
    (HERE / name).write_bytes(chunk(0x4D4D, chunk(0x0002, words(3, 0)) + chunk(0x3D3D, body)))


wood = material("wood", chunk(0xA020, chunk(0x0011, bytes((200, 120, 60))))
                + chunk(0xA030, chunk(0x0010, floats(0.5, 0.5, 0.5)))
                + chunk(0xA040, chunk(0x0030, words(40)))
                + chunk(0xA200, chunk(0x0030, words(100)) + chunk(0xA300, text("wood.jpg"))))
lamp = material("lamp", chunk(0xA084, chunk(0x0031, floats(0.75)))
                + chunk(0xA020, chunk(0x0013, floats(1, 0.9, 0.7)) + chunk(0x0012, bytes(3))))
table = chunk(0x4000, text("table") + mesh([("wood", [0, 1])]))
shade = chunk(0x4000, text("shade") + mesh([("lamp", [1]), ("wood", [0])], False))

model("textured.3ds", wood + table)
model("plain.3ds", lamp + wood + shade)
model("two-objects.3ds", table + shade + wood + lamp)
model("unknown-material.3ds", lamp + table)
model("empty.3ds", b"")
