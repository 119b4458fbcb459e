#!/usr/bin/env python3
"""Writes the seeds of fuzz_archive and fuzz_state_piece into their folders."""

import io
import pathlib
import struct
import zipfile

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
