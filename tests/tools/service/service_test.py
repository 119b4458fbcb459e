"""Tests of tools/service: the answers, and the login's server side against the example of RFC 7677."""

import base64
import hashlib
import hmac
import pathlib
import stat
import sys
import tempfile
import unittest
from unittest import mock

sys.dont_write_bytecode = True
sys.path.insert(0, sys.argv.pop(1))

import answers
import login


def mac(key, message):
    return hmac.new(key, message.encode(), hashlib.sha256).digest()


def proof(password, first, challenge):
    """What a client answers, written from RFC 5802 and not from the service's code."""
    values = dict(part.split("=", 1) for part in challenge.split(","))
    salted = hashlib.pbkdf2_hmac("sha256", password.encode(), base64.b64decode(values["s"]), int(values["i"]))
    client = mac(salted, "Client Key")
    without = f"c=biws,r={values['r']}"
    covered = f"{first},{challenge},{without}"
    signature = mac(hashlib.sha256(client).digest(), covered)
    answer = base64.b64encode(bytes(a ^ b for a, b in zip(client, signature))).decode()
    server = base64.b64encode(mac(mac(salted, "Server Key"), covered)).decode()
    return f"{without},p={answer}", f"v={server}"


class Folder(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.now = 1000.0
        self.members = login.Members(self.folder / "members")
        self.door = login.Login(self.members, 60, 3600, lambda: self.now)
        self.answers = answers.Answers(self.folder, self.door, lambda: 0)
        iterations = mock.patch.object(login, "ITERATIONS", 4096)  # the fewest, for speed
        iterations.start()
        self.addCleanup(iterations.stop)

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text)

    def log_in(self, name="anna", password="correct horse"):
        first = f"n={name},r=fyko+d2lbbFgONRv9qkxdawL"
        message, expected = proof(password, first, self.door.challenge("n,," + first))
        return message, expected, self.door.prove(message)


