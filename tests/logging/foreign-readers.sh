#!/usr/bin/env bash
# Has three foreign programs read an archive that our own program made.
# usage: foreign-readers.sh PROGRAM...   (the command that zips "sample" into "sample.zip")
# By hand, with LARGE=1: also with an entry of more than 4 GiB, which takes a minute.
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export TZ=UTC

mkdir -p "sample/deep/Ordner – 会議"
seq 1 200000 >sample/numbers.txt
head -c 3000000 /dev/urandom >sample/random.bin
: >sample/empty
printf 'x' >"sample/deep/Ordner – 会議/Füße 😀.txt"
[ -z "${LARGE:-}" ] || truncate -s 4294967300 sample/large # all of it is a hole
touch -d '2001-02-03 04:05:07 UTC' sample/numbers.txt
touch -d '1975-01-01 00:00:00 UTC' sample/empty

"$@"

7z t sample.zip >/dev/null
LC_ALL=C.UTF-8 unzip -qq sample.zip -d extracted
diff -r sample extracted
[ "$(stat -c %Y extracted/numbers.txt)" = "$(stat -c %Y sample/numbers.txt)" ]
python3 -c 'if True:
    import zipfile
    archive = zipfile.ZipFile("sample.zip")
    for entry in archive.infolist():
        assert entry.flag_bits & 0x800 and "\\" not in entry.filename, entry
        assert entry.file_size < 9 or entry.compress_type == zipfile.ZIP_DEFLATED, entry
    assert archive.getinfo("numbers.txt").date_time == (2001, 2, 3, 4, 5, 6)
    assert archive.getinfo("empty").date_time == (1980, 1, 1, 0, 0, 0)'
echo "accepted by unzip, 7z and Python's zipfile"
