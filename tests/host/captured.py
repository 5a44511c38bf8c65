"""Runs a program and keeps what it prints.

Into files, not pipes: services that Wine starts on the way inherit the output and live on, and a pipe would not end before
they do.
"""
import os
import subprocess
import tempfile


def text(data):
    """What was written; every kind of line end reads as a line feed, as in a text stream."""
    return data.decode("utf-8").replace("\r\n", "\n").replace("\r", "\n")


class Running:
    """A program that was started. What it has printed so far can be read at any time."""

    def __init__(self, command, stdin=subprocess.DEVNULL, stdout=None, **options):
        self._files = tempfile.TemporaryFile(), tempfile.TemporaryFile()
        self.process = subprocess.Popen(command, stdin=stdin, stdout=stdout or self._files[0], stderr=self._files[1],
                                        **options)

    def output(self):
        return text(self._written(0))

    def errors(self):
        return text(self._written(1))

    def lines(self):
        """The lines of the output that are whole."""
        return text(self._written(0).rpartition(b"\n")[0]).splitlines()

    def end(self):
        """Kills the program when it still runs, and forgets what it printed."""
        self.process.kill()
        self.process.wait()
        for file in self._files:
            file.close()

    def _written(self, index):
        # The program writes where this file's position is: it must not be moved.
        descriptor = self._files[index].fileno()
        return os.pread(descriptor, os.fstat(descriptor).st_size, 0)


def run(command, timeout=120, **options):
    """As subprocess.run with captured text."""
    running = Running(command, **options)
    try:
        code = running.process.wait(timeout)
        return subprocess.CompletedProcess(command, code, running.output(), running.errors())
    finally:
        running.end()
