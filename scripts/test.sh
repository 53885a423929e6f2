#!/usr/bin/env bash
# Runs the whole test suite on the build made by scripts/setup.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --build build -j "$(nproc)"
ctest --test-dir build --output-on-failure "$@"
