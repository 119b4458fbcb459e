"""What the service answers: files of a folder, and the few answers that cannot be files."""

import dataclasses
import pathlib
import threading
import time
import urllib.parse

TEXT = "text/plain; charset=utf-8"
ZIP = "application/zip"

LONGEST_NAME = 180  # characters of a game's name


@dataclasses.dataclass
class Answer:
    code: int = 200
    body: bytes = b""
    kind: str = TEXT
    is_file: bool = False


def file_name(game):
    """The name of a game's files: lower case for A to Z, and '_' for what no file name may hold.

    The result never names a folder, nor a file that the host's system hides.
    """
    name = "".join(
        "_" if c in '<>:"/\\|?*' or ord(c) < 32 or ord(c) == 127 else c.lower() if c.isascii() else c
        for c in game[:LONGEST_NAME]
    )
    return "_" + name[1:] if name.startswith(".") else name


class Answers:
    """Finds the answer to a path and a query. Any thread."""

    def __init__(self, folder, door, clock=time.time):
        self.folder = pathlib.Path(folder)
        self.door = door
        self.clock = clock
        self.lock = threading.Lock()

    def of_address(self, address):
        """The answer to what stands in a request's first line, which may be anything."""
        try:
            parts = urllib.parse.urlsplit(address)
        except ValueError:  # a bracket that is not closed, for one
            return Answer(400)
        return self.find(parts.path, parts.query)

    def find(self, path, query):
        try:
            fields = dict(urllib.parse.parse_qsl(query, max_num_fields=16))
        except ValueError:
            return Answer(400)
        if fields:
            return self.of_query(fields)
        return self.of_path(urllib.parse.unquote(path))

    def of_query(self, fields):
        number = fields.get("m")
        if number == "2":
            return self.file("news.txt")
        if number == "3":
            return self.file("games", file_name(fields.get("n", "")) + ".txt")
        if number in ("4", "5"):
            return self.report("started" if number == "4" else "stopped", fields)
        if number == "6":
            return tags(SCRAM=self.door.challenge(fields.get("c", "")))
        if number == "7":
            message, token, account = self.door.prove(fields.get("c", ""))
            return tags(SCRAM=message, TOKEN=token, ACCOUNT=account)
        if number == "8":
            self.door.close(fields.get("u", ""), fields.get("t", ""))
            return Answer()
        if number == "9":
            member = self.door.member(fields.get("u", ""), fields.get("t", ""))
            return tags(LOGIN="ended" if member is None else "good")
        return Answer(404)

    def of_path(self, path):
        """The same files by their own paths, for a web server or a cache that stands before this one."""
        for prefix, ending, kind in (
            ("/sms/covers/", ".zip", ZIP),
            ("/covers/", ".zip", ZIP),
            ("/games/", ".txt", TEXT),
        ):
            if path.startswith(prefix) and path.endswith(ending):
                name = file_name(path[len(prefix) : -len(ending)])
                return self.file(*prefix.strip("/").split("/"), name + ending, kind=kind)
        return self.file("news.txt") if path == "/news.txt" else Answer(404)

    def file(self, *parts, kind=TEXT):
        try:
            return Answer(200, self.folder.joinpath(*parts).read_bytes(), kind, True)
        except OSError:
            return Answer(404)

    def report(self, what, fields):
        """Adds a line to reports.txt: time, member, what, system and game."""
        member = self.door.member(fields.get("u", ""), fields.get("t", ""))
        system = fields.get("s", "")
        if member is None:
            return Answer(403)
        if not (system.isascii() and system.isdigit() and len(system) < 4):
            return Answer(400)
        game = "".join(c for c in fields.get("n", "") if c.isprintable())[:LONGEST_NAME]
        when = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(self.clock()))
        with self.lock, open(self.folder / "reports.txt", "a", encoding="utf-8") as reports:
            reports.write("\t".join((when, member, what, system, game)) + "\n")
        return Answer()


def tags(**values):
    return Answer(body="".join(f"<{tag}>{text}</{tag}>\n" for tag, text in values.items() if text).encode())
