#!/usr/bin/env python3
"""Interrupts commands of the console host and looks at what they leave behind: interrupt_test.py RUNNER PROGRAM

The host draws its progress into a pipe that the test reads: it waits there, in the middle of its work, until it has been
interrupted.
"""
import sys
import unittest

import host_test
from held import Held
from host_test import PROGRAM, RUNNER, windows_path

# So many that their progress is several times what the host can write before it has to wait.
FILES = 600
POINTS = 150000
CONTENTS = b"0123456789abcdef" * 64


class InterruptTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp

    def make_tree(self):
        root = self.folder / "root"
        for index in range(FILES):
            folder = root / f"{index // 100:02}"
            folder.mkdir(parents=True, exist_ok=True)
            (folder / f"{index:04}.bin").write_bytes(CONTENTS)
        return root

    def interrupt(self, *arguments):
        """Starts the host, interrupts it in its work and checks how it ends."""
        host = Held([RUNNER, PROGRAM, *arguments, "--progress"], "stderr")
        try:
            host.interrupt()
            self.assertEqual((host.release(), host.output()), (1, ""))
            self.assertTrue(host.shown().endswith("\nquonhost: stopped\n"), host.shown()[-200:])
        finally:
            host.end()

    def files(self, folder):
        return [path for path in folder.rglob("*") if path.is_file()]

    def test_a_stopped_copy_has_whole_files_only(self):
        root, copy = self.make_tree(), self.folder / "copy"
        self.interrupt("copy", windows_path(root), windows_path(copy))
        copied = self.files(copy)
        self.assertGreater(len(copied), 0)
        self.assertLess(len(copied), FILES)
        self.assertEqual({path.read_bytes() for path in copied}, {CONTENTS})
        self.assertEqual(len(self.files(root)), FILES)

    def test_a_stopped_move_leaves_the_source(self):
        root, moved = self.make_tree(), self.folder / "moved"
        self.interrupt("move", windows_path(root), windows_path(moved))
        self.assertEqual(len(self.files(root)), FILES)
        copied = self.files(moved)
        self.assertLess(len(copied), FILES)
        self.assertEqual({path.read_bytes() for path in copied}, {CONTENTS})

    def test_a_stopped_removal_leaves_whole_files(self):
        root = self.make_tree()
        self.interrupt("remove", windows_path(root))
        left = self.files(root)
        self.assertGreater(len(left), 0)
        self.assertLess(len(left), FILES)
        self.assertEqual({path.read_bytes() for path in left}, {CONTENTS})

    def test_a_stopped_export_leaves_the_old_file(self):
        points, target = self.folder / "points.csv", self.folder / "out.xml"
        points.write_text("".join(f"{n + 1},{n * 0.37!r},{n * 1.13!r},{n % 50},P\n" for n in range(POINTS)))
        target.write_text("old")
        self.interrupt("landxml", "export", windows_path(points), windows_path(target))
        self.assertEqual(target.read_text(), "old")
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["out.xml", "points.csv"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
