#pragma once
// The prompt loop.

#include <cstdint>
#include <cstdio>
#include <vector>

namespace vantorel {

/// Size in bytes of the command buffer: a line runs when it and its line feed fit with a NUL behind.
inline constexpr int32_t iBufferSize = 512;

/// The command buffer, filled by `commandloop`.
extern std::vector<char> ckBuffer;

/// The length of the line in `ckBuffer`, its line feed cut off; `iBufferSize` when it has none.
[[nodiscard]] int32_t countbuffer();

/// Runs the start-up command, then the lines of `input` at a prompt, up to one that begins with "exit", the
/// end, or the leaving of whoever reads the output. A line that does not fit the command buffer is not run,
/// and reported.
void commandloop(std::FILE* input);

} // namespace vantorel
