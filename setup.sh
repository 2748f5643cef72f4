#!/usr/bin/env bash
# Sets up a Debian 12 machine for the project and builds it.
#   ./setup.sh         install what is missing and build into build/
#   ./setup.sh run     ... then run deglare --demo: a 1080p clip with flashes, cleaned, with a
#                      report and a plot, all in deglare-demo/
#   ./setup.sh test    ... then run every test: the release build, a build under
#                      AddressSanitizer + UndefinedBehaviorSanitizer, and the concurrency
#                      tests under ThreadSanitizer
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(
  build-essential cmake ninja-build pkg-config binutils
  libgtest-dev libbenchmark-dev
  libtinyxml-dev libboost-dev libplist-dev libcurl4-openssl-dev
  clang libfuzzer-14-dev libclang-rt-14-dev locales
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev ffmpeg
  libcli11-dev nlohmann-json3-dev libcairo2-dev
)

install_missing() {
  local missing=()
  for package in "${PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  echo "setup: installing ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# build DIR [cmake options...]
build() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
  cmake --build "$dir" -- -j"$(nproc)"
}

install_missing
build build -DCMAKE_BUILD_TYPE=Release

case "${1:-}" in
  run)
    ./build/deglare --demo
    ;;
  test)
    ctest --test-dir build --output-on-failure -j"$(nproc)"
    build build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDEGLARER_SANITIZE=address,undefined \
      -DDEGLARER_BUILD_BENCH=OFF
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
      ctest --test-dir build-asan --output-on-failure -j"$(nproc)"
    cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDEGLARER_SANITIZE=thread \
      -DDEGLARER_BUILD_BENCH=OFF >/dev/null
    cmake --build build-tsan --target deglarer_concurrency -- -j"$(nproc)"
    TSAN_OPTIONS=halt_on_error=1 ctest --test-dir build-tsan -L concurrency --output-on-failure -j"$(nproc)"
    ;;
  "") ;;
  *)
    echo "usage: $0 [run|test]" >&2
    exit 2
    ;;
esac
