#pragma once
// Writes the bytes of one module of a synthetic image, keeping account of every absolute address.

#include "support/rombuilder.h"

#include <functional>
#include <string_view>

namespace vantorel::test {

/// Where the parts of a module with a ROMTAG lie, all bytes from its first one.
struct ModuleLayout {
    int32_t name = 0;
    int32_t idstring = 0;
    int32_t autoinit = 0;
    int32_t vectors = 0;
    int32_t initstruct = 0;
    int32_t code = 0;    ///< the init function, then the functions
    int32_t filler = 0;  ///< code without a meaning, with the pointers in it
    int32_t minimum = 0; ///< size that everything needs, a multiple of 4
};

[[nodiscard]] ModuleLayout layoutof(const ModuleSpec& spec);

/// The CPU address of a pointer's target.
using Resolve = std::function<uint32_t(const Pointer&)>;

/// The bytes of a module under construction, and its relocs so far.
class ModuleWriter {
public:
    ModuleWriter(const ModuleSpec& module, Resolve resolver);

    /// A module with a ROMTAG, all of it.
    void writemodule();
    /// Code with the pointers in it, up to the size asked for.
    void writecode();

    Bytes bytes;
    std::vector<int32_t> relocs;

private:
    void word(uint32_t value) { appendword(bytes, value); }
    void pointer(const Pointer& target);
    void own(int32_t offset) { pointer({.module = "", .offset = offset}); }
    void text(std::string_view characters);
    void romtag();
    void autoinit();
    void vectors();
    void code();
    void filler(int32_t end);
    [[nodiscard]] int32_t at() const { return static_cast<int32_t>(bytes.size()); }
    [[nodiscard]] int32_t function(int32_t number) const;
    uint32_t instruction();
    uint32_t random();

    const ModuleSpec& spec;
    ModuleLayout layout;
    Resolve resolve;
    uint32_t state;
};

} // namespace vantorel::test
