// Every layout with every option, of ROMs of all kinds of sizes, byte for byte against the model.

#include "output/burntest.h"

namespace vantorel::test {

namespace {

constexpr int32_t iK = 1024;

const std::vector<Sizes> cSizes = {
    {0, iAbsent, iAbsent, iAbsent},
    {1, iAbsent, iAbsent, iAbsent},
    {2, iAbsent, iAbsent, iAbsent},
    {3, iAbsent, iAbsent, iAbsent},
    {4, iAbsent, iAbsent, iAbsent},
    {5, iAbsent, iAbsent, iAbsent},
    {6, iAbsent, iAbsent, iAbsent},
    {7, iAbsent, iAbsent, iAbsent},
    {8, iAbsent, iAbsent, iAbsent},
    {9, iAbsent, iAbsent, iAbsent},
    {256 * iK - 1, iAbsent, iAbsent, iAbsent},
    {256 * iK, iAbsent, iAbsent, iAbsent},
    {256 * iK + 1, iAbsent, iAbsent, iAbsent},
    {300 * iK, iAbsent, iAbsent, iAbsent},
    {512 * iK - 4, iAbsent, iAbsent, iAbsent},
    {512 * iK, iAbsent, iAbsent, iAbsent},
    {512 * iK + 2, iAbsent, iAbsent, iAbsent},
    {768 * iK, iAbsent, iAbsent, iAbsent},
    {1024 * iK - 3, iAbsent, iAbsent, iAbsent},
    {1024 * iK, iAbsent, iAbsent, iAbsent},
    {1024 * iK + 1, iAbsent, iAbsent, iAbsent},
    {2048 * iK, iAbsent, iAbsent, iAbsent},
    // The other positions alone.
    {iAbsent, 512 * iK, iAbsent, iAbsent},
    {iAbsent, iAbsent, 512 * iK, iAbsent},
    {iAbsent, iAbsent, iAbsent, 512 * iK},
    // Two ROMs, as a CD32 has them and otherwise.
    {512 * iK, 512 * iK, iAbsent, iAbsent},
    {512 * iK, 256 * iK, iAbsent, iAbsent},
    {256 * iK, 512 * iK, iAbsent, iAbsent},
    {512 * iK, iAbsent, 512 * iK, iAbsent},
    // The second MiB of a CD32: whole, short, of odd length, in the wrong place, absent, empty.
    {512 * iK, 512 * iK, iAbsent, 1024 * iK},
    {512 * iK, 512 * iK, iAbsent, 100},
    {512 * iK, 512 * iK, iAbsent, 101},
    {512 * iK, 512 * iK, iAbsent, 2},
    {512 * iK, 512 * iK, iAbsent, 2048 * iK},
    {512 * iK, 512 * iK, 1024 * iK, iAbsent},
    {512 * iK, 512 * iK, 4, 0},
    {512 * iK, 256 * iK, iAbsent, 1024 * iK},
    // A SuperKickstart disk: complete, and each piece at its limits.
    {256 * iK, 5000, 512 * iK, 1000},
    {256 * iK, 109567, 512 * iK, 4095},
    {256 * iK, 109568, 512 * iK, 4096},
    {256 * iK, 0, 512 * iK, 0},
    {256 * iK - 4, 1, 512 * iK + 4, 1},
    {iAbsent, 5000, iAbsent, 1000},
    {1, 2, 3, 4},
    {256 * iK, 256 * iK, 256 * iK, 256 * iK},
};

class BurnLayouts : public BurnTest, public ::testing::WithParamInterface<Sizes> {
protected:
    void expectmodel(const BurnOrder& order) {
        SCOPED_TRACE("type " + std::to_string(order.type) + " byteswap " + std::to_string(order.byteswap) +
                     " 512 " + std::to_string(order.chips512));
        freshstate();
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            std::filesystem::remove(entry);
        silently([&] { profileof(order.type, images); });
        const Files expected = burnt(images, order, "rom");
        EXPECT_EQ(save(order.byteswap, order.chips512 ? 512 : 0, 0), expected.empty() ? 1 : 0);
        expectfiles(expected);
    }

    void expectfiles(const Files& expected) const {
        const Files found = filesof(folder);
        for (const auto& [name, bytes] : found)
            EXPECT_TRUE(expected.contains(name)) << name << " is not asked for";
        for (const auto& [name, bytes] : expected) {
            ASSERT_TRUE(found.contains(name)) << name << " is missing";
            EXPECT_EQ(found.at(name).size(), bytes.size()) << name;
            // Not EXPECT_EQ, which would show megabytes.
            EXPECT_TRUE(found.at(name) == bytes) << name << " holds other bytes";
        }
    }

    Images images;
};

std::string sizename(const ::testing::TestParamInfo<Sizes>& info) {
    std::string name;
    for (const int32_t size : info.param)
        name += (name.empty() ? "" : "_") + (size == iAbsent ? "none" : std::to_string(size));
    return name;
}

} // namespace

TEST_P(BurnLayouts, AreByteForByteThoseOfTheModel) {
    images = noiseimages(GetParam());
    for (int32_t type = 1; type <= 6; ++type)
        for (const bool byteswap : {false, true})
            for (const bool chips512 : {false, true})
                expectmodel({type, byteswap, chips512});
}

INSTANTIATE_TEST_SUITE_P(Sizes, BurnLayouts, ::testing::ValuesIn(cSizes), sizename);

} // namespace vantorel::test
