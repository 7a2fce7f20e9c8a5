#!/bin/bash
# Measures a release build, with the hardening flags that distributions use: ./bench.sh --help
set -e
cd "$(dirname "$0")"
. tools/need.sh
need cmake cmake ninja ninja-build g++ g++ /usr/include/tsl/robin_map.h robin-map-dev python3 python3 \
    /usr/include/benchmark/benchmark.h libbenchmark-dev

cmake --preset bench >/dev/null
cmake --build --preset bench --parallel "$(nproc)"
if [ "$1" = --parts ]; then
    exec build/bench/bench/orvo_bench "${@:2}"
fi
exec python3 bench/run.py build/bench "$@"
