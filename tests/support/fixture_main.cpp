// vantorel-fixture: makes the input files of transcripts. Run it without arguments for what it can do.

#include "support/checksums.h"
#include "support/diskbuilder.h"
#include "support/dumps.h"
#include "support/fixture_rom.h"
#include "support/hashbuilder.h"
#include "support/tempdir.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <exception>
#include <fstream>
#include <span>
#include <string>
#include <vector>

using namespace vantorel;
using namespace vantorel::test;

namespace {

using Arguments = std::vector<std::string>;

void write(const std::string& path, View bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + path);
}

/// Takes "--name" out of the arguments.
bool flag(Arguments& arguments, const std::string& name) { return std::erase(arguments, name) > 0; }

/// The arguments that no option took: at least and at most so many.
void requirecount(const Arguments& arguments, size_t least, size_t most) {
    for (const std::string& argument : arguments)
        if (argument.starts_with("--")) throw UsageError("unknown option " + argument);
    if (arguments.size() < least || arguments.size() > most) throw UsageError("wrong number of arguments");
}

void save(const FixtureRom& order, const std::string& path) {
    write(path, order.rom.image);
    if (!order.hashes.empty()) HashBuilder(order.hashes).add(order.rom, order.text);
}

void standard(Arguments arguments) {
    const FixtureRom order = fixturerom(arguments, true);
    requirecount(arguments, 1, 1);
    save(order, arguments[0]);
}

void rom(Arguments arguments) {
    const FixtureRom order = fixturerom(arguments, false);
    requirecount(arguments, 1, 1);
    save(order, arguments[0]);
}

void hashes(Arguments arguments) {
    const FixtureRom order = fixturerom(arguments, true);
    requirecount(arguments, 1, 1);
    HashBuilder(arguments[0]).add(order.rom, order.text);
}

void library(Arguments arguments) {
    const FixtureRom order = fixturerom(arguments, true);
    requirecount(arguments, 2, 2);
    write(arguments[0], order.rom.module(arguments[1]).loadable);
}

void module(Arguments arguments) {
    const FixtureRom order = fixturerom(arguments, true);
    requirecount(arguments, 2, 2);
    write(arguments[0], order.rom.bytes(order.rom.module(arguments[1])));
}

void listing(Arguments arguments) {
    const FixtureRom order = fixturerom(arguments, true);
    requirecount(arguments, 0, 0);
    printf("%s base 0x%08x crc 0x%08x\n", "rom", order.rom.base, order.rom.crc);
    for (const MapLine& line : order.rom.map)
        printf("%s=%d,%d,%s:%s\n", line.name.c_str(), line.start, line.size, line.type.c_str(),
               line.hash.c_str());
}

void exchange(Arguments arguments) {
    requirecount(arguments, 2, 2);
    write(arguments[1], byteswapped(contentsof(arguments[0])));
}

void split(Arguments arguments) {
    const bool isswapped = flag(arguments, "--swapped");
    const std::string order = takeoption(arguments, "--order", "lohi");
    requirecount(arguments, 3, 3);
    if (order != "lohi" && order != "hilo") throw UsageError("--order is lohi or hilo");
    const WordOrder plain = order == "lohi" ? WordOrder::LoHi : WordOrder::HiLo;
    const WordOrder swapped = order == "lohi" ? WordOrder::LoHiSwapped : WordOrder::HiLoSwapped;
    const ChipPair pair = splitpair(contentsof(arguments[0]), isswapped ? swapped : plain);
    write(arguments[1], pair.first);
    write(arguments[2], pair.second);
}

void overburn(Arguments arguments) {
    requirecount(arguments, 2, 3);
    const int times = arguments.size() > 2 ? fixturenumber(arguments[2]) : 2;
    write(arguments[1], overburnt(contentsof(arguments[0]), times));
}

void cd32(Arguments arguments) {
    requirecount(arguments, 2, 2);
    write(arguments[1], cd32interleaved(contentsof(arguments[0])));
}

