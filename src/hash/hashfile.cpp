#include "hash/hashfile.h"

#include "shell/numbers.h"

#include <algorithm>
#include <cstring>

namespace vantorel {

std::optional<uint32_t> describedbase(const IniFile& ini) {
    const char* value = readiniitem(ini, cDescriptionSection, "ROMBase");
    if (value == nullptr) return std::nullopt;
    return Hex2iUINT32(value + std::min<size_t>(2, std::strlen(value)));
}

} // namespace vantorel
