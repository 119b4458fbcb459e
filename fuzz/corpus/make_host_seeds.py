#!/usr/bin/env python3
"""Writes the seeds of fuzz_archive, fuzz_snapshot and fuzz_state_piece into their folders."""

import hashlib
import io
import pathlib
import struct
import zipfile
import zlib

HERE = pathlib.Path(__file__).parent


def piece(body):
    return struct.pack("<BI", 1, 5 + len(body)) + body


def archive(entries, method):
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", method) as zip_file:
        for name, data in entries:
            info = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            zip_file.writestr(info, data, compress_type=method)
    return out.getvalue()


def write(folder, name, data):
    (HERE / folder).mkdir(exist_ok=True)
    (HERE / folder / name).write_bytes(data)


taken = [("a5a5a5a5a5a5", piece(struct.pack("<I", 7) + bytes(8))), ("other", b"x" * 40)]
refused = [("other", b"x" * 40), ("A5A5A5A5A5A5", piece(bytes(3)))]
for word, method in (("stored", zipfile.ZIP_STORED), ("deflated", zipfile.ZIP_DEFLATED)):
    write("fuzz_archive", f"taken-{word}.zip", archive(taken, method))
    write("fuzz_archive", f"refused-{word}.zip", archive(refused, method))

# The record of fuzz_state_piece.cpp, field by field.
write("fuzz_state_piece", "whole", piece(struct.pack(
    "<BhIQ?Hfd3H4i4B3?2H", 1, -2, 3, 4, True, 9, 0.5, 0.25, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,
    True, False, True, 0, 9)))


def png_chunk(tag, body):
    return struct.pack(">I", len(body)) + tag + body + struct.pack(">I", zlib.crc32(tag + body))


def png(width, height, rows, kind, bits=8):
    """`kind` is the format's colour type: 0 grey, 2 RGB, 6 RGB and alpha."""
    return (b"\x89PNG\r\n\x1a\n"
            + png_chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, bits, kind, 0, 0, 0))
            + png_chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows), 9))
            + png_chunk(b"IEND", b""))


def about(state, picture, width, height, texts):
    part = lambda name, body, more="": (f'<{name} size="{len(body)}" sha256="{hashlib.sha256(body).hexdigest()}"'
                                        f"{more}/>")
    size = f' width="{width}" height="{height}" aspect="1.25"'
    return ('<snapshot version="1" taken="1234567890" played="3723">' + part("state", state)
            + part("picture", picture, size)
            + "".join(f'<text name="{name}" value="{value}"/>' for name, value in texts) + "</snapshot>").encode()


colours = png(2, 2, [bytes([255, 0, 0, 0, 255, 0]), bytes([0, 0, 255, 9, 9, 9])], 2)
texts = [("game", "Luciole &amp; &#10;"), ("set", "3")]
whole = [("about.xml", about(b"s", colours, 2, 2, texts)), ("picture.png", colours), ("state", b"s")]
for word, method in (("stored", zipfile.ZIP_STORED), ("deflated", zipfile.ZIP_DEFLATED)):
    write("fuzz_snapshot", f"whole-{word}", b"\0" + archive(whole, method))
write("fuzz_snapshot", "about", b"\1" + about(b"s", b"p", 1, 1, texts))
write("fuzz_snapshot", "picture-rgb", b"\2" + colours)
write("fuzz_snapshot", "picture-alpha", b"\2" + png(1, 2, [b"abcd", b"efgh"], 6))
write("fuzz_snapshot", "picture-grey", b"\2" + png(3, 1, [b"abc"], 0))
