#!/bin/bash
# ./tidy.sh [--all]: runs clang-tidy over the units that differ from the commit before, or over all of
# them.
set -e
cd "$(dirname "$0")"
. tools/need.sh
need cmake cmake ninja ninja-build g++ g++ clang-tidy clang-tidy /usr/include/tsl/robin_map.h robin-map-dev \
    /usr/include/gtest/gtest.h libgtest-dev /usr/include/benchmark/benchmark.h libbenchmark-dev

folders=(src tools fuzz tests bench)
cmake --preset debug -DORVO_BENCH=ON >/dev/null # for its list of commands

# The units that a change to a header reaches directly.
users() {
    local name=${1#src/}
    grep -rlF "\"${name#tools/}\"" "${folders[@]}" --include='*.cpp' || :
}

changed() {
    local base=HEAD~1
    if ! git rev-parse --quiet --verify "$base" >/dev/null; then
        echo "There is no earlier commit to compare with." >&2
        return
    fi
    { git diff --name-only --diff-filter=d "$base" -- "${folders[@]}"
      git ls-files --others --exclude-standard -- "${folders[@]}"; } |
        while read -r file; do
            case $file in
            *.cpp) echo "$file" ;;
            *.h) users "$file" ;;
            *.def) grep -rlF "\"${file#src/}\"" "${folders[@]}" --include='*.h' |
                while read -r header; do users "$header"; done ;;
            esac
        done | sort -u
}

if [ "$1" = --all ]; then
    units=$(find "${folders[@]}" -name '*.cpp' | sort)
else
    units=$(changed)
fi
[ -n "$units" ] || exit 0
# What clang warns of, the build with clang tells; options of g++ mean nothing to it.
echo "$units" | xargs -P "$(nproc)" -I{} sh -c \
    'clang-tidy -p build/debug --quiet --extra-arg=-Wno-unknown-warning-option "$1" 2>/dev/null ||
        { echo "$1" >&2; exit 1; }' sh {}
echo "clang-tidy: $(echo "$units" | wc -l) units, no finding"
