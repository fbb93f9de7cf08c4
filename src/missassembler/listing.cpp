#include "missassembler/listing.h"

#include "base/message.h"
#include "base/text.h"
#include "component/extract.h"
#include "missassembler/decode.h"
#include "missassembler/labels.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vantorel {

void ListingFile::print(const std::string& line) {
    add(line);
    message(kAlways, "%s", line.c_str());
}

void ListingFile::close() {
    file.write(textbytes(text));
    if (!file.close()) reportnotwritten(cListingFile);
}

namespace {

// The records that the listing shows: for each byte the last comment and the last label there.
struct RecordIndex {
    std::vector<const MissLabel*> comments;
    std::vector<const MissLabel*> labels;
};

RecordIndex indexrecords(int32_t size) {
    RecordIndex index;
    index.comments.resize(static_cast<size_t>(size));
    index.labels.resize(static_cast<size_t>(size));
    message(kProgress, "There are %d labels\n", iMissLabelCnt);
    for (const MissLabel& record : psLabels) {
        const char* const text = record.pcLabel.c_str();
        const auto position = static_cast<size_t>(record.iPosition);
        const bool iscomment = *text == ';';
        if (record.cType != MissType::cNone || iscomment) {
            message(kChatty, "Adding comment [%s] repeat=%d type=%c\n", text, record.iRepeat, record.cType);
            index.comments[position] = &record;
        }
        if (*text != '\0' && !iscomment) {
            message(kChatty, "Adding label [%s] repeat=%d\n", text, record.iRepeat);
            index.labels[position] = &record;
        }
    }
    return index;
}

// How items of a type are written: bytes, and at least how many digits.
struct ItemFormat {
    char type;
    int32_t size;
    int32_t digits;
};

constexpr auto sItemFormats = std::to_array<ItemFormat>({
    {MissType::cAddress, 4, 6},
    {MissType::cLong, 4, 8},
    {MissType::cWord, 2, 4},
    {MissType::cByte, 1, 2},
});

class Lister {
public:
    Lister(const Walk& itswalk, ListingFile& itslisting)
        : walk(itswalk), listing(itslisting), index(indexrecords(itswalk.record.iSize)),
          relocs(relocsinside(itswalk.record)) {
        tellrelocsoutside(walk.record);
        std::ranges::sort(relocs);
    }

    void list();

private:
    [[nodiscard]] const MissLabel* comment() const { return index.comments[static_cast<size_t>(at)]; }
    [[nodiscard]] bool iscode() const { return walk.marks[static_cast<size_t>(at)] == Walk::Code; }
    [[nodiscard]] uint32_t address() const { return walk.address + static_cast<uint32_t>(at); }
    [[nodiscard]] bool isatend() const { return at >= walk.record.iSize; }

    void addrelocs();
    void listcode();
    void listbytes();
    void listrow();
    void listdata(const MissLabel& record);
    std::string numbers(const MissLabel& record, const ItemFormat& format);
    std::string number(const ItemFormat& format);
    std::string quotedtext();
    void countdata(int32_t count);