void join(Arguments arguments) {
    requirecount(arguments, 2, SIZE_MAX);
    Bytes all;
    for (size_t i = 1; i < arguments.size(); ++i)
        all = joined(all, contentsof(arguments[i]));
    write(arguments[0], all);
}

/// "KEY=OFFSET,SIZE"
Range range(const std::string& text) {
    const size_t equals = text.find('=');
    const size_t comma = text.find(',');
    if (equals == std::string::npos || comma == std::string::npos || comma < equals)
        throw UsageError(text + " is not KEY=OFFSET,SIZE");
    return {text.substr(0, equals), fixturenumber(text.substr(equals + 1, comma - equals - 1)),
            fixturenumber(text.substr(comma + 1))};
}

void describe(Arguments arguments) {
    ContainerText text;
    text.filetype = takeoption(arguments, "--type");
    text.format = takeoption(arguments, "--format");
    text.title = takeoption(arguments, "--title", text.title);
    requirecount(arguments, 2, SIZE_MAX);
    for (size_t i = 2; i < arguments.size(); ++i)
        text.ranges.push_back(range(arguments[i]));
    HashBuilder(arguments[1]).container(contentsof(arguments[0]), text);
}

void makecontainer(Arguments arguments) {
    const int32_t size = fixturenumber(takeoption(arguments, "--size", "0"));
    const int32_t fill = fixturenumber(takeoption(arguments, "--fill", "0"));
    requirecount(arguments, 2, SIZE_MAX);
    std::vector<Part> parts;
    for (size_t i = 1; i < arguments.size(); ++i) {
        const size_t equals = arguments[i].find('=');
        if (equals == std::string::npos) throw UsageError(arguments[i] + " is not OFFSET=FILE");
        parts.push_back(
            {fixturenumber(arguments[i].substr(0, equals)), contentsof(arguments[i].substr(equals + 1))});
    }
    write(arguments[0], container(parts, size, static_cast<uint8_t>(fill)));
}

Bytes hexbytes(std::span<const std::string> pieces) {
    std::string digits;
    for (const std::string& piece : pieces)
        digits += piece;
    std::erase(digits, ' ');
    if (digits.size() % 2 != 0) throw UsageError("an odd number of hexadecimal digits");
    Bytes bytes(digits.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i) {
        const char* pair = digits.data() + 2 * i;
        if (std::from_chars(pair, pair + 2, bytes[i], 16).ptr != pair + 2)
            throw UsageError("not hexadecimal");
    }
    return bytes;
}

void hex(Arguments arguments) {
    requirecount(arguments, 1, SIZE_MAX);
    write(arguments[0], hexbytes(std::span(arguments).subspan(1)));
}

void patch(Arguments arguments) {
    requirecount(arguments, 3, SIZE_MAX);
    Bytes file = contentsof(arguments[0]);
    const int32_t offset = fixturenumber(arguments[1]);
    const Bytes bytes = hexbytes(std::span(arguments).subspan(2));
    if (!isinside(file, offset, static_cast<int64_t>(bytes.size()))) throw UsageError("outside the file");
    std::ranges::copy(bytes, file.begin() + offset);
    write(arguments[0], file);
}

void fill(Arguments arguments) {
    requirecount(arguments, 3, 3);
    const Bytes bytes(static_cast<size_t>(fixturenumber(arguments[1])),
                      static_cast<uint8_t>(fixturenumber(arguments[2])));
    write(arguments[0], bytes);
}

void crc(Arguments arguments) {
    requirecount(arguments, 1, 1);
    printf("%s\n", hex32(crc32of(contentsof(arguments[0]))).c_str());
}

/// "PATH=HOSTFILE" adds a file, "PATH/" a directory, "PATH:OFFSET=LONG" changes a long of PATH's header
/// block.
void addtodisk(DiskBuilder& disk, const std::string& item) {
    if (item.ends_with("/")) {
        disk.adddirectory(item.substr(0, item.size() - 1));
        return;
    }
    const size_t equals = item.find('=');
    if (equals == std::string::npos) throw UsageError(item + " is not NAME=FILE");
    const std::string name = item.substr(0, equals);
    const std::string value = item.substr(equals + 1);
    const size_t colon = name.find(':');
    if (colon == std::string::npos) {
        disk.addfile(name, contentsof(value));
        return;
    }
    disk.poke(disk.blockof(name.substr(0, colon)), fixturenumber(name.substr(colon + 1)),
              static_cast<uint32_t>(fixturenumber(value)));
}

