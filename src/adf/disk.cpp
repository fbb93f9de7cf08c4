#include "adf/disk.h"

#include "adf/blocks.h"
#include "adf/filedata.h"
#include "adf/image.h"
#include "base/message.h"

#include <algorithm>

namespace vantorel {

namespace {

bool requirewholedisk(int64_t size) {
    if (size == adf::iImageSize) return true;
    message(kAlways, "ERROR: ADF size wrong, must be 901120 bytes is %ld\n", static_cast<long>(size));
    return false;
}

/// Lists the image that `cBuffer` now holds.
std::string listimage() {
    detectfilesystem();
    psFiles.clear();
    dir();
    return blockname(adf::iRootBlock);
}

/// The first entry with this path, -1 for none. Hash order lets a damaged disk hold a path twice.
int32_t findentry(const std::string& name) {
    const auto count = static_cast<int32_t>(psFiles.size());
    for (int32_t n = 0; n < count; n++)
        if (adflist(n) == name) return n;
    return -1;
}

} // namespace

std::string loadadf(const std::string& path) {
    InputFile file(path);
    if (!file.isopen()) {
        message(kAlways, "ERROR: Unable to open ADF:%s\n", path.c_str());
        return cError;
    }
    return loadadf(file);
}

std::string loadadf(InputFile& file) {
    if (!requirewholedisk(file.size()) || file.read(cBuffer) != cBuffer.size()) return cError;
    return listimage();
}

std::string loadadfimage(View image) {
    if (!requirewholedisk(static_cast<int64_t>(image.size()))) return cError;
    std::copy_n(image.data(), image.size(), cBuffer.data());
    return listimage();
}

int adfsavefile(const std::string& name, const std::string& target) {
    const int32_t n = findentry(name);
    if (n < 0) return 1;
    switch (writefile(target, adffiledata(n))) {
    case WriteResult::Written:
        return 0;
    case WriteResult::NotOpened:
        message(kAlways, "ERROR: failed to open output file\n");
        return 1;
    case WriteResult::NotWritten:
        break;
    }
    reportnotwritten(target);
    return 1;
}

} // namespace vantorel
