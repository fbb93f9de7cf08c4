// Components found, taken out, given other bounds, and told of.

#include "component/extract.h"
#include "component/placement.h"
#include "component/relocedit.h"
#include "component/slotstate.h"
#include "rom/rombase.h"

#include <algorithm>
#include <cstdint>

namespace vantorel::test {
namespace {

class FindComponentTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        slotwith(100, {{0, 10}, {10, 10}, {20, 10}, {30, 10}});
        name(1, "exec.library");
        name(2, "expansion.library");
        name(3, "EXEC.device");
        componentat(0, 0) = Component{};
    }

    static void name(int32_t number, const std::string& text) { componentat(0, number).pcName = text; }
};

TEST_F(FindComponentTest, TheFirstWhoseNameBeginsSoInAnyCase) {
    EXPECT_EQ(findcomponent(0, "exec"), 1);
    EXPECT_EQ(findcomponent(0, "exec.library"), 1);
    EXPECT_EQ(findcomponent(0, "EXEC.D"), 3);
    EXPECT_EQ(findcomponent(0, "Exp"), 2);
    EXPECT_EQ(findcomponent(0, "ex"), 1);
}

TEST_F(FindComponentTest, NoneBeginsSo) {
    EXPECT_EQ(findcomponent(0, "library"), -1);
    EXPECT_EQ(findcomponent(0, "exec.library2"), -1);
    EXPECT_EQ(findcomponent(0, "(null)"), -1);
    EXPECT_EQ(at(10, [] { EXPECT_EQ(findcomponent(0, "x"), -1); }), "") << "in silence";
}

TEST_F(FindComponentTest, AnEmptyNameIsTheFirstThatHasOne) { EXPECT_EQ(findcomponent(0, ""), 1); }

TEST_F(FindComponentTest, MissingSlotsAreRefused) {
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(at(1, [&] { EXPECT_EQ(findcomponent(rom, "exec"), -1); }), "ERROR, No current ROM\n");
}

class DeleteComponentTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        slotwith(100, {{10, 10}, {30, 5}, {40, 60}});
        slotat(0).pcROM = noisebytes(100, 5);
        slotat(0).cFill = 0xA5;
        slotat(0).iUsed = 100;
    }
};

TEST_F(DeleteComponentTest, ItsBytesBecomeFillAndTheOthersStay) {
    SlotState expected = stateof(0);
    std::fill_n(expected.image.begin() + 30, 5, uint8_t{0xA5});
    expected.components.erase(expected.components.begin() + 1);
    EXPECT_EQ(at(10, [] { deletecomponent(0, 1); }), "");
    EXPECT_TRUE(stateof(0) == expected);
}

TEST_F(DeleteComponentTest, FirstAndLastGoToo) {
    silently([] { deletecomponent(0, 2); });
    EXPECT_EQ(bytesat(0, 40, 60), Bytes(60, 0xA5));
    silently([] { deletecomponent(0, 0); });
    EXPECT_EQ(bytesat(0, 10, 10), Bytes(10, 0xA5));
    ASSERT_EQ(slotat(0).iComponents(), 1);
    EXPECT_EQ(componentat(0, 0).pcName, Text("c30"));
    silently([] { deletecomponent(0, 0); });
    EXPECT_EQ(slotat(0).iComponents(), 0);
    EXPECT_EQ(expectunchanged(0, [] { deletecomponent(0, 0); }), "ERROR: No such component\n");
}

TEST_F(DeleteComponentTest, MissingSlotsAndComponentsAreRefused) {
    for (const int32_t component : {-1, 3, INT32_MAX, INT32_MIN})
        EXPECT_EQ(expectunchanged(0, [&] { deletecomponent(0, component); }), "ERROR: No such component\n");
    for (const int32_t rom : {-1, 1, 20})
        EXPECT_EQ(expectunchanged(0, [&] { deletecomponent(rom, 0); }), "ERROR, No current ROM\n");
    EXPECT_EQ(at(0, [] { deletecomponent(0, 3); }), "");
}

TEST_F(DeleteComponentTest, OneOutsideItsImageStays) {
    for (const Extent& place : std::vector<Extent>{{-1, 5}, {96, 5}, {50, -1}, {INT32_MAX, INT32_MAX}}) {
        componentat(0, 1).iStart = place.start;
        componentat(0, 1).iSize = place.size;
        EXPECT_TRUE(isoneerror(expectunchanged(0, [] { deletecomponent(0, 1); }))) << place.start;
    }
}

