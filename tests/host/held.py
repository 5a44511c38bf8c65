"""Holds a program at a place that the test chooses, so that no test depends on how fast the work is done.

One of the program's outputs is a pipe that only the test reads. A pipe has little room: the program soon waits in a write,
on any machine, and goes no further until the test reads on.
"""
import fcntl
import os
import signal
import time

import captured

PATIENCE = 120  # seconds; only a program that hangs takes so long
PIPE_ROOM = 4096  # the least that the system gives
WRITE = "1"  # the number of the system call on x86-64


def wait_until(reached, reason, pause=0.002):
    """Returns once `reached()` holds, asking every `pause` seconds: what another process does can only be seen."""
    end = time.monotonic() + PATIENCE
    while not reached():
        if time.monotonic() > end:
            raise AssertionError("waited in vain until " + reason)
        time.sleep(pause)


class Held(captured.Running):
    """A program that was started and whose `stream`, "stdout" or "stderr", is such a pipe."""

    def __init__(self, command, stream, is_full=False, **options):
        """`is_full`: the pipe has no room at all, and the first write waits."""
        self._reader, self._writer = os.pipe()
        fcntl.fcntl(self._writer, fcntl.F_SETPIPE_SZ, PIPE_ROOM)
        os.set_blocking(self._reader, False)
        self._filling = os.write(self._writer, bytes(PIPE_ROOM)) if is_full else 0
        self._shown = b""
        super().__init__(command, **{stream: self._writer}, **options)

    def shown(self):
        """What the test has read from the pipe."""
        return captured.text(self._shown[self._filling:])

    def wait_until_held(self):
        wait_until(lambda: self._is_held() or self.process.poll() is not None, "the program waits in a write")
        assert self.process.poll() is None, "the program was done before it could be held"

    def interrupt(self):
        """Presses Ctrl+C while the program is held; returns when it has taken note of that.

        SIGINT reaches a program under Wine as the console event, for which Wine starts a thread. The main thread takes the
        signal: it was in its write before, and is there again when the new thread has been started.
        """
        self.wait_until_held()
        threads = self._threads()
        self.process.send_signal(signal.SIGINT)
        wait_until(lambda: not self._is_interrupt_pending() and self._is_held(), "the program has taken the signal")
        wait_until(lambda: self._threads() <= threads, "the console event is handled")
        assert self._is_held(), "the program went on while it was held"

    def release(self):
        """Lets the program go on to its end. @return its exit code"""
        def has_ended():
            self._read(65536)
            return self.process.poll() is not None

        wait_until(has_ended, "the program ends")
        self._read(65536)
        return self.process.returncode

    def end(self):
        super().end()
        os.close(self._reader)
        os.close(self._writer)

    def _read(self, most):
        try:
            self._shown += os.read(self._reader, most)
        except BlockingIOError:
            pass

    def _of_process(self, name):
        with open(f"/proc/{self.process.pid}/{name}", encoding="ascii") as file:
            return file.read()

    def _threads(self):
        return set(os.listdir(f"/proc/{self.process.pid}/task"))

    def _is_held(self):
        """Whether the main thread sleeps in a write to the pipe."""
        try:
            call = self._of_process("syscall").split()
            return call[0] == WRITE and os.path.samestat(
                os.stat(f"/proc/{self.process.pid}/fd/{int(call[1], 16)}"), os.fstat(self._writer))
        except OSError:  # it has ended, or the file is open no more
            return False

    def _is_interrupt_pending(self):
        pending = [int(line.split()[1], 16) for line in self._of_process("status").splitlines()
                   if line.startswith(("SigPnd:", "ShdPnd:"))]
        return any(mask & 1 << signal.SIGINT - 1 for mask in pending)
