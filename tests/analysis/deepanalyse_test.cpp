// The deep analysis of two components: every line by an example worked out by hand.

#include "analysis/deepanalyse.h"

#include "analysis/analysistest.h"

#include <cstdint>

namespace vantorel::test {
namespace {

constexpr const char* cSamePlace = "The following reloc value at the same position in the target component, "
                                   "unlikely RELOC unless the components are in the same position in the ROM";
constexpr const char* cIdentical = "The following reloc value is identical and the same position in both "
                                   "components, exceptionally unlikely to be a RELOC as the ROMBases are "
                                   "different";

class DeepAnalyseTest : public RomTest {
protected:
    // Slots 0 and 1 with one component each, at 0x1000 and 0x2000.
    static void pair(const std::vector<uint32_t>& source, const std::vector<uint32_t>& destination) {
        wholeslot(longs(source), 0x1000);
        wholeslot(longs(destination), 0x2000);
    }

    static std::string console(int32_t least) {
        const SlotState other = stateof(1);
        std::string text = expectunchanged(0, [&] { EXPECT_EQ(deepanalysecomponent(0, 0, 1, 0, least), 0); });
        EXPECT_TRUE(stateof(1) == other);
        return text;
    }

    // What is printed from the first chunk found on.
    static std::string findings(int32_t least) { return behindline(console(least), "Scanning "); }
};

TEST_F(DeepAnalyseTest, ARelocIsVerifiedWhenBothCopiesPointToTheSamePlace) {
    pair({0x11111111, 0x00001004, 0x22222222, 0x33333333}, {0x11111111, 0x00002004, 0x22222222, 0x33333333});
    EXPECT_EQ(console(4),
              lines({"Deep analysis of component 0 in ROM 0 with component 0 in ROM 1",
                     "Finding potential RELOCs in source between 00001000 and 00001010 (16 bytes)",
                     "1 potential relocs", "____RRRR____________",
                     "Finding potential RELOCs in destination between 00002000 and 00002010 (16 bytes)",
                     "1 potential relocs", "Scanning source 00000000 for matches in dest 00000000",
                     "Found source chunk at position 0 of 16 bytes at dest position 0",
                     "Chunk 0 source 0 dest 0 size 16",
                     "Verified RELOC=4 #points to the same offset in the matching chunk"}));
}

TEST_F(DeepAnalyseTest, OffsetsCountFromEachComponentsOwnFirstByte) {
    // The source lies on bytes 4 to 16 and begins at 0x1004, the destination on 8 to 20 from 0x2008.
    slotof(longs({0, 0x11111111, 0x0000100C, 0x22222222}), 0x1000, {{4, 16}});
    slotof(longs({0, 0, 0x11111111, 0x00002010, 0x22222222, 0}), 0x2000, {{8, 20}});
    EXPECT_EQ(console(4),
              lines({"Deep analysis of component 0 in ROM 0 with component 0 in ROM 1",
                     "Finding potential RELOCs in source between 00001004 and 00001010 (12 bytes)",
                     "1 potential relocs", "____RRRR________",
                     "Finding potential RELOCs in destination between 00002008 and 00002014 (12 bytes)",
                     "1 potential relocs", "Scanning source 00000004 for matches in dest 00000008",
                     "Found source chunk at position 0 of 12 bytes at dest position 0",
                     "Chunk 0 source 0 dest 0 size 12",
                     "Verified RELOC=4 #points to the same offset in the matching chunk"}));
}

TEST_F(DeepAnalyseTest, BothEndsOfTheRangeCountAsAddresses) {
    // 0xFFF and 0x1015 are just outside.
    pair({0x1000, 0x1014, 0x0FFF, 0x1015, 0x77777777}, {0x12345678});
    const std::string text = console(4);
    EXPECT_TRUE(has(text, "between 00001000 and 00001014 (20 bytes)\n2 potential relocs\n"
                          "RRRRRRRR________________\n"))
        << text;
}

TEST_F(DeepAnalyseTest, AddressesAreLookedForAtEvenOffsetsOnly) {
    // At 2: 0x00001000 across two longs. At 9, an odd offset: 0x00001000 too.
    pair({0x99990000, 0x10009999, 0x99000010, 0x00999999}, {0x12345678});
    EXPECT_TRUE(has(console(4), "1 potential relocs\n__RRRR______________\n"));
}

TEST_F(DeepAnalyseTest, OverlappingAddressesAreCountedEach) {
    // At 0x10001000 the long 0x10001000 stands at 0, at 2 and at 4; at 6 stands 0x1000EEEE.
    slotof(longs({0x10001000, 0x10001000, 0xEEEEEEEE}), 0x10001000, {{0, 8}});
    wholeslot(longs({0x12345678}), 0x2000);
    EXPECT_TRUE(has(console(4), "3 potential relocs\nRRRRRRRR____\n"));
}

TEST_F(DeepAnalyseTest, ThePictureShowsEightyBytesAtMost) {
    std::vector<uint32_t> source(30, 0x99999999);
    source[0] = source[19] = source[20] = 0x1000;
    pair(source, {0x12345678});
    EXPECT_TRUE(has(console(4), "3 potential relocs\nRRRR" + std::string(72, '_') + "RRRR\n"));
}

TEST_F(DeepAnalyseTest, OtherOffsetInTheChunk) {
    pair({0x11111111, 0x00001004, 0x22222222}, {0x11111111, 0x00002008, 0x22222222});
    EXPECT_EQ(findings(4),
              lines({"Found source chunk at position 0 of 12 bytes at dest position 0",
                     "Chunk 0 source 0 dest 0 size 12",
                     "Potential RELOC=4 #  1004 points to a different offset in a matching chunk"}));
}

TEST_F(DeepAnalyseTest, PointerIntoUnmatchedBytes) {
    pair({0x11111111, 0x00001014, 0x22222222, 0x33333333, 0x44444444, 0x55555555},
         {0x11111111, 0x00002014, 0x22222222, 0x66666666, 0x77777777, 0x88888888});
    EXPECT_EQ(findings(8), lines({"Found source chunk at position 0 of 12 bytes at dest position 0",
                                  "Chunk 0 source 0 dest 0 size 12",
                                  "Potential RELOC=4 #  1014 not found in a matching chunk"}));
}

TEST_F(DeepAnalyseTest, TheEndOfAChunkBelongsToItBothHereAndThere) {
    // 0x100C is the first byte behind the chunk of 12 bytes.
    pair({0x11111111, 0x0000100C, 0x22222222, 0x33333333, 0x44444444, 0x55555555},
         {0x11111111, 0x0000200C, 0x22222222, 0x66666666, 0x77777777, 0x88888888});
    EXPECT_TRUE(has(findings(8), "Verified RELOC=4 #points to the same offset in the matching chunk\n"));
}

TEST_F(DeepAnalyseTest, OneByteBehindTheEndOfAChunkDoesNot) {
    pair({0x11111111, 0x0000100D, 0x22222222, 0x33333333, 0x44444444, 0x55555555},
         {0x11111111, 0x0000200C, 0x22222222, 0x66666666, 0x77777777, 0x88888888});
    EXPECT_TRUE(has(findings(8), "Potential RELOC=4 #  100D not found in a matching chunk\n"));
}

TEST_F(DeepAnalyseTest, PointerIntoAnotherChunk) {
    pair({0x11111111, 0x00001004, 0x22222222, 0x99999999, 0x33333333, 0x44444444, 0x55555555},
         {0x11111111, 0x00002014, 0x22222222, 0x88888888, 0x33333333, 0x44444444, 0x55555555});
    EXPECT_EQ(findings(8),
              lines({"Found source chunk at position 0 of 12 bytes at dest position 0",
                     "Found source chunk at position 16 of 12 bytes at dest position 16",
                     "Chunk 0 source 0 dest 0 size 12",
                     "Unexpected RELOC=4 #  1004 points to a different chunk (points to 1 expected 0)",
                     "Chunk 1 source 16 dest 16 size 12"}));
}

// Where a value of the destination lies is judged by the length of the chunk expected, not by that of the
// chunk in question: here one of 20 bytes, so that 18 bytes into the chunk of 8 is still inside it.
TEST_F(DeepAnalyseTest, AShortChunkCountsAsLongAsTheExpectedOne) {
    pair({0x11111111, 0x00001004, 0x22222222, 0x23232323, 0x24242424, 0x99999999, 0x33333333, 0x44444444,
          0x9A9A9A9A, 0x9B9B9B9B, 0x9C9C9C9C},
         {0x11111111, 0x0000202A, 0x22222222, 0x23232323, 0x24242424, 0x88888888, 0x33333333, 0x44444444,
          0x8A8A8A8A, 0x8B8B8B8B, 0x8C8C8C8C});
    EXPECT_EQ(findings(8),
              lines({"Found source chunk at position 0 of 20 bytes at dest position 0",
                     "Found source chunk at position 24 of 8 bytes at dest position 24",
                     "Chunk 0 source 0 dest 0 size 20",
                     "Unexpected RELOC=4 #  1004 points to a different chunk (points to 1 expected 0)",
                     "Chunk 1 source 24 dest 24 size 8"}));
}

// The same the other way: 10 bytes into a chunk of 16, where one of 8 is expected, is inside none.
TEST_F(DeepAnalyseTest, ALongChunkCountsAsLongAsTheExpectedOne) {
    pair({0x11111111, 0x00001004, 0x99999999, 0x22222222, 0x33333333, 0x44444444, 0x55555555},
         {0x11111111, 0x00002016, 0x88888888, 0x22222222, 0x33333333, 0x44444444, 0x55555555});
    EXPECT_EQ(findings(8), lines({"Found source chunk at position 0 of 8 bytes at dest position 0",
                                  "Found source chunk at position 12 of 16 bytes at dest position 12",
                                  "Chunk 0 source 0 dest 0 size 8",
                                  "Potential RELOC=4 #  1004 points to no matching chunk (expected 0)",
                                  "Chunk 1 source 12 dest 12 size 16"}));
}

TEST_F(DeepAnalyseTest, IdenticalValueAlthoughTheBasesDiffer) {
    // 0x1008 is an address in both: 8 bytes into the source, 4 into the destination.
    wholeslot(longs({0x11111111, 0x00001008, 0x22222222, 0x33333333}), 0x1000);
    wholeslot(longs({0x11111111, 0x00001008, 0x22222222, 0x33333333}), 0x1004);
    EXPECT_EQ(findings(4),
              lines({"Found source chunk at position 0 of 16 bytes at dest position 0",
                     "Chunk 0 source 0 dest 0 size 16", cIdentical,
                     "Potential RELOC=4 #  1008 points to a different offset in a matching chunk"}));
}

TEST_F(DeepAnalyseTest, IdenticalValueOutsideTheDestinationPointsToNoChunk) {
    wholeslot(longs({0x11111111, 0x00001008, 0x22222222, 0x33333333}), 0x1000);
    wholeslot(longs({0x11111111, 0x00001008, 0x22222222, 0x33333333}), 0xF0001000);
    EXPECT_EQ(findings(4), lines({"Found source chunk at position 0 of 16 bytes at dest position 0",
                                  "Chunk 0 source 0 dest 0 size 16", cIdentical,
                                  "Potential RELOC=4 #  1008 points to no matching chunk (expected 0)"}));
}

TEST_F(DeepAnalyseTest, CopiesAtTheSamePlaceAreNotedBeforeEachReloc) {
    for (int i = 0; i < 2; ++i)
        wholeslot(longs({0x00F80008, 0x11111111, 0x22222222, 0x00F80010}), 0xF80000);
    EXPECT_EQ(findings(4),
              lines({"Found source chunk at position 0 of 16 bytes at dest position 0",
                     "Chunk 0 source 0 dest 0 size 16", cSamePlace,
                     "Verified RELOC=0 #points to the same offset in the matching chunk", cSamePlace,
                     "Verified RELOC=12 #points to the same offset in the matching chunk"}));
}

TEST_F(DeepAnalyseTest, AComponentBesideItself) {
    wholeslot(longs({0x11111111, 0x00001000, 0x22222222}), 0x1000);
    const std::string text = expectunchanged(0, [] { EXPECT_EQ(deepanalysecomponent(0, 0, 0, 0, 4), 0); });
    EXPECT_TRUE(text.starts_with("Deep analysis of component 0 in ROM 0 with component 0 in ROM 0\n"));
    EXPECT_TRUE(text.ends_with(lines({"Found source chunk at position 0 of 12 bytes at dest position 0",
                                      "Chunk 0 source 0 dest 0 size 12", cSamePlace,
                                      "Verified RELOC=4 #points to the same offset in the matching chunk"})))
        << text;
}

TEST_F(DeepAnalyseTest, TwoCopiesInOneRom) {
    // At 0x1000 and 0x100C; the value of the one in the other would be the very same only by accident.
    slotof(longs({0x11111111, 0x00001000, 0x22222222, 0x11111111, 0x0000100C, 0x22222222}), 0x1000,
           {{0, 12}, {12, 24}});
    const std::string text = expectunchanged(0, [] { EXPECT_EQ(deepanalysecomponent(0, 1, 0, 0, 4), 0); });
    EXPECT_EQ(text, lines({"Deep analysis of component 1 in ROM 0 with component 0 in ROM 0",
                           "Finding potential RELOCs in source between 0000100c and 00001018 (12 bytes)",
                           "1 potential relocs", "____RRRR________",
                           "Finding potential RELOCs in destination between 00001000 and 0000100c (12 bytes)",
                           "1 potential relocs", "Scanning source 0000000c for matches in dest 00000000",
                           "Found source chunk at position 0 of 12 bytes at dest position 0",
                           "Chunk 0 source 0 dest 0 size 12",
                           "Verified RELOC=4 #points to the same offset in the matching chunk"}));
}

TEST_F(DeepAnalyseTest, OfTwoPlacesThatAgreeAsLongTheLowerIsTaken) {
    pair({0x11111111, 0x22222222, 0x99999999},
         {0xABCDABCD, 0x11111111, 0x22222222, 0xABCDABCD, 0x11111111, 0x22222222});
    EXPECT_TRUE(findings(8).starts_with("Found source chunk at position 0 of 8 bytes at dest position 4\n"));
}

TEST_F(DeepAnalyseTest, OfTwoPlacesTheOneThatAgreesLongerIsTaken) {
    pair({0x11111111, 0x22222222, 0x33333333, 0x99999999},
         {0x11111111, 0x22222222, 0xABCDABCD, 0x11111111, 0x22222222, 0x3333ABCD});
    EXPECT_TRUE(
        findings(8).starts_with("Found source chunk at position 0 of 10 bytes at dest position 12\n"));
}

TEST_F(DeepAnalyseTest, AnAddressAndAWordThatIsNoneDoNotAgree) {
    pair({0x11111111, 0x00001004, 0x22222222, 0x33333333}, {0x11111111, 0x00009004, 0x22222222, 0x33333333});
    // The high words are equal, so the chunk goes on to the low ones.
    EXPECT_TRUE(findings(4).starts_with("Found source chunk at position 0 of 6 bytes at dest position 0\n"
                                        "Found source chunk at position 8 of 8 bytes at dest position 8\n"));
}

TEST_F(DeepAnalyseTest, AddressesBeforeTheFirstChunk) {
    pair({0x00001010, 0x00001004, 0x99999999, 0x33333333, 0x44444444, 0x55555555, 0x66666666},
         {0x88888888, 0x33333333, 0x44444444, 0x55555555, 0x66666666});
    EXPECT_EQ(findings(8),
              lines({"Found source chunk at position 12 of 16 bytes at dest position 4",
                     "Potential RELOC=0 #001010 before matching chunks (points to chunk 0)",
                     "Potential RELOC=4 #  1004 before matching chunks (does not point to chunk)",
                     "Chunk 0 source 12 dest 4 size 16"}));
}

// Between and after the chunks nothing but the last value examined inside a chunk says what is pointed to,
// whatever the value: here 0x1004, in chunk 0.
TEST_F(DeepAnalyseTest, BetweenAndAfterTheChunksTheLastValueExaminedIsLookedUp) {
    pair({0x11111111, 0x00001004, 0x22222222, 0x00001020, 0x99999999, 0x44444444, 0x55555555, 0x66666666,
          0x00001014, 0x99999999},
         {0x11111111, 0x00002004, 0x22222222, 0x88888888, 0x88888888, 0x44444444, 0x55555555, 0x66666666,
          0x88888888, 0x88888888});
    EXPECT_EQ(findings(8),
              lines({"Found source chunk at position 0 of 12 bytes at dest position 0",
                     "Found source chunk at position 20 of 12 bytes at dest position 20",
                     "Chunk 0 source 0 dest 0 size 12",
                     "Verified RELOC=4 #points to the same offset in the matching chunk",
                     "Chunk 1 source 20 dest 20 size 12",
                     "Potential RELOC=12 #  1020 between matching chunks (points to chunk 0)",
                     "Potential RELOC=32 #  1014 after all matching chunks (points to chunk 0)"}));
}

// The same with a last value that is in no chunk, though those reported point into one.
TEST_F(DeepAnalyseTest, WhenTheLastValueIsInNoChunkNoneIsPointedTo) {
    pair({0x11111111, 0x00001024, 0x22222222, 0x00001004, 0x99999999, 0x44444444, 0x55555555, 0x66666666,
          0x00001014, 0x99999999},
         {0x11111111, 0x00002004, 0x22222222, 0x88888888, 0x88888888, 0x44444444, 0x55555555, 0x66666666,
          0x88888888, 0x88888888});
    const std::string text = findings(8);
    EXPECT_TRUE(text.ends_with(
        lines({"Potential RELOC=4 #  1024 not found in a matching chunk", "Chunk 1 source 20 dest 20 size 12",
               "Potential RELOC=12 #  1004 between matching chunks (does not point to chunk)",
               "Potential RELOC=32 #  1014 after all matching chunks (does not point to chunk)"})))
        << text;
}

// The value examined last counts for the first space between, too, although its chunk comes behind.
TEST_F(DeepAnalyseTest, ThatIsTheLastValueOfAllChunks) {
    pair({0x11111111, 0x00001004, 0x22222222, 0x00001004, 0x99999999, 0x44444444, 0x00001018, 0x66666666},
         {0x11111111, 0x00002004, 0x22222222, 0x88888888, 0x88888888, 0x44444444, 0x00002018, 0x66666666});
    EXPECT_TRUE(has(findings(8), "Potential RELOC=12 #  1004 between matching chunks (points to chunk 1)\n"));
}

TEST_F(DeepAnalyseTest, WhereNothingWasExaminedTheFirstByteIsLookedUp) {
    pair({0x11111111, 0x22222222, 0x33333333, 0x00001010, 0x99999999},
         {0x11111111, 0x22222222, 0x33333333, 0x88888888, 0x88888888});
    EXPECT_TRUE(
        findings(4).ends_with("Potential RELOC=12 #  1010 after all matching chunks (points to chunk 0)\n"));
    silently([] { freeroms(); });
    pair({0x99999999, 0x11111111, 0x22222222, 0x00001010, 0x99999999}, {0x11111111, 0x22222222, 0x88888888});
    EXPECT_TRUE(findings(4).ends_with(
        "Potential RELOC=12 #  1010 after all matching chunks (does not point to chunk)\n"));
}

TEST_F(DeepAnalyseTest, BehindTheLastChunkAddressesAreToldTwice) {
    // The search stops where 8 bytes more reach the end: at offset 20.
    pair({0x11111111, 0x22222222, 0x33333333, 0x00001004, 0x00001008, 0x0000100C, 0x99999999},
         {0x11111111, 0x22222222, 0x33333333, 0x88888888, 0x88888888, 0x88888888, 0x88888888});
    EXPECT_EQ(findings(8),
              lines({"Found source chunk at position 0 of 12 bytes at dest position 0",
                     "Chunk 0 source 0 dest 0 size 12",
                     "Potential RELOC=12 #  1004 between matching chunks (points to chunk 0)",
                     "Potential RELOC=16 #  1008 between matching chunks (points to chunk 0)",
                     "Potential RELOC=12 #  1004 after all matching chunks (points to chunk 0)",
                     "Potential RELOC=16 #  1008 after all matching chunks (points to chunk 0)",
                     "Potential RELOC=20 #  100C after all matching chunks (points to chunk 0)"}));
}

TEST_F(DeepAnalyseTest, WithoutAChunkEverythingIsBeforeAndAfter) {
    for (const int32_t least : {16, 17, 64, INT32_MAX}) {
        silently([] { freeroms(); });
        pair({0x00001000, 0x11111111, 0x00001010, 0x22222222},
             {0x00002000, 0x11111111, 0x00002010, 0x22222222});
        EXPECT_EQ(findings(least),
                  lines({"Potential RELOC=0 #  1000 before matching chunks (does not point to chunk)",
                         "Potential RELOC=8 #  1010 before matching chunks (does not point to chunk)",
                         "Potential RELOC=0 #  1000 after all matching chunks (does not point to chunk)",
                         "Potential RELOC=8 #  1010 after all matching chunks (does not point to chunk)"}))
            << least;
    }
}

TEST_F(DeepAnalyseTest, AChunkIsSoughtOnlyWhileMoreThanTheMinimumIsLeft) {
    pair({0x11111111, 0x22222222}, {0x11111111, 0x22222222});
    EXPECT_TRUE(has(findings(7), "Found source chunk at position 0 of 8 bytes"));
    EXPECT_EQ(findings(8), "");
}

TEST_F(DeepAnalyseTest, AnOddMinimumIsTakenAsItIs) {
    pair({0x11111111, 0x22229999, 0x99999999, 0x99999999}, {0x11111111, 0x22228888, 0x88888888});
    EXPECT_TRUE(has(findings(5), "of 6 bytes"));
    EXPECT_TRUE(has(findings(6), "of 6 bytes"));
    EXPECT_EQ(findings(7), "");
}

TEST_F(DeepAnalyseTest, SmallestMinimumFindsSingleWords) {
    pair({0x11112222, 0x33334444}, {0x22225555, 0x11116666});
    EXPECT_EQ(findings(1), lines({"Found source chunk at position 0 of 2 bytes at dest position 4",
                                  "Found source chunk at position 2 of 2 bytes at dest position 0",
                                  "Chunk 0 source 0 dest 4 size 2", "Chunk 1 source 2 dest 0 size 2"}));
}

// Units of a long that both have and a word that they have not: chunks of 4 bytes, 6 bytes apart.
Bytes units(uint32_t count, uint32_t other) {
    Bytes bytes;
    for (uint32_t i = 0; i < count; ++i) {
        appendword(bytes, 0xA000 + i);
        appendword(bytes, 0xB000 + i);
        appendword(bytes, other);
    }
    return bytes;
}

TEST_F(DeepAnalyseTest, OneHundredAndNinetyNineChunksAreFound) {
    Bytes source = units(210, 0x9999);
    // Unit 205 and the word before it: an address, at 1228.
    ASSERT_TRUE(putlong(source, 1228, 0x00F80010));
    const auto size = static_cast<int32_t>(source.size());
    wholeslot(source, 0xF80000);
    wholeslot(units(210, 0x8888), 0xFC0000);
    const std::string text = findings(4);
    EXPECT_EQ(countof(text, "Found source chunk"), 199);
    EXPECT_TRUE(has(text, "Found source chunk at position 1188 of 4 bytes at dest position 1188\n"
                          "Chunk 0 source 0 dest 0 size 4\n"));
    EXPECT_TRUE(
        text.ends_with("Chunk 198 source 1188 dest 1188 size 4\n"
                       "Potential RELOC=1228 #F80010 after all matching chunks (points to chunk 0)\n"))
        << text.substr(text.size() - 200);
    EXPECT_EQ(size, 1260);
}

TEST_F(DeepAnalyseTest, FewerAreAllFound) {
    wholeslot(units(198, 0x9999), 0xF80000);
    wholeslot(units(198, 0x8888), 0xFC0000);
    EXPECT_EQ(countof(findings(4), "Found source chunk"), 198);
}

// Chunk 0 begins in the middle of the source's first address: its low word, the second address and the word
// behind it stand where the destination has two addresses.
TEST_F(DeepAnalyseTest, AChunkThatBeginsInsideAnAddressTakesWhatIsMarked) {
    pair({0x00001008, 0x0000100C, 0x20085555, 0x66667777, 0x99999999},
         {0x00002004, 0x00002008, 0x55556666, 0x77778888, 0x88888888});
    EXPECT_EQ(findings(10), lines({"Found source chunk at position 2 of 14 bytes at dest position 0",
                                   "Potential RELOC=0 #001008 before matching chunks (points to chunk 0)",
                                   "Chunk 0 source 2 dest 0 size 14",
                                   "Potential RELOC=2 #10080000 not found in a matching chunk"}));
}

class SmallComponentTest : public DeepAnalyseTest {};

TEST_F(SmallComponentTest, OfNoBytes) {
    slotof(longs({0x1000}), 0x1000, {{0, 0}});
    slotof(longs({0x2000}), 0x2000, {{4, 4}});
    EXPECT_EQ(console(1),
              lines({"Deep analysis of component 0 in ROM 0 with component 0 in ROM 1",
                     "Finding potential RELOCs in source between 00001000 and 00001000 (0 bytes)",
                     "0 potential relocs", "____",
                     "Finding potential RELOCs in destination between 00002004 and 00002004 (0 bytes)",
                     "0 potential relocs", "Scanning source 00000000 for matches in dest 00000004"}));
}

TEST_F(SmallComponentTest, OfOneByteWhoseLongGoesBeyondIt) {
    slotof(longs({0x1001}), 0x1000, {{0, 1}});
    slotof(longs({0x2000}), 0x2000, {{0, 1}});
    EXPECT_EQ(behindline(console(1), "Finding potential RELOCs in source"),
              lines({"1 potential relocs", "RRRR_",
                     "Finding potential RELOCs in destination between 00002000 and 00002001 (1 bytes)",
                     "1 potential relocs", "Scanning source 00000000 for matches in dest 00000000",
                     "Potential RELOC=0 #  1001 before matching chunks (does not point to chunk)",
                     "Potential RELOC=0 #  1001 after all matching chunks (does not point to chunk)"}));
}

TEST_F(SmallComponentTest, OfOneByteAtTheEndOfItsImage) {
    slotof(Bytes(1, 0), 0, {{0, 1}});
    slotof(Bytes(1, 0), 0, {{0, 1}});
    EXPECT_EQ(behindline(console(1), "Finding potential RELOCs in source"),
              lines({"0 potential relocs", "_____",
                     "Finding potential RELOCs in destination between 00000000 and 00000001 (1 bytes)",
                     "0 potential relocs", "Scanning source 00000000 for matches in dest 00000000"}));
}

TEST_F(SmallComponentTest, OfTwoBytesIsOneWord) {
    slotof(longs({0x1234ABCD}), 0x1000, {{0, 2}});
    slotof(longs({0x1234DCBA}), 0x2000, {{0, 2}});
    EXPECT_EQ(findings(1), lines({"Found source chunk at position 0 of 2 bytes at dest position 0",
                                  "Chunk 0 source 0 dest 0 size 2"}));
}

TEST_F(SmallComponentTest, OfThreeBytesIsTwoWords) {
    // The second word begins inside.
    slotof(longs({0x1234ABCD}), 0x1000, {{0, 3}});
    slotof(longs({0x1234ABCD}), 0x2000, {{0, 3}});
    EXPECT_EQ(findings(1), lines({"Found source chunk at position 0 of 4 bytes at dest position 0",
                                  "Chunk 0 source 0 dest 0 size 4"}));
}

TEST_F(SmallComponentTest, AHalfWordAtTheEndOfItsImageAgreesWithNothing) {
    slotof({0x12, 0x34, 0xAB}, 0x1000, {{0, 3}});
    slotof({0x12, 0x34, 0xAB}, 0x2000, {{0, 3}});
    EXPECT_EQ(findings(1), lines({"Found source chunk at position 0 of 2 bytes at dest position 0",
                                  "Chunk 0 source 0 dest 0 size 2"}));
}

// The last word of the destination's image may be marked in the source only together with the long's second
// half; the destination has no long there.
TEST_F(SmallComponentTest, ALongCutOffByTheEndOfTheOtherImagePointsNowhere) {
    slotof({0x11, 0x11, 0, 0, 0x10, 0x02}, 0x1000, {{0, 6}});
    slotof({0x11, 0x11, 0, 0}, 0x2000, {{0, 4}});
    EXPECT_EQ(findings(4), lines({"Found source chunk at position 0 of 4 bytes at dest position 0",
                                  "Chunk 0 source 0 dest 0 size 4",
                                  "Potential RELOC=2 #  1002 points to no matching chunk (expected 0)"}));
}

} // namespace
} // namespace vantorel::test