TEST_F(DeleteComponentTest, ItsPlaceCanBeTakenAgain) {
    silently([] { deletecomponent(0, 1); });
    Component record = recordof(Bytes(20, 1)); // from 20 to 40
    silently([&] { EXPECT_EQ(addcomponent(0, record), 0); });
    EXPECT_EQ(componentat(0, 1).iStart, 20);
}

class BoundsTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        slotwith(1024, {{0, 64}, {512, 128}}, 0xF80000);
        componentat(0, 1).pcExtract = noisebytes(128, 4);
        componentat(0, 1).iFixedStart = componentat(0, 1).iFixedEnd = -1;
    }

    // The record of component 1 after `edit`, which prints nothing and leaves everything else.
    static const Component& edited(const Action& edit) {
        const SlotState before = stateof(0);
        const Bytes extract = *componentat(0, 1).pcExtract;
        EXPECT_EQ(at(10, edit), "");
        SlotState after = stateof(0);
        EXPECT_EQ(after.components[0], before.components[0]);
        EXPECT_EQ(componentat(0, 1).pcExtract, extract);
        after.components = before.components;
        EXPECT_TRUE(after == before);
        return componentat(0, 1);
    }
};

TEST_F(BoundsTest, AStartMovesAndTheEndStays) {
    const Component& component = edited([] { editcomponentstart(0, 1, 500); });
    EXPECT_EQ(component.iStart, 500);
    EXPECT_EQ(component.iFixedStart, 500);
    EXPECT_EQ(component.iSize, 140);
    EXPECT_EQ(component.iFixedEnd, -1);
    edited([] { editcomponentstart(0, 1, 600); });
    EXPECT_EQ(component.iStart, 600);
    EXPECT_EQ(component.iSize, 40);
}

TEST_F(BoundsTest, AnEndMovesAndTheStartStays) {
    const Component& component = edited([] { editcomponentend(0, 1, 700); });
    EXPECT_EQ(component.iStart, 512);
    EXPECT_EQ(component.iFixedStart, -1);
    EXPECT_EQ(component.iSize, 188);
    EXPECT_EQ(component.iFixedEnd, 700);
}

TEST_F(BoundsTest, AValueFromTheBaseOnIsAnAddress) {
    EXPECT_EQ(edited([] { editcomponentstart(0, 1, 0xF80100); }).iStart, 256);
    EXPECT_EQ(edited([] { editcomponentend(0, 1, 0xF80300); }).iFixedEnd, 768);
    EXPECT_EQ(componentat(0, 1).iSize, 512);
    EXPECT_EQ(edited([] { editcomponentstart(0, 1, 0xF80000); }).iStart, 0);
    EXPECT_EQ(edited([] { editcomponentstart(0, 1, 0xF7FFFF); }).iStart, 0xF7FFFF) << "below it is an offset";
}

TEST_F(BoundsTest, NegativeBoundsAreComparedUnsigned) {
    // -16 is 0xFFFFFFF0, less 0xF80000 that is 0xFF07FFF0: -16252944.
    EXPECT_EQ(edited([] { editcomponentend(0, 1, 0xFFFFFFF0); }).iFixedEnd, -16252944);
    slotat(0).iROMBase = 0;
    EXPECT_EQ(edited([] { editcomponentstart(0, 1, 0xFFFFFFF0); }).iStart, -16);
}

TEST_F(BoundsTest, AnyBoundIsTaken) {
    slotat(0).iROMBase = 0;
    EXPECT_EQ(edited([] { editcomponentend(0, 1, 500); }).iSize, -12) << "an end before the start";
    EXPECT_EQ(edited([] { editcomponentstart(0, 1, 5000); }).iStart, 5000) << "a start behind the image";
    edited([] { editcomponentend(0, 1, 0x80000000); });
    EXPECT_EQ(componentat(0, 1).iFixedEnd, INT32_MIN);
    edited([] { editcomponentstart(0, 1, 0x7FFFFFFF); });
    edited([] { editcomponentend(0, 1, 0); });
    edited([] { editcomponentstart(0, 1, 0x80000000); });
    EXPECT_EQ(componentat(0, 1).iStart, INT32_MIN);
}

TEST_F(BoundsTest, MissingSlotsAndComponentsAreRefused) {
    for (const auto& edit : {editcomponentstart, editcomponentend}) {
        for (const int32_t rom : {-1, 1, 20})
            EXPECT_EQ(expectunchanged(0, [&] { edit(rom, 0, 8); }), "ERROR, No current ROM\n");
        for (const int32_t component : {-1, 2, INT32_MAX})
            EXPECT_EQ(expectunchanged(0, [&] { edit(0, component, 8); }), "ERROR: No such component\n");
        EXPECT_EQ(at(0, [&] { edit(0, 2, 8); }), "");
    }
}

