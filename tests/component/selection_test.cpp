// Which components a command means.

#include "component/selection.h"

#include "component/slotstate.h"

namespace vantorel::test {
namespace {

using Numbers = std::vector<int32_t>;

class SelectionTest : public RomTest {
protected:
    void SetUp() override {
        RomTest::SetUp();
        slotwith(100, {{0, 10}, {10, 10}, {20, 10}});
        slotwith(100);
    }

    // The selection, which says nothing.
    static std::optional<Numbers> selection(int32_t rom, int32_t component) {
        std::optional<Numbers> numbers;
        EXPECT_EQ(at(10, [&] { numbers = selectcomponents(rom, component); }), "");
        return numbers;
    }
};

TEST_F(SelectionTest, EveryComponentInOrder) {
    EXPECT_EQ(selection(0, iEveryComponent), (Numbers{0, 1, 2}));
    EXPECT_EQ(selection(1, iEveryComponent), Numbers{});
}

TEST_F(SelectionTest, BlankOnesArePassedOver) {
    componentat(0, 1) = Component{};
    EXPECT_EQ(selection(0, iEveryComponent), (Numbers{0, 2}));
    EXPECT_EQ(selection(0, 1), Numbers{1}) << "but not when they are asked for";
}

TEST_F(SelectionTest, ANumberIsItselfWhetherThereIsSuchAComponentOrNot) {
    EXPECT_EQ(selection(0, 0), Numbers{0});
    EXPECT_EQ(selection(0, 2), Numbers{2});
    EXPECT_EQ(selection(0, 3), Numbers{3});
    EXPECT_EQ(selection(1, 0), Numbers{0});
    EXPECT_EQ(selection(0, -2), Numbers{-2}) << "which is none";
}

TEST_F(SelectionTest, TheSlotBehindTheLastIsARomWithoutComponents) {
    EXPECT_EQ(selection(2, iEveryComponent), Numbers{});
    EXPECT_EQ(selection(2, 5), Numbers{5});
}

TEST_F(SelectionTest, OtherSlotsAreOutOfRange) {
    for (const int32_t rom : {-1, 3, 20, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(at(1, [&] { EXPECT_EQ(selectcomponents(rom, iEveryComponent), std::nullopt); }),
                  "ROM out of range\n");
        EXPECT_EQ(at(0, [&] { EXPECT_EQ(selectcomponents(rom, 0), std::nullopt); }), "");
    }
}

} // namespace
} // namespace vantorel::test
