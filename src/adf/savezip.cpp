#include "adf/savezip.h"

#include "adf/directory.h"
#include "adf/filedata.h"
#include "base/files.h"
#include "base/message.h"
#include "hash/crc32.h"

#include <algorithm>
#include <array>
#include <ctime>

namespace vantorel {

void leUINT32(uint8_t* out, uint32_t value) {
    leUINT16(out, value);
    leUINT16(out + 2, value >> 16);
}

void leUINT16(uint8_t* out, uint32_t value) {
    out[0] = static_cast<uint8_t>(value);
    out[1] = static_cast<uint8_t>(value >> 8);
}

DosTime dostime(int64_t seconds) {
    const auto moment = static_cast<time_t>(seconds);
    std::tm local{};
    // A year that no calendar holds leaves the fields at 0.
    if (::localtime_r(&moment, &local) == nullptr) return {};
    // A disk may name a year of eight digits.
    const int64_t date =
        ((int64_t{local.tm_year} + 1900 - 1980) * 16 + local.tm_mon + 1) * 32 + local.tm_mday;
    const int time = (local.tm_hour * 64 + local.tm_min) * 32 + local.tm_sec / 2;
    return {.iDate = static_cast<uint16_t>(date), .iTime = static_cast<uint16_t>(time)};
}

namespace {

// Fields in bytes from a record's first; all others are 0.
namespace Local {
constexpr std::array<uint8_t, 4> signature = {0x50, 0x4B, 0x03, 0x04};
constexpr size_t length = 30;
constexpr size_t common = 10; // where the fields begin that the central directory repeats
} // namespace Local

namespace Central {
constexpr std::array<uint8_t, 4> signature = {0x50, 0x4B, 0x01, 0x02};
constexpr size_t length = 46;
constexpr size_t common = 12;
constexpr size_t offset = 42;
} // namespace Central

namespace End {
constexpr std::array<uint8_t, 4> signature = {0x50, 0x4B, 0x05, 0x06};
constexpr size_t length = 22;
constexpr size_t entriesonthisdisk = 8;
constexpr size_t entries = 10;
constexpr size_t directorysize = 12;
constexpr size_t directoryoffset = 16;
} // namespace End

// The fields that local header and central directory share, from the first of them.
namespace Common {
constexpr size_t time = 0;
constexpr size_t date = 2;
constexpr size_t crc = 4;
constexpr size_t storedsize = 8;
constexpr size_t size = 12;
constexpr size_t namelength = 16;
} // namespace Common

struct Entry {
    std::string name;
    DosTime moment;
    uint32_t crc = 0;
    uint32_t size = 0; // bytes
};

template <size_t length>
std::array<uint8_t, length> record(const std::array<uint8_t, 4>& signature) {
    std::array<uint8_t, length> bytes{};
    std::ranges::copy(signature, bytes.begin());
    return bytes;
}

void setcommon(uint8_t* fields, const Entry& entry) {
    leUINT16(fields + Common::time, entry.moment.iTime);
    leUINT16(fields + Common::date, entry.moment.iDate);
    leUINT32(fields + Common::crc, entry.crc);
    leUINT32(fields + Common::storedsize, entry.size);
    leUINT32(fields + Common::size, entry.size);
    leUINT16(fields + Common::namelength, static_cast<uint32_t>(entry.name.size()));
}

// An archive being written.
class ZipFile {
public:
    explicit ZipFile(const std::string& path) : file(path) {}

    [[nodiscard]] bool isopen() const { return file.isopen(); }
    void add(const Entry& entry, View data);
    bool finish();

private:
    void write(View bytes);

    OutputFile file;
    uint32_t position = 0; // in the file
    Bytes directory;       // the central one
    uint32_t entries = 0;
};

void ZipFile::write(View bytes) {
    file.write(bytes);
    position += static_cast<uint32_t>(bytes.size());
}

void ZipFile::add(const Entry& entry, View data) {
    auto central = record<Central::length>(Central::signature);
    setcommon(central.data() + Central::common, entry);
    leUINT32(central.data() + Central::offset, position);
    directory.insert(directory.end(), central.begin(), central.end());
    directory.insert(directory.end(), entry.name.begin(), entry.name.end());
    auto local = record<Local::length>(Local::signature);
    setcommon(local.data() + Local::common, entry);
    write(local);
    write(textbytes(entry.name));
    write(data);
    ++entries;
}

// Writes what ends the archive; whether all of it could be written.
bool ZipFile::finish() {
    auto end = record<End::length>(End::signature);
    leUINT16(end.data() + End::entriesonthisdisk, entries);
    leUINT16(end.data() + End::entries, entries);
    leUINT32(end.data() + End::directorysize, static_cast<uint32_t>(directory.size()));
    leUINT32(end.data() + End::directoryoffset, position);
    write(directory);
    write(end);
    return file.close();
}

// Entry `number` of the file table.
void addentry(ZipFile& zip, int32_t number) {
    const DiskEntry& file = psFiles[static_cast<size_t>(number)];
    const std::string path = adflist(number);
    message(kAlways, file.isdirectory ? "Adding dir... %s\n" : "Adding file... %s\n", path.c_str());
    const Bytes data = adffiledata(number);
    const Entry entry = {.name = path.substr(1),
                         .moment = dostime(file.iSeconds),
                         .crc = crc32buf(data),
                         .size = static_cast<uint32_t>(data.size())};
    zip.add(entry, data);
}

} // namespace

void adfsavezip(const std::string& path) {
    ZipFile zip(path);
    if (!zip.isopen()) return;
    for (int32_t number = 0; number < std::ssize(psFiles); ++number)
        addentry(zip, number);
    if (!zip.finish()) reportnotwritten(path);
}

} // namespace vantorel
