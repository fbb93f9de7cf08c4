#include "hash/filerange.h"

#include "base/message.h"
#include "shell/numbers.h"

#include <cstring>

namespace vantorel {

std::optional<FileRange> readrange(const char* key, const char* value) {
    const char* comma = std::strchr(value, ',');
    if (comma == nullptr) {
        message(kResult, "ERROR, %s range %s has no size\n", key, value);
        return std::nullopt;
    }
    return FileRange{decimal(value), decimal(comma + 1), comma + 1};
}

bool requirerange(const char* key, const FileRange& range, View file) {
    if (isinside(file, range.start, range.size)) return true;
    message(kResult, "ERROR, %s range %d,%d is outside the file\n", key, range.start, range.size);
    return false;
}

} // namespace vantorel
