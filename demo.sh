#!/bin/bash
# Builds the compiler and compiles the examples; shows a listing, a diagnostic and what is in a tree file.
set -e
cd "$(dirname "$0")"
. tools/need.sh
need cmake cmake ninja ninja-build g++ g++ /usr/include/tsl/robin_map.h robin-map-dev

cmake --preset release -DORVO_TESTS=OFF >/dev/null
cmake --build --preset release --parallel "$(nproc)"
orvo=$PWD/build/release/orvo
kavrimol=$(find "$PWD/build/release" -name kavrimol -type f | head -1)
stxdump=$(find "$PWD/build/release" -name stxdump -type f | head -1)
out=$PWD/out

# An example is a folder with a file "arguments"; listings and trees go to out/. Where a file "kavrimol"
# holds arguments for kavrimol, the option file that it writes is given to the compiler.
for arguments in examples/*/arguments; do
    folder=$(dirname "$arguments")
    results=$out/$(basename "$folder")
    options=("-L=$results" "-S=$results")
    mkdir -p "$results"
    echo
    if [ -e "$folder/kavrimol" ]; then
        echo "==== $folder: kavrimol -option-file=prefix.opt $(cat "$folder/kavrimol")"
        (cd "$folder" && xargs "$kavrimol" "-option-file=$results/prefix.opt" <kavrimol)
        cat "$results/prefix.opt"
        options=("+$results/prefix.opt" "${options[@]}")
    fi
    echo "==== $folder: orvo $(cat "$arguments")"
    (cd "$folder" && xargs "$orvo" "${options[@]}" <arguments) || true
done

echo
echo "==== the listing of a module with an error"
cat "$out/faulty/faulty.lst"
if [ -n "$stxdump" ]; then
    echo
    echo "==== the beginning of what a back end reads of examples/first/address.asn"
    "$stxdump" "$out/first/adr.stx" | sed -n 1,40p
fi
