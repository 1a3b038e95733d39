# shellcheck shell=bash
# What windows-dependencies.sh and windows-qt.sh share. Both build outside the tree, into a folder
# that is named by everything that decides its contents, so that only the first run pays.

readonly target=x86_64-w64-mingw32
cache=${XDG_CACHE_HOME:-$HOME/.cache}/record-converter
caller=$(readlink -f "$0")

say() { printf '%s\n' "$(basename "$caller" .sh): $*" >&2; }
fail() { say "$*"; exit 1; }

# The versions are those of this system's packages; the sources taken are of the same release.
installed_version() { dpkg-query -W -f '${Version}' "$1" 2>/dev/null || echo none; }

# key WORD...: of the script that says what is built, the compiler and the words.
key() {
    { cat "$caller"; "$target-gcc-posix" -dumpfullversion; printf '%s\n' "$@"; } | sha256sum | cut -c 1-12
}

# begin FOLDER OPTION: prints it and ends here if it has been made, or if that is all that is wanted.
# Else sets $final, $work, $prefix (which becomes $final), $log, $jobs and $launcher.
begin() {
    final=$1
    if [ "$2" = --print-prefix ] || [ -e "$final/VERSIONS" ]; then
        echo "$final"
        exit 0
    fi
    mkdir -p "$cache"
    exec 9>"$final.lock" # two builds at once would write the same folder
    flock 9
    [ -e "$final/VERSIONS" ] && { echo "$final"; exit 0; }
    work=$final.work # the same each time, for ccache's sake
    rm -rf "$work"
    trap 'rm -rf "$work"' EXIT
    log=$final.log
    : >"$log"
    prefix=$work/stage/opt
    # shellcheck disable=SC2034 # for the two scripts
    jobs=$(nproc) launcher=$(command -v ccache || echo env)
    export CCACHE_BASEDIR=$work CCACHE_NOHASHDIR=true CCACHE_DEPEND=true
    mkdir -p "$prefix"
    say "building for Windows into $final (log: $log)"
}

# step NAME COMMAND...: in the background, because a function called in a condition ignores errexit.
step() {
    local name=$1 began=$SECONDS waited=0 building
    shift
    "$@" >>"$log" 2>&1 &
    building=$!
    while sleep 1 && kill -0 "$building" 2>/dev/null; do
        waited=$((waited + 1))
        [ $((waited % 60)) -ne 0 ] ||
            say "$name: $((waited / 60)) min $(grep -oE '^\[[0-9]+/[0-9]+\]' "$log" | tail -n 1)"
    done
    wait "$building" || { tail -n 20 "$log" >&2; fail "$name failed, see $log"; }
    say "$name: done after $((SECONDS - began)) s"
}

# Whole or not at all.
finish() {
    mv "$work/VERSIONS" "$prefix/VERSIONS"
    rm -rf "$final"
    mv "$prefix" "$final"
    echo "$final"
}

# apt with the machine's own package sources, asked for sources instead of binaries, and with state
# of its own: the machine's lists and configuration stay as they are.
private_apt() {
    local state=$work/apt
    if [ ! -d "$state" ]; then
        mkdir -p "$state/parts" "$state/lists/partial" "$state/cache/archives/partial"
        local file
        for file in /etc/apt/sources.list.d/*.sources; do
            [ -e "$file" ] && sed 's/^Types:.*/Types: deb-src/' "$file" \
                >"$state/parts/$(basename "$file")"
        done
        for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
            [ -e "$file" ] && sed -n 's/^deb\([[:space:]]\)/deb-src\1/p' "$file" \
                >"$state/parts/$(basename "$file" .list).list"
        done
        private_apt update || fail "cannot read the package sources' index, see $log"
    fi
    apt-get -q -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$state/parts" \
        -o Dir::State::lists="$state/lists" -o Dir::Cache="$state/cache" \
        -o APT::Update::Post-Invoke-Success::= -o APT::Sandbox::User= \
        -o Acquire::Languages=none -o Acquire::Retries=3 "$@"
}

# fetch_package PACKAGE FOLDER: its source, verified by apt and with Debian's patches, in $work/FOLDER.
fetch_package() {
    mkdir -p "$work/fetch-$1"
    (cd "$work/fetch-$1" && private_apt source --only-source "$1") || fail "cannot get the source of $1"
    basename "$work/fetch-$1"/*.dsc .dsc >>"$work/VERSIONS"
    mv "$work/fetch-$1"/*/ "$work/$2"
}
