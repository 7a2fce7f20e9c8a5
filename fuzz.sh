#!/bin/bash
# ./fuzz.sh [MINUTES]     runs all fuzz targets, with libFuzzer where clang is present
# ./fuzz.sh --coverage    lines and branches that the inputs gathered so far reach, worst files first
#
# The inputs are gathered in out/fuzz/TARGET, findings in out/fuzz/findings.
set -e
cd "$(dirname "$0")"
. tools/need.sh
need cmake cmake ninja ninja-build g++ g++ /usr/include/tsl/robin_map.h robin-map-dev

root=$PWD
work=$root/out/fuzz
targets=(modules trees options kavrimol)
declare -A share=([modules]=60 [trees]=20 [options]=10 [kavrimol]=10)   # percent of the time
declare -A longest=([modules]=6000 [trees]=30000 [options]=6000 [kavrimol]=6000) # bytes
mkdir -p "$work/findings"

# The compiler has libFuzzer and what coverage needs.
have_clang() {
    (need clang++ clang llvm-cov llvm) || return 1
    echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, long) { return 0; }' |
        clang++ -fsanitize=fuzzer -x c++ - -o "$work/probe" 2>/dev/null && rm "$work/probe"
}

# build PRESET: the targets, and seeds
build() {
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1" --parallel "$(nproc)" --target orvo fuzz/all
    fuzz/seeds.sh "build/$1/orvo" "$work/seeds"
}

coverage() {
    have_clang || exit 1
    build coverage
    local objects=()
    rm -f "$work"/*.profraw
    for target in "${targets[@]}"; do
        mkdir -p "$work/$target"
        LLVM_PROFILE_FILE="$work/$target.profraw" "build/coverage/fuzz/fuzz_$target" \
            "$work/seeds/$target" "$work/$target"
        objects+=(-object "build/coverage/fuzz/fuzz_$target")
    done
    llvm-profdata merge -o "$work/all.profdata" "$work"/*.profraw
    llvm-cov report "${objects[@]:1}" -instr-profile="$work/all.profdata" -show-branch-summary \
        -ignore-filename-regex="^/usr/|^$root/fuzz/|/main\.cpp" >"$work/coverage.txt"
    # name, lines, lines missed, %, branches, branches missed, %
    echo "file, lines, of them reached, branches, of them reached"
    awk 'NF == 13 && $8 > 0 { print $10, $1, $8, $10, $11, $13 }' "$work/coverage.txt" | sort -n |
        awk '$2 != "TOTAL" { print $2, $3, $4, $5, $6 }' | head -30 | column -t
    awk '$1 == "TOTAL" { print "all:", $8, $10, $11, $13 }' "$work/coverage.txt"
    echo "All files: $work/coverage.txt"
}

# run TARGET SECONDS: false when it ends with a finding
with_libfuzzer() {
    local output="$work/$1.log"
    "build/fuzz/fuzz/fuzz_$1" -close_fd_mask=2 -entropic=0 -timeout=60 -rss_limit_mb=2500 \
        -max_len="${longest[$1]}" -max_total_time="$2" -dict="$work/seeds/tokens.dict" \
        -print_final_stats=1 -artifact_prefix="$work/findings/$1-" \
        "$work/$1" "$work/seeds/$1" >"$output" 2>&1 && return
    tail -n 40 "$output"
    return 1
}
with_runner() {
    local end=$((SECONDS + $2))
    while [ $SECONDS -lt $end ]; do
        (cd "$work/findings" && "$root/build/debug/fuzz/fuzz_$1" -runs=1000 -seed=$RANDOM \
            "$work/seeds/$1") || return 1
    done
}

if [ "$1" = --coverage ]; then
    coverage
    exit
fi
minutes=${1:-10}
run=with_runner
preset=debug
if have_clang; then
    run=with_libfuzzer
    preset=fuzz
else
    echo "Without clang inputs are mutated at random." >&2
fi
build $preset
failed=0
for target in "${targets[@]}"; do
    mkdir -p "$work/$target"
    end=$((SECONDS + minutes * 60 * ${share[$target]} / 100))
    echo "fuzz_$target: $((end - SECONDS)) seconds"
    while [ $SECONDS -lt $end ]; do
        $run "$target" $((end - SECONDS)) || failed=1
    done
done
[ $failed = 0 ] || echo "Findings are in $work/findings" >&2
exit $failed
