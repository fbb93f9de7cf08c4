#pragma once
// Byte ranges of a file as values of hash files tell them: "start,size" in decimal, and what may follow.

#include "base/bytes.h"

#include <cstdint>
#include <optional>

namespace vantorel {

/// A range in bytes, not yet known to lie in its file.
struct FileRange {
    int32_t start = 0;
    int32_t size = 0;
    const char* sizetext = ""; ///< the size and what follows it, in the value's own text
};

/// Reads `value`, which stands behind `key`. None, and an error line, when it has no comma.
[[nodiscard]] std::optional<FileRange> readrange(const char* key, const char* value);

/// Whether `range`, told by `key`, lies inside `file`; an error line when not.
[[nodiscard]] bool requirerange(const char* key, const FileRange& range, View file);

} // namespace vantorel
