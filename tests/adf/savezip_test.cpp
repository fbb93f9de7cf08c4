// Archives of disks: their bytes worked out by hand, what they hold read back, damaged disks, and times.

#include "adf/savezip.h"

#include "adf/loaded.h"
#include "adf/zipreader.h"
#include "base/settings.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace vantorel::test {
namespace {

/// The local time zone for as long as the object lives.
class InZone {
public:
    explicit InZone(const char* zone) {
        const char* set = std::getenv("TZ");
        if (set != nullptr) former = set;
        wasset = set != nullptr;
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~InZone() {
        if (wasset)
            ::setenv("TZ", former.c_str(), 1);
        else
            ::unsetenv("TZ");
        ::tzset();
    }
    InZone(const InZone&) = delete;
    InZone& operator=(const InZone&) = delete;

private:
    std::string former;
    bool wasset = false;
};

struct Zipped {
    std::string console;
    Bytes bytes;
};

/// The loaded disk as an archive, through `adfsavezip`.
Zipped zip() {
    const TempDir directory;
    Zipped zipped;
    zipped.console = captured([&] { adfsavezip(directory.file("disk.zip")); });
    zipped.bytes = directory.bytes("disk.zip");
    return zipped;
}

std::vector<ZipEntry> zippeddisk(const DiskBuilder& disk) {
    load(disk);
    return readzip(zip().bytes);
}

/// The paths of the table as they must stand in an archive.
Lines zipnames() {
    Lines names = listing();
    for (std::string& name : names)
        name.erase(0, 1);
    return names;
}

Lines namesof(const std::vector<ZipEntry>& entries) {
    Lines names;
    for (const ZipEntry& entry : entries)
        names.push_back(entry.name);
    return names;
}

/// The entry called `name`; a blank one, and a failure, when there is none.
ZipEntry entrycalled(const std::vector<ZipEntry>& entries, const std::string& name) {
    for (const ZipEntry& entry : entries)
        if (entry.name == name) return entry;
    ADD_FAILURE() << "no entry " << name;
    return {};
}

const Bytes cEmptyArchive = {0x50, 0x4B, 5, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

// 1980-01-01, 12:34:56: day 730, minute 754.
constexpr AmigaTime kMoment = {730, 754, 2800};

class AdfZip : public testing::TestWithParam<FileSystem> {
protected:
    DiskBuilder disk{GetParam()};
    InZone zone{"UTC"};
};
INSTANTIATE_TEST_SUITE_P(Both, AdfZip, testing::Values(FileSystem::Ofs, FileSystem::Ffs),
                         [](const auto& tested) { return nameof(tested.param); });

} // namespace

TEST(AdfZip, LittleEndianNumbersTakeTheirBytesOnly) {
    Bytes bytes(6, 0xEE);
    leUINT32(bytes.data() + 1, 0x12345678);
    EXPECT_EQ(bytes, (Bytes{0xEE, 0x78, 0x56, 0x34, 0x12, 0xEE}));
    leUINT16(bytes.data() + 2, 0xFEDCBA98);
    EXPECT_EQ(bytes, (Bytes{0xEE, 0x78, 0x98, 0xBA, 0x12, 0xEE}));
    leUINT32(bytes.data() + 2, 0xFFFFFFFF);
    EXPECT_EQ(bytes, (Bytes{0xEE, 0x78, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST_P(AdfZip, ASmallArchiveIsAsWorkedOutByHand) {
    disk.adddirectory("S", kMoment);
    disk.addfile("S/a", "hi\n", {});
    load(disk);
    const Bytes expected = {
        // 0: the directory, 12:34:56 (0x645C) on 1980-01-01 (0x0021)
        0x50, 0x4B, 3, 4, 0, 0, 0, 0, 0, 0, 0x5C, 0x64, 0x21, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0,
        0, 0, 'S', '/',
        // 32: the file, 00:00:00 on 1978-01-01 (-991)
        0x50, 0x4B, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0x21, 0xFC, 0x7A, 0x7A, 0x6F, 0xED, 3, 0, 0, 0, 3, 0, 0, 0,
        3, 0, 0, 0, 'S', '/', 'a', 'h', 'i', '\n',
        // 68: the central directory of 97 bytes
        0x50, 0x4B, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0x5C, 0x64, 0x21, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
        2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 'S', '/', //
        0x50, 0x4B, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x21, 0xFC, 0x7A, 0x7A, 0x6F, 0xED, 3, 0, 0, 0, 3, 0,
        0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0, 0, 'S', '/', 'a',
        // 165: the end
        0x50, 0x4B, 5, 6, 0, 0, 0, 0, 2, 0, 2, 0, 97, 0, 0, 0, 68, 0, 0, 0, 0, 0};
    EXPECT_EQ(zip().bytes, expected);
}

TEST_P(AdfZip, EachEntryIsToldOfAtEveryLevel) {
    disk.addfile("S/Startup", "x");
    load(disk);
    for (const int32_t level : {0, 1, 10}) {
        const AtLevel verbosity(level);
        EXPECT_EQ(zip().console, "Adding dir... /S/\nAdding file... /S/Startup\n");
    }
}

TEST_P(AdfZip, AnEmptyDiskIsTheEndRecordAlone) {
    load(disk);
    EXPECT_EQ(zip().bytes, cEmptyArchive);
    EXPECT_EQ(zip().console, "");
}

TEST(AdfZip, WithoutADiskThereAreNoEntries) {
    psFiles.clear();
    EXPECT_EQ(zip().bytes, cEmptyArchive);
}

TEST_P(AdfZip, EntriesComeInTheOrderOfTheTableWithTheirContents) {
    disk.adddirectory("Empty");
    for (const size_t size : {0u, 1u, 487u, 488u, 489u, 511u, 512u, 513u, 35136u, 36864u, 36865u, 200000u})
        disk.addfile("sizes/deep/" + std::to_string(size), pattern(size));
    disk.addfile("Startup", "hello");
    const std::vector<ZipEntry> entries = zippeddisk(disk);
    ASSERT_EQ(namesof(entries), zipnames());
    EXPECT_EQ(entries.size(), 16u);
    for (const ZipEntry& entry : entries) {
        const Bytes expected = entry.name == "Startup"    ? bytesof("hello")
                               : entry.name.back() == '/' ? Bytes{}
                                                          : pattern(std::stoul(entry.name.substr(11)));
        EXPECT_EQ(entry.data, expected) << entry.name;
    }
}

TEST_P(AdfZip, AThousandEntries) {
    for (int i = 0; i < 996; i++)
        disk.addfile("Dir" + std::to_string(i % 4) + "/" + std::to_string(i),
                     i % 2 == 0 ? std::to_string(i) : "");
    const std::vector<ZipEntry> entries = zippeddisk(disk);
    ASSERT_EQ(entries.size(), 1000u);
    EXPECT_EQ(namesof(entries), zipnames());
    for (int i = 0; i < 996; i++)
        EXPECT_EQ(entrycalled(entries, "Dir" + std::to_string(i % 4) + "/" + std::to_string(i)).data,
                  bytesof(i % 2 == 0 ? std::to_string(i) : ""));
}

TEST_P(AdfZip, NamesStandAsTheyAre) {
    const Lines names = {"\xC4\xE9\xFF", "two words", "..", "C:\\x", std::string(30, '\x80'), "%s%n"};
    for (const std::string& name : names)
        disk.addfile(name, name);
    disk.addfile("\xFC/\xE0", "deep");
    const std::vector<ZipEntry> entries = zippeddisk(disk);
    for (const std::string& name : names)
        EXPECT_EQ(entrycalled(entries, name).data, bytesof(name));
    EXPECT_EQ(entrycalled(entries, "\xFC/\xE0").data, bytesof("deep"));
    entrycalled(entries, "\xFC/");
    EXPECT_EQ(entries.size(), 8u);
}

TEST_P(AdfZip, TwoEntriesWithOnePathAreBothThere) {
    const Lines names = chained("Twin", 2);
    disk.addfile(names[0], "first");
    disk.addfile(names[1], "second");
    disk.pokebytes(disk.blockof(names[1]), adf::kNameLength, bytesof(std::string("\x04Twin\0\0\0\0", 9)));
    const std::vector<ZipEntry> entries = zippeddisk(disk);
    ASSERT_EQ(namesof(entries), (Lines{"Twin", "Twin"}));
    EXPECT_EQ(entries[0].data, bytesof("first"));
    EXPECT_EQ(entries[1].data, bytesof("second"));
}

TEST_P(AdfZip, TimesAreThoseOfTheBlocks) {
    disk.addfile("day", "", {12965, 720, 0});
    disk.addfile("odd", "", {12965, 0, 59 * 50 + 49});
    disk.addfile("hostile", "", {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF});
    const std::vector<ZipEntry> entries = zippeddisk(disk);
    EXPECT_EQ(entrycalled(entries, "day").date, 0x42E1); // 2013-07-01
    EXPECT_EQ(entrycalled(entries, "day").time, 0x6000); // 12:00:00
    EXPECT_EQ(entrycalled(entries, "odd").time, 29);     // 00:00:59
    // 09:10:45 on the 25th of November in the year 11769367
    EXPECT_EQ(entrycalled(entries, "hostile").date, 0xB779);
    EXPECT_EQ(entrycalled(entries, "hostile").time, 0x4956);
}

/// Midnight of a day counted from 1978-01-01, and what is added to it, in seconds since 1970.
constexpr int64_t moment(int64_t day, int64_t seconds) { return adf::iAmigaEpoch + day * 86400 + seconds; }

struct Local {
    const char* zone;
    int64_t seconds;
    int32_t date;
    int32_t time;
};

constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";

const std::vector<Local> cLocal = {
    {"UTC", 0, 0xEC21, 0},                                 // 1970-01-01 00:00:00
    {"UTC", moment(0, 0), 0xFC21, 0},                      // 1978-01-01 00:00:00
    {"UTC", moment(730, -2), 0xFF9F, 0xBF7D},              // 1979-12-31 23:59:58
    {"UTC", moment(730, 0), 0x0021, 0},                    // 1980-01-01 00:00:00
    {"UTC", moment(47481, -1), 0xFF9F, 0xBF7D},            // 2107-12-31 23:59:59
    {"UTC", moment(47481, 0), 0x0021, 0},                  // 2108-01-01 00:00:00
    {"UTC", moment(12477, 3600), 0x405D, 0x0800},          // 2012-02-29 01:00:00
    {kNewYork, moment(0, 0), 0xFB9F, 0x9800},              // 1977-12-31 19:00:00
    {kNewYork, moment(12784, 1801), 0x419F, 0x9BC0},       // 2012-12-31 19:30:01
    {kNewYork, moment(12965, 12 * 3600), 0x42E1, 0x4000},  // 2013-07-01 08:00:00, in summer
    {kBerlin, moment(12784, 1800), 0x4221, 0x0BC0},        // 2013-01-01 01:30:00
    {kBerlin, moment(12965, 12 * 3600), 0x42E1, 0x7000},   // 2013-07-01 14:00:00, in summer
    {kBerlin, moment(12873, 3600 - 1), 0x427F, 0x0F7D},    // 2013-03-31 01:59:59
    {kBerlin, moment(12873, 3600), 0x427F, 0x1800},        // 2013-03-31 03:00:00
    {"<+1245>-12:45", moment(729, 86398), 0x0021, 0x659D}, // 1980-01-01 12:44:58
};

TEST(AdfZip, TimesAreLocal) {
    for (const Local& local : cLocal) {
        const InZone zone(local.zone);
        EXPECT_EQ(dostime(local.seconds).iDate, local.date) << local.zone << " " << local.seconds;
        EXPECT_EQ(dostime(local.seconds).iTime, local.time) << local.zone << " " << local.seconds;
    }
}

TEST_P(AdfZip, ArchivesHaveLocalTimes) {
    disk.addfile("summer", "", {12965, 720, 0});
    load(disk);
    const InZone berlin(kBerlin);
    const std::vector<ZipEntry> entries = readzip(zip().bytes);
    EXPECT_EQ(entrycalled(entries, "summer").time, 0x7000); // 14:00:00
}

TEST_P(AdfZip, AnArchiveThatCannotBeMadeIsPassedOverInSilence) {
    disk.addfile("Startup", "x");
    load(disk);
    const TempDir directory;
    const AtLevel level(10);
    for (const std::string& path : {directory.file("gone/disk.zip"), directory.path(), std::string()})
        EXPECT_EQ(captured([&] { adfsavezip(path); }), "");
    EXPECT_FALSE(directory.exists("gone"));
}

TEST_P(AdfZip, AFullHostDiskIsToldOfAboveLevelZero) {
    disk.addfile("Startup", "x");
    load(disk);
    EXPECT_EQ(captured([] { adfsavezip("/dev/full"); }),
              "Adding file... /Startup\nERROR: failed to write output file /dev/full\n");
    const AtLevel level(0);
    EXPECT_EQ(captured([] { adfsavezip("/dev/full"); }), "Adding file... /Startup\n");
}

TEST_P(AdfZip, AnArchiveReplacesAFileAndLiesWhereItsPathSays) {
    disk.addfile("Startup", "x");
    load(disk);
    const TempDir directory;
    const InDirectory inside(directory);
    directory.folder("saved");
    directory.file("disk.zip", Bytes(5000, 1));
    cSaveDir = "saved/";
    (void)captured([] { adfsavezip("disk.zip"); });
    cSaveDir.clear();
    EXPECT_FALSE(directory.exists("saved/disk.zip"));
    EXPECT_EQ(readzip(directory.bytes("disk.zip")).size(), 1u);
}

TEST_P(AdfZip, ANewArchiveGetsPermissionBits0755) {
    load(disk);
    const TempDir directory;
    const mode_t former = umask(0);
    adfsavezip(directory.file("disk.zip"));
    umask(former);
    struct stat status {};
    ASSERT_EQ(stat(directory.file("disk.zip").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0755u);
}

namespace {

constexpr size_t kWhole = SIZE_MAX;

/// Damage done to the file "File" of 150 blocks, the last half full, on a disk of it, a directory and others.
struct Damage {
    const char* name;
    void (*apply)(DiskBuilder& disk);
    size_t blocks;    ///< of its data that are still found, or `kWhole`
    const char* said; ///< by its one line; empty: nothing is said
};

void pokefile(DiskBuilder& disk, int32_t field, uint32_t value) {
    disk.poke(disk.blockof("File"), field, value);
}

uint32_t extensionof(const DiskBuilder& disk, size_t n) {
    return static_cast<uint32_t>(disk.extensionof("File", n));
}

const std::vector<Damage> cDamages = {
    {"None", [](DiskBuilder&) {}, kWhole, ""},
    {"DataPointerBeyondDisk", [](DiskBuilder& d) { pokefile(d, adf::kFirstPointer - 8, 1760); }, 2,
     "block 1760"},
    {"DataPointerZero", [](DiskBuilder& d) { pokefile(d, adf::kFirstPointer, 0); }, 0, "block 0"},
    {"DataPointerBeyondDiskInAnExtension",
     [](DiskBuilder& d) { d.poke(d.extensionof("File", 0), adf::kFirstPointer - 12, 70000); }, 75,
     "block 70000"},
    {"ExtensionChainComesBack",
     [](DiskBuilder& d) { d.poke(d.extensionof("File", 0), adf::kExtension, extensionof(d, 0)); }, 144,
     "visited already"},
    {"ExtensionChainComesBackBehindTheFile",
     [](DiskBuilder& d) { d.poke(d.extensionof("File", 1), adf::kExtension, extensionof(d, 0)); }, kWhole,
     "visited already"},
    {"ExtensionBeyondDisk", [](DiskBuilder& d) { pokefile(d, adf::kExtension, 0x80000000); }, 72,
     "outside the disk"},
    {"ExtensionMissing", [](DiskBuilder& d) { pokefile(d, adf::kExtension, 0); }, 72, "run out"},
    {"CountAboveTable", [](DiskBuilder& d) { pokefile(d, adf::kPointerCount, 73); }, kWhole, "counts 73"},
    {"CountZero", [](DiskBuilder& d) { d.poke(d.extensionof("File", 1), adf::kPointerCount, 0); }, 144,
     "run out"},
};

class AdfZipDamage : public testing::TestWithParam<std::tuple<FileSystem, Damage>> {
protected:
    AdfZipDamage() : whole(pattern(150 * payload() - payload() / 2)) {
        disk.addfile("First", "first");
        disk.addfile("File", whole);
        disk.addfile("Dir/Last", "last");
    }

    [[nodiscard]] static size_t payload() { return payloadof(std::get<0>(GetParam())); }

    /// An "ERROR" line for `path`, right behind the line that the file is added.
    static void expecterror(const std::string& console, const std::string& path, const std::string& said) {
        Lines lines = linesof(console);
        const auto added = std::ranges::find(lines, "Adding file... " + path);
        ASSERT_NE(added, lines.end()) << console;
        ASSERT_NE(added + 1, lines.end()) << console;
        EXPECT_TRUE((added + 1)->starts_with("ERROR: " + path + ": ")) << console;
        EXPECT_NE((added + 1)->find(said), std::string::npos) << console;
    }

    DiskBuilder disk{std::get<0>(GetParam())};
    Bytes whole;
};

std::string damagename(const testing::TestParamInfo<std::tuple<FileSystem, Damage>>& info) {
    return nameof(std::get<0>(info.param)) + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(Both, AdfZipDamage,
                         testing::Combine(testing::Values(FileSystem::Ofs, FileSystem::Ffs),
                                          testing::ValuesIn(cDamages)),
                         damagename);

} // namespace

TEST_P(AdfZipDamage, LeavesAnArchiveOfWhatIsFound) {
    const Damage& damage = std::get<1>(GetParam());
    damage.apply(disk);
    EXPECT_EQ(load(disk).console, "");
    const Zipped zipped = zip();
    const std::vector<ZipEntry> entries = readzip(zipped.bytes);
    EXPECT_EQ(namesof(entries), zipnames());
    EXPECT_EQ(entrycalled(entries, "First").data, bytesof("first"));
    EXPECT_EQ(entrycalled(entries, "Dir/Last").data, bytesof("last"));
    const size_t size = damage.blocks == kWhole ? whole.size() : damage.blocks * payload();
    EXPECT_EQ(entrycalled(entries, "File").data, Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(size)));
    const bool issaid = *damage.said != '\0';
    EXPECT_EQ(linesof(zipped.console).size(), issaid ? 5u : 4u) << zipped.console;
    if (issaid) expecterror(zipped.console, "/File", damage.said);
    const AtLevel level(0);
    EXPECT_EQ(linesof(zip().console).size(), 4u);
}

TEST_P(AdfZip, AFileSizeOtherThanTheDataIsMadeToFit) {
    const Bytes bytes = pattern(3 * payloadof(GetParam()));
    for (const uint32_t size : {0u, 700u, 3000u, 0x7FFF0000u, 0xFFFFFFFFu}) {
        DiskBuilder damaged(GetParam());
        damaged.addfile("File", bytes);
        damaged.poke(damaged.blockof("File"), adf::kFileSize, size);
        const std::vector<ZipEntry> entries = zippeddisk(damaged);
        const auto found = std::min<size_t>(size, bytes.size());
        EXPECT_EQ(entries.at(0).data, Bytes(bytes.begin(), bytes.begin() + std::ptrdiff_t(found))) << size;
    }
}

TEST_P(AdfZip, ADamagedListingLeavesAnArchiveOfWhatIsListed) {
    const Lines names = chained("Name", 3);
    for (const std::string& name : names)
        disk.addfile(name, name);
    disk.addfile("Dir/Sub/deep", "deep");
    disk.addfile("Last", "last");
    disk.poke(disk.blockof(names[1]), adf::kHashChain, 1760);
    disk.poke(disk.blockof("Dir/Sub"), DiskBuilder::slotoffset("deep"),
              static_cast<uint32_t>(disk.blockof("Dir")));
    const std::vector<ZipEntry> entries = zippeddisk(disk);
    EXPECT_EQ(entries.size(), 5u);
    for (const std::string& name : {names[0], names[1]})
        EXPECT_EQ(entrycalled(entries, name).data, bytesof(name));
    for (const char* name : {"Dir/", "Dir/Sub/"})
        EXPECT_EQ(entrycalled(entries, name).data, Bytes{});
    EXPECT_EQ(entrycalled(entries, "Last").data, bytesof("last"));
}

TEST_P(AdfZip, ADirectoryThatPointsToDataHasNone) {
    disk.addfile("Dir/file", "file");
    disk.poke(disk.blockof("Dir"), adf::kFileSize, 4);
    disk.poke(disk.blockof("Dir"), adf::kPointerCount, 1);
    disk.poke(disk.blockof("Dir"), adf::kFirstPointer,
              static_cast<uint32_t>(disk.datablockof("Dir/file", 0)));
    load(disk);
    const Zipped zipped = zip();
    EXPECT_EQ(entrycalled(readzip(zipped.bytes), "Dir/").data, Bytes{});
    EXPECT_EQ(linesof(zipped.console)[0], "Adding dir... /Dir/");
}

} // namespace vantorel::test
