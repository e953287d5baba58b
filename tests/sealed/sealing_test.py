"""Who can open a sealed file, who cannot, and what it consists of."""

import filecmp
import hashlib
import hmac
import os
import random
import resource
import struct
import subprocess
import unittest

from support import FULL, TOOL, SealedCase, openssl, read, tool, with_full_disk, without_root, write

CONTENT = random.Random(1).randbytes(1 << 20)
NO, USAGE, IO, MALFORMED, CRYPTO = 1, 2, 3, 4, 5


class Recipients(SealedCase):
    def test_each_recipient_opens_it_and_nobody_else(self):
        self.seal(CONTENT, to=("ann", "bob", "cai"), by=("bob", "dai"))
        for who in "ann", "bob", "cai":
            self.assert_opens(CONTENT, who)
            self.assertEqual(0, self.open(who, "-o", "out").returncode)
            self.assertEqual(CONTENT, read("out"))
            os.unlink("out")
        for who in "dai", "eve":
            self.assert_refused(CRYPTO, b"not sealed for", who, "-o", "out")

    @unittest.skipUnless(FULL, "writes 3 GiB")
    def test_a_file_larger_than_the_memory(self):
        size, memory = 1 << 30, 256 << 20
        with open("plain", "wb") as file:
            file.truncate(size)
            file.seek(size // 3)
            file.write(CONTENT)
        small = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_AS, (memory, memory))}
        done = tool("protect", "plain", "-o", "sealed", "--sign", "../bob.key,../bob.cer",
                    "--to", *(f"../{who}.cer" for who in ("ann", "bob", "cai")), **small)
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        for who in "ann", "bob", "cai":
            done = self.open(who, "-o", "out", **small)
            self.assertEqual((0, b""), (done.returncode, done.stderr))
            self.assertTrue(filecmp.cmp("plain", "out", shallow=False))
            os.unlink("out")
        self.assert_refused(CRYPTO, b"not sealed for", "eve", "-o", "out", **small)

    def test_sizes_at_the_borders_of_blocks_and_steps(self):
        for size in 0, 1, 15, 16, 17, (1 << 19) - 1, 1 << 19, (1 << 19) + 16:
            self.seal(CONTENT[:size])
            self.assert_opens(CONTENT[:size])

    def test_signers_can_be_demanded(self):
        self.seal(b"x", by=("bob", "cai"))
        self.assert_opens(b"x", "ann", "--signed-by", "../cai.cer", "../bob.cer")
        self.assert_refused(CRYPTO, b"not signed by", "ann", "--signed-by", "../bob.cer", "../dai.cer")

    def test_a_key_must_be_that_of_the_certificate(self):
        self.seal(b"x")
        done = tool("open", "sealed", "--key", "../bob.key", "--cert", "../ann.cer")
        self.assertEqual((CRYPTO, b""), (done.returncode, done.stdout))

    def test_an_encrypted_key_needs_its_passphrase(self):
        self.seal(b"x")
        openssl("pkey", "-in", "../ann.key", "-aes256", "-passout", "pass:secret", "-out", "locked.key")
        write("pass", b"secret\n")
        command = ["open", "sealed", "--key", "locked.key", "--cert", "../ann.cer"]
        self.assertEqual(CRYPTO, tool(*command, stdin=subprocess.DEVNULL).returncode)
        self.assertEqual(b"x", tool(*command, "--pass", "pass").stdout)

    def test_protect_refuses_what_it_cannot_do(self):
        write("plain", b"x")
        sign = ["--sign", "../ann.key,../ann.cer"]
        openssl("req", "-x509", "-new", "-key", "../ann.key", "-out", "odd.cer", "-subj", "/DC=odd")
        openssl("req", "-x509", "-newkey", "rsa:1024", "-nodes", "-keyout", "weak.key", "-out", "weak.cer",
                "-subj", "/CN=weak")
        for status, arguments in (
                (CRYPTO, ["--to", "odd.cer", *sign]),
                (CRYPTO, ["--to", "weak.cer", *sign]),
                (CRYPTO, ["--to", "../ann.cer", "../ann.cer", *sign]),
                (CRYPTO, ["--to", "plain", *sign]),
                (CRYPTO, ["--to", "../ann.cer", *sign, *sign]),
                (USAGE, ["--to", "../ann.cer", "--sign", "../ann.cer"]),
                (USAGE, ["--to", "../ann.cer", *sign, "--expires", "soon"]),
                (USAGE, ["--to", "../ann.cer", *sign, "--privilege", "reads=-1"]),
                (USAGE, ["--to", "../ann.cer", *sign, "--title", "x" * 256])):
            done = tool("protect", "plain", "-o", "sealed", *arguments)
            self.assertEqual(status, done.returncode, arguments)
            self.assertFalse(os.path.exists("sealed"))
        self.assertEqual(USAGE, tool("protect", "plain", "-o", "-", "--to", "../ann.cer", *sign).returncode)


