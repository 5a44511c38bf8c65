#!/usr/bin/env python3
"""Runs the host's commands about changing files: watch_test.py RUNNER PROGRAM"""
import os
import re
import signal
import sys
import threading
import time
import unittest

import captured
import host_test
from host_test import PROGRAM, RUNNER, windows_path

LINE = re.compile(r"^(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3})  (name|folder|attributes|size|write|access) +(\S.*)$")


class WatchTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines
    assert_fails = host_test.HostTest.assert_fails

    def start(self, *arguments, cwd=None):
        """Starts the host; its lines arrive in the list that comes with it."""
        running = captured.Running([RUNNER, PROGRAM, *arguments], cwd=cwd)
        lines = []
        stopped = threading.Event()

        def read():
            while not stopped.wait(0.01):
                lines.extend((time.monotonic(), line) for line in running.lines()[len(lines):])

        reader = threading.Thread(target=read, daemon=True)
        reader.start()

        def end():
            stopped.set()
            reader.join()
            running.end()

        self.addCleanup(end)
        return running.process, lines

    def change_until(self, done, change, limit=30):
        """Changes something again and again until somebody has seen it."""
        end = time.monotonic() + limit
        count = 0
        while not done():
            self.assertLess(time.monotonic(), end, "nobody saw the change")
            change(count)
            count += 1
            time.sleep(0.2)

    def write_until(self, done, path):
        self.change_until(done, lambda count: path.write_text("x" * (count + 100)))

    def test_watch_prints_a_line_for_each_event_at_once(self):
        file = self.folder / "Survey.xml"
        file.write_text("<LandXML/>")
        process, lines = self.start("watch", windows_path(file))
        self.write_until(lambda: len(lines) >= 2, file)
        # They came while the program still runs.
        self.assertIsNone(process.poll())
        events = [LINE.match(line) for _, line in lines]
        self.assertTrue(all(events), lines)
        self.assertEqual({event[2] for event in events}, {"size", "write"})
        self.assertEqual({event[3] for event in events}, {windows_path(file)})
        stamp = time.strptime(events[0][1][:19], "%Y-%m-%d %H:%M:%S")
        self.assertLess(abs(time.time() - time.mktime(stamp)), 60)

    def test_watch_ends_by_an_interrupt(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        process, lines = self.start("watch", windows_path(file), "--seconds", "60")
        self.write_until(lambda: lines, file)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(20), 0)

    def test_watch_ends_after_its_time(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        start = time.monotonic()
        self.assertEqual(self.lines("watch", windows_path(file), "--seconds", "0.5"), [])
        self.assertGreaterEqual(time.monotonic() - start, 0.5)
        self.assertEqual(self.lines("watch", windows_path(file), "--seconds", "0"), [])

    def test_watch_tells_only_of_what_it_was_asked_for(self):
        file, other = self.folder / "a.txt", self.folder / "b.txt"
        file.write_text("1")
        other.write_text("1")
        _, names = self.start("watch", windows_path(file), "--events", "name", "--seconds", "60")
        _, sizes = self.start("watch", windows_path(other), windows_path(self.folder), "--events", "size,access",
                              "--seconds", "60")
        # A name is told of the file when another one appears, a size when the file itself has another one.
        self.change_until(lambda: names, lambda count: (self.folder / f"new{count}").touch())
        self.write_until(lambda: sizes, other)
        self.assertEqual({LINE.match(line)[2] for _, line in names}, {"name"})
        self.assertIn("size", {LINE.match(line)[2] for _, line in sizes})
        self.assertLessEqual({LINE.match(line)[2] for _, line in sizes}, {"size", "access"})
        self.assertIn(windows_path(other), {LINE.match(line)[3] for _, line in sizes})

    def test_watch_takes_relative_paths(self):
        (self.folder / "a.txt").write_text("1")
        _, lines = self.start("watch", "a.txt", "--seconds", "60", cwd=self.folder)
        self.write_until(lambda: lines, self.folder / "a.txt")
        self.assertEqual(LINE.match(lines[0][1])[3], windows_path(self.folder / "a.txt"))

    def test_watch_says_what_cannot_be_watched(self):
        missing = windows_path(self.folder / "missing.txt")
        self.assert_fails(1, f'"{missing}" cannot be watched: ', "watch", missing, "--seconds", "60")
        done = self.run_host("watch", missing, missing, "--seconds", "60")
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(done.stderr.count("cannot be watched"), 2)

    def test_watch_goes_on_with_what_can_be_watched(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        done = self.run_host("watch", windows_path(self.folder / "missing"), windows_path(file), "--seconds", "1")
        self.assertEqual((done.returncode, done.stdout), (0, ""))
        self.assertEqual(done.stderr.count("cannot be watched"), 1)

    def test_modified_asks_twice(self):
        file, other = self.folder / "a.txt", self.folder / "b.txt"
        file.write_text("1")
        other.write_text("1")
        os.utime(file, (1_500_000_000, 1_500_000_000))
        missing = windows_path(self.folder / "missing")
        names = [windows_path(file), windows_path(other), missing]
        process, lines = self.start("modified", *names, "--pause", "3")
        end = time.monotonic() + 30
        while len(lines) < 3 and time.monotonic() < end:
            time.sleep(0.01)
        os.utime(file, (1_500_000_009, 1_500_000_009))
        self.assertEqual(process.wait(30), 0)
        while len(lines) < 6 and time.monotonic() < end:
            time.sleep(0.01)
        self.assertEqual([line for _, line in lines],
                         ["first   modified   " + name for name in names] +
                         ["second  " + ("unchanged  " if name == names[1] else "modified   ") + name for name in names])
        self.assertGreater(lines[3][0] - lines[2][0], 2)

    def test_bad_command_lines_give_one_line_and_exit_code_2(self):
        for arguments in (["watch"], ["watch", "x", "--events", "nonsense"], ["watch", "x", "--seconds", "-1"],
                          ["watch", "x", "--seconds", "soon"], ["modified"], ["modified", "x", "--pause", "x"],
                          ["browse", "more"]):
            with self.subTest(arguments):
                self.assert_fails(2, "", *arguments)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