TEST_F(BoundsTest, EveryOperationOnAComponentEditedOutOfItsImageIsRefused) {
    const std::vector<std::pair<std::string, Action>> operations = {
        {"deletecomponent", [] { deletecomponent(0, 1); }},
        {"createextract", [] { EXPECT_EQ(createextract(0, 1), 1); }},
        {"copyextracttorom", [] { EXPECT_EQ(copyextracttorom(0, 1), 1); }},
        {"addreloc", [] { EXPECT_EQ(addreloc(0, 1, 4), 1); }},
        {"deletereloc", [] { EXPECT_EQ(deletereloc(0, 1, 0), 1); }},
        {"addrelocs", [] { addrelocs(0, 1); }},
        {"rombase", [] { EXPECT_EQ(rombase(0, "0xFC0000"), 1); }}};
    Component& component = componentat(0, 1);
    component.ipRelocs = {0, 8};
    component.iROMTag = 512;
    for (const uint32_t start : {1000u, 0xF7FFFFu, 0x80000000u, 0x7FFFFF00u}) {
        component.iStart = 512;
        component.iSize = 128;
        editcomponentstart(0, 1, start);
        component.iSize = 128;
        for (const auto& [name, run] : operations)
            EXPECT_TRUE(isoneerror(expectunchanged(0, run))) << name << " with start " << start;
    }
}

class ComponentDataTest : public RomTest {};

TEST_F(ComponentDataTest, TellsNameTypeHashStartAndSize) {
    const int32_t rom = slotwith(100, {{0, 4}, {10, 20}});
    ComponentData data;
    EXPECT_EQ(getcomponentdata(rom, 1, data), rom);
    EXPECT_EQ(data.cName, "c10");
    EXPECT_EQ(data.cType, "Data");
    EXPECT_EQ(data.cHash, "c10");
    EXPECT_EQ(data.iStart, 10);
    EXPECT_EQ(data.iSize, 20);
    slotwith(10, {{1, 2}});
    EXPECT_EQ(getcomponentdata(1, 0, data), 1) << "the slot's number, not success";
}

TEST_F(ComponentDataTest, LongTextsAreCut) {
    slotwith(100, {{0, 4}});
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += static_cast<char>('!' + i % 90);
    ComponentData data;
    for (const size_t length : {126u, 127u, 128u, 200u}) {
        componentat(0, 0).pcName = componentat(0, 0).pcHash = text.substr(0, length);
        componentat(0, 0).pcType = text.substr(0, length - 96);
        getcomponentdata(0, 0, data);
        EXPECT_EQ(data.cName, text.substr(0, std::min<size_t>(length, 127)));
        EXPECT_EQ(data.cHash, data.cName);
        EXPECT_EQ(data.cType, text.substr(0, std::min<size_t>(length - 96, 31)));
    }
}

TEST_F(ComponentDataTest, AbsentTextsAreEmpty) {
    slotwith(100);
    slotat(0).psComponents.resize(1);
    ComponentData data{"a", "b", "c", 4, 5};
    EXPECT_EQ(getcomponentdata(0, 0, data), 0);
    EXPECT_EQ(data.cName + data.cType + data.cHash, "");
    EXPECT_EQ(data.iStart, 0);
    EXPECT_EQ(data.iSize, 0);
}

TEST_F(ComponentDataTest, WithoutSlotOrComponentTheRecordIsUntouched) {
    slotwith(100, {{0, 4}});
    for (const auto& [rom, component] : std::vector<std::pair<int32_t, int32_t>>{
             {-1, 0}, {1, 0}, {20, 0}, {0, 1}, {0, -1}, {0, INT32_MAX}, {INT32_MIN, 0}}) {
        ComponentData data{"a", "b", "c", 4, 5};
        EXPECT_EQ(getcomponentdata(rom, component, data), -1);
        EXPECT_EQ(data.cName + data.cType + data.cHash, "abc");
        EXPECT_EQ(data.iStart + data.iSize, 9);
    }
}

TEST_F(ComponentDataTest, TheInquiryIsTracedAtLevelTen) {
    expectthresholds(
        [] {
            slotwith(100, {{0, 4}});
        },
        [] {
            ComponentData data;
            getcomponentdata(0, 0, data);
        },
        {{9, "inDLL[0x"}, {9, "=c0]\n"}});
}

} // namespace
} // namespace vantorel::test
