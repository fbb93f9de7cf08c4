#include "hash/hashfile.h"

#include "base/message.h"
#include "hash/library.h"
#include "shell/numbers.h"

#include <algorithm>
#include <cstring>

namespace vantorel {

std::optional<uint32_t> describedbase(const IniFile& ini) {
    const char* value = readiniitem(ini, cDescriptionSection, "ROMBase");
    if (value == nullptr) return std::nullopt;
    return Hex2iUINT32(value + std::min<size_t>(2, std::strlen(value)));
}

std::optional<IniFile> loadhashfile(const Text& hash) {
    return loadinifile(findhashfile(hash ? hash->c_str() : nullptr));
}

std::optional<IniFile> ComponentHashFiles::load(const Text& hash) {
    constexpr int64_t most = int64_t{16} << 20;
    if (size > most) return std::nullopt;
    auto ini = loadhashfile(hash);
    if (ini) size += static_cast<int64_t>(ini->pcBuffer.size());
    if (size > most) message(kResult, "ERROR: The hash files of this map's components are too large\n");
    return ini;
}

} // namespace vantorel
