// What libFuzzer calls, the same for every target.

#include "input.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    return vantorel::test::silence() ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vantorel::test::exercise({data, size});
    return 0;
}
