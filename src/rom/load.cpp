#include "rom/load.h"

#include "adf/hostfile.h"
#include "base/files.h"
#include "base/message.h"
#include "base/text.h"
#include "hash/crc32.h"
#include "hash/ini.h"
#include "hash/library.h"
#include "rom/checksum.h"
#include "rom/container.h"
#include "rom/layout.h"
#include "rom/map.h"

#include <optional>

namespace vantorel {

namespace {

std::optional<Bytes> readwhole(const std::string& path) {
    const auto host = hostfile(path);
    auto contents = host ? readfile(*host) : std::nullopt;
    if (!contents) {
        message(kResult, "ERROR: can't open file [%s]\n", path.c_str());
        return std::nullopt;
    }
    if (!contents->iscomplete()) {
        message(kResult, "ERROR, unable to read the file fully, only %d of %ld bytes\n",
                static_cast<int32_t>(contents->bytes.size()), static_cast<long>(contents->iExpected));
        return std::nullopt;
    }
    return std::move(contents->bytes);
}

std::optional<IniFile> hashfileof(View data) {
    const std::string name = hexlong(crc32buf(data));
    message(kProgress, "Look for Hashfile:%s\n", name.c_str());
    return loadinifile(findhashfile(name.c_str()));
}

void loadrawdata(int32_t rom, View data) {
    message(kProgress, "No hash file, loading rawdata\n");
    if (!validrom(data)) {
        message(kProgress, "Does not appear to be a valid ROM, trying byteswap\n");
        const Bytes swapped = iskickstartsize(data.size()) ? byteswapped(data) : Bytes();
        if (validrom(swapped)) {
            message(kProgress, "Appears to be a valid ROM after byteswap\n");
            loadromdata(rom, swapped);
            return;
        }
    }
    loadromdata(rom, data);
}

} // namespace

int loadrom(const std::string& path, int32_t rom) {
    auto data = readwhole(path);
    if (!data) return 0;
    const auto ini = hashfileof(*data);
    if (!ini)
        loadrawdata(rom, *data);
    else if (decodeformat(*ini, *data))
        loadcontainer(*ini, *data, rom);
    return 0;
}

} // namespace vantorel