void adf(Arguments arguments) {
    requirecount(arguments, 3, SIZE_MAX);
    if (arguments[1] != "ofs" && arguments[1] != "ffs") throw UsageError("the file system is ofs or ffs");
    DiskBuilder disk(arguments[1] == "ofs" ? FileSystem::Ofs : FileSystem::Ffs, arguments[2]);
    for (size_t i = 3; i < arguments.size(); ++i)
        addtodisk(disk, arguments[i]);
    write(arguments[0], disk.image());
}

struct Command {
    const char* name;
    void (*run)(Arguments);
    const char* usage;
    const char* help;
};

constexpr std::array aCommands = {
    Command{"standard", standard, "OUT [ROM OPTION]...",
            "the standard ROM of 512K (or 256K), and whatever is added"},
    Command{"rom", rom, "OUT [ROM OPTION]...", "a ROM of just what the options say"},
    Command{"hashes", hashes, "DIR [ROM OPTION]...", "hash files for the standard ROM and its components"},
    Command{"library", library, "OUT NAME [ROM OPTION]...",
            "a module of the standard ROM as a loadable library"},
    Command{"module", module, "OUT NAME [ROM OPTION]...", "a module of the standard ROM as it stands there"},
    Command{"list", listing, "[ROM OPTION]...", "shows the standard ROM's CRC32 and component map"},
    Command{"swap", exchange, "IN OUT", "the bytes of each word exchanged"},
    Command{"split", split, "IN FIRST SECOND [--order lohi|hilo] [--swapped]", "a pair of EPROM dumps"},
    Command{"overburn", overburn, "IN OUT [TIMES]", "the file twice or TIMES times"},
    Command{"cd32", cd32, "IN OUT", "the words of a 1 MB image as a CD32 has them"},
    Command{"join", join, "OUT IN...", "files one after the other"},
    Command{"container", makecontainer, "OUT OFFSET=FILE... [--size N] [--fill BYTE]",
            "files at places in a file"},
    Command{"describe", describe, "FILE DIR [--type FILETYPE] [--format F] [--title T] [KEY=OFFSET,SIZE]...",
            "a hash file for any file, in folder DIR"},
    Command{"adf", adf, "OUT ofs|ffs VOLUME [NAME=FILE | DIRECTORY/ | NAME:OFFSET=LONG]...",
            "a disk with these files; the last form damages the header block of NAME (nothing: the root)"},
    Command{"hex", hex, "OUT DIGITS...", "bytes given in hexadecimal"},
    Command{"patch", patch, "FILE OFFSET DIGITS...", "writes bytes over those of a file, for damage"},
    Command{"fill", fill, "OUT SIZE BYTE", "SIZE equal bytes"},
    Command{"crc", crc, "FILE", "shows the CRC32"},
};

int usage(const std::string& problem) {
    if (!problem.empty()) fprintf(stderr, "vantorel-fixture: %s\n\n", problem.c_str());
    fprintf(stderr, "usage:\n");
    for (const Command& command : aCommands)
        fprintf(stderr, "  vantorel-fixture %s %s\n      %s\n", command.name, command.usage, command.help);
    fprintf(stderr, "%s", fixtureromhelp);
    return 2;
}

} // namespace

int main(int count, char** values) {
    const Arguments all(values + 1, values + count);
    if (all.empty()) return usage("");
    const auto command = std::ranges::find(aCommands, all[0], &Command::name);
    if (command == aCommands.end()) return usage("unknown command " + all[0]);
    try {
        command->run(Arguments(all.begin() + 1, all.end()));
        return 0;
    } catch (const UsageError& error) {
        return usage(all[0] + ": " + error.what());
    } catch (const std::exception& error) {
        fprintf(stderr, "vantorel-fixture %s: %s\n", all[0].c_str(), error.what());
        return 1;
    }
}
