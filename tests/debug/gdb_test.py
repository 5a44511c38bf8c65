"""What gdb shows of the library's values, with debug/quon_gdb.py: gdb_test.py PROGRAM

The program runs under Wine below gdb's own server for Windows.
"""
import pathlib
import socket
import subprocess
import sys
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = pathlib.Path(sys.argv.pop(1))
SERVER = "/usr/share/win64/gdbserver.exe"

EXPECTED = {
    "text": '"survey äЖ"',
    "empty": '""',
    "names": '2 elements = {"one", "two"}',
    "list": "2 elements = {7, 8}",
    "path": '"C:\\\\projects\\\\plan.xml"',
    "points": '"1-5, 9"',
    "stopped": '"1, x" (walk stopped at "x")',
    "sorted": '"12"',
    "none": "{}",
    "marker": "{3-5,9,100}",
    "corners": "1 points, room for 4 = {(1.0, 2.0, 3.5)}",
    "xml": '"survey.xml"',
    "page": "3 of 84 elements of 48 bytes in use",
}


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Printers(unittest.TestCase):
    def test_every_kind_of_value_is_shown(self):
        port = free_port()
        with tempfile.NamedTemporaryFile("w", suffix=".gdb") as commands:
            commands.write("\n".join([
                "set pagination off", "set confirm off", "set auto-load no", "set host-charset UTF-8", "set print pretty off",
                f"source {TOP}/debug/quon_gdb.py", "set tcp connect-timeout 60", f"target remote localhost:{port}",
                "break Stop", "continue", "up", *(f"echo >{name}=\\n\noutput {name}\necho \\n" for name in EXPECTED),
                "kill", ""]))
            commands.flush()
            server = subprocess.Popen([TOP / "scripts" / "wine-run.sh", SERVER, f"localhost:{port}", PROGRAM.name],
                                      cwd=PROGRAM.parent, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                      stderr=subprocess.DEVNULL)
            try:
                gdb = subprocess.run(["x86_64-w64-mingw32-gdb", "--batch", "-nx", "-x", commands.name, PROGRAM.name],
                                     cwd=PROGRAM.parent, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                     encoding="utf-8", timeout=150)
            finally:
                server.kill()
                server.wait()
        lines = gdb.stdout.splitlines()
        shown = {line[1:-1]: lines[row + 1] for row, line in enumerate(lines[:-1]) if line[:1] == ">" and line[-1:] == "="}
        self.assertEqual(shown, EXPECTED, gdb.stdout[-3000:] + gdb.stderr[-3000:])


if __name__ == "__main__":
    unittest.main()
