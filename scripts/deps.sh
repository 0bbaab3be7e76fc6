#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the Debian packages a build needs, only those missing.
# Usage: scripts/deps.sh main|test
set -euo pipefail
packages=(cmake ninja-build g++ pkg-config libstb-dev libhwy-dev)
if [ "${1:-test}" = test ]; then
  packages+=(libgtest-dev libbenchmark-dev libopencv-dev libopencv-contrib-dev binutils opencv-doc opencv-data)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  echo "installing: ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