    const Walk& walk;
    ListingFile& listing;
    RecordIndex index;
    std::vector<int32_t> relocs; // ascending component offsets
    size_t nextreloc = 0;
    int64_t at = 0; // component offset
    int64_t code = 0;
    int64_t data = 0;
};

// The relocs before the place that the listing has come to.
void Lister::addrelocs() {
    for (; nextreloc < relocs.size() && relocs[nextreloc] < at; ++nextreloc) {
        const int32_t reloc = relocs[nextreloc];
        listing.add(formatted("RELOC=%d @%06X (%X)\n", reloc, walk.address + static_cast<uint32_t>(reloc),
                              iUINT32(walk.bytes.data() + reloc)));
    }
}

void Lister::listcode() {
    if (const MissLabel* label = index.labels[static_cast<size_t>(at)]) {
        listing.add(formatted(" %s\n", label->pcLabel.c_str()));
        message(kAlways, "%s\n", label->pcLabel.c_str());
    }
    MissText text;
    const int32_t length =
        missassembleA(walk.rom, static_cast<int32_t>(walk.record.iStart + at), text, sMnemonic);
    if (const MissLabel* record = comment())
        listing.print(formatted("%06X %-24s %s\n", address(), text.data(), record->pcLabel.c_str()));
    else
        listing.print(formatted("%06X %s\n", address(), text.data()));
    code += length;
    at += length;
}

void Lister::countdata(int32_t count) {
    data += count;
    at += count;
}

// A row of bytes, up to the next code or comment.
void Lister::listrow() {
    constexpr int32_t width = 16;
    constexpr size_t bytescolumn = 7;
    constexpr size_t textcolumn = 58;
    std::string row = formatted("%06X", address()) + std::string(73, ' ');
    size_t count = 0;
    do {
        const uint8_t byte = walk.bytes[static_cast<size_t>(at)];
        row.replace(bytescolumn + 3 * count, 2, formatted("%02X", byte));
        row[textcolumn + count] = byte >= 32 && byte <= 126 ? static_cast<char>(byte) : '.';
        ++count;
        countdata(1);
    } while (count < width && !isatend() && !iscode() && comment() == nullptr);
    row.resize(textcolumn + count);
    listing.print(row + "\n");
}

// Rows of bytes up to the next code or comment; a comment on the first of them has been listed.
void Lister::listbytes() {
    do {
        addrelocs();
        listrow();
    } while (!isatend() && !iscode() && comment() == nullptr);
}

const ItemFormat* itemformat(char type) {
    const auto found = std::ranges::find(sItemFormats, type, &ItemFormat::type);
    return found == sItemFormats.end() ? nullptr : &*found;
}

// The number at the place, which is moved behind it. Bytes beyond the image are 0.
std::string Lister::number(const ItemFormat& format) {
    InstructionBytes bytes = {.image = walk.slot.pcROM, .offset = walk.record.iStart + at};
    const uint32_t value = bytes.take(format.size);
    countdata(format.size);
    return formatted(" 0x%0*X", value == 0 ? format.size * 2 : format.digits, value);
}

// The text at the place, which is moved behind its NUL.
std::string Lister::quotedtext() {
    std::string text = "\"";
    for (bool isended = false; !isended && !isatend();) {
        const auto c = static_cast<char>(walk.bytes[static_cast<size_t>(at)]);
        countdata(1);
        isended = c == '\0';
        text += c == '\n' ? "\\n" : c == '\r' ? "\\r" : isended ? "\\0" : std::string(1, c);
    }
    return text + "\"";
}

// The numbers at the place: a byte, or as many as the record says. None begins behind the component.
std::string Lister::numbers(const MissLabel& record, const ItemFormat& format) {
    const int32_t repeat = record.cType == MissType::cByte ? 1 : std::max(record.iRepeat, 1);
    std::string text;
    for (int32_t i = 0; i < repeat && !isatend(); ++i)
        text += number(format);
    return text;
}

void Lister::listdata(const MissLabel& record) {
    const uint32_t place = address();
    const ItemFormat* format = itemformat(record.cType);
    std::string text;
    if (record.cType == MissType::cText) text = quotedtext();
    if (format != nullptr) text = numbers(record, *format);
    const bool isbare = text.empty();
    listing.print(formatted("%06X %s %s\n", place, text.c_str(), record.pcLabel.c_str()));
    // A comment that says nothing of the bytes leaves them to a dump.
    if (isbare) listbytes();
}

void Lister::list() {
    while (!isatend()) {
        addrelocs();
        const MissLabel* record = comment();
        if (iscode())
            listcode();
        else if (record != nullptr)
            listdata(*record);
        else
            listbytes();
    }
    listing.print(formatted("Scanned %d bytes, %d code %d data\n", static_cast<int32_t>(at),
                            static_cast<int32_t>(code), static_cast<int32_t>(data)));
}

} // namespace

void listwalk(const Walk& walk, ListingFile& listing) { Lister(walk, listing).list(); }

} // namespace vantorel
