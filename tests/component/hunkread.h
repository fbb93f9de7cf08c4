#pragma once
// What the hunk reader makes of a file, and says to it.

#include "component/hunkreader.h"
#include "component/slotstate.h"
#include "support/hunkbuilder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vantorel::test {

/// A component of which every field that the reader fills holds something.
inline Component formercomponent() {
    Component component;
    component.pcName = "former";
    component.pcHash = "former hash";
    component.pcType = "Former";
    component.iCRC32 = 0x12345678;
    component.iSize = 7;
    component.ipRelocs = {3, 1};
    component.pcExtract = Bytes{1, 2, 3};
    return component;
}

struct HunkRead {
    int result = -1;
    std::string console;
    Component component = formercomponent();
};

/// Reads the first `length` bytes of `buffer`.
inline HunkRead readpart(View buffer, int32_t offset, int32_t length, int32_t level = 1) {
    HunkRead read;
    read.console =
        at(level, [&] { read.result = librarybuffertocomponent(buffer, offset, length, read.component); });
    return read;
}

inline HunkRead readhunks(View file, int32_t level = 1) {
    return readpart(file, 0, static_cast<int32_t>(file.size()), level);
}

/// Reads `file` and forgets it; what it prints is the caller's.
inline void readonly(View file) {
    Component component;
    librarybuffertocomponent(file, 0, static_cast<int32_t>(file.size()), component);
}

/// The component of a file that is taken.
inline Component taken(View file) {
    HunkRead read = readhunks(file, 0);
    EXPECT_EQ(read.result, 0);
    return read.component;
}

/// Checks a file that must not be taken: one error line, and the component as it was.
inline void expectrefused(const HunkRead& read) {
    EXPECT_EQ(read.result, 1);
    EXPECT_TRUE(read.console.ends_with('\n'));
    EXPECT_EQ(countof("\n" + read.console, "\nERROR"), 1) << read.console;
    EXPECT_TRUE(has(read.console, "ERROR: Truncated hunk file at ")) << read.console;
    EXPECT_EQ(fieldsof(read.component), fieldsof(formercomponent()));
}

} // namespace vantorel::test
