#include "component/relocs.h"

#include "shell/numbers.h"

#include <cstring>

namespace vantorel {

std::vector<int32_t> relocsofsection(const IniFile& ini, int32_t section) {
    std::vector<int32_t> relocs;
    for (int32_t item = 0; item < ini.items(section); ++item) {
        const char* line = ini.line(ini.firstline(section) + item);
        if (std::strlen(line) > cRelocKey.size()) relocs.push_back(decimal(line + cRelocKey.size()));
    }
    return relocs;
}

} // namespace vantorel
