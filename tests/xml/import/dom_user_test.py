#!/usr/bin/env python3
"""Compiles the program of a user of the DOM in clang's MSVC mode, with the library's own headers and after an import.

GCC has no __declspec(property), so only here are the properties read. The command is that of scripts/abi.py.
"""
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[2] / "scripts"))
import abi  # noqa: E402

faults = []
for name, options in {"own headers": [], "an import": ["-DQUON_HOST_IMPORTS_MSXML2"]}.items():
    command = [*abi.compiler("c++17"), *options, f"-I{HERE}", "-fsyntax-only", str(HERE / "DomUser.cpp")]
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        faults.append(f"with {name}:\n{done.stderr}")
sys.exit("\n".join(faults) or 0)
