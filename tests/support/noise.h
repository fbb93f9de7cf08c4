#pragma once
// Numbers for damage done at random.

#include <cstdint>
#include <random>

namespace vantorel::test {

/// The same 32-bit numbers on every host, unlike those of the standard library's distributions.
class Noise {
public:
    explicit Noise(uint32_t seed) : engine(seed) {}
    uint32_t operator()() { return static_cast<uint32_t>(engine()); }

private:
    std::mt19937 engine;
};

} // namespace vantorel::test
