#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds zebcv and its command-line program and runs the main job: every
# pipeline on generated sample scenes, results in ./zebcv-demo (or $1).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh main
cmake --preset main >/dev/null
cmake --build --preset main
exec build/main/tools/zebcv demo "${1:-zebcv-demo}"