class Limits(SealedCase):
    def test_dates_that_have_passed(self):
        for option, why in ("--expires", b"expired"), ("--destroy", b"destroyed"):
            self.seal(b"x", option, "2001-01-01")
            self.assert_refused(NO, why, "ann", "-o", "out")
            self.seal(b"x", option, "2999-12-31T23:59:59Z")
            self.assert_opens(b"x")

    def test_certificates_that_are_out_of_force(self):
        openssl("req", "-new", "-key", "../ann.key", "-subj", "/CN=old", "-out", "request")
        for days in "9", "-1":
            openssl("x509", "-req", "-in", "request", "-key", "../ann.key", "-set_serial", "7", "-days", days,
                    "-out", days + ".cer")
        self.seal(b"x")
        for arguments in (["--to", "../ann.cer", "--sign", "../ann.key,-1.cer"],
                          ["--to", "-1.cer", "--sign", "../ann.key,../ann.cer"]):
            done = tool("protect", "plain", "-o", "out", *arguments)
            self.assertEqual((CRYPTO, False), (done.returncode, os.path.exists("out")))
            self.assertIn(b"had expired", done.stderr)
        access = ["sealed", "--key", "../ann.key", "--cert"]
        self.assertEqual(CRYPTO, tool("recipients", "add", *access, "../ann.cer", "--to", "-1.cer").returncode)
        self.assertEqual(0, tool("recipients", "add", *access, "../ann.cer", "--to", "9.cer").returncode)
        self.assertEqual(b"x", tool("open", *access, "9.cer").stdout)
        done = tool("open", *access, "-1.cer")
        self.assertEqual((CRYPTO, b""), (done.returncode, done.stdout))
        self.assertIn(b"had expired", done.stderr)

    def test_reads_are_counted_for_each_recipient(self):
        self.seal(b"x", "--privilege", "reads=2", "print", "7=1", to=("ann", "cai"))
        for who in "ann", "cai":
            self.assert_opens(b"x", who)
            self.assert_opens(b"x", who)
            self.assert_refused(NO, b"no readings left (2 of 2)", who)

    def test_readings_at_the_same_time_are_counted_one_by_one(self):
        self.seal(b"x", "--privilege", "reads=5", to=("cai",), by=("cai",))
        command = [TOOL, "open", "sealed", "--key", "../cai.key", "--cert", "../cai.cer"]
        readers = [subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE) for _ in range(12)]
        outputs = [reader.communicate()[0] for reader in readers]
        self.assertEqual(5, outputs.count(b"x"))
        self.assertEqual(7, [reader.returncode for reader in readers].count(NO))

    def test_the_label_grows_when_the_log_has_filled_it(self):
        self.seal(CONTENT[:99], "--privilege", "reads=100", by=("cai",), to=("cai",))
        size = os.path.getsize("sealed")
        for _ in range(100):
            self.assert_opens(CONTENT[:99], "cai")
        self.assertGreater(os.path.getsize("sealed"), size)
        self.assert_refused(NO, b"no readings left (100 of 100)", "cai")

    def test_a_file_that_cannot_be_written(self):
        for limit, opens in ("reads=0", True), ("reads=9", False):
            self.seal(b"x", "--privilege", limit)
            os.chmod("sealed", 0o444)
            if opens:
                done = self.open(preexec_fn=without_root)
                self.assertEqual((0, b"x"), (done.returncode, done.stdout))
                self.assertIn(b"not recorded", done.stderr)
            else:
                self.assert_refused(IO, b"cannot be written", preexec_fn=without_root)

    def test_files_that_cannot_be_read_and_outputs_that_cannot_be_written(self):
        self.seal(CONTENT)
        with open("/dev/full", "wb") as full:
            self.assertEqual(IO, self.open(stdout=full).returncode)
        reader, writer = os.pipe()
        os.close(reader)
        self.assertEqual(IO, self.open(stdout=writer).returncode)
        os.close(writer)
        self.assertEqual(IO, self.open("ann", "-o", "no/such/folder").returncode)
        before = read("sealed")
        self.assert_refused(IO, b"sealed.tqjournal: ", preexec_fn=with_full_disk, restore_signals=False)
        self.assertFalse(os.path.exists("sealed.tqjournal"))
        os.chmod("sealed", 0)
        self.assertEqual(IO, self.open(preexec_fn=without_root).returncode)
        os.chmod("sealed", 0o600)
        self.assertEqual(before, read("sealed"))


