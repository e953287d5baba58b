"""What check, verify, inspect and diff say of a sealed file."""

import json
import unittest

from support import SealedCase, read, tool, write

NO, USAGE, CRYPTO = 1, 2, 5


class Judging(SealedCase):
    def ask(self, *arguments):
        done = tool("--json", *arguments)
        return done.returncode, json.loads(done.stdout) if done.stdout else done.stderr

    def check(self, who, *more, key=True):
        with_key = ["--key", f"../{who}.key"] if key else []
        status, answer = self.ask("check", "sealed", "--as", f"../{who}.cer", *with_key, *more)
        return status, {rule["rule"]: rule["answer"] for rule in answer["rules"]}, answer["verdict"]

    def verify(self, *trust):
        return self.ask("verify", "sealed", "--key", "../ann.key", "--cert", "../ann.cer",
                        "--trust", *(f"../{name}.cer" for name in trust))

    def test_each_rule_can_be_what_forbids_it(self):
        self.seal(b"x", "--privilege", "reads=1", "--expires", "2030-01-02", to=("ann", "cai"))
        status, rules, verdict = self.check("cai")
        self.assertEqual((0, "yes", {"yes"}), (status, verdict, set(rules.values())))
        self.assertEqual((NO, "cannot be told"), self.check("cai", key=False)[::2])
        status, rules, verdict = self.check("eve", key=False)
        self.assertEqual((NO, "no", "no"), (status, verdict, rules["has an envelope in the head"]))
        for at, rule in ("2030-01-03", "not expired"), ("2020-01-01", "certificate in force"):
            status, rules, verdict = self.check("cai", "--at", at)
            self.assertEqual((NO, "no", "no"), (status, verdict, rules[rule]))
        self.assert_opens(b"x", "cai")
        self.assertEqual("no", self.check("cai")[1]["has readings left"])
        tool("abolish", "sealed", "--key", "../ann.key", "--cert", "../ann.cer")
        self.assertEqual("no", self.check("ann")[1]["not abolished"])
        self.assertEqual(USAGE, tool("check", "sealed", "--as", "../ann.cer", "--at", "soon").returncode)

    def test_what_was_changed_is_not_authentic(self):
        self.seal(b"x")
        label = bytearray(read("sealed"))
        label[label.index(b"\x18\x0f") + 15] ^= 1  # a digit of the time it was made
        write("sealed", label)
        self.assertEqual((NO, "no"), self.check("ann")[::2])

    def test_a_signer_is_trusted_through_a_certificate_that_was_named(self):
        self.seal(b"x", by=("bob", "dai"))
        status, answer = self.verify("bob", "dai")
        self.assertEqual((0, [True, True]), (status, [each["trusted"] for each in answer["signers"]]))
        status, answer = self.verify("bob")
        self.assertEqual((NO, [True, False]), (status, [each["trusted"] for each in answer["signers"]]))
        self.assertTrue(answer["covered"] and answer["notCovered"])
        self.assertEqual(USAGE, tool("verify", "sealed", "--trust", "../bob.cer").returncode)
        data = bytearray(read("sealed"))
        data[-1] ^= 1
        write("sealed", data)
        self.assertEqual(CRYPTO, self.verify("bob", "dai")[0])

    def test_a_key_shows_the_body_and_what_opening_changes(self):
        self.seal(b"x", "--title", "Plan")
        show = ["inspect", "sealed", "--key", "../ann.key", "--cert", "../ann.cer"]
        status, before = self.ask(*show)
        self.assertEqual((0, "Plan"), (status, before["body"]["content"]["fileTitle"]))
        self.assertIn("body.multiSign[1].certificate", [c["path"] for c in before["notes"]["certificates"]])
        self.assert_opens(b"x")
        for name, label in ("before", before), ("after", self.ask(*show)[1]):
            write(name + ".json", json.dumps(label).encode())
            self.assertEqual(0, tool("new", name + ".json", "-o", name).returncode)
        status, answer = self.ask("diff", "before", "after")
        paths = [change["path"] for change in answer["changes"]]
        self.assertEqual(NO, status)
        self.assertIn("body.bodyEnvelopes[1].privilege.readCount", paths)
        self.assertIn("body.logs", " ".join(paths))
        self.assertNotIn("body.content.fileTitle", paths)


if __name__ == "__main__":
    unittest.main()
