#include "component/relocs.h"

#include "base/message.h"
#include "shell/numbers.h"

#include <cstring>

namespace vantorel {

void tellrelocs(const IniFile& ini, int32_t section) {
    message(kProgress, "Relocs=%d in section %d starts at line=%d\n", ini.lines(section).size(), section,
            ini.firstline(section));
}

std::vector<int32_t> relocsofsection(const IniFile& ini, int32_t section) {
    std::vector<int32_t> relocs;
    for (const char* const line : ini.lines(section))
        if (std::strlen(line) > cRelocKey.size()) relocs.push_back(decimal(line + cRelocKey.size()));
    return relocs;
}

std::vector<int32_t> loadrelocs(const Text& hash) {
    const auto ini = loadhashfile(hash);
    const int32_t section = ini ? readinisection(*ini, cRelocSection) : -1;
    if (section < 0) return {};
    message(kTrace, "Loading relocs\n");
    message(kTrace, "Section size=%d\n", ini->lines(section).size());
    auto relocs = relocsofsection(*ini, section);
    message(kRaw, "Allocating %d ints\n", static_cast<int32_t>(relocs.size()));
    for (size_t i = 0; i < relocs.size(); ++i)
        message(kTrace, "RELOC #%d position %d", static_cast<int32_t>(i), relocs[i]);
    return relocs;
}

} // namespace vantorel
