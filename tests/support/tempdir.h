#pragma once
// A folder of its own for each test, and the change into it.

#include "base/bytes.h"

#include <string>
#include <string_view>

namespace vantorel::test {

/// Every byte of the file at `path`; throws std::system_error when it cannot be read.
[[nodiscard]] Bytes contentsof(const std::string& path);

/// A fresh, empty folder below the host's temporary folder; its whole tree goes with the object.
/// Names given to it are relative to the folder and may hold "/". Every failure throws std::system_error (or
/// its child std::filesystem::filesystem_error).
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// The folder, absolute, without a "/" at the end.
    [[nodiscard]] const std::string& path() const { return root; }

    /// Writes a file, making its parent folders, and gives its full path.
    std::string file(const std::string& name, View bytes) const;
    std::string file(const std::string& name, std::string_view text) const;

    /// The full path that `name` has here; nothing is made.
    [[nodiscard]] std::string file(const std::string& name) const;

    /// Makes a folder and its parents, and gives its full path.
    std::string folder(const std::string& name) const;

    /// The contents of a file made here.
    [[nodiscard]] Bytes bytes(const std::string& name) const;
    [[nodiscard]] std::string text(const std::string& name) const;

    [[nodiscard]] bool exists(const std::string& name) const;

private:
    std::string root;
};

/// Makes `path` the working directory for its lifetime; the former one comes back with the end of it.
class InDirectory {
public:
    explicit InDirectory(const std::string& path);
    explicit InDirectory(const TempDir& directory) : InDirectory(directory.path()) {}
    ~InDirectory();
    InDirectory(const InDirectory&) = delete;
    InDirectory& operator=(const InDirectory&) = delete;

private:
    std::string former;
};

} // namespace vantorel::test
