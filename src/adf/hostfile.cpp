#include "adf/hostfile.h"

#include "adf/disk.h"

#include <string_view>

namespace vantorel {

bool isadfpath(const std::string& path) { return path.starts_with(cAdfPrefix); }

std::optional<std::string> hostfile(const std::string& path) {
    if (!isadfpath(path)) return path;
    if (adfsavefile(path.substr(std::string_view(cAdfPrefix).size()), cTempFile) != 0) return std::nullopt;
    return cTempFile;
}

} // namespace vantorel
