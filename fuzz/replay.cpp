// Runs a fuzz target on the inputs stored in a folder, without libFuzzer: the ordinary tests see what fuzzing
// found.

#include "input.h"
#include "support/tempdir.h"

#include <cstdio>
#include <filesystem>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 2 || !vantorel::test::silence()) return 2;
    // All are read first: a target may change its folder.
    std::vector<vantorel::Bytes> inputs;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
        inputs.push_back(vantorel::test::contentsof(entry.path()));
    for (const vantorel::Bytes& input : inputs)
        vantorel::test::exercise(input);
    std::fprintf(stderr, "%zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