class Login(Folder):
    def test_example_of_rfc_7677(self):
        salt = base64.b64decode("W22ZaJ0SNY7soEsUEjb6gQ==")
        stored, server = login.keys("pencil", salt, 4096)
        self.members.write(
            self.members.folder / "user.txt",
            f"name user\nsalt W22ZaJ0SNY7soEsUEjb6gQ==\niterations 4096\nstored {login.text(stored)}\n"
            f"server {login.text(server)}\naccount \n",
        )
        # The service's part of the nonce, which the door makes at random.
        with mock.patch.object(login, "text", wraps=login.text) as text:
            text.side_effect = lambda data: (
                "%hvYDpWUa2RaTCAfuxFIlj)hNlF$k0" if len(data) == 18 else base64.b64encode(data).decode()
            )
            challenge = self.door.challenge("n,,n=user,r=rOprNGfwEbeRWgbNEkqO")
        self.assertEqual(
            challenge,
            "r=rOprNGfwEbeRWgbNEkqO%hvYDpWUa2RaTCAfuxFIlj)hNlF$k0,s=W22ZaJ0SNY7soEsUEjb6gQ==,i=4096",
        )
        message, token, _ = self.door.prove(
            "c=biws,r=rOprNGfwEbeRWgbNEkqO%hvYDpWUa2RaTCAfuxFIlj)hNlF$k0,"
            "p=dHzbZapWIk4jUhN+Ute9ytag9zjfMHgsqmmiz7AndVQ="
        )
        self.assertEqual(message, "v=6rriTRBi23WpRR/wtup+mMhUZUn/dB5nLTJRsjl95G4=")
        self.assertTrue(token)

    def test_right_proof_is_answered_with_a_token(self):
        self.members.add("anna", "correct horse", "Founding <member>")
        _, expected, (message, token, account) = self.log_in()
        self.assertEqual(message, expected)
        self.assertEqual(account, "Founding member")
        self.assertEqual(self.door.member("anna", token), "anna")
        self.assertIsNone(self.door.member("bert", token))

    def test_wrong_password_and_unknown_name_are_answered_alike(self):
        self.members.add("anna", "correct horse")
        self.assertEqual(self.log_in(password="wrong horse")[2], ("e=invalid-proof", "", ""))
        self.assertEqual(self.log_in(name="bert")[2], ("e=invalid-proof", "", ""))

    def test_unknown_name_has_the_same_salt_every_time(self):
        salts = {self.door.challenge("n,,n=bert,r=0123456789abcdef").split(",")[1] for _ in range(3)}
        self.assertEqual(len(salts), 1)
        other = self.door.challenge("n,,n=carl,r=0123456789abcdef").split(",")[1]
        self.assertNotIn(other, salts)

    def test_replayed_proof_is_refused(self):
        self.members.add("anna", "correct horse")
        message, _, (verdict, _, _) = self.log_in()
        self.assertTrue(verdict.startswith("v="))
        self.assertEqual(self.door.prove(message)[0], "e=unknown-challenge")

    def test_challenge_is_good_for_one_wrong_proof(self):
        self.members.add("anna", "correct horse")
        first = "n=anna,r=fyko+d2lbbFgONRv9qkxdawL"
        challenge = self.door.challenge("n,," + first)
        self.assertEqual(self.door.prove(proof("wrong horse", first, challenge)[0])[0], "e=invalid-proof")
        self.assertEqual(self.door.prove(proof("correct horse", first, challenge)[0])[0], "e=unknown-challenge")

    def test_expired_proof_is_refused(self):
        self.members.add("anna", "correct horse")
        first = "n=anna,r=fyko+d2lbbFgONRv9qkxdawL"
        for seconds, begin in ((59.9, "v="), (60, "e=unknown-challenge")):
            message, _ = proof("correct horse", first, self.door.challenge("n,," + first))
            self.now += seconds
            self.assertTrue(self.door.prove(message)[0].startswith(begin), seconds)

    def test_token_ends(self):
        self.members.add("anna", "correct horse")
        token = self.log_in()[2][1]
        self.now += 3599
        self.assertEqual(self.door.member("anna", token), "anna")
        self.now += 1
        self.assertIsNone(self.door.member("anna", token))

    def test_logout_ends_the_token(self):
        self.members.add("anna", "correct horse")
        token = self.log_in()[2][1]
        self.door.close("bert", token)
        self.assertEqual(self.door.member("anna", token), "anna")
        self.door.close("anna", token)
        self.assertIsNone(self.door.member("anna", token))

    def test_pending_challenges_are_bounded(self):
        for _ in range(login.MOST_PENDING + 5):
            self.door.challenge("n,,n=bert,r=0123456789abcdef")
        self.assertEqual(len(self.door.pending), login.MOST_PENDING)

    def test_nonsense_is_refused(self):
        for message in ("", "n,,n=anna", "y,,n=anna,r=0123456789abcdef", "n,,n=a,b,r=0123456789abcdef"):
            self.assertEqual(self.door.challenge(message), "e=invalid-encoding", message)
        for message in ("", "c=biws,r=abc", "c=biws,r=abc,p=AAAA"):
            self.assertEqual(self.door.prove(message)[0], "e=invalid-encoding", message)

    def test_members_file_is_its_owners_and_has_no_password(self):
        self.members.add("anna", "correct horse")
        path = self.folder / "members" / "anna.txt"
        self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o600)
        self.assertNotIn("horse", path.read_text())

    def test_names_that_are_paths_are_refused(self):
        for name in ("", "../anna", "a/b", ".secret", "a" * 33, "a b"):
            with self.assertRaises(ValueError):
                self.members.add(name, "correct horse")
            self.assertIsNone(self.members.find(name))


