"""A sealed file survives whatever interrupts its editing."""

import os
import signal
import subprocess
import time
import unittest

from support import TOOL, SealedCase, read, tool, without_root, write

KILLER = os.environ["KILLER"]
CONTENT = b"content " * 40000
JOURNAL = "sealed.tqjournal"
IO, MALFORMED = 3, 4


class Interruption(SealedCase):
    def killed_at(self, n, *more):
        # the order in which a sanitizer wants to be loaded does not matter here
        environment = {**os.environ, "LD_PRELOAD": KILLER, "KILL_AT": str(n),
                       "ASAN_OPTIONS": "verify_asan_link_order=0"}
        return self.open("cai", *more, env=environment).returncode == -signal.SIGKILL

    def journal_of_open(self):
        """The sealed file before and after it was opened, and the journal that was in between."""
        before = read("sealed")
        n = 1
        while not os.path.exists(JOURNAL):
            self.assertTrue(self.killed_at(n))
            n += 1
        journal = read(JOURNAL)
        self.assertEqual(0, self.open("cai").returncode)  # carries the journal out, then edits again
        return before, journal[48:-32] + before[len(journal) - 80:], journal

    def test_killed_at_every_change_it_makes(self):
        for output in [], ["-o", "out"]:
            self.seal(CONTENT, "--privilege", "reads=1000", to=("cai",), by=("cai",))
            n = 1
            while self.killed_at(n, *output):
                if os.path.exists("out"):
                    self.assertEqual(CONTENT, read("out"))
                    os.unlink("out")
                self.assert_opens(CONTENT, "cai")
                self.assertFalse(os.path.exists(JOURNAL))
                n += 1
            self.assertGreater(n, 9)

    def test_killed_at_every_change_while_the_label_grows(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        size, before = os.path.getsize("sealed"), read("sealed")
        while os.path.getsize("sealed") == size:
            before = read("sealed")
            self.assert_opens(CONTENT, "cai")
        n = 1
        write("sealed", before)
        while self.killed_at(n):
            self.assert_opens(CONTENT, "cai")
            write("sealed", before)
            n += 1
        self.assertGreater(os.path.getsize("sealed"), size)

    def test_killed_at_any_moment(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        for moment in range(30):
            child = subprocess.Popen([TOOL, "open", "sealed", "--key", "../cai.key", "--cert", "../cai.cer"],
                                     stdout=subprocess.DEVNULL)
            time.sleep(moment * 0.0007)
            child.kill()
            child.wait()
        self.assert_opens(CONTENT, "cai")

    def test_a_label_that_was_half_written_is_completed(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        before, after, journal = self.journal_of_open()
        for written in 0, 1, 2, 100, 4096, len(journal) - 80:
            write("sealed", after[:written] + before[written:])
            write(JOURNAL, journal)
            self.assert_opens(CONTENT, "cai")
            self.assertFalse(os.path.exists(JOURNAL))

    def test_who_only_looks_sees_the_change_completed(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        before, after, journal = self.journal_of_open()
        for name in "sealed", "link":
            write("sealed", after[:3000] + before[3000:])
            write(JOURNAL, journal)
            if name == "link":
                os.symlink("sealed", name)
            self.assertEqual(0, tool("inspect", name).returncode)
            self.assertEqual((after, False), (read("sealed"), os.path.exists(JOURNAL)))

    def test_a_journal_that_was_half_written_is_removed(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        before, _, journal = self.journal_of_open()
        for size in 0, 1, 15, 16, 40, 48, 5000, len(journal) - 1:
            write("sealed", before)
            write(JOURNAL, journal[:size])
            self.assert_opens(CONTENT, "cai")
            self.assertFalse(os.path.exists(JOURNAL))
        write("sealed", before)
        write(JOURNAL, journal[:100] + bytes([journal[100] ^ 1]) + journal[101:])
        self.assert_opens(CONTENT, "cai")

    def test_a_file_that_cannot_be_written_is_read_through_its_journal(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        before, after, journal = self.journal_of_open()
        torn = after[:3000] + before[3000:]
        write("sealed", torn)
        write(JOURNAL, journal)
        os.chmod("sealed", 0o444)
        done = self.open("cai", preexec_fn=without_root)
        self.assertEqual((0, CONTENT), (done.returncode, done.stdout))
        self.assertEqual((torn, journal), (read("sealed"), read(JOURNAL)))

    def test_the_journal_of_another_file_changes_nothing(self):
        self.seal(CONTENT, to=("cai",), by=("cai",))
        _, _, journal = self.journal_of_open()
        self.seal(CONTENT, to=("cai",), by=("cai",))
        for stranger in journal, b"notes of mine":
            write(JOURNAL, stranger)
            self.assert_refused(MALFORMED, b"move it away", "cai", "-o", "out")
            self.assertEqual(stranger, read(JOURNAL))
        os.unlink(JOURNAL)
        write("other", journal)
        os.symlink("other", JOURNAL)
        self.assert_refused((IO, MALFORMED), b"", "cai", "-o", "out")


if __name__ == "__main__":
    unittest.main()
