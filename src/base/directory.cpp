#include "base/directory.h"

#include "base/message.h"
#include "base/text.h"

#include <dirent.h>
#include <memory>

namespace vantorel {

namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

/// A path of `iPathMax` characters may have been cut, and its entries' paths would be, so that a walk could
/// come to the same directory for ever. The root is taken as it is given.
bool iswalkable(size_t index, const std::string& path) { return index == 0 || path.size() < iPathMax; }

} // namespace

void scandirectory(size_t index, const std::string& path,
                   const std::function<void(std::string path)>& adddirectory,
                   const std::function<void(const char* name)>& addfile) {
    message(kTrace, "ADDING %d : %s\n", static_cast<int>(index), path.c_str());
    if (!iswalkable(index, path)) return;
    const std::unique_ptr<DIR, CloseDirectory> directory(::opendir(path.c_str()));
    while (const dirent* entry = directory ? ::readdir(directory.get()) : nullptr) {
        if (entry->d_type != DT_DIR)
            addfile(entry->d_name);
        else if (entry->d_name[0] != '.')
            adddirectory(joinpath(path, entry->d_name));
    }
}

} // namespace vantorel
