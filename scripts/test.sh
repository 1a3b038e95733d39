#!/usr/bin/env bash
# Sets the machine up, builds, and runs every test.
# Usage: scripts/test.sh [STAGE...]
#   dev      Linux build, all tests            asan     address and undefined-behaviour sanitizers
#   tsan     thread sanitizer, without Qt      windows  MinGW-w64 build, tests under Wine
#   fuzz     each fuzzing program for 10 s     lint     static checks, see scripts/lint.sh
#   linux    dev                               sanitizers  asan and tsan
#   (none)   linux, lint, fuzz, tsan and windows
set -euo pipefail
cd "$(dirname "$0")/.."

stages=("$@")
[ ${#stages[@]} -gt 0 ] || stages=(linux lint fuzz tsan windows)

scripts/setup.sh build test
mkdir -p build

# Clones in different folders share what the compiler has made.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=true

# The sanitizers' defaults carry on after a finding in places; a finding fails the test.
export ASAN_OPTIONS="${ASAN_OPTIONS:-abort_on_error=0:detect_stack_use_after_return=1:strict_init_order=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1}"
export TSAN_OPTIONS="${TSAN_OPTIONS:-second_deadlock_stack=1}"

run_preset() {
    local preset=$1
    shift
    echo
    echo "== $preset"
    cmake --preset "$preset" "$@" >"build/configure-$preset.log" 2>&1 || {
        cat "build/configure-$preset.log"
        return 1
    }
    grep -E "^-- record-converter:" "build/configure-$preset.log" || true
    cmake --build --preset "$preset"
    # One more than there are processors here: many tests wait for a window or a limit of time.
    ctest --preset "$preset" --no-tests=error --parallel 3
}

run_lint() {
    echo
    echo "== lint"
    # clang-tidy over the tests alone takes longer than all else here together.
    scripts/lint.sh format shell python layers waits size cppcheck tidy
}

run_fuzz() {
    echo
    echo "== fuzz"
    # The same way each time: what was added is tried, and nothing turns red by chance.
    FUZZ_SEED=${FUZZ_SEED:-1} scripts/fuzz.sh 10
}

for stage in "${stages[@]}"; do
    case "$stage" in
        linux) run_preset dev ;;
        sanitizers)
            run_preset asan
            run_preset tsan
            ;;
        lint) run_lint ;;
        fuzz) run_fuzz ;;
        dev | asan | tsan) run_preset "$stage" ;;
        windows)
            scripts/setup.sh windows
            prefix=$(scripts/windows-dependencies.sh)
            run_preset windows "-DRECORD_CONVERTER_WINDOWS_PREFIX=$prefix"
            ;;
        *)
            echo "test.sh: no stage named '$stage' (dev, linux, asan, tsan, sanitizers, windows, lint, fuzz)" >&2
            exit 2
            ;;
    esac
done
