// Runs a fuzz target on the inputs stored in a folder, without libFuzzer: the ordinary tests see what fuzzing
// found.

#include "support/tempdir.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    if (argc != 2 || LLVMFuzzerInitialize(&argc, &argv) != 0) return 2;
    // All are read first: a target may change its folder.
    std::vector<vantorel::Bytes> inputs;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
        inputs.push_back(vantorel::test::contentsof(entry.path()));
    for (const vantorel::Bytes& input : inputs)
        LLVMFuzzerTestOneInput(input.data(), input.size());
    std::fprintf(stderr, "%zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
