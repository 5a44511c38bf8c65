#!/usr/bin/env python3
"""Interrupts commands of the console host and looks at what they leave behind: interrupt_test.py RUNNER PROGRAM

SIGINT reaches a program under Wine as the console event of Ctrl+C.
"""
import signal
import sys
import time
import unittest

import captured
import host_test
from host_test import PROGRAM, RUNNER, windows_path

FILES = 3000
CONTENTS = b"0123456789abcdef" * 2048


class InterruptTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines

    def make_tree(self):
        root = self.folder / "root"
        for index in range(FILES):
            folder = root / f"{index // 100:02}"
            folder.mkdir(parents=True, exist_ok=True)
            (folder / f"{index:04}.bin").write_bytes(CONTENTS)
        return root

    def interrupt(self, begun, *arguments):
        """Starts the host, interrupts it once `begun` says that the work is on, and checks how it ends."""
        running = captured.Running([RUNNER, PROGRAM, *arguments])
        try:
            end = time.monotonic() + 60
            while not begun():
                self.assertIsNone(running.process.poll(), "the work was done before it could be interrupted")
                self.assertLess(time.monotonic(), end)
                time.sleep(0.002)
            running.process.send_signal(signal.SIGINT)
            code = running.process.wait(60)
            self.assertEqual((code, running.output(), running.errors()), (1, "", "quonhost: stopped\n"))
        finally:
            running.end()

    def files(self, folder):
        return [path for path in folder.rglob("*") if path.is_file()]

    def test_a_stopped_copy_has_whole_files_only(self):
        root, copy = self.make_tree(), self.folder / "copy"
        self.interrupt(lambda: (copy / "01/0150.bin").exists(), "copy", windows_path(root), windows_path(copy))
        copied = self.files(copy)
        self.assertLess(len(copied), FILES)
        self.assertEqual({path.read_bytes() for path in copied}, {CONTENTS})
        self.assertEqual(len(self.files(root)), FILES)

    def test_a_stopped_move_leaves_the_source(self):
        root, moved = self.make_tree(), self.folder / "moved"
        self.interrupt(lambda: (moved / "01/0150.bin").exists(), "move", windows_path(root), windows_path(moved))
        self.assertEqual(len(self.files(root)), FILES)
        self.assertEqual({path.read_bytes() for path in self.files(moved)}, {CONTENTS})

    def test_a_stopped_removal_leaves_whole_files(self):
        root = self.make_tree()
        self.interrupt(lambda: len(self.files(root)) < FILES - 100, "remove", windows_path(root))
        left = self.files(root)
        self.assertGreater(len(left), 0)
        self.assertEqual({path.read_bytes() for path in left}, {CONTENTS})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
