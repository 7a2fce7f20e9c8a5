#!/bin/bash
# Builds everything with the address and undefined behaviour sanitizers and runs all tests.
set -e
cd "$(dirname "$0")"
. tools/need.sh
need cmake cmake ninja ninja-build g++ g++ /usr/include/gtest/gtest.h libgtest-dev

cmake --preset debug
cmake --build --preset debug --parallel "$(nproc)"
ctest --preset debug
