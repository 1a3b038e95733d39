#!/usr/bin/env bash
# Has foreign programs read an archive of our own with an entry of more than 4 GiB.
# usage: large-entry.sh PROGRAM...   (the command that zips "sample" into "sample.zip")
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

mkdir sample
truncate -s 4294967300 sample/large # takes no room: all of it is a hole
printf 'the end' >>sample/large
printf 'small' >sample/small

"$@"

python3 - <<'PYTHON'
import zipfile

with zipfile.ZipFile("sample.zip") as archive:
    large = archive.getinfo("large")
    assert large.file_size == 4294967307, large
    assert large.extract_version >= 45, large.extract_version
    assert archive.read("small") == b"small"
PYTHON
unzip -tqq sample.zip # every byte of it
echo "accepted by Python's zipfile and unzip"
