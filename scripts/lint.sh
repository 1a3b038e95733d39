#!/usr/bin/env bash
# Static checks: clang-format, shellcheck, Python, the order of the layers, forbidden waits, cppcheck
# and clang-tidy, cheapest first. qmllint is one of the tests.
# Usage: scripts/lint.sh [format|shell|python|layers|waits|cppcheck|tidy|tidy-tests|size]...
#        (none: all of them but size)
# Works on the dev preset, which it configures and builds (headers are generated there). What passed
# is remembered under build/dev, so that an unchanged file costs nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/dev
checks=("$@")
[ ${#checks[@]} -gt 0 ] || checks=(format shell python layers waits cppcheck tidy tidy-tests)
failed=()

sources() { git ls-files --cached --others --exclude-standard -- "$@"; }

lint_format() {
    sources '*.h' '*.cpp' | xargs -r clang-format --dry-run --Werror
}

lint_shell() {
    { sources '*.sh'; echo .ci/run; } | xargs shellcheck --severity=style --external-sources
}

lint_python() {
    sources '*.py' | xargs -r black --check --quiet --diff --line-length=100
    sources '*.py' | xargs -r flake8 --max-line-length=100 --extend-ignore=E203
}

lint_layers() { scripts/layers.py; }

# How much there is of the tests for the product that they test.
lint_size() {
    local product tests share
    lines() {
        sources "$@" ':!fuzz/corpus' ':!*.md' ':!*.png' ':!*.svg' ':!*.ts' | xargs -r cat | wc -l
    }
    product=$(lines src engine launcher)
    tests=$(lines tests fuzz)
    share=$((tests * 1000 / product))
    echo "product $product lines, tests $tests: $((share / 10)).$((share % 10)) %, at most 35 %"
    [ $((tests * 100)) -le $((product * 35)) ]
}

# GCC 12's <semaphore>, <latch>, <barrier> and waits on std::atomic lose wake-ups where the system
# has no futex, which is to say on Windows. The benchmarks run on Linux only.
lint_waits() {
    local places=(src engine launcher tests) atomics found
    atomics=$(git grep --untracked -hoP 'std::atomic(<[^;={]*>|_\w+)\s+\K\w+(?=[\s{;=(\[])' -- "${places[@]}" |
        sort -u | paste -sd'|')
    found=$(git grep --untracked -nP -e '#\s*include\s*<(semaphore|latch|barrier)>' \
        -e "\b($atomics)(\.|->)(wait|notify_one|notify_all)\(" \
        -e '\batomic_(flag_)?(wait|notify)' -- "${places[@]}") || return 0
    echo "$found"
    echo "use a condition variable, in tests support/Signal.h"
    return 1
}

# System headers are not read: what cppcheck needs of the libraries it brings itself. A log() of ours
# it takes for the mathematical one, whose value is not to be ignored.
lint_cppcheck() {
    mkdir -p "$build/cppcheck"
    cppcheck --project="$build/compile_commands.json" --cppcheck-build-dir="$build/cppcheck" \
        -j "$(nproc)" --quiet --error-exitcode=1 --inline-suppr --std=c++20 \
        --enable=warning,portability --library=googletest,qt \
        --suppress='*:*/build/*' --suppress='*:build/*' --suppress='*:/usr/*' \
        --suppress=missingIncludeSystem --suppress=ignoredReturnValue \
        --template='{file}:{line}: {severity}: {message} [{id}]'
}

lint_tidy() {
    scripts/tidy.py "$build" src engine launcher
}

lint_tidy-tests() {
    scripts/tidy.py "$build" tests
}

build_dev() {
    mkdir -p build
    cmake --preset dev >build/configure-lint.log 2>&1 || {
        cat build/configure-lint.log
        return 1
    }
    cmake --build --preset dev
}

case " ${checks[*]} " in *" cppcheck "* | *" tidy"*) build_dev ;; esac
for check in "${checks[@]}"; do
    case "$check" in
        format | shell | python | layers | waits | cppcheck | tidy | tidy-tests | size) ;;
        *)
            echo "lint.sh: no check named '$check' (format, shell, python, layers, waits, cppcheck, tidy, tidy-tests, size)" >&2
            exit 2
            ;;
    esac
    started=$SECONDS
    if "lint_$check"; then
        echo "lint: $check passed ($((SECONDS - started)) s)"
    else
        echo "lint: $check FAILED"
        failed+=("$check")
    fi
done
[ ${#failed[@]} -eq 0 ] || {
    echo "lint.sh: failed: ${failed[*]}" >&2
    exit 1
}
