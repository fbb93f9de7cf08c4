#include "support/realfiles.h"

#include <cstdlib>
#include <filesystem>

namespace vantorel::test {

std::optional<std::string> realfile(const std::string& name) {
    const char* folder = std::getenv("VANTOREL_REAL_DIR");
    if (!folder || !*folder) return std::nullopt;
    const std::filesystem::path path = std::filesystem::path(folder) / name;
    if (!std::filesystem::exists(path)) return std::nullopt;
    return path.string();
}

} // namespace vantorel::test
