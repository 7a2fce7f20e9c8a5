// The stack of the thread that runs the compiler. Its lowest address is asked for once, and again
// when the compiler moves to another stack.

#include "util/stack.h"

#include <cstdint>
#include <pthread.h>

namespace orvo {

namespace {

struct StackState {
    uintptr_t low = 0; // lowest address that may still be used; 0 = not known yet
};
StackState stackState;

/// A stack that is smaller than this is not worth a thread.
constexpr size_t smallestStack = size_t{16} * 1024 * 1024;

void findLow() {
    pthread_attr_t attributes;
    void* address = nullptr;
    size_t size = 0;
    stackState.low = 1;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
    if (pthread_attr_getstack(&attributes, &address, &size) == 0)
        stackState.low = reinterpret_cast<uintptr_t>(address) + stackReserve;
    pthread_attr_destroy(&attributes);
}

struct Call {
    int (*fn)(void*);
    void* argument;
    int result = 0;
};

void* runCall(void* argument) {
    auto* call = static_cast<Call*>(argument);
    stackState.low = 0;
    call->result = call->fn(call->argument);
    return nullptr;
}

bool runInThread(size_t size, Call& call) {
    pthread_attr_t attributes;
    pthread_t thread;
    if (pthread_attr_init(&attributes) != 0) return false;
    const bool started = pthread_attr_setstacksize(&attributes, size) == 0 &&
                         pthread_create(&thread, &attributes, runCall, &call) == 0;
    pthread_attr_destroy(&attributes);
    return started && pthread_join(thread, nullptr) == 0;
}

} // namespace

int runOnStack(size_t size, int (*fn)(void*), void* argument) {
    Call call{fn, argument};
    for (; size >= smallestStack; size /= 2) {
        if (!runInThread(size, call)) continue;
        stackState.low = 0;
        return call.result;
    }
    return fn(argument);
}

bool stackIsLow() {
    if (stackState.low == 0) findLow();
    return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) < stackState.low;
}

} // namespace orvo
