#!/usr/bin/env bash
# Makes the Qt for MinGW-w64 that the window links on Windows, and prints the folder it is in: Core,
# Gui, Widgets, Qml, Quick, Quick Controls (Basic), Layouts and the SVG image plugin, with the tools
# of this system's own Qt.
#
# usage: [QT_SOURCES=DIR] scripts/windows-qt.sh [--print-prefix]
#   --print-prefix   only print the folder, whether or not it has been made
#
# The source of a module is the git repository $QT_SOURCES/MODULE (bare or not), or Qt's public one,
# or Debian's source package, whichever comes first and has the release. A commit is named by its
# contents; a package is verified by apt. VERSIONS in the folder says which it was.
#
# `cmake --preset windows` finds the folder by itself. RECORD_CONVERTER_WINDOWS_QT, set in the
# environment of both, names another one.
#
# Needs what scripts/setup.sh installs for "build", "windows" and "qt". Takes long: see README.md.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=windows-common.sh
. "$(dirname "$(readlink -f "$0")")/windows-common.sh"

readonly version=6.4.2
declare -A commits=(
    [qtbase]=e3e40c44d3f998a433a6a1080297c5f28e9a768f
    [qtsvg]=54066fe644f2c9f7789c61b4fcb4d513eb3f775c
    [qtdeclarative]=1b58f30087eedf42f16572d8ae1d6a5b18f3d698
)

# What the window has no use for. What is left of the widgets is for the dialog that saves a copy.
declare -A without=(
    [qtbase]="sql dbus printsupport network xml concurrent direct2d vulkan system_zlib zstd glib icu
        graphicsview mdiarea calendarwidget wizard undoview fontdialog colordialog progressdialog
        inputdialog splashscreen lcdnumber dial columnview datawidgetmapper pdf textodfwriter
        textmarkdownreader textmarkdownwriter jpeg gif tuiotouch"
    [qtsvg]=""
    [qtdeclarative]="qml_network qml_debug qml_devtools qml_jit qml_xmllistmodel quick_designer
        quick_particles quick_canvas quick_sprite quicktemplates2_calendar"
)

# from_commit REPOSITORY MODULE: unpacks the release's commit.
from_commit() {
    mkdir -p "$work/$2"
    git -C "$1" archive "${commits[$2]}" -- . ':!examples' ':!tests' | tar -x -C "$work/$2" &&
        echo "$2 ${commits[$2]} $1" >>"$work/VERSIONS"
}

from_qt() {
    git clone --bare --quiet --depth 1 --branch "v$version" "https://code.qt.io/qt/$1.git" \
        "$work/$1.git" && from_commit "$work/$1.git" "$1"
}

fetch() {
    local repository=${QT_SOURCES:-/nonexistent}/$1
    if [ -e "$repository" ]; then
        from_commit "$repository" "$1" || fail "$repository has not the commit ${commits[$1]}"
    elif ! from_qt "$1"; then
        fetch_package "${1/#qt/qt6-}" "$1"
        grep -q "^qt6-${1#qt}_$version" "$work/VERSIONS" || fail "Debian has another version of $1"
    fi
}

# What has no switch: other styles, dialogs, tools.
prune() (
    cd "$work/qtdeclarative"
    local unused="fusion|imagine|material|universal|windows|quickdialogs2|quicknativestyle|quickshapes"
    unused+="|labs|tooling|qmllint"
    rm -r tools
    find src -name CMakeLists.txt -exec sed -i -E "/^ *add_subdirectory\(($unused)\)/d" {} +
)

write_toolchain() {
    cat >"$work/toolchain.cmake" <<END
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER $target-gcc-posix)
set(CMAKE_CXX_COMPILER $target-g++-posix)
set(CMAKE_RC_COMPILER $target-windres)
set(CMAKE_FIND_ROOT_PATH $prefix /usr/$target)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
END
}

build() (
    local options=() feature
    for feature in ${without[$1]}; do
        options+=("-DFEATURE_$feature=OFF")
    done
    # What only widgets and tests of Qt Quick are made from.
    [ "$1" = qtbase ] || options+=(-DCMAKE_DISABLE_FIND_PACKAGE_Qt6Widgets=ON
        -DCMAKE_DISABLE_FIND_PACKAGE_Qt6Test=ON)
    cmake -S "$work/$1" -B "$work/build-$1" -G Ninja -Wno-dev \
        -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX=/opt -DCMAKE_PREFIX_PATH="$prefix" \
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$(echo /usr/lib/*-linux-gnu/cmake)" \
        -DCMAKE_C_COMPILER_LAUNCHER="$launcher" -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" \
        -DBUILD_WITH_PCH=OFF -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF \
        -DFEATURE_optimize_size=ON -DINPUT_opengl=desktop "${options[@]}"
    ninja -C "$work/build-$1" -j"$jobs"
    DESTDIR=$work/stage cmake --install "$work/build-$1" --strip
)

[ -n "${RECORD_CONVERTER_WINDOWS_QT:-}" ] && { echo "$RECORD_CONVERTER_WINDOWS_QT"; exit 0; }
host=$(installed_version qt6-base-dev-tools)
begin "$cache/windows-qt-$(key "$host")" "${1:-}"
[[ $host == "$version"* ]] || fail "this system's Qt is $host, what is built here must be the same"
export PKG_CONFIG_LIBDIR=/nonexistent # nothing of the build machine's own
write_toolchain
for module in qtbase qtsvg qtdeclarative; do
    step "source of $module" fetch "$module"
    [ "$module" != qtdeclarative ] || prune
    step "$module" build "$module"
done
finish
