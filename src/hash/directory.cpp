#include "hash/directory.h"

#include "base/text.h"

namespace vantorel {

std::optional<DirectoryEntry> DirectoryListing::next() {
    while (const dirent* entry = handle ? ::readdir(handle.get()) : nullptr) {
        const bool isdirectory = entry->d_type == DT_DIR;
        if (isdirectory && entry->d_name[0] == '.') continue;
        return DirectoryEntry{entry->d_name, isdirectory};
    }
    return std::nullopt;
}

bool iswalkable(const std::string& path) { return path.size() < iPathMax; }

} // namespace vantorel