class Answers(Folder):
    def test_news_is_the_file(self):
        self.write("news.txt", b"<NEWS>x</NEWS>")
        for path, query in (("/", "m=2"), ("/any", "m=2"), ("/news.txt", "")):
            answer = self.answers.find(path, query)
            self.assertEqual((answer.code, answer.body), (200, b"<NEWS>x</NEWS>"))
            self.assertTrue(answer.is_file)

    def test_game_is_found_by_its_folded_name(self):
        self.write("games/quest_ l'\u00e9t\u00e9 2.txt", b"text")
        query = "m=3&s=1&n=Quest%3A%20L%27%C3%A9t%C3%A9%202"
        self.assertEqual(self.answers.find("/", query).body, b"text")

    def test_unknown_game_is_404(self):
        self.assertEqual(self.answers.find("/", "m=3&s=1&n=none").code, 404)
        self.assertEqual(self.answers.find("/", "m=10").code, 404)

    def test_covers_have_a_folder_for_one_machine(self):
        self.write("sms/covers/a b.zip", b"sms")
        self.write("covers/a b.zip", b"other")
        self.assertEqual(self.answers.find("/sms/covers/a%20b.zip", "").body, b"sms")
        self.assertEqual(self.answers.find("/covers/a%20b.zip", "").body, b"other")
        self.assertEqual(self.answers.find("/covers/a%20b.zip", "").kind, answers.ZIP)

    def test_no_path_leads_out_of_the_folders(self):
        self.members.add("anna", "correct horse")
        self.write("members/anna.zip", b"secret")
        for path in (
            "/members/anna.txt",
            "/covers/../members/anna.zip",
            "/covers/..%2fmembers%2fanna.zip",
            "/covers/%2e%2e%5cmembers/anna.zip",
            "/games/../members/anna.txt",
            "/reports.txt",
            "/covers/a%00.zip",
        ):
            self.assertEqual(self.answers.find(path, "").code, 404, path)
        for name in ("..%2Fmembers%2Fanna", "%2Fetc%2Fpasswd", "%00"):
            self.assertEqual(self.answers.find("/", "m=3&s=1&n=" + name).code, 404, name)

    def test_nonsense_for_an_address_is_400(self):
        self.write("news.txt", b"news")
        self.assertEqual(self.answers.of_address("http://[").code, 400)
        self.assertEqual(self.answers.of_address("//[::1").code, 400)
        self.assertEqual(self.answers.of_address("/?m=2").body, b"news")
        self.assertEqual(self.answers.of_address("http://host:8080/?m=2").body, b"news")

    def test_says_whether_a_token_is_good(self):
        self.members.add("anna", "correct horse")
        token = self.log_in()[2][1]
        self.assertEqual(self.answers.find("/", f"m=9&u=anna&t={token}").body, b"<LOGIN>good</LOGIN>\n")
        self.now += 3600
        self.assertEqual(self.answers.find("/", f"m=9&u=anna&t={token}").body, b"<LOGIN>ended</LOGIN>\n")
        self.assertEqual(self.answers.find("/", "m=9").body, b"<LOGIN>ended</LOGIN>\n")

    def test_reports_need_a_token(self):
        self.members.add("anna", "correct horse")
        token = self.log_in()[2][1]
        self.assertEqual(self.answers.find("/", "m=4&s=1&n=Game&u=anna&t=guess").code, 403)
        self.assertEqual(self.answers.find("/", f"m=4&s=1&n=A%0A%09Game&u=anna&t={token}").code, 200)
        self.assertEqual(self.answers.find("/", f"m=5&s=1&n=Game&u=anna&t={token}").code, 200)
        self.assertEqual(self.answers.find("/", f"m=5&s=x&n=Game&u=anna&t={token}").code, 400)
        self.assertEqual(
            (self.folder / "reports.txt").read_text(),
            "1970-01-01T00:00:00Z\tanna\tstarted\t1\tAGame\n1970-01-01T00:00:00Z\tanna\tstopped\t1\tGame\n",
        )

    def test_login_crosses_the_queries(self):
        self.members.add("anna", "correct horse", "A friend")
        first = "n=anna,r=fyko+d2lbbFgONRv9qkxdawL"
        quoted = first.replace("=", "%3D").replace(",", "%2C").replace("+", "%2B")
        answer = self.answers.find("/", "m=6&c=n%2C%2C" + quoted)
        challenge = answer.body.decode().removeprefix("<SCRAM>").removesuffix("</SCRAM>\n")
        message, expected = proof("correct horse", first, challenge)
        quoted = message.replace("=", "%3D").replace(",", "%2C").replace("+", "%2B")
        lines = self.answers.find("/", "m=7&c=" + quoted).body.decode().splitlines()
        self.assertEqual(lines[0], f"<SCRAM>{expected}</SCRAM>")
        self.assertEqual(lines[2], "<ACCOUNT>A friend</ACCOUNT>")
        self.assertFalse(answer.is_file)


if __name__ == "__main__":
    unittest.main()
