"""The service's side of SCRAM-SHA-256 (RFC 5802, RFC 7677), and the tokens of members who are logged in.

A member's file has no password, and nothing from which a login could be made.
"""

import base64
import hashlib
import hmac
import os
import re
import secrets
import threading
import time

ITERATIONS = 60000
MOST_PENDING = 1000  # challenges; the oldest is dropped for a new one
MOST_TOKENS = 10000
NAME = re.compile(r"[A-Za-z0-9][A-Za-z0-9._-]{0,31}")
FIRST = re.compile(r"n,,(n=([^,]+),r=([!-+\--~]{16,64}))")
FINAL = re.compile(r"(c=biws,r=([!-+\--~]{1,200})),p=([A-Za-z0-9+/]{43}=)")


def text(data):
    return base64.b64encode(data).decode()


def mac(key, message):
    return hmac.new(key, message, hashlib.sha256).digest()


def keys(password, salt, iterations):
    """The stored key and the server key of a password."""
    salted = hashlib.pbkdf2_hmac("sha256", password.encode(), salt, iterations)
    return hashlib.sha256(mac(salted, b"Client Key")).digest(), mac(salted, b"Server Key")


class Members:
    """A folder with a file for each member, readable by its owner alone."""

    def __init__(self, folder):
        self.folder = folder

    def path(self, name):
        """Names differ by more than case, as file names must on some systems."""
        return self.folder / (name.lower() + ".txt")

    def add(self, name, password, account=""):
        if not NAME.fullmatch(name):
            raise ValueError("A name has 1 to 32 letters, digits, dots, dashes and underscores.")
        if len(password) < 8:
            raise ValueError("A password has at least 8 characters.")
        salt = secrets.token_bytes(16)
        stored, server = keys(password, salt, ITERATIONS)
        account = "".join(c for c in account if c.isprintable() and c not in "<>")
        lines = (
            f"name {name}\nsalt {text(salt)}\niterations {ITERATIONS}\n"
            f"stored {text(stored)}\nserver {text(server)}\naccount {account}\n"
        )
        self.write(self.path(name), lines)

    def find(self, name):
        """(salt, iterations, stored key, server key, account), or None."""
        if not NAME.fullmatch(name):
            return None
        try:
            lines = self.path(name).read_text(encoding="utf-8").splitlines()
            values = dict(line.split(" ", 1) for line in lines)
            if values["name"] != name:
                return None
            return (
                base64.b64decode(values["salt"], validate=True),
                int(values["iterations"]),
                base64.b64decode(values["stored"], validate=True),
                base64.b64decode(values["server"], validate=True),
                values["account"],
            )
        except (OSError, ValueError, KeyError):
            return None

    def stranger(self, name):
        """What is answered for an unknown name: the same salt every time, so that nobody learns by asking
        which names are members."""
        path = self.folder / ".secret"
        try:
            secret = path.read_text(encoding="ascii")
        except OSError:
            secret = secrets.token_hex(32)
            self.write(path, secret)
        salt = mac(secret.encode(), name.encode("utf-8", "replace"))[:16]
        return salt, ITERATIONS, secrets.token_bytes(32), secrets.token_bytes(32), ""

    def write(self, path, lines):
        self.folder.mkdir(mode=0o700, exist_ok=True)
        temporary = path.with_name(f".{path.name}.{secrets.token_hex(4)}")
        with open(os.open(temporary, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600), "w", encoding="utf-8") as file:
            file.write(lines)
        temporary.replace(path)


class Login:
    """Challenges, proofs and tokens. Any thread."""

    def __init__(self, members, challenge_seconds, token_seconds, clock=time.monotonic):
        self.members = members
        self.challenge_seconds = challenge_seconds
        self.token_seconds = token_seconds
        self.clock = clock
        self.lock = threading.Lock()
        self.pending = {}  # nonce: (end, name, first message and challenge, member)
        self.tokens = {}  # token: (end, name)

    def challenge(self, message):
        """The answer to a first message."""
        found = FIRST.fullmatch(message)
        if not found:
            return "e=invalid-encoding"
        first, name, nonce = found.groups()
        name = name.replace("=2C", ",").replace("=3D", "=")
        nonce += text(secrets.token_bytes(18))
        member = self.members.find(name) or self.members.stranger(name)
        challenge = f"r={nonce},s={text(member[0])},i={member[1]}"
        with self.lock:
            while len(self.pending) >= MOST_PENDING:
                del self.pending[next(iter(self.pending))]
            end = self.clock() + self.challenge_seconds
            self.pending[nonce] = (end, name, f"{first},{challenge}", member)
        return challenge

    def prove(self, message):
        """(last message, token, account) for a proof. A challenge is good for one proof, right or wrong."""
        found = FINAL.fullmatch(message)
        if not found:
            return "e=invalid-encoding", "", ""
        without_proof, nonce, proof = found.groups()
        with self.lock:
            end, name, covered, member = self.pending.pop(nonce, (None, None, None, None))
        if end is None or self.clock() >= end:
            return "e=unknown-challenge", "", ""
        _, _, stored, server, account = member
        covered = f"{covered},{without_proof}".encode()
        signature = mac(stored, covered)
        key = bytes(a ^ b for a, b in zip(base64.b64decode(proof), signature))
        if not hmac.compare_digest(hashlib.sha256(key).digest(), stored):
            return "e=invalid-proof", "", ""
        token = secrets.token_urlsafe(24)
        with self.lock:
            while len(self.tokens) >= MOST_TOKENS:
                del self.tokens[next(iter(self.tokens))]
            self.tokens[token] = (self.clock() + self.token_seconds, name)
        return "v=" + text(mac(server, covered)), token, account

    def member(self, name, token):
        """The name, if that token is the member's and still good; None otherwise."""
        with self.lock:
            end, owner = self.tokens.get(token, (None, None))
            if end is not None and self.clock() >= end:
                del self.tokens[token]
                return None
            return owner if owner == name else None

    def close(self, name, token):
        if self.member(name, token) is not None:
            with self.lock:
                self.tokens.pop(token, None)
