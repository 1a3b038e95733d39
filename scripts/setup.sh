#!/usr/bin/env bash
# Installs the Debian packages that building, running or testing needs, and only those missing.
# Usage: scripts/setup.sh SET...     sets: build test windows qt bench
set -euo pipefail

packages_build=(
    g++ cmake ninja-build ccache pkg-config git
    libavformat-dev libavcodec-dev libavutil-dev libswscale-dev libswresample-dev
    libminizip-dev zlib1g-dev libxxhash-dev libsystemd-dev
    qt6-base-dev qt6-base-private-dev qt6-declarative-dev qt6-declarative-dev-tools
    qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools libqt6svg6 qt6-svg-dev
    qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts
    qml6-module-qtquick-window qml6-module-qtquick-templates qml6-module-qtqml
    qml6-module-qtqml-models qml6-module-qtqml-workerscript
    qt6-qpa-plugins fonts-dejavu-core
    libgl1-mesa-dri xvfb xauth x11-utils xdotool xterm imagemagick ffmpeg
)
packages_test=(
    libgtest-dev libgmock-dev googletest
    dpkg-dev file unzip p7zip-full python3 procps
    lintian desktop-file-utils appstream mandoc zsh python3-dbusmock dbus-daemon
    clang clang-format clang-tidy libclang-rt-14-dev cppcheck shellcheck black flake8
)
packages_windows=(
    g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine wine64
    dpkg-dev lld make meson nasm osslsigncode openssl xz-utils
)
packages_qt=(qt6-shadertools-dev qt6-shader-baker)
packages_bench=(libspdlog-dev libboost-dev zip time)

wanted=()
for set in "$@"; do
    case "$set" in
        build) wanted+=("${packages_build[@]}") ;;
        test) wanted+=("${packages_test[@]}") ;;
        windows) wanted+=("${packages_windows[@]}") ;;
        qt) wanted+=("${packages_qt[@]}") ;;
        bench) wanted+=("${packages_bench[@]}") ;;
        *)
            echo "setup.sh: no set named '$set' (build, test, windows, qt, bench)" >&2
            exit 2
            ;;
    esac
done

missing=()
for package in "${wanted[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "setup.sh: these packages are missing, and neither root nor sudo is at hand to" \
            "install them: ${missing[*]}" >&2
        exit 1
    }
    as_root=(sudo)
fi
echo "Installing ${#missing[@]} missing packages: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
