#include "support/tempdir.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace fs = std::filesystem;

namespace vantorel::test {

Bytes contentsof(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::system_error(ENOENT, std::generic_category(), path);
    Bytes contents(fs::file_size(path));
    stream.read(reinterpret_cast<char*>(contents.data()), std::ssize(contents));
    return contents;
}

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "vantorel-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::system_error(errno, std::generic_category(), "mkdtemp");
    root = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

std::string TempDir::file(const std::string& name) const { return root + "/" + name; }

std::string TempDir::file(const std::string& name, std::string_view text) const {
    const fs::path path = file(name);
    fs::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    if (!stream) throw std::system_error(EIO, std::generic_category(), path.string());
    return path.string();
}

std::string TempDir::file(const std::string& name, View bytes) const {
    return file(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::string TempDir::folder(const std::string& name) const {
    std::string path = file(name);
    fs::create_directories(path);
    return path;
}

std::string TempDir::text(const std::string& name) const {
    const Bytes contents = bytes(name);
    return {contents.begin(), contents.end()};
}

Bytes TempDir::bytes(const std::string& name) const { return contentsof(file(name)); }

bool TempDir::exists(const std::string& name) const { return fs::exists(fs::symlink_status(file(name))); }

InDirectory::InDirectory(const std::string& path) : former(fs::current_path().string()) {
    fs::current_path(path);
}

InDirectory::~InDirectory() {
    std::error_code ignored;
    fs::current_path(former, ignored);
}

} // namespace vantorel::test