class Forgery(SealedCase):
    def refuse_changed(self, offsets, status):
        with open("sealed", "r+b") as file:
            for offset in offsets:
                file.seek(offset)
                byte = file.read(1)[0]
                file.seek(offset)
                file.write(bytes([byte ^ 1 << offset % 8]))
                file.flush()
                done = self.open("cai", "-o", "out")
                self.assertIn(done.returncode, status, offset)
                self.assertFalse(os.path.exists("out"), offset)
                file.seek(offset)
                file.write(bytes([byte]))
        self.assert_opens(read("plain"), "cai")

    def test_every_byte_of_the_label_counts(self):
        self.seal(CONTENT[:100], to=("cai",), by=("cai",))
        label = os.path.getsize("sealed") - 128
        step = 1 if FULL else 16
        self.refuse_changed({*range(24), *range(0, label, step)}, (MALFORMED, CRYPTO))

    def test_every_byte_of_the_content_counts(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        size = os.path.getsize("sealed")
        label = size - (len(CONTENT) + 32)
        self.refuse_changed([*range(label, label + 32, 7), *range(label, size, size // 9), size - 1], (CRYPTO,))

    def test_files_that_are_cut_or_joined(self):
        self.seal(CONTENT[:5000])
        whole = read("sealed")
        for size in 0, 1, 6, 4096, len(whole) - 5024, len(whole) - 5000, len(whole) - 16, len(whole) - 1:
            write("sealed", whole[:size])
            self.assert_refused(MALFORMED, b"", "ann", "-o", "out")
        for more in b"x", bytes(16), whole:
            write("sealed", whole + more)
            self.assert_refused(MALFORMED, b"", "ann", "-o", "out")
        self.seal(CONTENT[:5001])
        write("sealed", whole[:-5024] + read("sealed")[-5024:])
        self.assert_refused(CRYPTO, b"not what was sealed", "ann", "-o", "out")


def element(data, at=0):
    """Tag, content and end of the element at an offset."""
    length, start = data[at + 1], at + 2
    if length >= 0x80:
        start += length & 0x7F
        length = int.from_bytes(data[at + 2:start], "big")
    return data[at], data[start:start + length], start + length


def children(data):
    at, found = 0, []
    while at < len(data):
        tag, content, end = element(data, at)
        found.append((tag, content, data[at:end]))
        at = end
    return found


def derived(key, purpose):
    extracted = hmac.digest(bytes(32), key, "sha256")
    return hmac.digest(extracted, b"tqlabel " + purpose + b"\x01", "sha256")


def cipher(direction, key, iv, data):
    return openssl("enc", direction, "-aes-256-cbc", "-K", key.hex(), "-iv", iv.hex(), data=data)


def decrypted(key, data):
    return cipher("-d", key, data[:16], data[16:])


class AnotherProgram(SealedCase):
    """Opens and changes files by docs/sealed-file.md alone, with the openssl command."""

    def parts(self):
        """The sealed file, its head, its sealed body, and its file key as ann unwraps it."""
        data = read("sealed")
        _, label, size = element(data)
        (_, head, head_element), (_, sealed, _), (_, padding, _) = children(label)
        self.assertEqual((0, b"\0" * len(padding)), (size % 4096, padding))
        envelopes = children(children(children(children(head)[7][1])[3][1])[0][1])
        write("wrapped", children(envelopes[0][1])[3][1])  # newest first
        key = openssl("pkeyutl", "-decrypt", "-inkey", "../ann.key", "-in", "wrapped", "-pkeyopt",
                      "rsa_padding_mode:oaep", "-pkeyopt", "rsa_oaep_md:sha256")
        return data, size, head_element, sealed, key

    def test_reads_what_this_one_wrote(self):
        self.seal(CONTENT[:77777], "--title", "Plan", to=("cai", "ann"), by=("bob", "cai"))
        data, size, head, sealed, key = self.parts()
        tag = hmac.digest(derived(key, b"body authentication"), head + sealed[:-32], "sha256")
        self.assertEqual(sealed[-32:], tag)
        body = children(element(decrypted(derived(key, b"body encryption"), sealed[:-32]))[1])
        signs, content, align, extends = body[0], body[3], body[4], body[5]
        self.assertEqual([size, 16, 16 + 16 - 77777 % 16],
                         [int.from_bytes(part[1], "big") for part in children(align[1])])
        values = {int.from_bytes(children(e[1])[0][1], "big"): children(e[1])[1][1]
                  for e in children(children(element(extends[1])[1])[0][1])}
        tag = hmac.digest(derived(key, b"content authentication"),
                          data[size:] + struct.pack(">Q", len(data) - size - 16), "sha256")
        self.assertEqual(values[4098], tag)
        plain = decrypted(derived(key, b"content encryption"), data[size:])
        self.assertEqual(CONTENT[:77777], plain)
        self.assertEqual(values[4097], struct.pack(">Q", 77777) + hashlib.sha256(plain).digest())
        fields = [whole for _, _, whole in children(content[1])]
        fields[5] = fields[7]  # both never
        header = content[2][:len(content[2]) - len(content[1])]
        write("statement", b"tqlabel content statement 1\n" + values[4097] + header + b"".join(fields))
        write("value", children(children(signs[1])[0][1])[2][1][1:])
        openssl("x509", "-in", "../bob.cer", "-pubkey", "-noout", "-out", "bob.pub")
        self.assertIn(b"OK", openssl("dgst", "-sha256", "-verify", "bob.pub", "-signature", "value", "statement"))

    def test_a_recipient_cannot_change_what_is_signed(self):
        """He has the file key, and so he can make a body that is authentic."""
        self.seal(CONTENT[:100], "--title", "Plan", "--label", "secret", to=("ann",), by=("bob", "cai"))
        data, _, head, sealed, key = self.parts()
        iv, (encryption, mac) = sealed[:16], (derived(key, b"body " + use) for use in (b"encryption", b"authentication"))
        body = decrypted(encryption, sealed[:-32])
        last = children(children(element(body)[1])[0][1])[1][2][-64:]
        for old, new in ((b"", b""), (b"Plan", b"Plum"), (b"secret", b"public"), (b"plain", b"other"),
                         (hashlib.sha256(CONTENT[:100]).digest(), bytes(32)), (last, last[::-1])):
            changed_head = head.replace(old, new) if old in head else head
            changed = iv + cipher("-e", encryption, iv, body.replace(old, new))
            changed += hmac.digest(mac, changed_head + changed, "sha256")
            write("sealed", data.replace(head, changed_head).replace(sealed, changed))
            if old:
                self.assert_refused(CRYPTO, b"signature", "ann", "-o", "out")
            else:
                self.assert_opens(CONTENT[:100])


if __name__ == "__main__":
    unittest.main()
