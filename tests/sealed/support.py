"""People with certificates, and the program that seals and opens files for them."""

import ctypes
import os
import resource
import subprocess
import tempfile
import unittest

TOOL = os.environ["TQLABEL"]
FULL = os.environ.get("TQLABEL_FULL") == "1"
SM2 = ["-sigopt", "distid:1234567812345678"]
CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, PR_CAPBSET_DROP = 1, 2, 24


def openssl(*arguments, data=None):
    return subprocess.run(["openssl", *arguments], input=data, check=True, capture_output=True).stdout


def make_person(name, kind):
    """Leaves NAME.key and NAME.cer, in PEM for RSA and in DER for SM2."""
    rsa = kind == "rsa"
    options = ["-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:2048"] if rsa else ["-algorithm", "SM2"]
    openssl("genpkey", *options, "-out", f"{name}.key")
    openssl("req", "-x509", "-new", "-key", f"{name}.key", "-days", "9", "-out", f"{name}.cer",
            "-subj", f"/C=XX/O=Example Office/CN={name}/emailAddress={name}@example.org",
            *(["-sha256"] if rsa else ["-sm3", *SM2, "-outform", "DER"]))


def without_root():
    """In the child: root minds permissions, too."""
    for capability in CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH:
        ctypes.CDLL(None).prctl(PR_CAPBSET_DROP, capability, 0, 0, 0)


def with_full_disk():
    """In the child, which must not restore signals: no file takes more than this."""
    resource.setrlimit(resource.RLIMIT_FSIZE, (8192, 8192))


def tool(*arguments, **options):
    options.setdefault("stdout", subprocess.PIPE)
    return subprocess.run([TOOL, *arguments], stderr=subprocess.PIPE, timeout=120, **options)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


class SealedCase(unittest.TestCase):
    """Each test has a folder of its own; the people are made once."""

    @classmethod
    def setUpClass(cls):
        cls.people = tempfile.TemporaryDirectory()
        os.chdir(cls.people.name)
        for name, kind in ("ann", "rsa"), ("bob", "rsa"), ("cai", "sm2"), ("dai", "sm2"), ("eve", "rsa"):
            make_person(name, kind)

    @classmethod
    def tearDownClass(cls):
        os.chdir("/")
        cls.people.cleanup()

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(dir=self.people.name)
        os.chdir(self.folder.name)
        self.addCleanup(self.folder.cleanup)
        self.addCleanup(os.chdir, self.people.name)

    def seal(self, content, *more, to=("ann",), by=("ann",)):
        write("plain", content)
        signers = [part for name in by for part in ("--sign", f"../{name}.key,../{name}.cer")]
        done = tool("protect", "plain", "-o", "sealed", "--to", *(f"../{name}.cer" for name in to),
                    *signers, *more)
        self.assertEqual((0, b""), (done.returncode, done.stderr))

    def open(self, who="ann", *more, **options):
        key, cert = f"../{who}.key", f"../{who}.cer"
        return tool("open", "sealed", "--key", key, "--cert", cert, *more, **options)

    def assert_opens(self, content, who="ann", *more):
        done = self.open(who, *more)
        self.assertEqual((0, b""), (done.returncode, done.stderr))
        self.assertEqual(content, done.stdout)

    def assert_refused(self, status, why, *arguments, **options):
        """Nothing is released, and the file stays as it was."""
        before = read("sealed")
        done = self.open(*arguments, **options)
        self.assertIn(done.returncode, status if isinstance(status, tuple) else (status,))
        self.assertEqual(b"", done.stdout or b"")
        self.assertIn(why, done.stderr)
        self.assertFalse(os.path.exists("out"))
        self.assertEqual(before, read("sealed"))
