// What the targets have in common for the fuzzer: the start and the mutation.

#include <cstddef>
#include <cstdint>

#include "mutate.h"
#include "process.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::prepare();
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize,
                                          unsigned seed) {
    return fuzz::mutateInput(data, size, maxSize, seed);
}
