// A ROM built from modules, described by hash files and saved is known again when it is loaded.

#include "base/settings.h"
#include "build/virtualcomponents.h"
#include "component/addlibrary.h"
#include "component/placement.h"
#include "component/savecomponent.h"
#include "hash/writer.h"
#include "output/saverom.h"
#include "rom/load.h"
#include "rom/rombase.h"
#include "rom/romtest.h"

#include <algorithm>
#include <filesystem>

namespace vantorel::test {

namespace {

constexpr int32_t iRomSize = 524288;

class Rebuild : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        for (const BuiltModule& module : source.modules)
            dir.file("modules/" + module.name, module.loadable);
        dir.folder("library");
    }

    void add(const char* name) const {
        const int32_t before = slotat(0).iComponents();
        silently([&] { addlibrary(0, dir.file(std::string("modules/") + name), ""); });
        EXPECT_EQ(slotat(0).iComponents(), before + 1) << name;
    }

    static void expectadded(int (*structure)(int32_t)) {
        silently([&] { EXPECT_EQ(structure(0), 0); });
    }

    /// Slot 0: modules below and above the Kickity-Split, a block of fill, and the end of the image.
    void build(const char* base) const {
        silently([&] {
            newrom(iRomSize, 0xFF);
            romname(0, "Rebuilt");
            rombase(0, base);
            EXPECT_EQ(addunallocated(0, 24, 0), 0);
        });
        for (const char* name : {"exec.library", "graphics.library", "font"})
            add(name);
        expectadded(addkickitysplit);
        add("dos.library");
        expectadded(addchecksum);
        expectadded(addsize);
        expectadded(addvectors);
        expectadded(checksum);
        EXPECT_EQ(carrysum(slotat(0).pcROM), 0xFFFFFFFFU);
        silently([] { canonisecomponent(0, -1); });
    }

    /// Saves slot 0 and its hash files, forgets everything, and loads the image into slot 0 again.
    std::vector<Component> saveandload() const {
        std::vector<Component> former;
        silently([&] {
            cSaveDir = dir.file("library") + "/";
            savecomponenthash(0, -1, "");
            EXPECT_EQ(saveromhash(0, ""), 0);
            cSaveDir = dir.path() + "/";
            EXPECT_EQ(saverom(0, "image"), 0);
            former = slotat(0).psComponents;
            freshstate();
            loadhashes(dir.file("library"));
        });
        silently([&] { loadrom(dir.file("image"), newrom(0, 0)); });
        return former;
    }

    const BuiltRom source = standardrom();
};

void expectsame(const Component& now, const Component& former) {
    SCOPED_TRACE(shown(former.pcName));
    EXPECT_EQ(now.pcName, former.pcName);
    EXPECT_EQ(now.iStart, former.iStart);
    EXPECT_EQ(now.iSize, former.iSize);
    EXPECT_EQ(now.iFixedStart, former.iFixedStart);
    EXPECT_EQ(now.iFixedEnd, former.iFixedEnd);
    EXPECT_EQ(now.pcType, former.pcType);
    EXPECT_EQ(now.pcHash, former.pcHash);
    EXPECT_EQ(now.ipRelocs, former.ipRelocs);
    if (former.ipRelocs.empty()) return;
    EXPECT_EQ(now.iROMTag, former.iROMTag);
    EXPECT_EQ(now.pcLibName, former.pcLibName);
    EXPECT_EQ(now.pcLibString, former.pcLibString);
    EXPECT_TRUE(now.pcExtract == former.pcExtract);
}

} // namespace

TEST_F(Rebuild, EveryComponentComesBackAsItWas) {
    build("0xF80000");
    const Bytes image = slotat(0).pcROM;
    const std::vector<Component> former = saveandload();
    ASSERT_EQ(slotat(0).iComponents(), 9);
    ASSERT_EQ(former.size(), 9U);
    for (int32_t number = 0; number < 9; ++number)
        expectsame(componentat(0, number), former[static_cast<size_t>(number)]);
    EXPECT_TRUE(slotat(0).pcROM == image);
    EXPECT_EQ(slotat(0).pcTitle, "Rebuilt");
    EXPECT_EQ(slotat(0).pcText, "(null)");
    EXPECT_EQ(slotat(0).iROMBase, 0xF80000U);
    EXPECT_EQ(slotat(0).iCRC32, crc32of(image));
}

TEST_F(Rebuild, TheModulesAreThoseThatWereAdded) {
    build("0xF80000");
    saveandload();
    for (const char* name : {"exec.library", "graphics.library", "dos.library"}) {
        const BuiltModule& module = source.module(name);
        const auto& components = slotat(0).psComponents;
        const auto found = std::ranges::find(components, Text(name), &Component::pcName);
        ASSERT_NE(found, components.end()) << name;
        EXPECT_EQ(found->ipRelocs, module.relocs);
        EXPECT_TRUE(found->pcExtract == module.extract) << name;
        EXPECT_EQ(found->pcHash, module.hash());
        EXPECT_EQ(found->pcLibString, module.idstring);
        EXPECT_EQ(found->iROMTag, found->iStart + module.tag);
    }
}

TEST_F(Rebuild, AtAnotherBaseTheNamesAreTheSame) {
    build("0xF80000");
    const std::vector<Component> former = slotat(0).psComponents;
    const Bytes image = slotat(0).pcROM;
    freshstate();
    build("0x200000");
    EXPECT_FALSE(slotat(0).pcROM == image);
    for (int32_t number = 0; number < 5; ++number)
        EXPECT_EQ(componentat(0, number).pcHash, former[static_cast<size_t>(number)].pcHash);
    saveandload();
    EXPECT_EQ(slotat(0).iROMBase, 0x200000U);
    EXPECT_EQ(componentat(0, 1).ipRelocs, source.module("exec.library").relocs);
}

TEST_F(Rebuild, ModulesSavedFromItAreThoseThatWereAdded) {
    build("0xF80000");
    saveandload();
    dir.folder("saved");
    cSaveDir = dir.file("saved") + "/";
    silently([] { savecomponent(0, -1, ""); });
    for (const char* name : {"exec.library", "graphics.library", "dos.library", "font"}) {
        const BuiltModule& module = source.module(name);
        const auto& components = slotat(0).psComponents;
        const auto found = std::ranges::find(components, Text(name), &Component::pcName);
        ASSERT_NE(found, components.end()) << name;
        EXPECT_TRUE(dir.bytes("saved/" + found->pcHash.value()) == module.loadable) << name;
    }
}

TEST_F(Rebuild, AnOldLibraryNamesTheComponentsOfANewRom) {
    // Two hash files, one under another name: it is that name that the component takes.
    const BuiltModule& exec = source.module("exec.library");
    hashes.write(hex32(exec.loadablecrc) + ".my own name for exec", componenthash(exec));
    index();
    build("0xF80000");
    EXPECT_EQ(componentat(0, 1).pcHash, hex32(exec.loadablecrc) + ".my own name for exec");
}

} // namespace vantorel::test
