#!/bin/bash
# Builds everything with the address and undefined behaviour sanitizers and runs all tests.
set -e
cd "$(dirname "$0")"
. tools/need.sh
need cmake cmake ninja ninja-build g++ g++ python3 python3 /usr/include/tsl/robin_map.h robin-map-dev /usr/include/gtest/gtest.h libgtest-dev \
    /usr/include/benchmark/benchmark.h libbenchmark-dev

cmake --preset debug -DORVO_BENCH=ON  # measured in release builds, but they must not rot
cmake --build --preset debug --parallel "$(nproc)"
ctest --preset debug
