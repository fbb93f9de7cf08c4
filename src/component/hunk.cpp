#include "component/hunk.h"

#include <algorithm>

namespace vantorel {

namespace {

void appendheader(Bytes& file, const Component& component) {
    const uint32_t longs = static_cast<uint32_t>(component.iSize) / 4;
    appendlong(file, Hunk::iHeader);
    appendlong(file, 0); // no resident library names
    appendlong(file, 1); // one hunk in the table,
    appendlong(file, 0); // the first
    appendlong(file, 0); // and the last
    appendlong(file, longs);
    appendlong(file, component.pcType == cTypeLibrary ? Hunk::iCode : Hunk::iData);
    appendlong(file, longs);
}

// One group of relocs against hunk 0 and the end of groups, each value appended by `append`.
void appendrelocs(Bytes& file, const std::vector<int32_t>& relocs, void (*append)(Bytes&, uint32_t)) {
    append(file, static_cast<uint32_t>(relocs.size()));
    append(file, 0); // the target hunk
    for (const int32_t reloc : relocs)
        append(file, static_cast<uint32_t>(reloc));
    append(file, 0); // no further group
}

void appendrelocblock(Bytes& file, const Component& component) {
    if (component.iSize < iShortRelocLimit) {
        appendlong(file, Hunk::iDrel32);
        appendrelocs(file, component.ipRelocs, appendword);
    } else {
        appendlong(file, Hunk::iReloc32);
        appendrelocs(file, component.ipRelocs, appendlong);
    }
    if ((file.size() & 2) != 0) appendword(file, 0);
}

} // namespace

Bytes loadablelibraryform(const Component& component) {
    Bytes file;
    appendheader(file, component);
    if (component.pcExtract) {
        const auto length =
            std::min(component.pcExtract->size(), static_cast<size_t>(std::max(component.iSize, 0)));
        file.insert(file.end(), component.pcExtract->begin(),
                    component.pcExtract->begin() + static_cast<std::ptrdiff_t>(length));
    }
    if (!component.ipRelocs.empty()) appendrelocblock(file, component);
    appendlong(file, Hunk::iEnd);
    return file;
}

} // namespace vantorel
