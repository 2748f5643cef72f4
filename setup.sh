#!/usr/bin/env bash
# Sets up a Debian 12 machine for the project and builds it.
#   ./setup.sh         install what is missing and build into build/
#   ./setup.sh run     ... then run deglare --demo: a 1080p clip with flashes, cleaned, with a
#                      report and a plot, all in deglare-demo/
#   ./setup.sh test    ... then run every test: the release build, a build under
#                      AddressSanitizer + UndefinedBehaviorSanitizer, the concurrency
#                      tests under ThreadSanitizer, and the preset loader's fuzzer for a minute
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(
  build-essential cmake ninja-build pkg-config binutils
  libgtest-dev libbenchmark-dev
  libtinyxml-dev libboost-dev libplist-dev libcurl4-openssl-dev
  clang libfuzzer-14-dev libclang-rt-14-dev locales
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev ffmpeg
  libcli11-dev nlohmann-json3-dev libcairo2-dev
  libcpp-httplib-dev libgtk-3-dev xvfb xauth
  libgl-dev libegl-dev libegl-mesa0 libgl1-mesa-dri
  frei0r-plugins-dev melt
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

# The preset tests save and load under a locale that writes numbers with a comma.
install_test_locale() {
  locale -a 2>/dev/null | grep -qix 'de_DE.utf8' && return 0
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  if grep -q '^# *de_DE.UTF-8 UTF-8' /etc/locale.gen; then
    $sudo sed -i 's/^# *\(de_DE.UTF-8 UTF-8\)/\1/' /etc/locale.gen
  elif ! grep -q '^de_DE.UTF-8 UTF-8' /etc/locale.gen; then
    echo 'de_DE.UTF-8 UTF-8' | $sudo tee -a /etc/locale.gen >/dev/null
  fi
  $sudo locale-gen >/dev/null
}

# build DIR [cmake options...]
build() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
  cmake --build "$dir" -- -j"$(nproc)"
}

# fuzz NAME SECONDS: runs build-fuzz's deglarer_NAME_fuzzer on tests/fuzz/NAME_corpus (with
# tests/fuzz/NAME.dict where there is one). One input taking 10 seconds counts as a hang, and a
# hang is a finding like a crash.
fuzz() {
  local name=$1 seconds=$2 dict=()
  cmake --build build-fuzz --target "deglarer_${name}_fuzzer" -- -j"$(nproc)"
  rm -rf "build-fuzz/${name}_corpus"
  cp -r "tests/fuzz/${name}_corpus" "build-fuzz/${name}_corpus"
  [ -f "tests/fuzz/${name}.dict" ] && dict=(-dict="tests/fuzz/${name}.dict")
  if ! "./build-fuzz/tests/fuzz/deglarer_${name}_fuzzer" -max_total_time="$seconds" -timeout=10 \
       -print_final_stats=1 "${dict[@]}" -artifact_prefix="build-fuzz/${name}-" "build-fuzz/${name}_corpus" \
       >"build-fuzz/${name}_fuzzer.log" 2>&1; then
    tail -n 60 "build-fuzz/${name}_fuzzer.log"
    echo "setup: the ${name} fuzzer found a fault; the input is in build-fuzz/" >&2
    exit 1
  fi
  echo "fuzz ${name}: $(grep -E '^Done ' "build-fuzz/${name}_fuzzer.log")"
}

install_missing
install_test_locale ||
  echo "setup: could not generate de_DE.UTF-8; the preset locale tests will be skipped" >&2
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
    # The fuzz targets under libFuzzer, each from a copy of its seed corpus so that the files it
    # finds stay out of the repository; any finding fails the run.
    CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DDEGLARER_BUILD_FUZZ=ON -DDEGLARER_BUILD_TESTS=OFF -DDEGLARER_BUILD_BENCH=OFF >/dev/null
    fuzz preset 60
    fuzz settings 30
    fuzz presetfile 30
    ;;
  "") ;;
  *)
    echo "usage: $0 [run|test]" >&2
    exit 2
    ;;
esac
