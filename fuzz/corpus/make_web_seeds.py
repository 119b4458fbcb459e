#!/usr/bin/env python3
"""Writes the seeds of fuzz_web_answer into its folder: answers of a web service, after a byte for the size of a block."""

import io
import pathlib
import zipfile

HERE = pathlib.Path(__file__).parent / "fuzz_web_answer"
HEAD = b"HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 40\r\n\r\n"


def write(name, block, answer):
    HERE.mkdir(exist_ok=True)
    (HERE / name).write_bytes(bytes([block]) + answer)


def archive(kind):
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w", kind) as zipped:
        for name in ("box.png", "../shot.png"):
            zipped.writestr(zipfile.ZipInfo(name), b"picture" * 20, kind)
    return file.getvalue()


write("news", 255, HEAD + "<NEWS>\r\ncafé\r\n</NEWS><VERSION>721</VERSION>".encode())
write("game", 6, HEAD + b"<CHEATS>a</CHEATS><REVIEWS>12345678</REVIEWS><TRIVIA>t</TRIVIA><COVER>3</COVER>")
write("challenge", 30, HEAD + b"<SCRAM>r=abcdef,s=AQID,i=4096</SCRAM>")
write("verdict", 0, HEAD + b"<SCRAM>v=6rriTRBi23WpRR/wtup+mMhUZUn/dB5nLTJRsjl95G4=</SCRAM><TOKEN>x</TOKEN>")
write("refused", 255, b"HTTP/1.1 404 Not Found\r\n\r\n")
write("no-headers", 1, b"HTTP/1.0 200\r\n\r\nbody")
write("stored", 255, HEAD + archive(zipfile.ZIP_STORED))
write("deflated", 100, HEAD + archive(zipfile.ZIP_DEFLATED))
