#include "component/hunk.h"

#include <array>

namespace vantorel {

namespace {

struct HunkName {
    uint32_t id;
    const char* name;
};

// The last row names every other id.
constexpr auto aHunks = std::to_array<HunkName>({
    {Hunk::iUnit, "HUNK_UNIT"},
    {Hunk::iName, "HUNK_NAME"},
    {Hunk::iCode, "HUNK_CODE"},
    {Hunk::iData, "HUNK_DATA"},
    {Hunk::iBss, "HUNK_BSS"},
    {Hunk::iReloc32, "HUNK_RELOC32"},
    {Hunk::iReloc16, "HUNK_RELOC16"},
    {Hunk::iReloc8, "HUNK_RELOC8"},
    {Hunk::iExt, "HUNK_EXT"},
    {Hunk::iSymbol, "HUNK_SYMBOL"},
    {Hunk::iDebug, "HUNK_DEBUG"},
    {Hunk::iEnd, "HUNK_END"},
    {Hunk::iHeader, "HUNK_HEADER"},
    {Hunk::iOverlay, "HUNK_OVERLAY"},
    {Hunk::iBreak, "HUNK_BREAK"},
    {Hunk::iDrel32, "HUNK_DREL32"},
    {Hunk::iDrel16, "HUNK_DREL16"},
    {Hunk::iDrel8, "HUNK_DREL8"},
    {Hunk::iLib, "HUNK_LIB"},
    {Hunk::iIndex, "HUNK_INDEX"},
    {Hunk::iReloc32Short, "HUNK_RELOC32SHORT"},
    {Hunk::iRelReloc32, "HUNK_RELRELOC32"},
    {Hunk::iAbsReloc16, "HUNK_ABSRELOC16"},
    {Hunk::iPpcCode, "EXTENDED HUNK_PPC_CODE"},
    {Hunk::iRelReloc26, "EXTENDED HUNK_RELRELOC26"},
    {0, "UNKNOWN HUNK"},
});

} // namespace

const char* cHunkType(uint32_t id) {
    const HunkName* row = aHunks.data();
    while (row->id != id && row->id != 0)
        ++row;
    return row->name;
}

} // namespace vantorel
