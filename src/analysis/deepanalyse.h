#pragma once
// Relocs found by comparing two copies of a component that were built for different places.

#include <cstdint>

namespace vantorel {

/// The chunk length that is asked for when the user names none, in bytes.
inline constexpr int32_t iChunkLeast = 64;

/// Compares component `srcComponent` of slot `srcRom` with `dstComponent` of `dstRom`, whose starts and ends
/// must both be verified: finds the chunks of at least `minChunk` bytes (1 up) in which they agree, and tells
/// of each long of the source that may be an address where it points to and whether its counterpart points
/// to the same. Nothing is changed. Returns 0; 1 with an error line when there is nothing to compare.
int deepanalysecomponent(int32_t srcRom, int32_t srcComponent, int32_t dstRom, int32_t dstComponent,
                         int32_t minChunk);

} // namespace vantorel
