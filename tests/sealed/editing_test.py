"""What recipients do to a sealed file: others come and go, the key changes, the log grows."""

import json
import os
import random
import re
import unittest

from support import SM2, SealedCase, openssl, read, tool, without_root, write

CONTENT = random.Random(2).randbytes(70001)
NO, USAGE, IO, CRYPTO = 1, 2, 3, 5
EDITS = (["recipients add", "--to", "../dai.cer"], ["recipients remove", "--who", "../bob.cer"],
         ["rekey"], ["log append", "--note", "x"], ["abolish"])


class Editing(SealedCase):
    def edit(self, command, *more, who="ann", **options):
        key, cert = f"../{who}.key", f"../{who}.cer"
        return tool(*command.split(), "sealed", "--key", key, "--cert", cert, *more, **options)

    def add(self, *names, who="ann", more=()):
        return self.edit("recipients add", "--to", *(f"../{name}.cer" for name in names), *more, who=who)

    def remove(self, *names, who="ann"):
        return self.edit("recipients remove", "--who", *(f"../{name}.cer" for name in names), who=who)

    def ask(self, command):
        answer = json.loads(self.edit("--json " + command).stdout)
        self.assertEqual(f"tqlabel/{command.split()[0]}/1", answer["form"])
        return answer

    def recipients(self):
        return self.ask("recipients list")["recipients"]  # newest first

    def file_key(self):
        """As ann's envelope has it, the only one for RSA."""
        wrapped, = re.findall(rb"\x04\x82\x01\x00(.{256})", read("sealed"), re.DOTALL)
        return openssl("pkeyutl", "-decrypt", "-inkey", "../ann.key", "-pkeyopt", "rsa_padding_mode:oaep",
                       "-pkeyopt", "rsa_oaep_md:sha256", data=wrapped)

    def size_and_content(self):
        data = read("sealed")
        return len(data), data[-(16 + len(CONTENT) // 16 * 16 + 16):]

    def assert_done(self, done):
        self.assertEqual((0, b"", b""), (done.returncode, done.stdout, done.stderr))

    def assert_edit_refused(self, status, why, edit, *arguments, **options):
        before = read("sealed")
        done = edit(*arguments, **options)
        self.assertEqual((status, b""), (done.returncode, done.stdout), done.stderr)
        self.assertIn(why, done.stderr)
        self.assertEqual((before, ["plain", "sealed"]), (read("sealed"), sorted(os.listdir())))

    def test_who_is_added_opens_it_and_is_added_once(self):
        self.seal(CONTENT)
        before = self.size_and_content()
        for who, by in ("bob", "ann"), ("cai", "bob"):
            self.assert_done(self.add(who, who=by))
        self.assertEqual(before, self.size_and_content())
        for who in "ann", "bob", "cai":
            self.assert_opens(CONTENT, who, "--signed-by", "../ann.cer")
        for names in ("bob",), ("cai",), ("dai", "ann"), ("eve", "eve"):
            self.assert_edit_refused(CRYPTO, b"another recipient", self.add, *names)

    def test_who_is_removed_does_not_open_it(self):
        self.seal(CONTENT, to=("ann", "bob", "cai"))
        before = self.size_and_content()
        self.assertRegex(self.remove("bob", who="cai").stderr, rb"(?s)old key stays valid.*rekey")
        self.assertEqual(before, self.size_and_content())
        self.assert_refused(CRYPTO, b"not sealed for", "bob")
        self.assert_opens(CONTENT, "ann", "--signed-by", "../ann.cer")
        self.assert_edit_refused(CRYPTO, b"not sealed for", self.remove, "cai", "bob")
        self.assert_edit_refused(USAGE, b"nobody could open", self.remove, "cai", "ann")
        self.assertEqual(0, self.remove("ann").returncode)
        self.assert_edit_refused(USAGE, b"nobody could open", self.remove, "cai", who="cai")

    def test_rights_are_shown(self):
        self.seal(b"x")
        self.assert_done(self.add("cai", more=["--privilege", "print", "reads=3", "7=100"]))
        self.assert_opens(b"x", "cai")
        self.assertIn(b"  may: open, print, 7=100\n  has read: 1 of 3\n", self.edit("recipients list").stdout)
        self.assertEqual([[True, True, False, False, 1, 3, [{"type": 7, "value": 100}]],
                          [True, False, False, False, 0, None, []]],
                         [list(each.values())[3:] for each in self.recipients()])

    def test_more_recipients_than_the_padding_holds(self):
        self.seal(CONTENT)
        size = os.path.getsize("sealed")
        names = [f"more{i}" for i in range(20)]
        for name in names:
            openssl("req", "-x509", "-key", "../dai.key", "-sm3", *SM2, "-subj", "/CN=x", "-out", f"../{name}.cer")
        self.assert_done(self.add(*names))
        self.assertGreater(os.path.getsize("sealed"), size)
        done = tool("open", "sealed", "--key", "../dai.key", "--cert", "../more9.cer")
        self.assertEqual((0, CONTENT), (done.returncode, done.stdout))

    def test_the_old_key_opens_nothing_new(self):
        self.seal(CONTENT, "--privilege", "reads=3", to=("ann", "cai", "bob"), by=("ann", "dai"))
        os.chmod("sealed", 0o640)
        self.assert_opens(CONTENT, "cai")
        self.remove("bob")
        old, (_, before), key = read("sealed"), self.size_and_content(), self.file_key()
        self.assert_done(self.edit("rekey"))
        self.assertNotEqual(key, self.file_key())
        new, (_, after) = read("sealed"), self.size_and_content()
        self.assertEqual((len(old), 0o640), (len(new), os.stat("sealed").st_mode & 0o777))
        self.assertLess(sum(a == b for a, b in zip(before, after)), len(after) // 100)
        for label, content in (old, after), (new, before):
            write("sealed", label[:-len(content)] + content)
            self.assert_refused(CRYPTO, b"not what was sealed", "ann", "-o", "out")
        write("sealed", new)
        self.assert_refused(CRYPTO, b"not sealed for", "bob")
        self.assertEqual([1, 0], [each["reads"] for each in self.recipients()])
        for who in "ann", "cai", "cai":
            self.assert_opens(CONTENT, who, "--signed-by", "../ann.cer", "../dai.cer")
        self.assert_refused(NO, b"no readings left (3 of 3)", "cai")
        write("sealed", read("sealed")[:-1] + bytes([read("sealed")[-1] ^ 1]))
        self.assert_edit_refused(CRYPTO, b"not what was sealed", self.edit, "rekey")

    def test_the_log_names_who_did_what_newest_first(self):
        self.seal(b"x", to=("ann", "cai"))
        self.assert_opens(b"x", "cai")
        self.edit("log append", "--note", "printed", who="cai")
        self.add("bob", "eve")
        serial = self.recipients()[2]["serial"]
        self.remove("cai")
        self.edit("rekey", who="bob")
        self.edit("abolish")
        self.assert_refused(NO, b"abolished", "bob")
        made = (("abolish", 0, "CN=ann", ""), ("rekey", 0, "CN=bob", ""), ("remove", 1, "CN=ann", ""),
                ("add", 2, "CN=ann", ""), ("note", 0, serial, "printed"), ("open", 1, serial, ""))
        lines = self.edit("log list").stdout.decode().splitlines()
        for (what, value, who, note), entry, line in zip(made, self.ask("log list")["entries"], lines, strict=True):
            self.assertEqual((what, value, note), (entry["what"], entry["value"], entry["note"]))
            self.assertIn(who, entry["who"])  # but who is gone has left no name
            self.assertRegex(line, rf"Z  {what} +{value}  .*{who}.*{note}$")

    def test_notes_that_would_play_tricks_on_a_terminal(self):
        self.seal(b"x")
        self.assert_done(self.edit("log append", "--note", b"\x1b[2Ja\nb\r\x07\xc2\x9b\xff\xe2\x80\xae"))
        self.assertRegex(self.edit("log list").stdout, rb"\A[ -~]+: \\[ -~]+\[2Ja[ -~]+\n\Z")
        self.assertNotRegex(self.ask("log list")["entries"][0]["note"], "[^ -~]")

    def test_a_longer_log_than_the_padding_holds(self):
        self.seal(CONTENT)
        seen = [self.size_and_content()]
        for i in range(16):
            self.assert_done(self.edit("log append", "--note", f"{i} " + "n" * 900))
            seen.append(self.size_and_content())
        self.assertEqual((seen[0], seen[0][1], 2), (seen[5], seen[-1][1], len(set(seen))))
        self.assert_opens(CONTENT, "ann", "--signed-by", "../ann.cer")
        notes = [int(entry["note"].split()[0]) for entry in self.ask("log list")["entries"][1:]]
        self.assertEqual([*reversed(range(16))], notes)

    def test_edits_by_who_is_no_recipient(self):
        self.seal(b"x", to=("ann", "bob"), by=("eve",))
        for edit in *EDITS, ["recipients list"], ["log list"]:
            self.assert_edit_refused(CRYPTO, b"not sealed for", self.edit, *edit, who="eve")

    def test_edits_of_a_file_that_cannot_be_written(self):
        self.seal(b"x", to=("ann", "bob"))
        os.chmod("sealed", 0o444)
        for edit in EDITS:
            self.assert_edit_refused(IO, b"cannot be written", self.edit, *edit, preexec_fn=without_root)


if __name__ == "__main__":
    unittest.main()
