"""Runs a program and keeps what it prints."""
import subprocess
import tempfile


def text(stream):
    """What was written; every kind of line end reads as a line feed, as in a text stream."""
    return stream.read().decode("utf-8").replace("\r\n", "\n").replace("\r", "\n")


def run(command, timeout=120, **options):
    """As subprocess.run with captured text. Into files, not pipes: services that Wine starts on the way inherit the output
    and live on, and a pipe would not end before they do."""
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
        done = subprocess.run(command, stdout=output, stderr=errors, timeout=timeout, **options)
        for stream in (output, errors):
            stream.seek(0)
        return subprocess.CompletedProcess(command, done.returncode, text(output), text(errors))
