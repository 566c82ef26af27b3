#!/usr/bin/env bash
# Installs what vel needs to build and test, from Debian's packages.
set -euo pipefail

packages=(g++ gcc cmake make pkgconf libgtest-dev libgmock-dev libbenchmark-dev
          libyaml-cpp-dev nlohmann-json3-dev libcli11-dev libexpat1-dev python3-mpmath
          python3-numpy python3-scipy python3-yaml toulbar2
          python3-matplotlib python3-pytest python3-venv python3-pip python3-setuptools python3-wheel
          chromium
          clang libclang-rt-14-dev python3)  # fuzzing (libFuzzer) and the hostile-input suite

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -ne 0 ]; then
  echo "setup: missing Debian packages: ${missing[*]}" >&2
  echo "setup: run as root, or: sudo apt-get install ${missing[*]}" >&2
  exit 1
fi

echo "setup: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y --no-install-recommends "${missing[@]}"
