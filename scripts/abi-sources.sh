#!/usr/bin/env bash
# Fetches the sources of LLVM's standard library, which the behaviour tests in MSVC's ABI are built with (130 MB).
set -euo pipefail
exec "$(dirname "${BASH_SOURCE[0]}")/source-packages.sh" 'llvm-toolchain-14=*-*/libcxx/src/*'
