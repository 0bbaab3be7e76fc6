#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds zebcv with its tests and benchmarks and runs the whole suite, then
# runs it again under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh test
jobs=$(nproc)
for preset in release sanitize; do
  echo "== $preset build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  echo "== $preset tests"
  ctest --preset "$preset" -j "$jobs"
done
