#!/bin/bash
# Compiles every root module of the corpus beside the project and compares what is reported with what is known
# to be wrong in the modules (tests/corpus.expected). Skips itself (77) where there is no corpus.
set -u
orvo=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
corpus=${ORVO_CORPUS:-$here/../../shared/corpus}
[ -d "$corpus" ] || exit 77
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
for set in "$corpus"/*/; do
    name=$(basename "$set")
    [ -f "$set/roots.txt" ] || continue
    mkdir -p "$out/$name/lst" "$out/$name/stx"
    while read -r root; do
        (cd "$out/$name" && "$orvo" "+$set/prefix.opt" "-A=$set/asn" -L=lst -S=stx -NAMELEN=128 -V=2 "$root") \
            >"$out/$name/$root.out" 2>&1
        status=$?
        [ $status -le 1 ] || { echo "$name/$root: exit status $status"; tail -5 "$out/$name/$root.out"; }
    done <"$set/roots.txt"
    (cd "$out/$name/lst" && grep -HE '^ (\*\*\*| \*\*) ERROR|^\*\*\* ERROR' ./*.lst) | sed "s,^\./,$name/,"
done | diff - <(grep -v '^#' "$here/corpus.expected")
