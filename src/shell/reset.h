#pragma once
// The one place that releases everything.

#include <cstdint>

namespace vantorel {

// Groups of state, as bits of a mask.
inline constexpr int32_t iResetRoms = 1;
inline constexpr int32_t iResetAliases = 2;
inline constexpr int32_t iResetAuditFiles = 4;
inline constexpr int32_t iResetHashes = 8;
inline constexpr int32_t iResetAll = 15;

/// Releases the groups in `mask` and says so.
void reset(int32_t mask);

} // namespace vantorel
