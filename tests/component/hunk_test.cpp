// The names of hunk ids.

#include "component/hunk.h"

#include <gtest/gtest.h>
#include <map>

namespace vantorel::test {
namespace {

const std::map<uint32_t, std::string> aNames = {
    {0x3E7, "HUNK_UNIT"},
    {0x3E8, "HUNK_NAME"},
    {0x3E9, "HUNK_CODE"},
    {0x3EA, "HUNK_DATA"},
    {0x3EB, "HUNK_BSS"},
    {0x3EC, "HUNK_RELOC32"},
    {0x3ED, "HUNK_RELOC16"},
    {0x3EE, "HUNK_RELOC8"},
    {0x3EF, "HUNK_EXT"},
    {0x3F0, "HUNK_SYMBOL"},
    {0x3F1, "HUNK_DEBUG"},
    {0x3F2, "HUNK_END"},
    {0x3F3, "HUNK_HEADER"},
    {0x3F5, "HUNK_OVERLAY"},
    {0x3F6, "HUNK_BREAK"},
    {0x3F7, "HUNK_DREL32"},
    {0x3F8, "HUNK_DREL16"},
    {0x3F9, "HUNK_DREL8"},
    {0x3FA, "HUNK_LIB"},
    {0x3FB, "HUNK_INDEX"},
    {0x3FC, "HUNK_RELOC32SHORT"},
    {0x3FD, "HUNK_RELRELOC32"},
    {0x3FE, "HUNK_ABSRELOC16"},
    {0x4E9, "EXTENDED HUNK_PPC_CODE"},
    {0x4EC, "EXTENDED HUNK_RELRELOC26"},
};

std::string nameof(uint32_t id) {
    const auto found = aNames.find(id);
    return found != aNames.end() ? found->second : "UNKNOWN HUNK";
}

TEST(HunkNames, EveryListedIdHasItsNameAndEveryOtherIsUnknown) {
    for (uint32_t id = 0; id < 2000; ++id)
        EXPECT_EQ(cHunkType(id), nameof(id)) << id;
}

TEST(HunkNames, MemoryFlagsMakeAnIdUnknown) {
    for (const uint32_t id : {0x400003E9u, 0x800003EAu, 0xFFFFFFFFu, 0x000103E9u, 0x03E90000u})
        EXPECT_STREQ(cHunkType(id), "UNKNOWN HUNK") << id;
}

} // namespace
} // namespace vantorel::test
