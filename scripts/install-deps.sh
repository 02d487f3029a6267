#!/usr/bin/env bash
# Installs the Debian 12 packages that building, running and testing Tessivo need.
# Safe to run again: packages already present are left as they are.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config   # compiler and build
  qt6-base-dev                                   # the forms: Qt 6 Widgets
  librtmidi-dev libjack-jackd2-dev               # MIDI ports (RtMidi over ALSA or JACK)
  libgtest-dev libgmock-dev                      # unit tests
  jackd2                                         # JACK server for the end-to-end MIDI tests
  libbenchmark-dev libx11-dev                    # benchmarks in bench/ (the start bench watches X windows)
  xvfb xauth xdotool fonts-dejavu-core           # running the editor on a virtual display
  python3-mido midicsv                           # other programs that read the exported .mid and .syx in the tests
  clang libclang-rt-14-dev                       # libFuzzer targets in fuzz/
  desktop-file-utils appstream dpkg-dev file     # the desktop package: validators, .deb build and checks
  librsvg2-bin                                   # the icon's PNG sizes drawn from its SVG at build time
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
