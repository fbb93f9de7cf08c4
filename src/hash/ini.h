#pragma once
// The reader for every INI text: hash files, the mnemonic table and its hints.
//
// Lines end at a line feed; a carriage return ends a line's text. A line that starts with "[" heads a
// section, whose name runs to the first "]". Anything of the form key=value is an item. Nothing is trimmed
// and there are no comments.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vantorel {

/// The lines of a section in their order, each a C string. They live as long as the file.
class IniLines {
public:
    class Iterator {
    public:
        Iterator(const char* buffer, const int32_t* at) : text(buffer), place(at) {}

        [[nodiscard]] const char* operator*() const { return text + *place; }
        Iterator& operator++() {
            ++place;
            return *this;
        }
        [[nodiscard]] bool operator==(const Iterator&) const = default;

    private:
        const char* text;
        const int32_t* place;
    };

    /// The lines whose texts begin at `offsets` in `buffer`.
    IniLines(const char* buffer, std::span<const int32_t> offsets) : text(buffer), places(offsets) {}

    [[nodiscard]] Iterator begin() const { return {text, places.data()}; }
    [[nodiscard]] Iterator end() const { return {text, places.data() + places.size()}; }
    [[nodiscard]] int32_t size() const { return static_cast<int32_t>(places.size()); }

private:
    const char* text;
    std::span<const int32_t> places;
};

/// A loaded INI file. The texts handed out point into `pcBuffer` and live as long as the record.
struct IniFile {
    std::vector<char> pcBuffer; ///< the file and one byte more; every line's text ends with a NUL
    std::vector<int32_t>
        ipLines; ///< for each line, the buffer offset of its text (of a head: behind the "[")
    std::vector<int32_t> ipSections; ///< for each section, the line number of its head
    std::vector<int32_t>
        ipItems; ///< for each section, the number of lines after its head, up to the next one

    [[nodiscard]] int32_t iLines() const { return static_cast<int32_t>(ipLines.size()); }
    [[nodiscard]] int32_t iSections() const { return static_cast<int32_t>(ipSections.size()); }

    /// The text of line `number`, 0 up to `iLines()` - 1.
    [[nodiscard]] const char* line(int32_t number) const {
        return pcBuffer.data() + ipLines[static_cast<size_t>(number)];
    }
    /// The name of `section` (an index from `readinisection`).
    [[nodiscard]] const char* head(int32_t section) const {
        return line(ipSections[static_cast<size_t>(section)]);
    }
    /// The lines behind the head of `section`, up to the next head.
    [[nodiscard]] IniLines lines(int32_t section) const {
        const auto first = static_cast<size_t>(firstline(section));
        const auto count = static_cast<size_t>(ipItems[static_cast<size_t>(section)]);
        return {pcBuffer.data(), std::span(ipLines).subspan(first, count)};
    }
    /// Line number of the first line behind the head of `section`.
    [[nodiscard]] int32_t firstline(int32_t section) const {
        return ipSections[static_cast<size_t>(section)] + 1;
    }
};

/// Loads and indexes the file at `path`, one that ends early as far as it goes. None, and no message, when it
/// cannot be opened (an empty path cannot) or is larger than `iFileSizeMax`.
[[nodiscard]] std::optional<IniFile> loadinifile(const std::string& path);

/// Indexes `text` as if it were a file's contents.
[[nodiscard]] IniFile parseini(std::vector<char> text);

/// The index of the first section called `name`, case ignored; -1 when there is none.
[[nodiscard]] int32_t readinisection(const IniFile& ini, const char* name);

/// The value of the first line of the first section called `section` that starts with `key` and "=", case
/// ignored; null when there is none.
[[nodiscard]] const char* readiniitem(const IniFile& ini, const char* section, const char* key);

} // namespace vantorel
