#!/usr/bin/env bash
# Installs the Debian packages the build needs, only those that are missing:
# GCC for the everyday builds; Clang, its sanitizer and libFuzzer runtimes
# (libclang-rt-14-dev), clang-format and clang-tidy for CI's further passes;
# Python for the generator of the sample project, which a test runs.
# Runs as root on a fresh Debian 12 machine; uses sudo otherwise.
set -euo pipefail

packages=(
  g++ cmake ninja-build make pkg-config python3
  nlohmann-json3-dev libsqlite3-dev qt6-base-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang clang-format clang-tidy libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
