#!/usr/bin/env python3
"""Runs the host's commands about changing files: watch_test.py RUNNER PROGRAM"""
import itertools
import os
import re
import signal
import sys
import time
import unittest

import captured
import host_test
from held import PATIENCE, Held, wait_until
from host_test import PROGRAM, RUNNER, windows_path

LINE = re.compile(r"^(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3})  (name|folder|attributes|size|write|access) +(\S.*)$")


class WatchTest(unittest.TestCase):
    setUp = host_test.HostTest.setUp
    run_host = host_test.HostTest.run_host
    lines = host_test.HostTest.lines
    assert_fails = host_test.HostTest.assert_fails

    def start(self, *arguments, cwd=None):
        """Starts the host, which runs until it is interrupted."""
        running = captured.Running([RUNNER, PROGRAM, *arguments], cwd=cwd)
        self.addCleanup(running.end)
        return running

    def change_until(self, done, change):
        """Changes something again and again until it is seen: nothing shows from when on the watch is there."""
        counter = itertools.count()

        def is_seen():
            change(next(counter))
            return done()

        wait_until(is_seen, "the change is seen", pause=0.2)

    def write_until(self, done, path):
        self.change_until(done, lambda count: path.write_text("x" * (count + 100)))

    def kinds(self, running):
        return {LINE.match(line)[2] for line in running.lines()}

    def paths(self, running):
        return [LINE.match(line)[3] for line in running.lines()]

    def interrupt(self, running):
        """@return the exit code"""
        running.process.send_signal(signal.SIGINT)
        return running.process.wait(PATIENCE)

    def test_watch_prints_a_line_for_each_event_at_once(self):
        file = self.folder / "Survey.xml"
        file.write_text("<LandXML/>")
        before = time.time()
        running = self.start("watch", windows_path(file))
        self.write_until(lambda: {"size", "write"} <= self.kinds(running), file)
        # They came while the program still runs.
        self.assertIsNone(running.process.poll())
        events = [LINE.match(line) for line in running.lines()]
        self.assertTrue(all(events), running.lines())
        self.assertEqual({event[2] for event in events}, {"size", "write"})
        self.assertEqual({event[3] for event in events}, {windows_path(file)})
        stamp = time.mktime(time.strptime(events[0][1][:19], "%Y-%m-%d %H:%M:%S"))
        self.assertLessEqual(int(before), stamp)
        self.assertLessEqual(stamp, time.time())

    def test_watch_ends_by_an_interrupt(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        running = self.start("watch", windows_path(file))
        self.write_until(running.lines, file)
        self.assertEqual(self.interrupt(running), 0)

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
        names = self.start("watch", windows_path(file), "--events", "name")
        sizes = self.start("watch", windows_path(other), windows_path(self.folder), "--events", "size,access")
        # A name is told of the file when another one appears, a size when the file itself has another one.
        self.change_until(names.lines, lambda count: (self.folder / f"new{count}").touch())
        self.write_until(lambda: windows_path(other) in self.paths(sizes), other)
        self.assertEqual(self.kinds(names), {"name"})
        self.assertIn("size", self.kinds(sizes))
        self.assertLessEqual(self.kinds(sizes), {"size", "access"})

    def test_watch_takes_relative_paths(self):
        (self.folder / "a.txt").write_text("1")
        running = self.start("watch", "a.txt", cwd=self.folder)
        self.write_until(running.lines, self.folder / "a.txt")
        self.assertEqual(self.paths(running)[0], windows_path(self.folder / "a.txt"))

    def test_watch_says_what_cannot_be_watched(self):
        missing = windows_path(self.folder / "missing.txt")
        self.assert_fails(1, f'"{missing}" cannot be watched: ', "watch", missing)
        done = self.run_host("watch", missing, missing)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(done.stderr.count("cannot be watched"), 2)

    def test_watch_goes_on_with_what_can_be_watched(self):
        file = self.folder / "a.txt"
        file.write_text("1")
        running = self.start("watch", windows_path(self.folder / "missing"), windows_path(file))
        # The first path has failed by the time that the second is watched.
        self.write_until(running.lines, file)
        self.assertEqual(self.interrupt(running), 0)
        self.assertEqual(running.errors().count("cannot be watched"), 1)

    def test_modified_asks_twice(self):
        file, other = self.folder / "a.txt", self.folder / "b.txt"
        file.write_text("1")
        other.write_text("1")
        os.utime(file, (1_500_000_000, 1_500_000_000))
        missing = windows_path(self.folder / "missing")
        names = [windows_path(file), windows_path(other), missing]
        pause = 0.5
        running = Held([RUNNER, PROGRAM, "modified", *names, "--pause", str(pause)], "stdout", is_full=True)
        self.addCleanup(running.end)
        # It has asked for the first time, and cannot go on to its pause.
        running.wait_until_held()
        os.utime(file, (1_500_000_009, 1_500_000_009))
        start = time.monotonic()
        self.assertEqual(running.release(), 0)
        self.assertGreaterEqual(time.monotonic() - start, pause)
        self.assertEqual(running.shown().splitlines(),
                         ["first   modified   " + name for name in names] +
                         ["second  " + ("unchanged  " if name == names[1] else "modified   ") + name for name in names])

    def test_bad_command_lines_give_one_line_and_exit_code_2(self):
        for arguments in (["watch"], ["watch", "x", "--events", "nonsense"], ["watch", "x", "--seconds", "-1"],
                          ["watch", "x", "--seconds", "soon"], ["modified"], ["modified", "x", "--pause", "x"],
                          ["browse", "more"]):
            with self.subTest(arguments):
                self.assert_fails(2, "", *arguments)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
