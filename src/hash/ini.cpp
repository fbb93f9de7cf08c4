#include "hash/ini.h"

#include "base/files.h"

#include <algorithm>
#include <cstring>
#include <strings.h>
#include <utility>

namespace vantorel {

namespace {

int32_t offset(size_t position) { return static_cast<int32_t>(position); }

/// Where the line that begins at `position` ends: its line feed. The buffer's last byte is one, so there
/// always is.
size_t linefeed(const std::vector<char>& buffer, size_t position) {
    const void* found = std::memchr(buffer.data() + position, '\n', buffer.size() - position);
    return static_cast<size_t>(static_cast<const char*>(found) - buffer.data());
}

void addsection(IniFile& ini) {
    ini.ipSections.push_back(ini.iLines() - 1);
    // The head's own line feed brings this to 0.
    ini.ipItems.push_back(-1);
}

/// Records the line in [start, end) and turns its text, and that of a section name, into a C string.
void addline(IniFile& ini, size_t start, size_t end) {
    char* const text = ini.pcBuffer.data();
    const bool ishead = text[start] == '[';
    ini.ipLines.push_back(offset(ishead ? start + 1 : start));
    if (ishead) {
        addsection(ini);
        char* const bracket = std::find(text + start, text + end, ']');
        if (bracket != text + end) *bracket = '\0';
    }
    std::replace(text + start, text + end, '\r', '\0');
    text[end] = '\0';
    if (!ini.ipItems.empty()) ++ini.ipItems.back();
}

} // namespace

std::optional<IniFile> loadinifile(const std::string& path) {
    auto contents = readfile(path);
    if (!contents || contents->iExpected > iFileSizeMax) return std::nullopt;
    std::vector<char> text(contents->bytes.begin(), contents->bytes.end());
    contents.reset(); // the file is not held twice while it is indexed
    return parseini(std::move(text));
}

IniFile parseini(std::vector<char> text) {
    IniFile ini;
    const size_t size = text.size();
    ini.pcBuffer = std::move(text);
    ini.pcBuffer.push_back('\n');
    ini.ipLines.reserve(static_cast<size_t>(std::count(ini.pcBuffer.begin(), ini.pcBuffer.end(), '\n')));
    // The first line is there even when the file is empty; the byte added ends only a line that has begun.
    size_t start = 0;
    do {
        const size_t end = linefeed(ini.pcBuffer, start);
        addline(ini, start, end);
        start = end + 1;
    } while (start < size);
    return ini;
}

int32_t readinisection(const IniFile& ini, const char* name) {
    const auto found = std::ranges::find_if(
        ini.ipSections, [&](int32_t head) { return strcasecmp(ini.line(head), name) == 0; });
    if (found == ini.ipSections.end()) return -1;
    return static_cast<int32_t>(found - ini.ipSections.begin());
}

const char* readiniitem(const IniFile& ini, const char* section, const char* key) {
    const int32_t index = readinisection(ini, section);
    if (index < 0) return nullptr;
    const size_t length = std::strlen(key);
    for (const char* const line : ini.lines(index))
        if (strncasecmp(line, key, length) == 0 && line[length] == '=') return line + length + 1;
    return nullptr;
}

} // namespace vantorel
