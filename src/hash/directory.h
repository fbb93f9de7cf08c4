#pragma once
// The listing of one directory of the host, as the library and the audit take it.

#include <dirent.h>
#include <memory>
#include <optional>
#include <string>

namespace vantorel {

/// An entry of a directory. Its name lives until the next entry is asked for.
struct DirectoryEntry {
    const char* cName = "";
    bool isdirectory = false; ///< a link to a directory is none, so that no walk runs in circles
};

/// A directory open for listing, closed with the object. One that cannot be opened lists nothing.
class DirectoryListing {
public:
    explicit DirectoryListing(const std::string& path) : handle(::opendir(path.c_str())) {}

    /// The next entry as the system lists them, without the directories whose names begin with "."; none at
    /// the end.
    [[nodiscard]] std::optional<DirectoryEntry> next();

private:
    struct Close {
        void operator()(DIR* directory) const { ::closedir(directory); }
    };
    std::unique_ptr<DIR, Close> handle;
};

/// False for a path of `iPathMax` characters: it may have been cut, and its entries' paths would be, so that
/// a walk could come to the same directory for ever. Not to be asked of a walk's root, which is taken as it
/// is given.
[[nodiscard]] bool iswalkable(const std::string& path);

} // namespace vantorel
